import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// A month of days, of which those to come can be picked. With the keyboard: arrows, Page Up and Page Down, Enter.
FocusScope {
    id: picker

    required property AttentionLook look
    // In the form 2026-03-04, as is what is picked.
    required property string today
    // Whether today can be picked, too.
    property bool allowsToday: false

    readonly property date first: later(dateOf(today), allowsToday ? 0 : 1)
    property date current: first
    readonly property int cell: look.pixelSize(32)

    signal picked(day: string)

    function dateOf(day: string): date {
        const parts = day.split("-")
        return new Date(parts[0], parts[1] - 1, parts[2])
    }

    function written(day: date): string {
        return Qt.formatDate(day, "yyyy-MM-dd")
    }

    function later(day: date, days: int): date {
        return new Date(day.getFullYear(), day.getMonth(), day.getDate() + days)
    }

    function monthLater(months: int) {
        const last = new Date(current.getFullYear(), current.getMonth() + months + 1, 0).getDate()
        moveTo(new Date(current.getFullYear(), current.getMonth() + months, Math.min(current.getDate(), last)))
    }

    function moveTo(day: date) {
        current = day < first ? first : day
    }

    // The first day of the week that the month begins in.
    function firstShown(): date {
        const first = new Date(current.getFullYear(), current.getMonth(), 1)
        const before = (first.getDay() - Qt.locale().firstDayOfWeek + 7) % 7
        return later(first, -before)
    }

    implicitWidth: cell * 7
    implicitHeight: content.implicitHeight + 8
    activeFocusOnTab: true

    Accessible.role: Accessible.Table
    Accessible.name: current.toLocaleDateString(Qt.locale(), Locale.LongFormat)
    Accessible.focusable: true

    Keys.onPressed: event => {
        const ahead = look.isRightToLeft ? -1 : 1
        const steps = {
            [Qt.Key_Left]: -ahead, [Qt.Key_Right]: ahead, [Qt.Key_Up]: -7, [Qt.Key_Down]: 7
        }
        if (event.key in steps)
            moveTo(later(current, steps[event.key]))
        else if (event.key === Qt.Key_PageUp || event.key === Qt.Key_PageDown)
            monthLater(event.key === Qt.Key_PageUp ? -1 : 1)
        else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter || event.key === Qt.Key_Space)
            picked(written(current))
        else
            return
        event.accepted = true
    }

    Column {
        id: content

        y: 8
        spacing: 4

        Item {
            width: picker.cell * 7
            height: month.implicitHeight + 8

            ActionButton {
                anchors.left: parent.left
                look: picker.look
                text: picker.look.isRightToLeft ? "›" : "‹"
                points: 14
                focusPolicy: Qt.NoFocus
                onClicked: picker.monthLater(-1)
                Accessible.name: qsTr("Month before")
            }

            PlainText {
                id: month

                look: picker.look
                anchors.centerIn: parent
                text: Qt.locale().standaloneMonthName(picker.current.getMonth()) + " " + picker.current.getFullYear()
                font.weight: Font.DemiBold
            }

            ActionButton {
                anchors.right: parent.right
                look: picker.look
                text: picker.look.isRightToLeft ? "‹" : "›"
                points: 14
                focusPolicy: Qt.NoFocus
                onClicked: picker.monthLater(1)
                Accessible.name: qsTr("Month after")
            }
        }

        Grid {
            columns: 7

            Repeater {
                model: 7

                PlainText {
                    required property int index

                    look: picker.look
                    width: picker.cell
                    points: 10
                    horizontalAlignment: Text.AlignHCenter
                    text: Qt.locale().standaloneDayName((index + Qt.locale().firstDayOfWeek) % 7, Locale.NarrowFormat)
                    color: picker.look.secondaryText
                    Accessible.ignored: true
                }
            }

            Repeater {
                model: 42

                Rectangle {
                    id: dayCell

                    required property int index
                    readonly property date day: picker.later(picker.firstShown(), index)
                    readonly property bool isCurrent: picker.written(day) === picker.written(picker.current)
                    readonly property bool isAhead: day >= picker.first

                    width: picker.cell
                    height: picker.cell
                    radius: 6
                    color: Qt.alpha(picker.look.accent,
                                    isCurrent ? (picker.activeFocus ? 0.35 : 0.2) : pointer.hovered && isAhead ? 0.1 : 0)

                    enabled: isAhead

                    Accessible.role: Accessible.Cell
                    Accessible.ignored: !isAhead
                    Accessible.focusable: true
                    Accessible.focused: isCurrent && picker.activeFocus
                    Accessible.selectable: true
                    Accessible.selected: isCurrent
                    Accessible.name: day.toLocaleDateString(Qt.locale(), Locale.LongFormat)
                    Accessible.onPressAction: picker.picked(picker.written(day))

                    HoverHandler {
                        id: pointer
                    }

                    TapHandler {
                        onTapped: picker.picked(picker.written(dayCell.day))
                    }

                    PlainText {
                        look: picker.look
                        anchors.centerIn: parent
                        text: dayCell.day.getDate()
                        opacity: !dayCell.isAhead ? 0.3 : dayCell.day.getMonth() === picker.current.getMonth() ? 1 : 0.55
                        Accessible.ignored: true
                    }
                }
            }
        }
    }
}
