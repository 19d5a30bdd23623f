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
            : entry.activeFocus ? entry.look.accent : entry.look.line(0.45)
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
    }
}
