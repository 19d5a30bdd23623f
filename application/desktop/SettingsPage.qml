import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// What Orvan reads, keeps and does for the user, part by part.
Flickable {
    id: page

    required property SettingsModel settings
    required property AttentionLook look

    function scroll(distance: real) {
        contentY = Math.max(0, Math.min(Math.max(0, contentHeight - height), contentY + distance))
    }

    // What has the keyboard is in sight, and so is what it says beneath.
    function reveal(item: Item) {
        const top = item.mapToItem(content, 0, 0).y + content.y
        const below = look.pixelSize(72)
        if (top - 24 < contentY)
            scroll(top - 24 - contentY)
        else if (top + item.height + below > contentY + height)
            scroll(top + item.height + below - contentY - height)
    }

    function holds(item: Item): bool {
        for (let above = item; above; above = above.parent) {
            if (above === content)
                return true
        }
        return false
    }

    contentHeight: content.height + 64
    clip: true
    boundsBehavior: Flickable.StopAtBounds

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Settings")

    Keys.onDownPressed: scroll(48)
    Keys.onUpPressed: scroll(-48)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp) {
            scroll((event.key === Qt.Key_PageDown ? 1 : -1) * height * 0.9)
            event.accepted = true
        }
    }

    Component.onCompleted: settings.look()

    Connections {
        target: page.Window.window

        function onActiveFocusItemChanged() {
            const item = page.Window.window.activeFocusItem
            if (item && page.holds(item))
                page.reveal(item)
        }
    }

    Column {
        id: content

        x: Math.max(24, (page.width - width) / 2)
        y: 28
        width: Math.min(page.width - 48, page.look.pixelSize(640))
        spacing: 30

        PlainText {
            look: page.look
            width: parent.width
            points: 20
            text: qsTr("Settings")
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }

        SourcesSection {
            look: page.look
            width: parent.width
            sources: page.settings.sources
        }

        AddressesSection {
            look: page.look
            width: parent.width
            addresses: page.settings.addresses
        }

        HiddenSection {
            look: page.look
            width: parent.width
            hidden: page.settings.hidden
        }

        RemindersSection {
            look: page.look
            width: parent.width
            reminders: page.settings.reminders
        }

        SafetySection {
            look: page.look
            width: parent.width
            safety: page.settings.safety
        }

        BackupSection {
            look: page.look
            width: parent.width
            backup: page.settings.backup
        }
    }

    Templates.ScrollBar.vertical: QuietScrollBar {
        look: page.look
    }
}
