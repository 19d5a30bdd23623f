import QtQuick

// One quiet sentence on how things stand.
Text {
    required property AttentionLook look

    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    horizontalAlignment: Text.AlignLeft
    color: look.secondaryText
    font.pixelSize: look.pixelSize(11)

    Accessible.role: Accessible.AlertMessage
    Accessible.name: text
}
