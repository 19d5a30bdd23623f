import QtQuick
import OrvanRelationshipAttention

// One thing to choose in a menu, with a detail at its end. No button: those stay buttons to assistive technology,
// whatever they are told.
Item {
    id: choice

    required property AttentionLook look
    property string text: ""
    property string detail: ""

    signal clicked

    implicitWidth: Math.max(look.pixelSize(240), label.implicitWidth + 32 + (detail.length > 0 ? tail.implicitWidth + 24 : 0))
    implicitHeight: label.implicitHeight + 14
    activeFocusOnTab: true
    opacity: enabled ? 1 : 0.5

    Accessible.role: Accessible.MenuItem
    Accessible.name: detail.length > 0 ? text + ", " + detail : text
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.onPressAction: clicked()

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onSpacePressed: clicked()
    Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    HoverHandler {
        id: pointer
    }

    TapHandler {
        onTapped: choice.clicked()
    }

    Rectangle {
        anchors.fill: parent
        radius: 6
        color: Qt.alpha(choice.look.accent, choice.activeFocus ? 0.2 : pointer.hovered ? 0.1 : 0)
    }

    PlainText {
        id: label

        look: choice.look
        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        text: choice.text
        Accessible.ignored: true
    }

    PlainText {
        id: tail

        look: choice.look
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.baseline: label.baseline
        points: 11
        text: choice.detail
        color: choice.look.secondaryText
        Accessible.ignored: true
    }
}
