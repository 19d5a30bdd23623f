import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// Copies of the store.
SettingsSection {
    id: section

    required property BackupModel backup

    part: backup
    title: qsTr("Backup")

    PlainText {
        look: section.look
        width: parent.width
        color: section.look.secondaryText
        text: qsTr("A backup is one encrypted file, read back before it gets its name. It opens with the store's key only.")
    }

    TextEntry {
        id: file

        look: section.look
        width: parent.width
        enabled: !section.backup.isCopying
        label: qsTr("A new file for the backup")
        text: section.backup.proposal
        onAccepted: make.clicked()
    }

    CheckChoice {
        id: keepsKey

        look: section.look
        width: parent.width
        enabled: !section.backup.isCopying
        text: qsTr("Also write a copy of the key")
        detail: qsTr("Keep it in another place: whoever has both can read everything.")
        onChanged: isChosen => checked = isChosen
    }

    TextEntry {
        id: keyFile

        look: section.look
        width: parent.width
        visible: keepsKey.checked
        enabled: !section.backup.isCopying
        label: qsTr("A new file for the key")
        onAccepted: make.clicked()
    }

    ActionButton {
        id: make

        look: section.look
        visible: !section.backup.isCopying
        enabled: !section.backup.isBusy && file.text.trim().length > 0 && (!keepsKey.checked || keyFile.text.trim().length > 0)
        isFramed: true
        text: qsTr("Make a backup")
        onClicked: {
            if (enabled)
                section.backup.make(file.text, keepsKey.checked ? keyFile.text : "")
        }
    }

    Item {
        width: parent.width
        height: Math.max(stop.implicitHeight, state.implicitHeight + 12)
        visible: section.backup.isCopying

        Accessible.role: Accessible.ProgressBar
        Accessible.name: state.text

        PlainText {
            id: state

            look: section.look
            anchors.left: parent.left
            text: section.backup.progress < 1 ? qsTr("Copying the store: %1 %").arg(Math.floor(section.backup.progress * 100))
                                              : qsTr("Reading the copy back…")
        }

        Rectangle {
            anchors.left: parent.left
            anchors.right: stop.left
            anchors.rightMargin: 16
            anchors.bottom: parent.bottom
            height: 4
            radius: 2
            color: section.look.line(0.14)

            Rectangle {
                anchors.left: parent.left
                width: parent.width * section.backup.progress
                height: parent.height
                radius: 2
                color: section.look.accent
            }
        }

        ActionButton {
            id: stop

            look: section.look
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            isFramed: true
            enabled: section.backup.progress < 1
            text: qsTr("Stop")
            Accessible.name: qsTr("Stop the backup")
            onClicked: section.backup.stop()
        }
    }

    PlainText {
        look: section.look
        width: parent.width
        topPadding: 6
        color: section.look.secondaryText
        text: qsTr("To bring a backup back, run this in a terminal; what the store held then is kept beside it:")
    }

    TerminalCommand {
        look: section.look
        width: parent.width
        command: "orvan restore " + qsTr("FILE", "stands for the name of a backup")
    }
}
