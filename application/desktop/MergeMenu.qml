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
        const found = others.itemAtIndex(row)
        if (found)
            found.ask()
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

            Keys.onReturnPressed: menu.askAt(currentIndex)
            Keys.onEnterPressed: menu.askAt(currentIndex)

            delegate: Item {
                id: row

                required property int index
                required property string personKey
                required property string displayName
                required property string addresses
                required property string standing

                function ask() {
                    menu.ask(personKey, displayName, addresses)
                }

                width: ListView.view.width
                implicitHeight: words.implicitHeight + 14

                Accessible.role: Accessible.ListItem
                Accessible.name: displayName + ". " + addresses
                Accessible.description: standing
                Accessible.onPressAction: ask()

                Rectangle {
                    anchors.fill: parent
                    radius: 6
                    color: Qt.alpha(menu.look.accent, row.ListView.isCurrentItem && others.activeFocus ? 0.2
                                                                                                       : pointer.hovered ? 0.1 : 0)
                }

                HoverHandler {
                    id: pointer
                }

                TapHandler {
                    onTapped: row.ask()
                }

                Column {
                    id: words

                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    anchors.leftMargin: 10
                    anchors.rightMargin: 10

                    PlainText {
                        look: menu.look
                        width: parent.width
                        text: row.displayName
                        font.weight: Font.Medium
                        wrapMode: Text.NoWrap
                        elide: Text.ElideRight
                        Accessible.ignored: true
                    }

                    PlainText {
                        look: menu.look
                        width: parent.width
                        points: 11
                        text: row.addresses
                        color: menu.look.secondaryText
                        wrapMode: Text.NoWrap
                        elide: Text.ElideRight
                        Accessible.ignored: true
                    }

                    PlainText {
                        look: menu.look
                        width: parent.width
                        visible: text.length > 0
                        points: 11
                        text: row.standing
                        color: menu.look.accent
                        Accessible.ignored: true
                    }
                }
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
                .arg([menu.person.addresses, menu.otherAddresses].filter(text => text.length > 0).join(qsTr(", ")))
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
