import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// What each key does.
Templates.Popup {
    id: popup

    required property AttentionLook look

    readonly property var keys: [
        ["J  ↓", qsTr("Next person")],
        ["K  ↑", qsTr("Person before")],
        [qsTr("Enter"), qsTr("Go to the person")],
        [qsTr("Esc"), qsTr("Back to the list")],
        ["S", qsTr("Snooze")],
        ["D", qsTr("Dismiss")],
        ["R", qsTr("Resolve")],
        ["F", qsTr("Be reminded of the person")],
        ["U", qsTr("Undo")],
        ["M", qsTr("Open message")],
        [qsTr("Menu  Shift F10"), qsTr("More about the person")],
        ["/", qsTr("Search people")],
        ["F5", qsTr("Read what is new")],
        ["O", qsTr("Overview of everybody")],
        ["Ctrl ,", qsTr("Settings")],
        ["Ctrl +  Ctrl −  Ctrl 0", qsTr("Larger, smaller, usual text")],
        ["?", qsTr("These keys")]
    ]

    anchors.centerIn: parent
    padding: 24
    modal: true
    focus: true
    closePolicy: Templates.Popup.CloseOnEscape | Templates.Popup.CloseOnPressOutside
    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding

    Templates.Overlay.modal: Rectangle {
        color: "#60000000"
    }

    onAboutToShow: contentItem.parent.Accessible.name = qsTr("Keys")

    background: Rectangle {
        radius: 12
        color: popup.look.isDark ? Qt.lighter(popup.look.background, 1.2) : popup.look.desktop.base
        border.width: 1
        border.color: popup.look.line(0.2)
    }

    contentItem: Column {
        spacing: 8

        LayoutMirroring.enabled: popup.look.isRightToLeft
        LayoutMirroring.childrenInherit: true

        PlainText {
            look: popup.look
            points: 14
            bottomPadding: 6
            text: qsTr("Keys")
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }

        Repeater {
            model: popup.keys

            Item {
                id: line

                required property var modelData

                width: popup.look.pixelSize(380)
                height: words.implicitHeight

                Accessible.role: Accessible.StaticText
                Accessible.name: modelData[1] + ": " + modelData[0]

                PlainText {
                    look: popup.look
                    anchors.left: parent.left
                    width: popup.look.pixelSize(170)
                    text: line.modelData[0]
                    color: popup.look.secondaryText
                    Accessible.ignored: true
                }

                PlainText {
                    id: words

                    look: popup.look
                    anchors.left: parent.left
                    anchors.leftMargin: popup.look.pixelSize(170)
                    anchors.right: parent.right
                    text: line.modelData[1]
                    Accessible.ignored: true
                }
            }
        }
    }
}
