import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// Whom and what the user does not want to see.
SettingsSection {
    id: section

    required property HiddenThingsModel hidden

    part: hidden
    title: qsTr("Hidden")

    PlainText {
        look: section.look
        width: parent.width
        visible: section.hidden.things.length === 0
        color: section.look.secondaryText
        text: qsTr("People and conversations that you hide are kept here, and can be shown again.")
    }

    Repeater {
        model: section.hidden.things

        SettingsRow {
            required property var modelData

            look: section.look
            width: parent?.width ?? 0
            text: modelData.name
            detail: modelData.since
            action: qsTr("Show again")
            actionName: qsTr("Show again: %1").arg(modelData.name)
            isEnabled: !section.hidden.isBusy
            onActed: section.hidden.showAgain(modelData.key)
        }
    }
}
