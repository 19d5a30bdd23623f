import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// Why there is nothing to show, and what to do next.
Item {
    id: page

    required property WindowModel window
    required property AttentionLook look

    Accessible.role: Accessible.Pane
    Accessible.name: window.failureTitle

    onVisibleChanged: {
        if (visible)
            again.forceActiveFocus()
    }

    Column {
        anchors.centerIn: parent
        width: Math.min(page.width - 64, page.look.pixelSize(480))
        spacing: 16

        PlainText {
            look: page.look
            width: parent.width
            points: 20
            text: page.window.failureTitle
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }

        PlainText {
            look: page.look
            width: parent.width
            points: 13
            lineHeight: 1.25
            text: page.window.failureText
            color: page.look.secondaryText
        }

        Rectangle {
            width: parent.width
            height: commands.implicitHeight + 24
            visible: commands.text.length > 0
            radius: 8
            color: Qt.alpha(page.look.text, 0.05)
            border.width: commands.activeFocus ? 2 : 1
            border.color: commands.activeFocus ? page.look.accent : page.look.line(0.12)

            // To be taken from here to a terminal.
            TextEdit {
                id: commands

                x: 14
                y: 12
                width: parent.width - 28
                text: page.window.failureCommands
                textFormat: TextEdit.PlainText
                readOnly: true
                selectByMouse: true
                activeFocusOnTab: true
                wrapMode: TextEdit.Wrap
                horizontalAlignment: TextEdit.AlignLeft
                color: page.look.text
                selectionColor: page.look.accent
                font.family: "monospace"
                font.pixelSize: page.look.pixelSize(12)

                Accessible.role: Accessible.EditableText
                Accessible.readOnly: true
                Accessible.name: qsTr("Commands for a terminal")
            }
        }

        ActionButton {
            id: again

            look: page.look
            isFramed: true
            text: qsTr("Try again")
            onClicked: page.window.tryAgain()
        }
    }
}
