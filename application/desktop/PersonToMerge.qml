import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// Somebody who may be the same person as another, as a row of a list.
Item {
    id: row

    required property AttentionLook look
    required property string personKey
    required property string displayName
    required property string addresses
    required property string standing
    readonly property bool isAtHand: ListView.isCurrentItem && ListView.view.activeFocus

    signal asked

    implicitHeight: words.implicitHeight + 14

    Accessible.role: Accessible.ListItem
    Accessible.name: displayName + ". " + addresses
    Accessible.description: standing
    Accessible.focusable: true
    Accessible.focused: isAtHand
    Accessible.selectable: true
    Accessible.selected: ListView.isCurrentItem
    Accessible.onPressAction: asked()

    Rectangle {
        anchors.fill: parent
        radius: 6
        color: Qt.alpha(row.look.accent, row.isAtHand ? 0.2 : pointer.hovered ? 0.1 : 0)
    }

    HoverHandler {
        id: pointer
    }

    TapHandler {
        onTapped: row.asked()
    }

    Column {
        id: words

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.leftMargin: 10
        anchors.rightMargin: 10

        PlainText {
            look: row.look
            width: parent.width
            text: row.displayName
            font.weight: Font.Medium
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            Accessible.ignored: true
        }

        PlainText {
            look: row.look
            width: parent.width
            points: 11
            text: row.addresses
            color: row.look.secondaryText
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            Accessible.ignored: true
        }

        PlainText {
            look: row.look
            width: parent.width
            visible: text.length > 0
            points: 11
            text: row.standing
            color: row.look.accent
            Accessible.ignored: true
        }
    }
}
