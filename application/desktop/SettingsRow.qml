import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// One thing in the settings, with what can be done about it at its end; beneath it, where there is no room. Where there
// is a question, that is asked once before it is done.
Item {
    id: row

    required property AttentionLook look
    required property string text
    property string detail: ""
    property string trouble: ""
    property string action: ""
    property string question: ""
    // What the action is about, for those who hear it among others of its name.
    property string actionName: action + " " + text
    property bool isEnabled: true

    property bool asks: false
    readonly property bool isStacked: width - actions.implicitWidth - 16 < look.pixelSize(220)

    signal acted

    implicitHeight: isStacked && actions.visible ? words.implicitHeight + actions.implicitHeight + 6
                                                 : Math.max(words.implicitHeight, actions.visible ? actions.implicitHeight : 0)

    Column {
        id: words

        anchors.left: parent.left
        y: row.isStacked ? 0 : (row.height - height) / 2
        width: row.isStacked || !actions.visible ? parent.width : parent.width - actions.implicitWidth - 16
        spacing: 2

        PlainText {
            look: row.look
            width: parent.width
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            text: row.text
        }

        PlainText {
            look: row.look
            width: parent.width
            visible: text.length > 0
            points: 11
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            text: row.asks ? row.question : row.detail
            color: row.asks ? row.look.text : row.look.secondaryText
        }

        TroubleText {
            look: row.look
            width: parent.width
            visible: text.length > 0 && !row.asks
            points: 11
            text: row.trouble
        }
    }

    Row {
        id: actions

        anchors.left: row.isStacked ? parent.left : undefined
        anchors.right: row.isStacked ? undefined : parent.right
        y: row.isStacked ? words.height + 6 : (row.height - height) / 2
        visible: row.action.length > 0
        spacing: 8

        ActionButton {
            id: button

            look: row.look
            enabled: row.isEnabled
            isFramed: row.asks
            text: row.action
            Accessible.name: row.actionName
            onClicked: {
                if (row.question.length > 0 && !row.asks) {
                    row.asks = true
                    keep.forceActiveFocus(Qt.TabFocusReason)
                } else {
                    row.asks = false
                    row.acted()
                }
            }
        }

        ActionButton {
            id: keep

            look: row.look
            visible: row.asks
            isFramed: true
            text: qsTr("Keep it")
            onClicked: {
                row.asks = false
                button.forceActiveFocus(Qt.TabFocusReason)
            }
        }
    }
}
