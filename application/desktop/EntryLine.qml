import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// A field with what is done with what is written there, and beneath it what is wrong with that.
Item {
    id: line

    required property AttentionLook look
    required property string label
    required property string action
    property string hint: label
    property alias text: entry.text
    property string fault: ""
    property bool isRefused: fault.length > 0
    property bool isEnabled: true

    signal written(text: string)
    signal edited

    function write() {
        if (isEnabled && entry.text.trim().length > 0)
            written(entry.text)
    }

    function focusEntry() {
        entry.forceActiveFocus(Qt.TabFocusReason)
    }

    readonly property real lineHeight: Math.max(entry.implicitHeight, button.implicitHeight)

    implicitHeight: lineHeight + (trouble.visible ? trouble.implicitHeight + 4 : 0)

    TextEntry {
        id: entry

        look: line.look
        anchors.left: parent.left
        y: (line.lineHeight - height) / 2
        width: parent.width - button.width - 10
        label: line.label
        hint: line.hint
        isRefused: line.isRefused
        Accessible.description: line.fault

        onAccepted: line.write()
        onTextEdited: line.edited()
    }

    ActionButton {
        id: button

        look: line.look
        anchors.right: parent.right
        y: (line.lineHeight - height) / 2
        isFramed: true
        enabled: line.isEnabled && entry.text.trim().length > 0
        text: line.action
        onClicked: line.write()
    }

    TroubleText {
        id: trouble

        look: line.look
        anchors.left: parent.left
        anchors.right: parent.right
        y: line.lineHeight + 4
        visible: text.length > 0
        text: line.fault
    }
}
