import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// Something that is so or is not: a box, what it says, and beneath it a quieter detail. Give it a width.
Templates.CheckBox {
    id: line

    required property AttentionLook look
    property string detail: ""

    readonly property int side: look.pixelSize(16)

    implicitWidth: side + 10 + Math.max(label.implicitWidth, explanation.visible ? explanation.implicitWidth : 0)
                   + leftPadding + rightPadding
    implicitHeight: words.implicitHeight + topPadding + bottomPadding
    padding: 5
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.5

    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.description: detail
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: click()
    Accessible.onToggleAction: click()

    Keys.onReturnPressed: click()
    Keys.onEnterPressed: click()

    background: Rectangle {
        radius: 6
        color: Qt.alpha(line.look.text, line.hovered ? 0.05 : 0)
        border.width: line.visualFocus ? 2 : 0
        border.color: line.look.accent
    }

    indicator: Rectangle {
        x: line.mirrored ? line.width - width - line.rightPadding : line.leftPadding
        y: line.topPadding + Math.max(0, (label.height / label.lineCount - height) / 2)
        width: line.side
        height: line.side
        radius: 4
        color: line.checked ? line.look.accent : line.look.desktop.base
        border.width: line.checked ? 0 : 1
        border.color: Qt.alpha(line.look.text, 0.55)

        // The tick, of two bars: it scales with the text, and needs no font to have it.
        Item {
            anchors.centerIn: parent
            width: line.side * 0.62
            height: line.side * 0.34
            rotation: -45
            visible: line.checked

            Rectangle {
                width: Math.max(2, line.side / 8)
                height: parent.height
                color: tick.color
            }

            Rectangle {
                id: tick

                anchors.bottom: parent.bottom
                width: parent.width
                height: Math.max(2, line.side / 8)
                color: line.look.isDark ? "#101014" : "#ffffff"
            }
        }
    }

    contentItem: Item {
        implicitHeight: words.implicitHeight

        Column {
            id: words

            anchors.left: parent.left
            anchors.leftMargin: line.side + 10
            anchors.right: parent.right
            spacing: 2

            PlainText {
                id: label

                look: line.look
                width: parent.width
                text: line.text
                Accessible.ignored: true
            }

            PlainText {
                id: explanation

                look: line.look
                width: parent.width
                visible: text.length > 0
                points: 11
                text: line.detail
                color: line.look.secondaryText
                Accessible.ignored: true
            }
        }
    }
}
