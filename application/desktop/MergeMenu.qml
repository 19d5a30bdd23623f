import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// With whom the chosen person is one: whoever may be the same first, then everybody. Asks once before it is done.
PopupMenu {
    id: menu

    required property WindowModel window
    required property CorrectionsModel corrections
    readonly property PersonModel person: window.person
    property string otherKey: ""
    property string otherName: ""
    property string otherAddresses: ""
    readonly property bool isAsking: otherKey.length > 0
    readonly property string allAddresses: person.addresses.length > 0 && otherAddresses.length > 0
        ? person.addresses + qsTr(", ") + otherAddresses : person.addresses + otherAddresses

    function ask(key: string, name: string, addresses: string) {
        otherName = name
        otherAddresses = addresses
        otherKey = key
        yes.forceActiveFocus(Qt.TabFocusReason)
    }

    function searchAgain() {
        otherKey = ""
        entry.forceActiveFocus(Qt.TabFocusReason)
    }

    function askAt(row: int) {
        const found = others.itemAtIndex(row) as PersonToMerge
        found?.asked()
    }

    implicitWidth: Math.min(look.pixelSize(420), (parent?.width ?? 0) - 16)
    padding: 16
    title: isAsking ? qsTr("Make %1 and %2 one person?").arg(person.displayName).arg(otherName)
                    : qsTr("Who is the same as %1?").arg(person.displayName)
    onAboutToShow: {
        otherKey = ""
        entry.text = ""
        corrections.lookForSame(person.personKey, "")
    }
    onOpened: entry.forceActiveFocus(Qt.TabFocusReason)

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
            visible: !menu.isAsking
            label: qsTr("Search people")
            onTextEdited: menu.corrections.lookForSame(menu.person.personKey, text)
            onAccepted: menu.askAt(0)
            Keys.onDownPressed: {
                others.currentIndex = 0
                others.forceActiveFocus(Qt.TabFocusReason)
            }
        }

        ListView {
            id: others

            width: parent.width
            height: Math.min(contentHeight, menu.look.pixelSize(280), (menu.parent?.height ?? 600) - 200)
            visible: !menu.isAsking
            model: menu.corrections.others
            clip: true
            activeFocusOnTab: true
            boundsBehavior: Flickable.StopAtBounds
            highlightMoveDuration: 0

            Templates.ScrollBar.vertical: QuietScrollBar {
                look: menu.look
            }

            Accessible.role: Accessible.List
            Accessible.name: qsTr("People found")

            ReadingOrder {
                of: others.contentItem
            }

            Keys.onReturnPressed: menu.askAt(currentIndex)
            Keys.onEnterPressed: menu.askAt(currentIndex)

            delegate: PersonToMerge {
                look: menu.look
                width: ListView.view.width
                onAsked: menu.ask(personKey, displayName, addresses)
            }
        }

        PlainText {
            look: menu.look
            width: parent.width
            visible: !menu.isAsking && others.count === 0
            text: qsTr("Nobody you deal with has that in their name or address.")
            color: menu.look.secondaryText
        }

        PlainText {
            look: menu.look
            width: parent.width
            visible: menu.isAsking
            text: qsTr("Both become %1 (%2), with all the mail, meetings and decisions of both.").arg(menu.person.displayName)
                .arg(menu.allAddresses)
            color: menu.look.secondaryText
        }

        Row {
            spacing: 10
            visible: menu.isAsking

            ActionButton {
                id: yes

                look: menu.look
                isFramed: true
                text: qsTr("Make them one")
                onClicked: {
                    const other = menu.otherKey
                    menu.close()
                    menu.corrections.makeOne(menu.person.personKey, menu.person.displayName, other, menu.otherName)
                }
            }

            ActionButton {
                look: menu.look
                isFramed: true
                color: menu.look.text
                text: qsTr("Somebody else")
                onClicked: menu.searchAgain()
            }
        }
    }
}
