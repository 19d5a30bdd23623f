import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// The chosen person: the reason, what it is about, the conversation behind it, and all else there is between the two.
Flickable {
    id: page

    required property WindowModel window
    required property FollowUpsModel followUps
    required property AttentionLook look
    readonly property PersonModel person: window.person
    readonly property bool isAbsent: person.absence.length > 0

    signal snoozeRequested(anchor: Item)
    signal remindRequested(anchor: Item)

    function scroll(distance: real) {
        contentY = Math.max(0, Math.min(Math.max(0, contentHeight - height), contentY + distance))
    }

    contentHeight: content.implicitHeight + 64
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: true

    Accessible.role: Accessible.Pane
    Accessible.name: person.displayName

    Keys.onDownPressed: scroll(48)
    Keys.onUpPressed: scroll(-48)

    Connections {
        target: page.window

        function onChosenChanged() {
            page.contentY = 0
        }
    }

    component Heading: PlainText {
        width: parent.width
        topPadding: 26
        bottomPadding: 8
        points: 13
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }

    component Line: PlainText {
        width: parent.width
        bottomPadding: 6
    }

    Column {
        id: content

        x: page.look.isRightToLeft ? page.width - width - 32 : 32
        y: 28
        width: Math.min(page.width - 64, page.look.pixelSize(620))
        visible: page.person.personKey.length > 0

        Item {
            width: parent.width
            height: Math.max(name.implicitHeight, remind.implicitHeight)

            PlainText {
                id: name

                look: page.look
                anchors.left: parent.left
                anchors.right: remind.left
                anchors.rightMargin: 16
                points: 20
                text: page.person.displayName
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }

            ActionButton {
                id: remind

                look: page.look
                anchors.right: parent.right
                y: (name.font.pixelSize * 1.3 - height) / 2
                text: qsTr("Remind me")
                Accessible.role: Accessible.ButtonMenu
                onClicked: page.remindRequested(remind)
            }
        }

        PlainText {
            look: page.look
            width: parent.width
            topPadding: 4
            text: page.person.addresses
            color: page.look.secondaryText
        }

        Item {
            width: 1
            height: 20
        }

        ContactYears {
            width: parent.width
            height: implicitHeight + 20
            look: page.look
            picture: page.person.contact
        }

        Rectangle {
            width: parent.width
            height: (page.isAbsent ? absence.implicitHeight : reason.implicitHeight) + 28
            visible: page.person.whyNow.hasItem || page.isAbsent
            radius: 10
            color: Qt.alpha(page.look.text, page.look.isDark ? 0.05 : 0.03)
            border.width: 1
            border.color: Qt.alpha(page.look.text, 0.14)

            AttentionWhyNowView {
                id: reason

                anchors.left: parent.left
                anchors.right: parent.right
                anchors.leftMargin: 16
                anchors.rightMargin: 16
                y: 14
                visible: !page.isAbsent
                model: page.person.whyNow
                look: page.look
                isEvidenceExpanded: true
            }

            PlainText {
                id: absence

                look: page.look
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.leftMargin: 16
                anchors.rightMargin: 16
                y: 14
                visible: page.isAbsent
                text: page.person.absence
            }
        }

        Row {
            width: parent.width
            topPadding: 10
            spacing: 10
            visible: page.person.whyNow.hasItem && !page.isAbsent

            ActionButton {
                id: snooze

                look: page.look
                isFramed: true
                text: qsTr("Snooze")
                onClicked: page.snoozeRequested(snooze)
            }

            ActionButton {
                look: page.look
                isFramed: true
                text: qsTr("Dismiss")
                onClicked: page.window.dismiss()
            }

            ActionButton {
                look: page.look
                isFramed: true
                text: qsTr("Resolve")
                onClicked: page.window.resolve()
            }
        }

        Heading {
            look: page.look
            visible: page.person.followUps.length > 0
            text: qsTr("You wanted to get back to them")
        }

        FollowUps {
            width: parent.width
            person: page.person
            followUps: page.followUps
            look: page.look
        }

        Heading {
            look: page.look
            visible: page.person.question.length > 0
            text: qsTr("They asked")
        }

        Item {
            width: parent.width
            height: question.implicitHeight
            visible: page.person.question.length > 0

            Rectangle {
                anchors.left: parent.left
                width: 3
                height: parent.height
                radius: 1.5
                color: Qt.alpha(page.look.accent, 0.6)
            }

            PlainText {
                id: question

                look: page.look
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.leftMargin: 14
                points: 13
                text: page.person.question
                lineHeight: 1.2
            }
        }

        Heading {
            look: page.look
            visible: page.person.meeting.length > 0
            text: qsTr("The meeting")
        }

        Line {
            look: page.look
            visible: page.person.meeting.length > 0
            text: page.person.meeting
        }

        Heading {
            look: page.look
            visible: page.person.exchanges.length > 0
            text: {
                if (page.person.subject.length > 0)
                    return page.person.subject
                return page.person.meeting.length > 0 ? qsTr("Until now") : qsTr("The conversation")
            }
        }

        Line {
            look: page.look
            visible: page.person.earlierExchanges > 0
            text: qsTr("%n earlier", "", page.person.earlierExchanges)
            color: page.look.secondaryText
        }

        Repeater {
            model: page.person.exchanges

            Item {
                id: exchange

                required property var modelData

                width: content.width
                height: writer.implicitHeight

                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.date + ", " + modelData.writer

                PlainText {
                    look: page.look
                    anchors.left: parent.left
                    width: page.look.pixelSize(110)
                    text: exchange.modelData.date
                    color: page.look.secondaryText
                    Accessible.ignored: true
                }

                PlainText {
                    id: writer

                    look: page.look
                    anchors.left: parent.left
                    anchors.leftMargin: page.look.pixelSize(110)
                    anchors.right: parent.right
                    bottomPadding: 6
                    text: exchange.modelData.writer
                    color: exchange.modelData.isOwn ? page.look.accent : page.look.text
                    Accessible.ignored: true
                }
            }
        }

        Heading {
            look: page.look
            visible: page.person.otherMatters.length > 0
            text: qsTr("There is also")
        }

        Repeater {
            model: page.person.otherMatters

            Line {
                look: page.look
                required property string modelData

                width: content.width
                text: modelData
            }
        }

        Heading {
            look: page.look
            visible: page.person.decisions.length > 0
            text: qsTr("What you decided")
        }

        Repeater {
            model: page.person.decisions

            Line {
                look: page.look
                required property string modelData

                width: content.width
                text: modelData
                color: page.look.secondaryText
            }
        }
    }

    Templates.ScrollBar.vertical: QuietScrollBar {
        look: page.look
    }
}
