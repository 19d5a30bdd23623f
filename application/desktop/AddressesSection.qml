import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// The addresses by which Orvan tells the user's own mail.
SettingsSection {
    id: section

    required property OwnAddressesModel addresses

    part: addresses
    title: qsTr("Your addresses")
    isInTrouble: addresses.addresses.length === 0

    Connections {
        target: section.addresses

        function onAnswerChanged() {
            if (!section.addresses.isRefusal && section.addresses.answer.length > 0)
                address.text = ""
        }
    }

    PlainText {
        look: section.look
        width: parent.width
        color: section.look.secondaryText
        text: qsTr("By these Orvan tells what you wrote, and what was written to you. After a change, mail and calendars are read again from their beginning.")
    }

    Repeater {
        model: section.addresses.addresses

        SettingsRow {
            required property var modelData

            look: section.look
            width: parent?.width ?? 0
            text: modelData.address
            detail: modelData.detail
            action: qsTr("Remove")
            actionName: qsTr("Remove %1").arg(modelData.address)
            question: qsTr("Not yours any more? Whom it hid comes back, and mail is read again.")
            isEnabled: !section.addresses.isBusy
            onActed: {
                address.focusEntry()
                section.addresses.remove(modelData.address)
            }
        }
    }

    EntryLine {
        id: address

        look: section.look
        width: parent.width
        label: qsTr("Another mail address of yours")
        hint: qsTr("you@example.org")
        action: qsTr("Add")
        isRefused: section.addresses.isRefusal
        isEnabled: !section.addresses.isBusy
        onEdited: section.addresses.forgetAnswer()
        onWritten: text => section.addresses.add(text)
    }

    PlainText {
        look: section.look
        width: parent.width
        visible: section.addresses.isBusy
        points: 11
        color: section.look.secondaryText
        text: qsTr("Counting anew who wrote to whom…")
    }
}
