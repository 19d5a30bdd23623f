import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// All that is put right about the chosen person: their menu, and what it leads to.
Item {
    id: menus

    required property WindowModel window
    required property CorrectionsModel corrections
    required property AttentionLook look
    readonly property bool isOpen: menu.visible || wrong.visible || rename.visible || merge.visible

    signal lostItsPlace

    function openAt(anchor: Item) {
        if (window.chosen.length > 0)
            menu.openAt(anchor)
    }

    function openAtPoint(item: Item, x: real, y: real) {
        const place = item.mapToItem(menus, x, y)
        menu.wantedX = place.x
        menu.wantedY = place.y
        menu.open()
    }

    function openMessage() {
        if (window.person.itemKey.length > 0)
            corrections.openMessage(window.person.itemKey)
    }

    anchors.fill: parent

    // Nothing that was asked about one person is done to another.
    Connections {
        target: menus.window

        function onChosenChanged() {
            menu.close()
            wrong.close()
            rename.close()
            merge.close()
        }
    }

    PersonMenu {
        id: menu

        parent: menus
        window: menus.window
        corrections: menus.corrections
        look: menus.look
        onWrongAsked: wrong.openAt(null)
        onRenameAsked: rename.openAt(null)
        onMergeAsked: merge.openAt(null)
        onLostItsPlace: menus.lostItsPlace()
    }

    WrongMenu {
        id: wrong

        parent: menus
        window: menus.window
        corrections: menus.corrections
        look: menus.look
        onRenameAsked: rename.openAt(null)
        onMergeAsked: merge.openAt(null)
        onLostItsPlace: menus.lostItsPlace()
    }

    RenameMenu {
        id: rename

        parent: menus
        window: menus.window
        corrections: menus.corrections
        look: menus.look
        onLostItsPlace: menus.lostItsPlace()
    }

    MergeMenu {
        id: merge

        parent: menus
        window: menus.window
        corrections: menus.corrections
        look: menus.look
        onLostItsPlace: menus.lostItsPlace()
    }
}
