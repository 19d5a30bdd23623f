import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// Where everything lies, how it is encrypted, and its key.
SettingsSection {
    id: section

    required property StoreSafetyModel safety
    property bool changesKey: false

    part: safety
    title: qsTr("Security")

    Connections {
        target: section.safety

        function onAnswerChanged() {
            if (!section.safety.isRefusal && section.safety.answer.length > 0)
                section.changesKey = false
        }
    }

    SettingsRow {
        look: section.look
        width: parent.width
        text: section.safety.encryption
        detail: qsTr("Nothing that Orvan knows leaves this computer.")
    }

    SettingsRow {
        look: section.look
        width: parent.width
        text: qsTr("The store")
        detail: qsTr("%1 · %2", "path and size").arg(section.safety.store).arg(section.safety.size)
    }

    SettingsRow {
        look: section.look
        width: parent.width
        visible: section.safety.isKeyKnown
        text: qsTr("Its key")
        detail: section.safety.keyPlace
        action: section.safety.isKeyInKeyring ? qsTr("Move to a file") : qsTr("Move to the keyring")
        actionName: section.safety.isKeyInKeyring ? qsTr("Move the key to a file") : qsTr("Move the key to the keyring")
        isEnabled: !section.safety.isBusy
        onActed: {
            if (section.safety.isKeyInKeyring)
                section.safety.moveKeyToFile()
            else
                section.safety.moveKeyToKeyring()
        }
    }

    SettingsRow {
        look: section.look
        width: parent.width
        visible: section.safety.isKeyKnown && !section.changesKey
        text: qsTr("A new key")
        detail: qsTr("When somebody may have had a copy of the key.")
        action: qsTr("Change the key…")
        isEnabled: !section.safety.isBusy
        onActed: {
            section.changesKey = true
            present.forceActiveFocus(Qt.TabFocusReason)
        }
    }

    Column {
        width: parent.width
        spacing: 10
        visible: section.changesKey

        PlainText {
            look: section.look
            width: parent.width
            text: qsTr("Backups and copies made so far open with the present key only, and that will be gone. To keep it for them, name a new file for it.")
        }

        TextEntry {
            id: present

            look: section.look
            width: parent.width
            label: qsTr("File for the present key")
            hint: qsTr("Keep the present key in… (may stay empty)")
            isRefused: section.safety.isRefusal && text.length > 0
        }

        Flow {
            width: parent.width
            spacing: 10

            ActionButton {
                look: section.look
                enabled: !section.safety.isBusy
                isFramed: true
                text: present.text.trim().length > 0 ? qsTr("Change the key") : qsTr("Change the key, and let the present one go")
                onClicked: section.safety.changeKey(present.text)
            }

            ActionButton {
                look: section.look
                enabled: !section.safety.isBusy
                isFramed: true
                text: qsTr("Leave it")
                onClicked: section.changesKey = false
            }
        }
    }

    PlainText {
        look: section.look
        width: parent.width
        visible: section.safety.isBusy
        points: 11
        color: section.look.secondaryText
        text: qsTr("One moment…")
    }
}
