import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// Another name for the chosen person.
PopupMenu {
    id: menu

    required property WindowModel window
    required property CorrectionsModel corrections
    readonly property PersonModel person: window.person

    function accept() {
        const name = entry.text
        close()
        corrections.rename(person.personKey, person.displayName, name)
    }

    implicitWidth: Math.min(look.pixelSize(360), (parent?.width ?? 0) - 16)
    padding: 16
    title: qsTr("What do you call them?")
    onAboutToShow: entry.text = person.displayName
    onOpened: {
        entry.forceActiveFocus(Qt.TabFocusReason)
        entry.selectAll()
    }

    contentItem: Column {
        spacing: 10

        LayoutMirroring.enabled: menu.look.isRightToLeft
        LayoutMirroring.childrenInherit: true

        PlainText {
            look: menu.look
            width: parent.width
            points: 13
            text: menu.title
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }

        TextEntry {
            id: entry

            look: menu.look
            width: parent.width
            label: qsTr("Name")
            hint: qsTr("As mail says")
            onAccepted: menu.accept()
        }

        PlainText {
            look: menu.look
            width: parent.width
            points: 11
            text: qsTr("No mail changes this name. Leave it empty for the one that mail gives.")
            color: menu.look.secondaryText
        }

        Row {
            spacing: 10

            ActionButton {
                look: menu.look
                isFramed: true
                text: qsTr("Rename")
                onClicked: menu.accept()
            }

            ActionButton {
                look: menu.look
                isFramed: true
                color: menu.look.text
                text: qsTr("Cancel")
                onClicked: menu.close()
            }
        }
    }
}
