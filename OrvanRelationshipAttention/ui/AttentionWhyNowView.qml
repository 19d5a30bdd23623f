import QtQuick
import OrvanRelationshipAttention

// The card of one person: the reason to get back in touch, and on demand what it rests on. Without a reason there is
// nothing, and the card has no height. Give it a width.
Item {
    id: card

    required property AttentionWhyNowModel model
    property AttentionLook look: AttentionLook {}
    property bool isEvidenceExpanded: false

    // A Loader keeps the size of what it no longer holds.
    implicitWidth: content.item ? content.implicitWidth : 0
    implicitHeight: content.item ? content.implicitHeight : 0

    LayoutMirroring.enabled: look.isRightToLeft
    LayoutMirroring.childrenInherit: true

    Loader {
        id: content

        anchors.left: parent.left
        anchors.right: parent.right
        active: card.model.hasItem

        sourceComponent: Column {
            spacing: 4

            Accessible.role: Accessible.Grouping

            PlainButton {
                objectName: "orvan.observatory.card.why-now"
                width: parent.width
                look: card.look
                onClicked: card.isEvidenceExpanded = !card.isEvidenceExpanded

                Accessible.name: card.model.headline
                Accessible.description: card.isEvidenceExpanded ? qsTr("expanded") : qsTr("collapsed")

                contentItem: Item {
                    implicitWidth: headline.implicitWidth + 6 + chevron.width
                    implicitHeight: headline.implicitHeight

                    Text {
                        id: headline

                        anchors.left: parent.left
                        anchors.right: chevron.left
                        anchors.rightMargin: 6
                        text: card.model.headline
                        textFormat: Text.PlainText
                        wrapMode: Text.Wrap
                        maximumLineCount: 2
                        elide: Text.ElideRight
                        horizontalAlignment: Text.AlignLeft
                        color: Qt.alpha(card.look.text, 0.85)
                        font.pixelSize: card.look.pixelSize(12)
                    }

                    AttentionChevron {
                        id: chevron

                        objectName: card.isEvidenceExpanded ? "chevron.up" : "chevron.down"
                        anchors.right: parent.right
                        anchors.baseline: headline.baseline
                        baselineOffset: height
                        width: card.look.pixelSize(9)
                        height: width
                        direction: card.isEvidenceExpanded ? AttentionChevron.Up : AttentionChevron.Down
                        color: card.look.secondaryText
                    }
                }
            }

            Loader {
                width: parent.width
                active: card.isEvidenceExpanded

                sourceComponent: EvidenceLines {
                    objectName: "orvan.observatory.card.why-now-evidence"
                    lines: card.model.evidenceLines
                    look: card.look
                }
            }
        }
    }
}
