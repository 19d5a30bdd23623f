import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// What can be done about the chosen person beside deciding about their reason.
PopupMenu {
    id: menu

    required property WindowModel window
    required property CorrectionsModel corrections
    readonly property PersonModel person: window.person
    // What is read of a person who was just chosen comes a moment later.
    readonly property bool isRead: person.personKey.length > 0 && person.personKey === window.chosen
    readonly property personChoices choices: person.choices

    signal wrongAsked
    signal renameAsked
    signal mergeAsked

    function choose(act: var) {
        close()
        if (isRead)
            act()
    }

    title: qsTr("More about %1").arg(person.displayName)
    onOpened: first.forceActiveFocus(Qt.TabFocusReason)

    contentItem: Column {
        spacing: 2

        LayoutMirroring.enabled: menu.look.isRightToLeft
        LayoutMirroring.childrenInherit: true

        MenuChoice {
            id: first

            look: menu.look
            text: qsTr("Open message")
            detail: menu.isRead && !menu.choices.hasMessage ? qsTr("there is none") : "M"
            onClicked: menu.choose(() => menu.corrections.openMessage(menu.person.itemKey))
        }

        MenuChoice {
            look: menu.look
            text: qsTr("This is wrong…")
            onClicked: menu.choose(() => menu.wrongAsked())
        }

        MenuChoice {
            look: menu.look
            text: qsTr("Rename…")
            onClicked: menu.choose(() => menu.renameAsked())
        }

        MenuChoice {
            look: menu.look
            text: qsTr("Merge with…")
            onClicked: menu.choose(() => menu.mergeAsked())
        }

        Rectangle {
            width: parent.width
            height: 1
            color: menu.look.line(0.14)
        }

        MenuChoice {
            look: menu.look
            visible: menu.isRead && menu.choices.hasConversation && !menu.choices.isHidden
            text: qsTr("Hide this conversation")
            onClicked: menu.choose(() => menu.corrections.hideConversation(menu.person.personKey, menu.person.displayName,
                                                                          menu.person.itemKey))
        }

        MenuChoice {
            look: menu.look
            text: menu.choices.isHidden ? qsTr("Show again") : qsTr("Hide")
            onClicked: menu.choose(() => {
                if (menu.choices.isHidden)
                    menu.corrections.showAgain(menu.person.personKey, menu.person.displayName)
                else
                    menu.corrections.hide(menu.person.personKey, menu.person.displayName)
            })
        }
    }
}
