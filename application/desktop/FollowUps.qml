import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// What the user wanted to come back to with the shown person, and the end of it.
Column {
    id: list

    required property PersonModel person
    required property FollowUpsModel followUps
    required property AttentionLook look

    Repeater {
        model: list.person.followUps

        Item {
            id: row

            required property var modelData
            readonly property string words: modelData.said.length > 0 ? modelData.said : modelData.due

            width: list.width
            implicitHeight: Math.max(lines.implicitHeight, actions.implicitHeight) + 8

            Column {
                id: lines

                anchors.left: parent.left
                anchors.right: actions.left
                anchors.rightMargin: 12

                PlainText {
                    look: list.look
                    width: parent.width
                    text: row.modelData.said
                    visible: row.modelData.said.length > 0
                }

                PlainText {
                    look: list.look
                    width: parent.width
                    points: 11
                    text: qsTr("Due %1").arg(row.modelData.due)
                    color: list.look.secondaryText
                }
            }

            Row {
                id: actions

                anchors.right: parent.right
                spacing: 4

                ActionButton {
                    look: list.look
                    text: qsTr("Done")
                    Accessible.name: qsTr("Done: %1").arg(row.words)
                    onClicked: list.followUps.complete(row.modelData.id)
                }

                ActionButton {
                    look: list.look
                    text: qsTr("Cancel")
                    Accessible.name: qsTr("Cancel: %1").arg(row.words)
                    onClicked: list.followUps.cancel(row.modelData.id)
                }
            }
        }
    }
}
