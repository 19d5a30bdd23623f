import QtQuick
import OrvanRelationshipAttention

// Text as the window sets it: as it stands, wrapped, and at the side where reading begins.
Text {
    id: plain

    required property AttentionLook look
    property real points: 12

    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    horizontalAlignment: Text.AlignLeft
    color: look.text
    font.pixelSize: look.pixelSize(points)

    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: !visible || text.length === 0
}
