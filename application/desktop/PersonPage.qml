import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// The chosen person: the reason, what it is about, the conversation behind it, and all else there is between the two.
Flickable {
    id: page

    required property WindowModel window
    required property FollowUpsModel followUps
    required property CorrectionsModel corrections
    required property AttentionLook look
    readonly property PersonModel person: window.person
    readonly property bool isAbsent: person.absence.length > 0

    readonly property alias moreButton: more

    signal snoozeRequested(anchor: Item)
    signal remindRequested(anchor: Item)
    signal moreRequested(anchor: Item)

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

    // Its row tells assistive technology what it says.
    component Cell: Text {
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignLeft
        font.pixelSize: page.look.pixelSize(12)
    }

    component Line: PlainText {
        width: parent.width
        bottomPadding: 6
    }

    Column {
        id: content

        // The columns of a conversation: who wrote when, and what was asked. Where there is no room for three, that stands
        // beneath who asked it.
        readonly property int dateWidth: page.look.pixelSize(96)
        readonly property int writerWidth: page.look.pixelSize(120)
        readonly property bool isTight: width < page.look.pixelSize(400)

        x: page.look.isRightToLeft ? page.width - width - 32 : 32
        y: 28
        width: Math.min(page.width - 64, page.look.pixelSize(620))
        visible: page.person.personKey.length > 0

        Item {
            width: parent.width
            height: Math.max(name.height, besideName.height)

            PlainText {
                id: name

                look: page.look
                anchors.left: parent.left
                anchors.right: besideName.left
                anchors.rightMargin: 12
                points: 20
                text: page.person.displayName
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }

            Row {
                id: besideName

                anchors.right: parent.right
                spacing: 6

                ActionButton {
                    id: remind

                    anchors.verticalCenter: parent.verticalCenter
                    look: page.look
                    text: qsTr("Remind me")
                    Accessible.role: Accessible.ButtonMenu
                    onClicked: page.remindRequested(remind)
                }

                ActionButton {
                    id: more

                    anchors.verticalCenter: parent.verticalCenter
                    look: page.look
                    points: 16
                    color: page.look.text
                    text: "…"
                    Accessible.name: qsTr("More about %1").arg(page.person.displayName)
                    Accessible.role: Accessible.ButtonMenu
                    onClicked: page.moreRequested(more)
                }
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
            border.color: page.look.line(0.14)

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

        Row {
            width: parent.width
            topPadding: 10
            spacing: 10
            visible: page.isAbsent && (page.person.choices.isHidden || page.person.choices.isSnoozed)

            ActionButton {
                look: page.look
                isFramed: true
                visible: page.person.choices.isHidden
                text: qsTr("Show again")
                onClicked: page.corrections.showAgain(page.person.personKey, page.person.displayName)
            }

            ActionButton {
                look: page.look
                isFramed: true
                visible: page.person.choices.isSnoozed && !page.person.choices.isHidden
                text: qsTr("Bring back now")
                onClicked: page.corrections.bringBack(page.person.personKey, page.person.displayName)
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
            visible: page.person.conversation.count > 0
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
            model: page.person.conversation

            Item {
                id: exchange

                required property int index
                required property string date
                required property string writer
                required property bool isOwn
                required property string words
                required property bool isQuestion
                required property string sentence

                width: content.width
                visible: index < page.person.conversation.count
                height: Math.max(from.height, isQuestion ? said.y + said.height : 0) + 6

                Accessible.role: Accessible.StaticText
                Accessible.name: sentence

                Cell {
                    anchors.left: parent.left
                    width: content.dateWidth
                    text: exchange.date
                    color: page.look.secondaryText
                }

                Cell {
                    id: from

                    anchors.left: parent.left
                    anchors.leftMargin: content.dateWidth
                    width: content.isTight ? parent.width - content.dateWidth : content.writerWidth - 12
                    text: exchange.writer
                    color: exchange.isOwn ? page.look.accent : page.look.text
                    wrapMode: Text.NoWrap
                    elide: Text.ElideRight
                }

                Cell {
                    id: said

                    anchors.left: parent.left
                    anchors.leftMargin: content.dateWidth + (content.isTight ? 0 : content.writerWidth)
                    anchors.right: parent.right
                    y: content.isTight ? from.height : 0
                    visible: exchange.isQuestion
                    text: exchange.isQuestion ? exchange.words : ""
                    color: page.look.text
                }
            }
        }

        ActionButton {
            anchors.left: parent.left
            anchors.leftMargin: -6
            look: page.look
            visible: page.person.choices.hasMessage && !page.person.choices.isHidden
            text: qsTr("Open message")
            onClicked: page.corrections.openMessage(page.person.itemKey)
        }

        Heading {
            look: page.look
            visible: page.person.otherMatters.length > 0
            text: qsTr("There is also")
        }

        // One text rather than one for each: making them is most of what opening a person costs.
        Line {
            look: page.look
            visible: page.person.otherMatters.length > 0
            text: page.person.otherMatters.join("\n")
            lineHeight: 1.4
        }

        Heading {
            look: page.look
            visible: page.person.choices.hiddenThings.length > 0
            text: qsTr("What you hide of it")
        }

        Repeater {
            model: page.person.choices.hiddenThings

            Item {
                id: hidden

                required property var modelData

                width: content.width
                height: Math.max(thing.height, showAgain.height)

                PlainText {
                    id: thing

                    look: page.look
                    anchors.left: parent.left
                    anchors.right: showAgain.left
                    anchors.rightMargin: 10
                    anchors.verticalCenter: parent.verticalCenter
                    text: hidden.modelData.words
                }

                ActionButton {
                    id: showAgain

                    look: page.look
                    anchors.right: parent.right
                    text: qsTr("Show again")
                    Accessible.description: hidden.modelData.words
                    onClicked: page.corrections.showThingAgain(page.person.personKey, page.person.displayName,
                                                               hidden.modelData.key)
                }
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
