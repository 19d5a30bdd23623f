import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// One person of the list: who, why, and what it is about.
Item {
    id: row

    required property int index
    required property string personKey
    required property string displayName
    required property string address
    required property string headline
    required property string about
    required property WindowModel window
    required property AttentionLook look

    readonly property bool isChosen: window.chosen === personKey
    // What can be done with the row lies over its first line, so that nothing moves when it comes and goes.
    readonly property bool showsActions: isChosen || pointer.hovered

    signal opened
    signal snoozeAsked(anchor: Item)
    signal dismissed
    signal resolved
    signal menuAsked(x: real, y: real)

    implicitHeight: content.implicitHeight + 24

    Accessible.role: Accessible.ListItem
    Accessible.name: (address.length > 0 ? qsTr("%1, %2").arg(displayName).arg(address) : displayName) + ". " + headline
    Accessible.description: about
    Accessible.focusable: true
    Accessible.focused: isChosen && ListView.view.activeFocus
    Accessible.selectable: true
    Accessible.selected: isChosen
    Accessible.onPressAction: opened()

    Rectangle {
        id: ground

        anchors.fill: parent
        anchors.leftMargin: 8
        anchors.rightMargin: 12
        radius: 8
        color: Qt.alpha(row.look.accent, row.isChosen ? (row.look.isDark ? 0.18 : 0.1) : pointer.hovered ? 0.05 : 0)
        border.width: row.isChosen && row.ListView.view.activeFocus ? 1 : 0
        border.color: Qt.alpha(row.look.accent, 0.6)
    }

    HoverHandler {
        id: pointer
    }

    TapHandler {
        onTapped: row.opened()
    }

    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: event => row.menuAsked(event.position.x, event.position.y)
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
            look: row.look
            width: parent.width
            points: 13
            text: row.displayName
            font.weight: Font.Medium
            Accessible.ignored: true
        }

        PlainText {
            look: row.look
            width: parent.width
            visible: text.length > 0
            points: 11
            text: row.address
            color: row.look.secondaryText
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            Accessible.ignored: true
        }

        PlainText {
            look: row.look
            width: parent.width
            text: row.headline
            color: row.look.secondaryText
            Accessible.ignored: true
        }

        PlainText {
            look: row.look
            width: parent.width
            visible: text.length > 0
            text: row.about
            color: row.look.secondaryText
            font.italic: true
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }

    // By the mouse; the keys s, d and r do the same.
    component Action: ActionButton {
        required property string whom

        points: 11
        focusPolicy: Qt.NoFocus
        Accessible.name: qsTr("%1: %2", "an action, and whom it concerns").arg(text).arg(whom)
    }

    Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: 16
        y: 9
        width: actions.width + 8
        height: actions.height
        visible: row.showsActions && width < row.width * 0.6
        radius: 6
        color: Qt.tint(row.look.background, ground.color)

        Row {
            id: actions

            anchors.right: parent.right

            Action {
                id: snooze

                look: row.look
                whom: row.displayName
                text: qsTr("Snooze")
                onClicked: row.snoozeAsked(snooze)
            }

            Action {
                look: row.look
                whom: row.displayName
                text: qsTr("Dismiss")
                onClicked: row.dismissed()
            }

            Action {
                look: row.look
                whom: row.displayName
                text: qsTr("Resolve")
                onClicked: row.resolved()
            }
        }
    }
}
