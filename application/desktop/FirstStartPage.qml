import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// From nothing to a list: where it is kept, what is read, and who the user is, one beneath the other.
Item {
    id: page

    required property FirstStartModel start
    required property AttentionLook look

    readonly property bool isAtAddresses: start.step === FirstStartModel.LookingForAddresses
                                          || start.step === FirstStartModel.ChoosingAddresses
                                          || start.step === FirstStartModel.Beginning
    // What is asked next comes in beneath, and is brought into view.
    property bool followsEnd: false
    readonly property bool isBegun: start.step === FirstStartModel.Begun

    // Brings into view what the keyboard is at.
    function showItem(item: Item) {
        const top = item.mapToItem(flick.contentItem, 0, 0).y
        const margin = 24
        if (top - margin < flick.contentY)
            flick.contentY = Math.max(0, top - margin)
        else if (top + item.height + margin > flick.contentY + flick.height)
            flick.contentY = Math.max(0, Math.min(flick.contentHeight - flick.height, top + item.height + margin - flick.height))
    }

    function isWithin(item: Item): bool {
        for (let at = item; at; at = at.parent) {
            if (at === column)
                return true
        }
        return false
    }

    onIsAtAddressesChanged: followsEnd = isAtAddresses

    function scroll(by: real) {
        flick.contentY = Math.max(0, Math.min(flick.contentHeight - flick.height, flick.contentY + by))
    }

    Keys.onDownPressed: scroll(look.pixelSize(40))
    Keys.onUpPressed: scroll(-look.pixelSize(40))
    Keys.onPressed: event => {
        if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp) {
            scroll(0.9 * (event.key === Qt.Key_PageDown ? flick.height : -flick.height))
            event.accepted = true
        }
    }

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("First steps")

    Component.onCompleted: {
        start.look()
        forceActiveFocus()
    }

    Connections {
        target: page.start

        function onStepChanged() {
            if (page.start.step === FirstStartModel.ChoosingAddresses) {
                if (page.start.addresses.countChosen > 0)
                    forward.forceActiveFocus(Qt.TabFocusReason)
                else
                    address.focusEntry()
            }
        }
    }

    Connections {
        target: page.Window.window

        function onActiveFocusItemChanged() {
            const item = page.Window.window.activeFocusItem
            if (item && page.isWithin(item))
                page.showItem(item)
        }
    }

    component Heading: PlainText {
        look: page.look
        width: parent.width
        points: 15
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }

    component Words: PlainText {
        look: page.look
        width: parent.width
        points: 12
        lineHeight: 1.2
        color: page.look.secondaryText
        wrapMode: Text.WrapAtWordBoundaryOrAnywhere
    }

    // Files that are dropped on the page are looked at like those whose path is written.
    DropArea {
        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: drop => {
            for (const url of drop.urls)
                page.start.addPath(url.toString())
        }
    }

    Flickable {
        id: flick

        anchors.fill: parent
        contentWidth: width
        contentHeight: column.height + 72
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        onMovementStarted: page.followsEnd = false
        onContentHeightChanged: {
            if (page.followsEnd)
                contentY = Math.max(0, contentHeight - height)
        }

        Templates.ScrollBar.vertical: QuietScrollBar {
            look: page.look
        }

        Column {
            id: column

            x: (flick.width - width) / 2
            y: 36
            width: Math.min(flick.width - 48, page.look.pixelSize(600))
            spacing: 26

            Column {
                width: parent.width
                spacing: 8

                PlainText {
                    look: page.look
                    width: parent.width
                    points: 22
                    text: qsTr("Welcome to Orvan")
                    font.weight: Font.DemiBold
                    Accessible.role: Accessible.Heading
                }

                Words {
                    points: 13
                    text: qsTr("Orvan tells you whom to get back in touch with now, and why, from the mail, calendars and contacts on this computer. It only reads them, and nothing that it learns leaves this machine.")
                }
            }

            Column {
                width: parent.width
                spacing: 6

                Heading {
                    text: qsTr("Where it is kept")
                }

                Words {
                    text: page.start.hasStore ? qsTr("In your encrypted store, which is there already: %1").arg(page.start.storePlace)
                                              : qsTr("In one encrypted file: %1").arg(page.start.storePlace)
                }

                Words {
                    visible: !page.start.hasStore && page.start.hasKey
                    text: qsTr("The key that is there already opens it: %1").arg(page.start.keyFilePlace)
                }

                Words {
                    visible: !page.start.hasStore && !page.start.hasKey && page.start.keyring < FirstStartModel.LockedKeyring
                    text: qsTr("Its key lies in a file that you alone can read: %1").arg(page.start.keyFilePlace)
                }

                Column {
                    width: parent.width
                    visible: !page.start.hasStore && !page.start.hasKey && page.start.keyring >= FirstStartModel.LockedKeyring

                    CheckChoice {
                        width: parent.width
                        look: page.look
                        points: 13
                        isOneOf: true
                        text: qsTr("The key in the desktop's keyring")
                        detail: page.start.keyring === FirstStartModel.LockedKeyring
                            ? qsTr("It is locked now. Unlock it with the desktop's password program before you start.")
                            : qsTr("It opens when you log in.")
                        checked: page.start.isKeyForKeyring
                        onChanged: page.start.isKeyForKeyring = true
                    }

                    CheckChoice {
                        width: parent.width
                        look: page.look
                        points: 13
                        isOneOf: true
                        text: qsTr("The key in a file that you alone can read")
                        detail: page.start.keyFilePlace
                        checked: !page.start.isKeyForKeyring
                        onChanged: page.start.isKeyForKeyring = false
                    }
                }

                Words {
                    visible: !page.start.hasStore
                    text: qsTr("Keep a copy of the key later: without it, nobody can read the file.")
                }
            }

            Column {
                width: parent.width
                spacing: 6

                Heading {
                    text: qsTr("What Orvan may read")
                }

                Words {
                    text: page.start.step === FirstStartModel.Looking
                        ? qsTr("Looking where mail programs and calendars keep their files…")
                        : page.start.sources.count === 0
                        ? qsTr("Nothing was found where mail programs and calendars usually keep their files. What lies elsewhere can be added here.")
                        : qsTr("Nothing of it is changed. Leave out what does not concern you.")
                }

                Column {
                    width: parent.width

                    Repeater {
                        model: page.start.sources

                        CheckChoice {
                            required property int index
                            required property string title
                            required property bool isChosen
                            required detail
                            required note
                            required isFixed

                            width: parent.width
                            look: page.look
                            points: 13
                            enabled: !page.isBegun
                            text: title
                            checked: isChosen
                            onChanged: isChosen => page.start.sources.setChosen(index, isChosen)
                        }
                    }
                }

                EntryLine {
                    id: path

                    width: parent.width
                    visible: !page.isBegun
                    look: page.look
                    label: qsTr("Path of a mailbox, a calendar, contacts or a folder of these")
                    action: qsTr("Add")
                    fault: page.start.pathFault
                    onWritten: text => page.start.addPath(text)

                    Connections {
                        target: page.start

                        function onPathFaultChanged() {
                            if (page.start.pathFault.length === 0)
                                path.text = ""
                        }
                    }
                }

                Words {
                    visible: text.length > 0
                    points: 11
                    text: page.start.remarks
                }
            }

            Column {
                width: parent.width
                spacing: 6
                visible: page.isAtAddresses || page.isBegun

                Heading {
                    text: qsTr("Which addresses are yours")
                }

                Words {
                    text: page.start.step === FirstStartModel.LookingForAddresses
                        ? qsTr("Looking for them in the mail…")
                        : page.start.addresses.count === 0
                        ? qsTr("None could be told from the mail. Write here from which address you write, so that Orvan knows your mail from that of others.")
                        : qsTr("They tell what you wrote from what others wrote. Add what is missing.")
                }

                Column {
                    width: parent.width

                    Repeater {
                        model: page.start.addresses

                        CheckChoice {
                            required property int index
                            required property string title
                            required property bool isChosen
                            required detail
                            required note
                            required isFixed

                            width: parent.width
                            look: page.look
                            points: 13
                            enabled: !page.isBegun
                            text: title
                            checked: isChosen
                            onChanged: isChosen => page.start.addresses.setChosen(index, isChosen)
                        }
                    }
                }

                EntryLine {
                    id: address

                    width: parent.width
                    visible: page.start.step === FirstStartModel.ChoosingAddresses
                    look: page.look
                    label: qsTr("Another mail address of yours")
                    action: qsTr("Add")
                    fault: page.start.addressFault
                    onWritten: text => {
                        if (page.start.addAddress(text))
                            address.text = ""
                    }
                }
            }

            Column {
                width: parent.width
                spacing: 10

                Words {
                    visible: text.length > 0
                    text: page.start.failure
                    color: page.look.isDark ? "#ffb4a8" : "#a02a1a"
                    Accessible.role: Accessible.AlertMessage
                }

                Words {
                    visible: page.isBegun
                    text: page.start.reading.isReading
                        ? qsTr("People appear as soon as the first of your mail is read.")
                        : qsTr("Nobody was found in what was read so far.")
                }

                ActionButton {
                    id: forward

                    anchors.left: parent.left
                    look: page.look
                    isFramed: true
                    points: 13
                    visible: !(page.isBegun && page.start.reading.isReading)
                    enabled: {
                        switch (page.start.step) {
                        case FirstStartModel.Choosing:
                            return page.start.sources.countChosen > 0
                        case FirstStartModel.ChoosingAddresses:
                            return page.start.sources.countChosen > 0 && page.start.addresses.countChosen > 0
                        case FirstStartModel.Begun:
                            return true
                        default:
                            return false
                        }
                    }
                    text: {
                        switch (page.start.step) {
                        case FirstStartModel.Begun:
                            return qsTr("Choose more")
                        case FirstStartModel.Beginning:
                            return qsTr("Making the store…")
                        case FirstStartModel.ChoosingAddresses:
                            return qsTr("Start reading")
                        default:
                            return qsTr("Go on")
                        }
                    }
                    onClicked: {
                        switch (page.start.step) {
                        case FirstStartModel.Choosing:
                            page.start.goOn()
                            break
                        case FirstStartModel.ChoosingAddresses:
                            page.start.begin()
                            break
                        case FirstStartModel.Begun:
                            page.start.look()
                        }
                    }
                }
            }
        }
    }
}
