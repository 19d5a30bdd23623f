import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// The window: the list at the left, the chosen person at the right, the search above.
Window {
    id: window

    required property WindowModel model
    required property OverviewModel overview
    required property SettingsModel settings
    required property CorrectionsModel corrections
    required property DesktopAppearance appearance
    required property FirstStartModel firstStart
    required property FollowUpsModel followUps
    // Of text, on top of what the desktop has; the program remembers it.
    property real zoom: 1

    readonly property bool isShowing: model.page === WindowModel.Showing
    readonly property bool isSearching: search.text.trim().length > 0
    // Where there is no room for two, the person takes the place of the list.
    readonly property bool isNarrow: width < look.pixelSize(620)
    property bool showsPerson: false
    // What the window is opened at: the people, or a page that takes the whole of it.
    property string place: "people"
    readonly property bool showsPeople: isShowing && place === "people"
    readonly property bool takesKeys: showsPeople && !snoozeMenu.visible && !remindMenu.visible && !keysPage.visible
                                      && !mainMenu.visible && !correctionMenus.isOpen

    function showPerson() {
        showsPerson = true
        page.forceActiveFocus(Qt.TabFocusReason)
    }

    function showList() {
        place = "people"
        showsPerson = false
        search.text = ""
        list.forceActiveFocus(Qt.TabFocusReason)
    }

    function show(personKey: string) {
        place = "people"
        model.choose(personKey)
        showPerson()
    }

    function takeKeys() {
        (list.visible ? list : page).forceActiveFocus(Qt.PopupFocusReason)
    }

    function snooze(anchor: Item) {
        if (model.list.rowOf(model.chosen) >= 0)
            snoozeMenu.openAt(anchor)
    }

    width: 1060
    height: 720
    minimumWidth: 360
    minimumHeight: 360
    title: qsTr("Orvan")
    color: look.background

    onActiveChanged: model.setIsSeen(active)
    onClosing: close => close.accepted = model.mayClose()

    AttentionLook {
        id: look

        textScale: Math.min(3, window.appearance.textScale * window.zoom)
        hasHighContrast: window.appearance.hasHighContrast
        reducesMotion: window.appearance.reducesMotion
    }

    Connections {
        target: window.model

        function onReadyToClose() {
            window.close()
        }

        function onPersonCalled() {
            window.place = "people"
            search.text = ""
            window.showsPerson = true
            window.takeKeys()
        }

        function onFirstFound() {
            results.open(0)
        }

        // Nobody is left on the list after the last one was decided about.
        function onChosenChanged() {
            if (window.model.chosen.length === 0 && window.isNarrow && window.showsPerson)
                window.showList()
        }

        function onNobodyCalled(text: string) {
            window.place = "people"
            search.text = text
        }

        function onPageChanged() {
            if (window.model.page === WindowModel.NoStore)
                window.place = "start"
            else if (window.showsPeople)
                list.forceActiveFocus()
        }

        function onListRead() {
            if (window.place === "start" && window.model.hasPeople && window.firstStart.step === FirstStartModel.Begun)
                window.showList()
        }
    }

    Connections {
        target: window.firstStart

        function onNeeded() {
            window.place = "start"
        }
    }

    Shortcut {
        sequences: ["J"]
        enabled: window.takesKeys
        onActivated: list.move(1)
    }
    Shortcut {
        sequences: ["K"]
        enabled: window.takesKeys
        onActivated: list.move(-1)
    }
    Shortcut {
        sequences: ["S"]
        enabled: window.takesKeys
        onActivated: window.snooze(null)
    }
    Shortcut {
        sequences: ["D"]
        enabled: window.takesKeys
        onActivated: window.model.dismiss()
    }
    Shortcut {
        sequences: ["R"]
        enabled: window.takesKeys
        onActivated: window.model.resolve()
    }
    Shortcut {
        sequences: ["F"]
        enabled: window.takesKeys && window.model.chosen.length > 0
        onActivated: remindMenu.openAt(null)
    }
    Shortcut {
        sequences: ["U", StandardKey.Undo]
        enabled: window.takesKeys
        onActivated: window.model.undo()
    }
    Shortcut {
        sequences: ["M"]
        enabled: window.takesKeys
        onActivated: correctionMenus.openMessage()
    }
    Shortcut {
        sequences: ["Menu", "Shift+F10"]
        enabled: window.takesKeys
        onActivated: correctionMenus.openAt(list.visible && list.currentItem ? list.currentItem : page.moreButton)
    }
    Shortcut {
        sequences: ["/", StandardKey.Find]
        enabled: window.takesKeys
        onActivated: {
            window.showsPerson = false
            search.forceActiveFocus(Qt.ShortcutFocusReason)
        }
    }
    Shortcut {
        sequences: ["O"]
        enabled: window.takesKeys
        onActivated: window.place = "overview"
    }
    Shortcut {
        sequences: [StandardKey.Cancel]
        enabled: window.takesKeys
        onActivated: window.showList()
    }
    Shortcut {
        sequences: ["?", StandardKey.HelpContents]
        enabled: window.takesKeys
        onActivated: keysPage.open()
    }
    Shortcut {
        sequences: [StandardKey.Back, StandardKey.Cancel]
        enabled: window.isShowing && window.place !== "people" && !mainMenu.visible && !keysPage.visible
        onActivated: window.showList()
    }
    Shortcut {
        sequences: [StandardKey.Refresh]
        enabled: window.isShowing
        onActivated: window.firstStart.readNew()
    }
    Shortcut {
        sequences: ["Ctrl+,"]
        enabled: window.isShowing && !keysPage.visible && !mainMenu.visible && !snoozeMenu.visible
        onActivated: window.place = "settings"
    }
    Shortcut {
        sequences: ["F10"]
        enabled: window.isShowing
        onActivated: mainMenu.openAt(menuButton)
    }
    Shortcut {
        sequences: [StandardKey.ZoomIn, "Ctrl+="]
        onActivated: window.zoom = Math.min(2, window.zoom + 0.1)
    }
    Shortcut {
        sequences: [StandardKey.ZoomOut]
        onActivated: window.zoom = Math.max(0.8, window.zoom - 0.1)
    }
    Shortcut {
        sequences: ["Ctrl+0"]
        onActivated: window.zoom = 1
    }
    Shortcut {
        sequences: [StandardKey.Quit]
        onActivated: window.close()
    }

    Item {
        id: content

        anchors.fill: parent

        LayoutMirroring.enabled: look.isRightToLeft
        LayoutMirroring.childrenInherit: true

        Item {
            id: bar

            anchors.left: parent.left
            anchors.right: parent.right
            height: Math.max(52, search.implicitHeight + 20)
            visible: window.isShowing

            PlainText {
                id: name

                look: look
                anchors.left: parent.left
                anchors.leftMargin: 20
                anchors.verticalCenter: parent.verticalCenter
                visible: !window.isNarrow && !back.visible
                points: 15
                text: qsTr("Orvan")
                font.weight: Font.DemiBold
            }

            ActionButton {
                id: back

                anchors.left: parent.left
                // Its words begin where the name does, which stands there otherwise.
                anchors.leftMargin: 20 - leftPadding
                anchors.verticalCenter: parent.verticalCenter
                points: 13
                visible: window.place !== "people" || (window.isNarrow && window.showsPerson)
                look: look
                text: qsTr("Back")
                onClicked: window.showList()
            }

            Templates.TextField {
                id: search

                readonly property real before: back.visible ? back.width + 24 : 16

                visible: window.place === "people"
                anchors.verticalCenter: parent.verticalCenter
                x: !window.isNarrow ? (parent.width - width) / 2 : look.isRightToLeft ? parent.width - width - before : before
                width: window.isNarrow ? parent.width - before - menuButton.width - 20
                                       : Math.min(look.pixelSize(300), parent.width - 2 * (freshness.width + menuButton.width) - 80)
                implicitHeight: contentHeight + topPadding + bottomPadding
                padding: 8
                leftPadding: 12
                rightPadding: 12
                color: look.text
                selectionColor: look.accent
                selectByMouse: true
                horizontalAlignment: TextInput.AlignLeft
                font.pixelSize: look.pixelSize(12)
                activeFocusOnTab: true

                Accessible.role: Accessible.EditableText
                Accessible.searchEdit: true
                Accessible.name: qsTr("Search people")

                onTextChanged: window.model.searchFor(text)
                onActiveFocusChanged: {
                    if (activeFocus)
                        window.showsPerson = false
                }

                Keys.onEscapePressed: window.showList()
                Keys.onDownPressed: {
                    if (window.isSearching)
                        results.forceActiveFocus(Qt.TabFocusReason)
                    else
                        list.forceActiveFocus(Qt.TabFocusReason)
                }
                Keys.onReturnPressed: window.model.openFirstFound()
                Keys.onEnterPressed: window.model.openFirstFound()

                background: Rectangle {
                    radius: 7
                    color: look.desktop.base
                    border.width: search.activeFocus ? 2 : 1
                    border.color: search.activeFocus ? look.accent : look.line(0.2)
                }

                PlainText {
                    look: look
                    anchors.left: parent.left
                    anchors.leftMargin: 12
                    anchors.verticalCenter: parent.verticalCenter
                    visible: search.length === 0 && search.preeditText.length === 0
                    text: qsTr("Search people")
                    color: look.secondaryText
                    Accessible.ignored: true
                }
            }

            ActionButton {
                id: freshness

                anchors.right: menuButton.left
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                visible: !window.isNarrow && text.length > 0
                look: look
                points: 11
                text: window.model.freshness
                color: look.secondaryText
                Accessible.description: qsTr("Reads what is new")
                onClicked: window.firstStart.readNew()
            }

            ActionButton {
                id: menuButton

                anchors.right: parent.right
                anchors.rightMargin: 12
                anchors.verticalCenter: parent.verticalCenter
                look: look
                color: look.text
                points: 14
                text: "☰"
                Accessible.name: qsTr("Menu")
                Accessible.role: Accessible.ButtonMenu
                onClicked: mainMenu.openAt(menuButton)
            }

            Rectangle {
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                height: 1
                color: look.line(0.14)
            }
        }

        Item {
            id: side

            anchors.left: parent.left
            anchors.top: bar.bottom
            anchors.bottom: strip.top
            width: window.isNarrow ? parent.width : Math.max(look.pixelSize(300), Math.min(look.pixelSize(420), parent.width * 0.37))
            visible: window.showsPeople && !(window.isNarrow && window.showsPerson)

            CatchUpList {
                id: list

                anchors.fill: parent
                anchors.bottomMargin: stateLine.height
                visible: !window.isSearching
                window: window.model
                look: look
                onOpened: window.showPerson()
                onSnoozeAsked: anchor => window.snooze(anchor)
                onMenuAsked: (row, x, y) => correctionMenus.openAtPoint(row, x, y)
            }

            SearchResults {
                id: results

                anchors.fill: parent
                anchors.bottomMargin: stateLine.height
                visible: window.isSearching
                window: window.model
                look: look
                onOpened: window.showPerson()
                Keys.onEscapePressed: window.showList()
            }

            StateLine {
                id: stateLine

                anchors.left: parent.left
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                settings: window.settings
                look: look
                onClicked: window.place = "settings"
            }

            Column {
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.margins: 20
                // Beneath what opens the older ones.
                y: window.model.olderCount > 0 ? look.pixelSize(20) + 40 : 40
                spacing: 6
                visible: window.showsPeople && list.visible && list.count === 0

                PlainText {
                    look: look
                    width: parent.width
                    points: 13
                    font.weight: Font.Medium
                    text: !window.model.hasPeople ? qsTr("Orvan knows nobody yet.")
                        : window.firstStart.reading.isAnythingUnread ? qsTr("Nobody is waiting for you so far.")
                        : qsTr("Nobody is waiting for you.")
                }

                PlainText {
                    look: look
                    width: parent.width
                    color: look.secondaryText
                    text: window.firstStart.reading.isAnythingUnread
                        ? qsTr("Not everything is read yet. People appear here as they are found.")
                        : !window.model.hasPeople
                        ? qsTr("Let it look for your mail, calendars and contacts. People appear here as soon as they are found.")
                        : window.model.olderCount > 0
                        ? qsTr("Only what is older is still open. When that changes, you see it here.")
                        : qsTr("Every question is answered, and nothing is left open. When that changes, you see it here.")
                }

                ActionButton {
                    look: look
                    isFramed: true
                    visible: !window.model.hasPeople && !window.firstStart.reading.isReading
                    text: qsTr("Choose what to read")
                    onClicked: window.place = "start"
                }
            }
        }

        Rectangle {
            anchors.left: window.isNarrow ? parent.left : side.right
            anchors.right: parent.right
            anchors.top: bar.bottom
            anchors.bottom: strip.top
            visible: window.showsPeople && (!window.isNarrow || window.showsPerson)
            color: look.desktop.base

            Rectangle {
                anchors.left: parent.left
                width: 1
                height: parent.height
                visible: !window.isNarrow
                color: look.line(0.14)
            }

            PersonPage {
                id: page

                anchors.fill: parent
                window: window.model
                followUps: window.followUps
                look: look
                corrections: window.corrections
                onSnoozeRequested: anchor => window.snooze(anchor)
                onRemindRequested: anchor => remindMenu.openAt(anchor)
                onMoreRequested: anchor => correctionMenus.openAt(anchor)
            }

            // That the keyboard is at the right.
            Rectangle {
                anchors.left: parent.left
                width: 3
                height: parent.height
                visible: page.activeFocus
                color: Qt.alpha(look.accent, 0.7)
            }
        }

        Loader {
            id: startLoader

            // Within a component of its own, a page would take its own "look" for the window's.
            readonly property AttentionLook windowLook: look

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: bar.visible ? bar.bottom : parent.top
            anchors.bottom: strip.top
            active: window.place === "start"
            visible: active && window.model.page !== WindowModel.Failing

            sourceComponent: FirstStartPage {
                start: window.firstStart
                look: startLoader.windowLook
            }
        }

        ProgressStrip {
            id: strip

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            height: implicitHeight
            reading: window.firstStart.reading
            look: look
        }

        Loader {
            id: overviewLoader

            readonly property AttentionLook windowLook: look

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: bar.bottom
            anchors.bottom: strip.top
            active: window.isShowing && window.place === "overview"
            onLoaded: (item as Item).forceActiveFocus()

            sourceComponent: OverviewPage {
                overview: window.overview
                look: overviewLoader.windowLook
                isNarrow: window.isNarrow
                onChosen: personKey => window.show(personKey)
            }
        }

        Loader {
            id: settingsLoader

            readonly property AttentionLook windowLook: look

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: bar.bottom
            anchors.bottom: strip.top
            active: window.isShowing && window.place === "settings"
            focus: active
            onLoaded: (item as Item).forceActiveFocus(Qt.OtherFocusReason)

            sourceComponent: SettingsPage {
                settings: window.settings
                look: settingsLoader.windowLook
            }
        }

        FailurePage {
            anchors.fill: parent
            visible: window.model.page === WindowModel.Failing
            window: window.model
            look: look
        }

        NoticeBar {
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: strip.top
            anchors.bottomMargin: 18
            width: implicitWidth
            height: implicitHeight
            window: window.model
            look: look
        }

        SnoozeMenu {
            id: snoozeMenu

            parent: content
            window: window.model
            look: look
            onLostItsPlace: window.takeKeys()
        }

        RemindMenu {
            id: remindMenu

            parent: content
            window: window.model
            followUps: window.followUps
            look: look
            onLostItsPlace: window.takeKeys()
        }

        CorrectionMenus {
            id: correctionMenus

            window: window.model
            corrections: window.corrections
            look: look
            onLostItsPlace: window.takeKeys()
        }

        MainMenu {
            id: mainMenu

            parent: content
            look: look
            onChosen: place => window.place = place
            onReadingAsked: window.firstStart.readNew()
            onKeysAsked: keysPage.open()
        }

        KeysPage {
            id: keysPage

            parent: content
            look: look
        }
    }
}
