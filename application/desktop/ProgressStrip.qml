import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// How far the reading of mail, calendars and contacts is, along an edge of the window; takes no room when there is
// nothing to tell.
Item {
    id: strip

    required property ReadingModel reading
    required property AttentionLook look

    readonly property bool isShown: reading.state !== ReadingModel.Quiet

    implicitHeight: isShown ? content.height + 19 : 0
    visible: isShown

    Rectangle {
        id: track

        readonly property real minimumValue: 0
        readonly property real maximumValue: 1
        readonly property real value: Math.max(0, strip.reading.share)

        anchors.left: parent.left
        anchors.right: parent.right
        height: strip.reading.isReading ? 3 : 1
        color: strip.look.line(0.14)

        Accessible.role: Accessible.ProgressBar
        Accessible.name: strip.reading.text
        Accessible.description: strip.reading.detail
        Accessible.ignored: !strip.reading.isReading

        Rectangle {
            anchors.left: parent.left
            height: parent.height
            width: parent.width * track.value
            visible: strip.reading.isReading
            color: strip.look.accent
        }
    }

    Item {
        id: content

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: 20
        anchors.rightMargin: 12
        y: 10
        height: Math.max(words.height, buttons.height)

        Flow {
            id: words

            anchors.left: parent.left
            anchors.right: buttons.left
            anchors.rightMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            spacing: 12

            PlainText {
                look: strip.look
                width: Math.min(implicitWidth, words.width)
                points: 11
                text: strip.reading.text
                wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                Accessible.role: strip.reading.isReading ? Accessible.StaticText : Accessible.AlertMessage
            }

            PlainText {
                look: strip.look
                width: Math.min(implicitWidth, words.width)
                visible: text.length > 0
                points: 11
                text: strip.reading.detail
                color: strip.look.secondaryText
            }
        }

        Row {
            id: buttons

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: 4

            ActionButton {
                look: strip.look
                points: 11
                visible: strip.reading.isReading
                enabled: strip.reading.state === ReadingModel.Reading
                text: qsTr("Stop")
                Accessible.name: qsTr("Stop reading")
                onClicked: strip.reading.stop()
            }

            ActionButton {
                look: strip.look
                points: 11
                visible: !strip.reading.isReading
                text: strip.reading.state === ReadingModel.Failed || strip.reading.state === ReadingModel.Troubled
                    ? qsTr("Try again") : qsTr("Go on")
                onClicked: strip.reading.readNew()
            }

            ActionButton {
                look: strip.look
                points: 11
                visible: !strip.reading.isReading
                text: qsTr("Close")
                color: strip.look.secondaryText
                onClicked: strip.reading.forget()
            }
        }
    }
}
