import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// Reminders, and the service that shows them.
SettingsSection {
    id: section

    required property ReminderServiceModel reminders
    readonly property bool isRunning: reminders.standing === ReminderServiceModel.Running

    part: reminders
    title: qsTr("Reminders")
    isInTrouble: reminders.trouble.length > 0

    PlainText {
        look: section.look
        width: parent.width
        visible: section.reminders.standing === ReminderServiceModel.NotKnown
        color: section.look.secondaryText
        text: qsTr("Asking the reminder service…")
    }

    TroubleText {
        look: section.look
        width: parent.width
        visible: text.length > 0
        text: section.reminders.trouble
    }

    // What is checked is what the service says, also when it does not take a change.
    CheckChoice {
        look: section.look
        width: parent.width
        visible: section.isRunning
        text: qsTr("Remind me")
        detail: qsTr("Reminders that were set stay set while this is off.")
        checked: section.reminders.isAllowed
        onChanged: isChosen => section.reminders.allow(isChosen)
    }

    CheckChoice {
        look: section.look
        width: parent.width
        visible: section.isRunning
        text: qsTr("Say on the screen what I noted down")
        detail: qsTr("Otherwise a reminder says only that there is one.")
        checked: section.reminders.saysNotes
        onChanged: isChosen => section.reminders.sayNotes(isChosen)
    }

    CheckChoice {
        look: section.look
        width: parent.width
        visible: section.isRunning
        text: qsTr("Look for new mail and calendar entries in the background")
        checked: section.reminders.looksForNew
        onChanged: isChosen => section.reminders.lookForNew(isChosen)
    }

    Repeater {
        model: section.reminders.details

        PlainText {
            required property string modelData

            look: section.look
            width: parent?.width ?? 0
            points: 11
            text: modelData
            color: section.look.secondaryText
        }
    }

    Flow {
        width: parent.width
        spacing: 10

        ActionButton {
            look: section.look
            visible: section.isRunning
            enabled: !section.reminders.isBusy
            isFramed: true
            text: qsTr("Show a test reminder")
            onClicked: section.reminders.showTest()
        }

        ActionButton {
            look: section.look
            visible: section.reminders.standing === ReminderServiceModel.NotRunning
            enabled: !section.reminders.isBusy
            isFramed: true
            text: qsTr("Start the service")
            onClicked: section.reminders.startService()
        }

        ActionButton {
            look: section.look
            visible: !section.isRunning && section.reminders.standing !== ReminderServiceModel.NotKnown
            enabled: !section.reminders.isBusy
            isFramed: true
            text: qsTr("Look again")
            onClicked: section.reminders.look()
        }
    }
}
