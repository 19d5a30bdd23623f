import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// What was just done, and the way back; or what could not be saved.
Rectangle {
    id: bar

    required property WindowModel window
    required property AttentionLook look

    // The bar keeps its words while it goes.
    property string words: ""
    property int kind: WindowModel.NoNotice

    readonly property color ink: "#f4f4f6"

    function take() {
        if (window.notice === WindowModel.NoNotice)
            return
        words = window.noticeText
        kind = window.notice
    }

    implicitWidth: Math.min(content.implicitWidth + 28, (parent?.width ?? 0) - 32)
    implicitHeight: content.implicitHeight + 16
    radius: 10
    color: look.isDark ? "#4a4a50" : "#36363a"
    opacity: window.notice === WindowModel.NoNotice ? 0 : 1
    visible: opacity > 0

    Accessible.role: Accessible.AlertMessage
    Accessible.name: words

    Component.onCompleted: take()

    Behavior on opacity {
        NumberAnimation {
            duration: bar.look.reducesMotion ? 0 : 120
        }
    }

    Connections {
        target: bar.window

        function onNoticeChanged() {
            bar.take()
        }
    }

    Row {
        id: content

        anchors.centerIn: parent
        spacing: 10

        PlainText {
            look: bar.look
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, (bar.parent?.width ?? 0) - 60 - button.implicitWidth)
            text: bar.words
            color: bar.ink
            // An action names the person; what came of it has to be read to its end.
            wrapMode: bar.kind === WindowModel.Told ? Text.Wrap : Text.NoWrap
            elide: Text.ElideMiddle
            Accessible.ignored: true
        }

        ActionButton {
            id: button

            anchors.verticalCenter: parent.verticalCenter
            look: bar.look
            color: "#9cccff"
            text: {
                switch (bar.kind) {
                case WindowModel.CanUndo:
                    return bar.window.secondsToUndo > 0 ? qsTr("Undo (%1)").arg(bar.window.secondsToUndo) : qsTr("Undo")
                case WindowModel.CouldNotSave:
                    return qsTr("Try again")
                default:
                    return qsTr("Close")
                }
            }
            onClicked: {
                switch (bar.kind) {
                case WindowModel.CanUndo:
                    bar.window.undo()
                    break
                case WindowModel.CouldNotSave:
                    bar.window.saveAgain()
                    break
                default:
                    bar.window.forgetNotice()
                }
            }
            Accessible.name: bar.kind === WindowModel.CanUndo ? qsTr("Undo") : text
        }
    }
}
