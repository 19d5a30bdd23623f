import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention

// One thing to choose, with what follows from it beneath. Give it a width.
Templates.AbstractButton {
    id: choice

    required property AttentionLook look
    required property string explanation

    implicitHeight: label.height + consequence.height + 16
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: explanation
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    background: Rectangle {
        radius: 6
        color: Qt.alpha(choice.look.accent, choice.visualFocus ? 0.2 : choice.hovered ? 0.1 : 0)
    }

    contentItem: Item {
        PlainText {
            id: label

            look: choice.look
            x: 10
            y: 7
            width: parent.width - 20
            text: choice.text
            font.weight: Font.Medium
            Accessible.ignored: true
        }

        PlainText {
            id: consequence

            look: choice.look
            anchors.top: label.bottom
            x: 10
            width: parent.width - 20
            topPadding: 2
            points: 11
            text: choice.explanation
            color: choice.look.secondaryText
            Accessible.ignored: true
        }
    }
}
