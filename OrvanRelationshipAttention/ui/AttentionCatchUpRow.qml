import QtQuick
import OrvanRelationshipAttention

// One person of the catch-up list: who and why, what can be done about it, and on demand what the reason rests on.
Column {
    id: row

    required property int index
    required property string displayName
    required property string headline
    required property var evidenceLines
    required property AttentionCatchUpModel requests
    required property AttentionLook look
    property bool isEvidenceExpanded: false

    spacing: 8

    function takeFocus(reason: int) {
        main.forceActiveFocus(reason)
    }

    Accessible.role: Accessible.ListItem
    Accessible.name: displayName

    PlainButton {
        id: main

        objectName: "main"
        width: parent.width
        look: row.look
        onClicked: row.requests.route(row.index)

        Accessible.name: row.displayName + ". " + row.headline

        contentItem: Column {
            spacing: 2

            Text {
                width: parent.width
                text: row.displayName
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignLeft
                color: row.look.text
                font.pixelSize: row.look.pixelSize(13)
                font.weight: Font.Medium
            }

            Text {
                width: parent.width
                text: row.headline
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignLeft
                color: row.look.secondaryText
                font.pixelSize: row.look.pixelSize(12)
            }
        }
    }

    // One line, unless large text leaves no room for it.
    Flow {
        width: parent.width
        spacing: 8

        PlainButton {
            objectName: "snooze"
            look: row.look
            text: qsTr("Snooze")
            onClicked: row.requests.snooze(row.index)
            Accessible.description: row.displayName
        }

        PlainButton {
            objectName: "dismiss"
            look: row.look
            text: qsTr("Dismiss")
            onClicked: row.requests.dismiss(row.index)
            Accessible.description: row.displayName
        }

        PlainButton {
            objectName: "resolve"
            look: row.look
            text: qsTr("Resolve")
            onClicked: row.requests.resolve(row.index)
            Accessible.description: row.displayName
        }
    }

    Column {
        objectName: "orvan.catch-up.why-now"
        width: parent.width

        PlainButton {
            id: disclosure

            objectName: "disclosure"
            // A Column does not mirror what is narrower than itself.
            x: row.look.isRightToLeft ? parent.width - width : 0
            look: row.look
            text: qsTr("Why now")
            onClicked: row.isEvidenceExpanded = !row.isEvidenceExpanded

            Accessible.description: row.isEvidenceExpanded ? qsTr("expanded") : qsTr("collapsed")

            contentItem: Item {
                readonly property int closedDirection: row.look.isRightToLeft ? AttentionChevron.Left : AttentionChevron.Right

                implicitWidth: chevron.width + 4 + title.implicitWidth
                implicitHeight: title.implicitHeight

                AttentionChevron {
                    id: chevron

                    anchors.left: parent.left
                    anchors.baseline: title.baseline
                    baselineOffset: height
                    width: row.look.pixelSize(9)
                    height: width
                    direction: row.isEvidenceExpanded ? AttentionChevron.Down : parent.closedDirection
                    color: row.look.secondaryText
                }

                Text {
                    id: title

                    anchors.left: chevron.right
                    anchors.leftMargin: 4
                    text: disclosure.text
                    textFormat: Text.PlainText
                    color: row.look.secondaryText
                    font.pixelSize: row.look.pixelSize(11)
                }
            }
        }

        Loader {
            width: parent.width
            active: row.isEvidenceExpanded

            sourceComponent: EvidenceLines {
                objectName: "evidence"
                topPadding: 2
                lines: row.evidenceLines
                look: row.look
            }
        }
    }
}
