import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// What concerns nobody in particular.
PopupMenu {
    id: menu

    title: qsTr("Menu")

    signal chosen(place: string)
    signal keysAsked
    signal readingAsked

    onOpened: first.forceActiveFocus(Qt.TabFocusReason)

    contentItem: Column {
        spacing: 2

        LayoutMirroring.enabled: menu.look.isRightToLeft
        LayoutMirroring.childrenInherit: true

        MenuChoice {
            id: first

            look: menu.look
            text: qsTr("Read what is new")
            detail: "F5"
            onClicked: {
                menu.close()
                menu.readingAsked()
            }
        }

        MenuChoice {
            look: menu.look
            text: qsTr("Overview")
            detail: "O"
            onClicked: {
                menu.close()
                menu.chosen("overview")
            }
        }

        MenuChoice {
            look: menu.look
            text: qsTr("Settings")
            detail: qsTr("Ctrl+,")
            onClicked: {
                menu.close()
                menu.chosen("settings")
            }
        }

        MenuChoice {
            look: menu.look
            text: qsTr("Keys")
            detail: "?"
            onClicked: {
                menu.close()
                menu.keysAsked()
            }
        }
    }
}
