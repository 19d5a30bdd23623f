import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// When the user is to be reminded of the shown person, and of what.
PopupMenu {
    id: menu

    required property WindowModel window
    required property FollowUpsModel followUps
    property bool showsDays: false
    property var choices: []

    readonly property string day: days.written(days.current)
    // In words; empty when the day and the time are none to come.
    readonly property string moment: visible && showsDays ? followUps.momentInWords(day, time.text) : ""

    function remindAtMoment() {
        if (moment.length === 0)
            return
        close()
        followUps.remindAt(day, time.text, about.text)
    }

    title: qsTr("Remind me")
    onAboutToShow: {
        choices = followUps.choices()
        showsDays = false
        time.text = "9:00"
        days.moveTo(days.later(days.first, 1))
    }
    onOpened: about.forceActiveFocus(Qt.TabFocusReason)

    // What was written stays until it is kept: the user may close the menu by mistake, or the store may be busy.
    Connections {
        target: menu.followUps

        function onNoted() {
            about.text = ""
        }
    }

    Connections {
        target: menu.window

        function onChosenChanged() {
            about.text = ""
        }
    }

    contentItem: Flickable {
        id: view

        implicitWidth: menu.look.pixelSize(320)
        implicitHeight: Math.min(content.implicitHeight, (menu.parent?.height ?? 0) - 48)
        contentHeight: content.implicitHeight
        interactive: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds
        clip: interactive

        LayoutMirroring.enabled: menu.look.isRightToLeft
        LayoutMirroring.childrenInherit: true

        Templates.ScrollBar.vertical: QuietScrollBar {
            look: menu.look
        }

        Column {
            id: content

            width: view.width
            spacing: 2

            Item {
                width: parent.width
                implicitHeight: about.implicitHeight + 6

                TextEntry {
                    id: about

                    look: menu.look
                    width: parent.width
                    label: qsTr("What about? (optional)")
                    maximumLength: 200
                    Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                    Keys.onReturnPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                    Keys.onEnterPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                }
            }

            Repeater {
                model: menu.showsDays ? [] : menu.choices

                MenuChoice {
                    look: menu.look
                    required property var modelData
                    required property int index

                    width: content.width
                    text: modelData.label
                    detail: modelData.detail
                    onClicked: {
                        menu.close()
                        menu.followUps.remindAtChoice(index, about.text)
                    }
                }
            }

            MenuChoice {
                look: menu.look
                width: content.width
                text: qsTr("Another time…")
                visible: !menu.showsDays
                onClicked: {
                    menu.showsDays = true
                    days.forceActiveFocus(Qt.TabFocusReason)
                }
            }

            DayPicker {
                id: days

                x: (content.width - width) / 2
                visible: menu.showsDays
                look: menu.look
                today: menu.window.today()
                allowsToday: true
                onPicked: day => {
                    moveTo(dateOf(day))
                    time.forceActiveFocus(Qt.TabFocusReason)
                    time.selectAll()
                }
            }

            Item {
                width: content.width
                implicitHeight: Math.max(time.implicitHeight, set.implicitHeight) + 10
                visible: menu.showsDays

                TextEntry {
                    id: time

                    look: menu.look
                    anchors.left: parent.left
                    anchors.verticalCenter: parent.verticalCenter
                    width: menu.look.pixelSize(80)
                    label: qsTr("Time")
                    maximumLength: 12
                    onAccepted: menu.remindAtMoment()
                    Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                }

                ActionButton {
                    id: set

                    look: menu.look
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    isFramed: true
                    enabled: menu.moment.length > 0
                    text: qsTr("Remind me")
                    onClicked: menu.remindAtMoment()
                }
            }

            PlainText {
                look: menu.look
                width: content.width
                bottomPadding: 4
                visible: menu.showsDays
                text: menu.moment.length > 0 ? menu.moment : qsTr("Write a time to come, such as 14:30.")
                color: menu.look.secondaryText
            }
        }
    }
}
