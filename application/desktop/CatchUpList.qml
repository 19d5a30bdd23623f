import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// The list at the left, under its headings; what is older stays closed until it is opened.
ListView {
    id: list

    required property WindowModel window
    required property AttentionLook look

    signal opened
    // Each is about the chosen person.
    signal snoozeAsked(anchor: Item)
    signal menuAsked(row: Item, x: real, y: real)

    function move(steps: int) {
        const to = Math.max(0, Math.min(count - 1, currentIndex + steps))
        if (count > 0 && to !== currentIndex)
            window.choose(window.list.personAt(to))
    }

    function follow() {
        const row = window.list.rowOf(window.chosen)
        if (row !== currentIndex)
            currentIndex = row
    }

    model: window.list
    clip: true
    keyNavigationEnabled: false
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: look.reducesMotion ? 0 : 120
    topMargin: 8
    bottomMargin: 72
    currentIndex: -1
    cacheBuffer: 200

    Accessible.role: Accessible.List
    Accessible.name: qsTr("People to get back in touch with")

    onModelChanged: follow()
    onCountChanged: Qt.callLater(follow)
    Component.onCompleted: follow()

    ReadingOrder {
        of: list.contentItem
    }

    Connections {
        target: list.window

        function onChosenChanged() {
            list.follow()
        }

        function onListRead() {
            list.follow()
        }
    }

    Keys.onDownPressed: move(1)
    Keys.onUpPressed: move(-1)
    Keys.onReturnPressed: opened()
    Keys.onEnterPressed: opened()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Home || event.key === Qt.Key_End) {
            move(event.key === Qt.Key_Home ? -count : count)
            event.accepted = true
        }
    }

    delegate: CatchUpRow {
        id: row

        width: ListView.view.width
        window: list.window
        look: list.look
        onOpened: {
            list.window.choose(personKey)
            list.forceActiveFocus()
            list.opened()
        }
        onSnoozeAsked: anchor => {
            list.window.choose(personKey)
            list.snoozeAsked(anchor)
        }
        onDismissed: {
            list.window.choose(personKey)
            list.window.dismiss()
        }
        onResolved: {
            list.window.choose(personKey)
            list.window.resolve()
        }
        onMenuAsked: (x, y) => {
            list.window.choose(personKey)
            list.menuAsked(row, x, y)
        }
    }

    section.property: "group"
    section.delegate: PlainText {
        required property string section

        look: list.look
        width: ListView.view.width
        leftPadding: 20
        rightPadding: 20
        topPadding: 12
        bottomPadding: 6
        points: 11
        text: section
        font.weight: Font.DemiBold
        color: list.look.secondaryText
        Accessible.role: Accessible.Heading
    }

    footer: Item {
        width: ListView.view.width
        height: older.visible ? older.height + 20 : 0

        ActionButton {
            id: older

            anchors.left: parent.left
            anchors.leftMargin: 14
            y: 10
            visible: list.window.olderCount > 0
            look: list.look
            points: 11
            color: list.look.secondaryText
            text: list.window.isOlderOpen
                ? qsTr("Close what is older")
                : qsTr("%1 (%2)", "a heading, and how many there are").arg(list.window.olderHeading).arg(list.window.olderCount)
            onClicked: list.window.isOlderOpen = !list.window.isOlderOpen
            Accessible.description: list.window.isOlderOpen ? qsTr("expanded") : qsTr("collapsed")
        }
    }

    remove: Transition {
        enabled: !list.look.reducesMotion

        ParallelAnimation {
            NumberAnimation {
                property: "x"
                to: list.look.isRightToLeft ? list.width : -list.width
                duration: 180
                easing.type: Easing.InCubic
            }
            NumberAnimation {
                property: "opacity"
                to: 0
                duration: 180
            }
        }
    }

    removeDisplaced: Transition {
        enabled: !list.look.reducesMotion

        NumberAnimation {
            properties: "y"
            duration: 180
            easing.type: Easing.OutCubic
        }
    }

    Templates.ScrollBar.vertical: QuietScrollBar {
        look: list.look
    }
}
