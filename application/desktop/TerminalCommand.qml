import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// Something to be taken from here to a terminal.
Rectangle {
    id: box

    required property AttentionLook look
    required property string command

    implicitHeight: words.implicitHeight + 16
    radius: 8
    color: Qt.alpha(look.text, 0.05)
    border.width: words.activeFocus ? 2 : 1
    border.color: words.activeFocus ? look.accent : look.line(0.12)

    TextEdit {
        id: words

        x: 12
        y: 8
        width: parent.width - 24
        text: box.command
        textFormat: TextEdit.PlainText
        readOnly: true
        selectByMouse: true
        activeFocusOnTab: true
        wrapMode: TextEdit.Wrap
        horizontalAlignment: TextEdit.AlignLeft
        color: box.look.text
        selectionColor: box.look.accent
        font.family: "monospace"
        font.pixelSize: box.look.pixelSize(12)

        Accessible.role: Accessible.EditableText
        Accessible.readOnly: true
        Accessible.name: qsTr("Command for a terminal")
    }
}
