import QtQuick
import OrvanRelationshipAttention

// The catch-up list, as high as its rows. Give it a width, and put it into a Flickable where it may be too high.
Item {
    id: view

    required property AttentionCatchUpModel model
    property AttentionLook look: AttentionLook {}
    // The Flickable around it, if that is to follow the keyboard from row to row.
    property Flickable flickable: null

    readonly property Item focused: Window.activeFocusItem

    // A Loader keeps the size of what it no longer holds.
    implicitWidth: content.item ? content.implicitWidth : 0
    implicitHeight: content.item ? content.implicitHeight : 0

    LayoutMirroring.enabled: look.isRightToLeft
    LayoutMirroring.childrenInherit: true

    onFocusedChanged: {
        if (flickable !== null && holdsFocus(view))
            reveal(focused)
    }

    function holdsFocus(item: Item): bool {
        for (let ancestor = focused; ancestor !== null; ancestor = ancestor.parent) {
            if (ancestor === item)
                return true
        }
        return false
    }

    function reveal(item: Item) {
        const top = item.mapToItem(flickable.contentItem, 0, 0).y
        const leastNeeded = top + item.height + 8 - flickable.height
        const nearest = Math.max(leastNeeded, Math.min(flickable.contentY, top - 8))
        flickable.contentY = Math.max(0, Math.min(nearest, flickable.contentHeight - flickable.height))
    }

    Loader {
        id: content

        anchors.left: parent.left
        anchors.right: parent.right
        sourceComponent: {
            if (view.model.isUnavailable)
                return unavailable
            return view.model.count > 0 ? list : null
        }
    }

    Component {
        id: unavailable

        Notice {
            objectName: "orvan.catch-up.unavailable"
            look: view.look
            text: qsTr("Catch-up unavailable")
        }
    }

    Component {
        id: list

        Column {
            objectName: "orvan.catch-up"
            spacing: 8

            Accessible.role: Accessible.List

            // Who works by keys goes on from the next row when theirs leaves.
            Connections {
                target: view.model

                function onRowsAboutToBeRemoved(parent, first, last) {
                    const leaving = rows.itemAt(first)
                    const neighbour = rows.itemAt(last + 1) ?? rows.itemAt(first - 1)
                    if (neighbour?.item && view.holdsFocus(leaving))
                        neighbour.item.takeFocus(view.focused.focusReason)
                }
            }

            Repeater {
                id: rows

                model: view.model

                // A long list shows its first rows at once, and makes the others while it is looked at.
                Loader {
                    id: row

                    required property int index
                    required property string displayName
                    required property string headline
                    required property var evidenceLines

                    width: parent.width
                    asynchronous: index >= 20

                    sourceComponent: AttentionCatchUpRow {
                        index: row.index
                        displayName: row.displayName
                        headline: row.headline
                        evidenceLines: row.evidenceLines
                        requests: view.model
                        look: view.look
                    }
                }
            }

            Loader {
                width: parent.width
                active: view.model.hasActionFailure

                sourceComponent: Notice {
                    objectName: "orvan.catch-up.action-failed"
                    look: view.look
                    text: qsTr("Couldn't save — try again")
                }
            }
        }
    }
}
