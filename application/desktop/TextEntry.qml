import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// A line to write into. Give it a width; Enter asks for what the field is for.
Templates.TextField {
    id: entry

    required property AttentionLook look
    // What is to be written here: said to those who do not see it.
    required property string label
    // Shown as long as nothing is written.
    property string hint: label
    // What is written here is no good, which a line nearby explains.
    property bool isRefused: false

    implicitWidth: look.pixelSize(280)
    implicitHeight: Math.max(contentHeight, placeholder.implicitHeight) + topPadding + bottomPadding
    topPadding: 7
    bottomPadding: 7
    leftPadding: 10
    rightPadding: 10
    clip: true
    color: look.text
    selectionColor: look.accent
    selectedTextColor: look.isDark ? "#101014" : "#ffffff"
    selectByMouse: true
    // Paths and addresses read from the left everywhere; what is written there is no prose.
    horizontalAlignment: TextInput.AlignLeft
    font.pixelSize: look.pixelSize(12)
    activeFocusOnTab: true
    opacity: enabled ? 1 : 0.5

    Accessible.role: Accessible.EditableText
    Accessible.name: label

    background: Rectangle {
        radius: 6
        color: entry.look.desktop.base
        border.width: entry.activeFocus ? 2 : 1
        border.color: entry.isRefused ? (entry.look.isDark ? "#ff9b8f" : "#b3261e")
            : entry.activeFocus ? entry.look.accent : Qt.alpha(entry.look.text, 0.45)
    }

    PlainText {
        id: placeholder

        look: entry.look
        x: entry.leftPadding
        y: entry.topPadding
        width: entry.width - entry.leftPadding - entry.rightPadding
        visible: entry.length === 0 && entry.preeditText.length === 0
        text: entry.hint
        color: entry.look.secondaryText
        wrapMode: Text.NoWrap
        elide: Text.ElideRight
        Accessible.ignored: true

// One line to write in, with what is wrong with it beneath. Its label is read in its place while it is empty.
Item {

    property string label: ""
    property string actionText: ""
    property string fault: ""
    property alias text: field.text

    signal accepted

    implicitHeight: field.height + (faultText.visible ? faultText.height + 4 : 0)

    function focusField() {
        field.forceActiveFocus(Qt.TabFocusReason)

    Templates.TextField {
        id: field

        anchors.left: parent.left
        anchors.right: action.left
        anchors.rightMargin: 8
        height: contentHeight + topPadding + bottomPadding
        padding: 8
        leftPadding: 12
        rightPadding: 12
        color: entry.look.text
        selectionColor: entry.look.accent
        selectByMouse: true
        horizontalAlignment: TextInput.AlignLeft
        font.pixelSize: entry.look.pixelSize(12)
        activeFocusOnTab: true

        Accessible.role: Accessible.EditableText
        Accessible.name: entry.label
        Accessible.description: entry.fault

        onAccepted: {
            if (text.trim().length > 0)
                entry.accepted()
        }

        background: Rectangle {
            radius: 7
            color: entry.look.desktop.base
            border.width: field.activeFocus ? 2 : 1
            border.color: field.activeFocus ? entry.look.accent : Qt.alpha(entry.look.text, 0.3)

        PlainText {
            look: entry.look
            anchors.left: parent.left
            anchors.leftMargin: 12
            anchors.right: parent.right
            anchors.rightMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            visible: field.length === 0 && field.preeditText.length === 0
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            text: entry.label
            color: entry.look.secondaryText
            Accessible.ignored: true

    ActionButton {
        id: action

        anchors.right: parent.right
        anchors.verticalCenter: field.verticalCenter
        isFramed: true
        enabled: field.text.trim().length > 0
        text: entry.actionText
        onClicked: entry.accepted()

        id: faultText

        anchors.top: field.bottom
        anchors.topMargin: 4
        visible: text.length > 0
        text: entry.fault
        color: entry.look.isDark ? "#ffb4a8" : "#a02a1a"
        Accessible.role: Accessible.AlertMessage
    }
}
