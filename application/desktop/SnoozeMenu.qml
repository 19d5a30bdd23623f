import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// Until when the chosen person is to leave the list.
Templates.Popup {
    id: menu

    required property WindowModel window
    required property AttentionLook look
    property bool showsDays: false
    property var choices: []
    property real wantedY: 0

    function openAt(anchor: Item) {
        choices = window.snoozeChoices()
        showsDays = false
        const wide = implicitWidth
        const place = anchor ? anchor.mapToItem(parent, 0, anchor.height + 4)
                             : Qt.point((parent.width - wide) / 2, parent.height / 4)
        x = Math.max(8, Math.min(place.x, parent.width - wide - 8))
        wantedY = place.y
        open()
    }

    function choose(day: string) {
        close()
        window.snoozeUntil(day)
    }

    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    // The month opens upwards where there is no room below.
    y: Math.max(8, Math.min(wantedY, (parent?.height ?? 0) - implicitHeight - 8))
    padding: 8
    modal: true
    dim: false
    focus: true
    closePolicy: Templates.Popup.CloseOnEscape | Templates.Popup.CloseOnPressOutside

    onOpened: first.itemAt(0)?.forceActiveFocus(Qt.TabFocusReason)

    background: Rectangle {
        radius: 10
        color: menu.look.isDark ? Qt.lighter(menu.look.background, 1.25) : menu.look.desktop.base
        border.width: 1
        border.color: Qt.alpha(menu.look.text, 0.2)
    }

    contentItem: Column {
        spacing: 2

        LayoutMirroring.enabled: menu.look.isRightToLeft
        LayoutMirroring.childrenInherit: true

        component Choice: Templates.AbstractButton {
            id: choice

            required property AttentionLook look

            property string detail: ""

            implicitWidth: choice.look.pixelSize(240)
            implicitHeight: label.implicitHeight + 14
            focusPolicy: Qt.StrongFocus
            hoverEnabled: true

            Accessible.role: Accessible.MenuItem
            Accessible.name: detail.length > 0 ? text + ", " + detail : text
            Accessible.onPressAction: clicked()
            Keys.onReturnPressed: clicked()
            Keys.onEnterPressed: clicked()
            Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
            Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

            background: Rectangle {
                radius: 6
                color: Qt.alpha(choice.look.accent, choice.visualFocus ? 0.2 : choice.hovered ? 0.1 : 0)
            }

            contentItem: Item {
                PlainText {
                    id: label

                    look: choice.look
                    anchors.left: parent.left
                    anchors.leftMargin: 10
                    anchors.verticalCenter: parent.verticalCenter
                    text: choice.text
                    Accessible.ignored: true
                }

                PlainText {
                    look: choice.look
                    anchors.right: parent.right
                    anchors.rightMargin: 10
                    anchors.baseline: label.baseline
                    points: 11
                    text: choice.detail
                    color: choice.look.secondaryText
                    Accessible.ignored: true
                }
            }
        }

        Repeater {
            id: first

            model: menu.choices

            Choice {
                look: menu.look
                required property var modelData

                text: modelData.label
                detail: modelData.date
                onClicked: menu.choose(modelData.day)
            }
        }

        Choice {
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
