import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// How what Orvan reads and keeps stands, in one line; a click leads to all of it.
Templates.AbstractButton {
    id: line

    required property SettingsModel settings
    required property AttentionLook look

    text: settings.sources.glance.length > 0 ? qsTr("%1 · encrypted, on this computer").arg(settings.sources.glance) : ""
    implicitHeight: words.implicitHeight + 16
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: qsTr("Opens the settings")
    Accessible.onPressAction: clicked()

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle {
        color: Qt.alpha(line.look.text, line.down ? 0.1 : line.hovered ? 0.05 : 0)
        border.width: line.visualFocus ? 2 : 0
        border.color: line.look.accent

        Rectangle {
            width: parent.width
            height: 1
            color: line.look.line(0.14)
        }
    }

    contentItem: Item {
        TroubleText {
            id: words

            look: line.look
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.leftMargin: 20
            anchors.rightMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            points: 11
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            text: line.text
            isTrouble: line.settings.sources.isInTrouble
            Accessible.ignored: true
        }
    }
}
