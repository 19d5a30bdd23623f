import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// What may be wrong about a person, and what follows when the user says so.
PopupMenu {
    id: menu

    required property WindowModel window
    required property CorrectionsModel corrections
    readonly property PersonModel person: window.person
    readonly property personChoices choices: person.choices
    readonly property bool isReasonOpen: !choices.canBeNoQuestion && !choices.canBeNotWaiting

    signal renameAsked
    signal mergeAsked

    function choose(act: var) {
        close()
        act()
    }

    function sayWrong() {
        corrections.sayWrong(person.personKey, person.displayName, person.itemKey)
    }

    // Where there is no room for all of it, it scrolls.
    implicitHeight: Math.min(content.implicitHeight + topPadding + bottomPadding, (parent?.height ?? 0) - 16)
    implicitWidth: Math.min(look.pixelSize(420), (parent?.width ?? 0) - 16)
    title: qsTr("What is wrong about %1?").arg(person.displayName)
    onOpened: content.nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)

    component Choice: ExplainedChoice {
        width: parent.width
        onActiveFocusChanged: {
            const scroller = parent.parent.parent as Flickable
            if (activeFocus && scroller)
                scroller.contentY = Math.max(Math.min(scroller.contentY, y), y + height - scroller.height)
        }
    }

    contentItem: Flickable {
        id: scroller

        clip: true
        contentHeight: content.implicitHeight
        boundsBehavior: Flickable.StopAtBounds

        Column {
            id: content

            width: scroller.width
            spacing: 2

            LayoutMirroring.enabled: menu.look.isRightToLeft
            LayoutMirroring.childrenInherit: true

            PlainText {
                look: menu.look
                width: parent.width
                leftPadding: 10
                rightPadding: 10
                topPadding: 6
                bottomPadding: 6
                points: 13
                text: menu.title
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }

            Choice {
                look: menu.look
                visible: menu.choices.canBeNoQuestion
                text: qsTr("This is no question")
                explanation: qsTr("It is never asked again, whatever mail is read. What else waits between you stays.")
                onClicked: menu.choose(menu.sayWrong)
            }

            Choice {
                look: menu.look
                visible: menu.choices.canBeNotWaiting
                text: qsTr("Nothing waits for my answer")
                explanation: qsTr("The conversation leaves the list until another mail comes in it.")
                onClicked: menu.choose(menu.sayWrong)
            }

            PlainText {
                look: menu.look
                width: parent.width
                leftPadding: 10
                rightPadding: 10
                bottomPadding: 6
                visible: menu.isReasonOpen && menu.person.whyNow.hasItem && !menu.choices.isHidden
                text: qsTr("The reason itself stands in your mail or calendar. Dismiss takes it off the list for good.")
                color: menu.look.secondaryText
            }

            Choice {
                look: menu.look
                text: qsTr("The name")
                explanation: qsTr("You give another, which no mail changes.")
                onClicked: menu.choose(() => menu.renameAsked())
            }

            Choice {
                look: menu.look
                text: qsTr("They are the same as somebody else")
                explanation: qsTr("You choose who that is, and both become one person.")
                onClicked: menu.choose(() => menu.mergeAsked())
            }

            Repeater {
                model: menu.choices.addresses.length > 1 ? menu.choices.addresses : []

                Choice {
                    look: menu.look
                    required property string modelData

                    text: qsTr("%1 is somebody else's").arg(modelData)
                    explanation: qsTr("The address becomes a person of its own, with its mail.")
                    onClicked: menu.choose(() => menu.corrections.splitOff(menu.person.personKey, modelData))
                }
            }

            Choice {
                look: menu.look
                visible: !menu.choices.isHidden
                text: qsTr("They should not be here at all")
                explanation: qsTr("They are hidden: never on the list, and nothing reminds of them. The search still finds them.")
                onClicked: menu.choose(() => menu.corrections.hide(menu.person.personKey, menu.person.displayName))
            }
        }
    }
}
