import QtQuick
import OrvanRelationshipAttention

// Something that can be chosen or not, with what tells it from others beneath and behind it. No button: those stay
// buttons to assistive technology, whatever they are told.
Item {
    id: choice

    required property AttentionLook look
    property string text: ""
    property bool checked: false
    property string detail: ""
    property string note: ""
    property real points: 12
    // One of several that exclude each other.
    property bool isOneOf: false
    // It stands as it is.
    property bool isFixed: false

    signal changed(isChosen: bool)

    function change() {
        if (!isFixed && !(isOneOf && checked))
            changed(!checked)
    }

    implicitHeight: words.implicitHeight + 16
    activeFocusOnTab: true
    opacity: enabled ? 1 : 0.5

    Accessible.role: isOneOf ? Accessible.RadioButton : Accessible.CheckBox
    Accessible.name: note.length > 0 ? qsTr("%1, %2").arg(text).arg(note) : text
    Accessible.description: detail
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.readOnly: isFixed
    Accessible.onPressAction: change()
    Accessible.onToggleAction: change()

    Keys.onSpacePressed: change()
    Keys.onReturnPressed: change()
    Keys.onEnterPressed: change()

    HoverHandler {
        id: pointer
    }

    TapHandler {
        onTapped: choice.change()
    }

    Rectangle {
        anchors.fill: parent
        radius: 7
        color: Qt.alpha(choice.look.accent, pointer.hovered && !choice.isFixed ? 0.08 : 0)
        border.width: choice.activeFocus ? 2 : 0
        border.color: choice.look.accent
    }

    Item {
        anchors.fill: parent
        anchors.margins: 8

        Rectangle {
            id: box

            readonly property color onAccent: choice.look.isDark ? "#101014" : "#ffffff"
            readonly property real stroke: Math.max(2, width / 8)

            anchors.left: parent.left
            y: Math.max(0, (title.height - height) / 2)
            width: choice.look.pixelSize(15)
            height: width
            radius: choice.isOneOf ? width / 2 : 4
            color: choice.checked ? choice.look.accent : choice.look.desktop.base
            border.width: 1
            border.color: choice.checked ? choice.look.accent : choice.look.line(0.5)
            opacity: choice.isFixed ? 0.6 : 1

            Rectangle {
                anchors.centerIn: parent
                width: parent.width * 0.4
                height: width
                radius: width / 2
                visible: choice.checked && choice.isOneOf
                color: box.onAccent
            }

            // The tick, of two bars: it scales with the text, and needs no font to have it.
            Item {
                anchors.centerIn: parent
                width: parent.width * 0.62
                height: parent.width * 0.34
                rotation: -45
                visible: choice.checked && !choice.isOneOf

                Rectangle {
                    width: box.stroke
                    height: parent.height
                    color: box.onAccent
                }

                Rectangle {
                    anchors.bottom: parent.bottom
                    width: parent.width
                    height: box.stroke
                    color: box.onAccent
                }
            }
        }

        Column {
            id: words

            anchors.left: box.right
            anchors.leftMargin: 10
            anchors.right: parent.right
            spacing: 2

            Flow {
                width: parent.width
                spacing: 8

                PlainText {
                    id: title

                    look: choice.look
                    width: Math.min(implicitWidth, words.width)
                    text: choice.text
                    points: choice.points
                    wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                    Accessible.ignored: true
                }

                PlainText {
                    look: choice.look
                    width: Math.min(implicitWidth, words.width)
                    visible: text.length > 0
                    text: choice.note
                    points: 11
                    topPadding: choice.look.pixelSize(2)
                    color: choice.look.secondaryText
                    Accessible.ignored: true
                }
            }

            PlainText {
                look: choice.look
                width: parent.width
                visible: text.length > 0
                text: choice.detail
                points: 11
                color: choice.look.secondaryText
                wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                Accessible.ignored: true
            }
        }
    }
}
