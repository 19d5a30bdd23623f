import QtQuick
import QtQuick.Templates as Templates

// A button without anything around its content.
Templates.AbstractButton {
    id: button

    required property AttentionLook look

    implicitWidth: implicitContentWidth
    implicitHeight: implicitContentHeight
    focusPolicy: Qt.StrongFocus
    opacity: down ? 0.6 : 1

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: clicked()

    Keys.onReturnPressed: event => pressOnce(event)
    Keys.onEnterPressed: event => pressOnce(event)

    // A key that is held would go on in the next row when the first press makes this one go.
    function pressOnce(event: KeyEvent) {
        if (!event.isAutoRepeat)
            clicked()
    }

    contentItem: Text {
        text: button.text
        textFormat: Text.PlainText
        color: button.look.accent
        font.pixelSize: button.look.pixelSize(11)
    }

    topInset: -3
    bottomInset: -3
    leftInset: -3
    rightInset: -3

    background: Rectangle {
        visible: button.visualFocus
        color: "transparent"
        radius: 4
        border.width: 2
        border.color: button.look.accent
    }

    // Small text is hard to hit: the button takes half of the space to its neighbours.
    containmentMask: Item {
        x: -4
        y: -4
        width: button.width + 8
        height: button.height + 8
    }
}
