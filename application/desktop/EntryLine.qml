import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// A line to write into with what is done with it beside, and what is wrong with it beneath.
Item {
    id: entry

    required property AttentionLook look
    property string label: ""
    property string actionText: ""
    property string fault: ""
    property alias text: field.text

    signal accepted

    implicitHeight: field.height + (faultText.visible ? faultText.height + 4 : 0)

    function focusField() {
        field.forceActiveFocus(Qt.TabFocusReason)
    }

    TextEntry {
        id: field

        anchors.left: parent.left
        anchors.right: action.left
        anchors.rightMargin: 8
        look: entry.look
        label: entry.label
        isRefused: entry.fault.length > 0

        Accessible.description: entry.fault

        onAccepted: {
            if (text.trim().length > 0)
                entry.accepted()
        }
    }

    ActionButton {
        id: action

        anchors.right: parent.right
        anchors.verticalCenter: field.verticalCenter
        look: entry.look
        isFramed: true
        enabled: field.text.trim().length > 0
        text: entry.actionText
        onClicked: entry.accepted()
    }

    PlainText {
        id: faultText

        look: entry.look
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: field.bottom
        anchors.topMargin: 4
        visible: text.length > 0
        text: entry.fault
        color: entry.look.isDark ? "#ffb4a8" : "#a02a1a"
        Accessible.role: Accessible.AlertMessage
    }
}
