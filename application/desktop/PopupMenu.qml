import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention

// A frame for choices beneath what they belong to. Give it a contentItem, and put the keyboard on the first choice.
Templates.Popup {
    id: menu

    required property AttentionLook look
    // What the choices are about, for who does not see them.
    property string title: ""
    property real wantedX: 0
    property real wantedY: 0
    // What had the keyboard gets it back.
    property Item before: null
    property int reasonBefore: Qt.PopupFocusReason

    // What had the keyboard before is gone.
    signal lostItsPlace

    // Beneath the anchor; in the upper middle of the window when there is none.
    function openAt(anchor: Item) {
        const place = anchor ? anchor.mapToItem(parent, 0, anchor.height + 4)
                             : Qt.point((parent.width - implicitWidth) / 2, parent.height / 4)
        wantedX = place.x
        wantedY = place.y
        open()
    }

    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    // Moves to where there is room for it.
    x: Math.max(8, Math.min(wantedX, (parent?.width ?? 0) - implicitWidth - 8))
    y: Math.max(8, Math.min(wantedY, (parent?.height ?? 0) - implicitHeight - 8))
    padding: 8
    modal: true
    dim: false
    focus: true
    closePolicy: Templates.Popup.CloseOnEscape | Templates.Popup.CloseOnPressOutside

    // A popup is nothing that can be named; what holds its content is.
    onAboutToShow: {
        contentItem.parent.Accessible.name = title
        before = parent.Window.activeFocusItem
        reasonBefore = (before as Templates.Control)?.focusReason ?? Qt.PopupFocusReason
    }
    onTitleChanged: {
        if (visible)
            contentItem.parent.Accessible.name = title
    }
    onClosed: {
        if (before?.visible)
            before.forceActiveFocus(reasonBefore)
        else
            lostItsPlace()
        before = null
    }

    background: Rectangle {
        radius: 10
        color: menu.look.isDark ? Qt.lighter(menu.look.background, 1.25) : menu.look.desktop.base
        border.width: 1
        border.color: menu.look.line(0.2)
    }
}
