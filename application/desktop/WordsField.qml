import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention

// A line to write in, with what it is for in it as long as it is empty.
Templates.TextField {
    id: field

    required property AttentionLook look
    required property string purpose

    implicitWidth: look.pixelSize(160)
    implicitHeight: contentHeight + topPadding + bottomPadding
    padding: 7
    leftPadding: 10
    rightPadding: 10
    color: look.text
    selectionColor: look.accent
    selectByMouse: true
    horizontalAlignment: TextInput.AlignLeft
    font.pixelSize: look.pixelSize(12)
    activeFocusOnTab: true

    Accessible.role: Accessible.EditableText
    Accessible.name: purpose

    Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    background: Rectangle {
        radius: 7
        color: field.look.desktop.base
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? field.look.accent : Qt.alpha(field.look.text, 0.3)
    }

    PlainText {
        look: field.look
        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        visible: field.length === 0 && field.preeditText.length === 0
        text: field.purpose
        color: field.look.secondaryText
        wrapMode: Text.NoWrap
        elide: Text.ElideRight
        Accessible.ignored: true
    }
}
