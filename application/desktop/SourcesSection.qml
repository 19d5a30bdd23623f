import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// What Orvan reads.
SettingsSection {
    id: section

    required property SourcesModel sources

    part: sources
    title: qsTr("Sources")
    isInTrouble: sources.isInTrouble

    Connections {
        target: section.sources

        function onAnswerChanged() {
            if (!section.sources.isRefusal && section.sources.answer.length > 0)
                path.text = ""
        }
    }

    PlainText {
        look: section.look
        width: parent.width
        color: section.look.secondaryText
        text: section.sources.sources.length > 0
            ? qsTr("Orvan reads these where they lie and keeps up to date with them. It changes nothing there.")
            : qsTr("Nothing is kept up to date yet. Name where your mail, calendars or contacts lie; Orvan reads them there, and changes nothing.")
    }

    Repeater {
        model: section.sources.sources

        SettingsRow {
            required property var modelData

            look: section.look
            width: parent?.width ?? 0
            text: modelData.path
            detail: modelData.trouble.length > 0 ? qsTr("%1 · %2 · cannot be read", "kind, and when it was read").arg(modelData.kind).arg(modelData.state)
                : modelData.hasNews ? qsTr("%1 · %2 · something new is waiting", "kind, and when it was read").arg(modelData.kind).arg(modelData.state)
                : qsTr("%1 · %2", "kind, and when it was read").arg(modelData.kind).arg(modelData.state)
            trouble: modelData.trouble
            action: qsTr("Remove")
            actionName: qsTr("Remove %1").arg(modelData.path)
            question: qsTr("Read it no longer? What was read from it stays.")
            isEnabled: !section.sources.isBusy
            onActed: {
                path.focusEntry()
                section.sources.remove(modelData.number)
            }
        }
    }

    EntryLine {
        id: path

        look: section.look
        width: parent.width
        label: qsTr("Path of a mailbox, calendar or address book")
        hint: qsTr("~/Mail, a calendar.ics, a folder…")
        action: qsTr("Add")
        isRefused: section.sources.isRefusal
        isEnabled: !section.sources.isBusy
        onEdited: section.sources.forgetAnswer()
        onWritten: text => section.sources.add(text)
    }
}
