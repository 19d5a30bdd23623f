import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// Until when the chosen person is to leave the list.
PopupMenu {
    id: menu

    required property WindowModel window
    title: qsTr("Snooze until")

    property bool showsDays: false
    property var choices: []

    function choose(day: string) {
        close()
        window.snoozeUntil(day)
    }

    onAboutToShow: {
        choices = window.snoozeChoices()
        showsDays = false
    }
    onOpened: first.itemAt(0)?.forceActiveFocus(Qt.TabFocusReason)

    contentItem: Column {
        spacing: 2

        LayoutMirroring.enabled: menu.look.isRightToLeft
        LayoutMirroring.childrenInherit: true

        Repeater {
            id: first

            model: menu.choices

            MenuChoice {
                look: menu.look
                required property var modelData

                text: modelData.label
                detail: modelData.date
                onClicked: menu.choose(modelData.day)
            }
        }

        MenuChoice {
            look: menu.look
            text: qsTr("Another day…")
            visible: !menu.showsDays
            onClicked: {
                menu.showsDays = true
                days.forceActiveFocus(Qt.TabFocusReason)
            }
        }

        DayPicker {
            id: days

            x: (menu.availableWidth - width) / 2
            visible: menu.showsDays
            look: menu.look
            today: menu.window.today()
            onPicked: day => menu.choose(day)
        }
    }
}
