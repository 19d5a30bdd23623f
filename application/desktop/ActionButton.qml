import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention

// Something to do, in words of the accent colour.
Templates.AbstractButton {
    id: button

    required property AttentionLook look
    property real points: 12
    property color color: look.accent
    // A frame for what stands alone.
    property bool isFramed: false

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    leftPadding: isFramed ? 14 : 6
    rightPadding: leftPadding
    topPadding: isFramed ? 7 : 4
    bottomPadding: topPadding
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.4

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: clicked()

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Text {
        text: button.text
        textFormat: Text.PlainText
        color: button.color
        font.pixelSize: button.look.pixelSize(button.points)
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }

    background: Rectangle {
        radius: 6
        color: Qt.alpha(button.color, button.down ? 0.2 : button.hovered ? 0.1 : 0)
        border.width: button.visualFocus ? 2 : button.isFramed ? 1 : 0
        border.color: button.visualFocus ? button.color : Qt.alpha(button.color, 0.5)
    }
}
