import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// Whom a search found, and why they are on the list or not.
ListView {
    id: results

    required property WindowModel window
    required property AttentionLook look

    signal opened

    function open(row: int) {
        const person = window.found.personAt(row)
        if (person.length > 0) {
            window.choose(person)
            opened()
        }
    }

    model: window.found
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0
    topMargin: 8
    bottomMargin: 16

    Accessible.role: Accessible.List
    Accessible.name: qsTr("People found")

    ReadingOrder {
        of: results.contentItem
    }

    onActiveFocusChanged: {
        if (activeFocus)
            currentIndex = Math.max(0, currentIndex)
    }

    Keys.onReturnPressed: open(currentIndex)
    Keys.onEnterPressed: open(currentIndex)

    delegate: Item {
        id: row

        required property int index
        required property string displayName
        required property string addresses
        required property string standing

        width: ListView.view.width
        implicitHeight: content.implicitHeight + 20

        Accessible.role: Accessible.ListItem
        // Two may have the same name, and stand alike.
        Accessible.name: displayName + ". " + standing + " " + addresses
        Accessible.focusable: true
        Accessible.focused: ListView.isCurrentItem && ListView.view.activeFocus
        Accessible.selectable: true
        Accessible.selected: ListView.isCurrentItem
        Accessible.onPressAction: results.open(index)

        Rectangle {
            anchors.fill: parent
            anchors.leftMargin: 8
            anchors.rightMargin: 12
            radius: 8
            color: Qt.alpha(results.look.accent, row.ListView.isCurrentItem ? 0.14 : pointer.hovered ? 0.06 : 0)
        }

        HoverHandler {
            id: pointer
        }

        TapHandler {
            onTapped: {
                results.currentIndex = row.index
                results.open(row.index)
            }
        }

        Column {
            id: content

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            anchors.leftMargin: 20
            anchors.rightMargin: 20
            spacing: 3

            PlainText {
                look: results.look
                width: parent.width
                points: 13
                text: row.displayName
                font.weight: Font.Medium
                Accessible.ignored: true
            }

            PlainText {
                look: results.look
                width: parent.width
                points: 11
                text: row.addresses
                color: results.look.secondaryText
                wrapMode: Text.NoWrap
                elide: Text.ElideRight
                Accessible.ignored: true
            }

            PlainText {
                look: results.look
                width: parent.width
                text: row.standing
                color: results.look.secondaryText
                Accessible.ignored: true
            }
        }
    }

    PlainText {
        look: results.look
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: 20
        y: 24
        visible: results.count === 0
        text: qsTr("Nobody you deal with has that in their name or address.")
        color: results.look.secondaryText
    }

    Templates.ScrollBar.vertical: QuietScrollBar {
        look: results.look
    }
}
