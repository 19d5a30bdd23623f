import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// One part of the settings: its name, how it stands in a few words, what there is to do, and what that came to.
Column {
    id: section

    required property AttentionLook look
    required property SettingsPart part
    required property string title
    // That something of it wants a look.
    property bool isInTrouble: false
    default property alias content: body.data

    spacing: 10

    Accessible.role: Accessible.Grouping
    Accessible.name: title

    Item {
        width: parent.width
        height: Math.max(heading.height, glance.isBeneath ? heading.height + glance.height : glance.height)

        PlainText {
            id: heading

            look: section.look
            anchors.left: parent.left
            points: 15
            text: section.title
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }

        PlainText {
            id: glance

            readonly property bool isBeneath: heading.implicitWidth + implicitWidth + 16 > parent.width

            look: section.look
            anchors.left: isBeneath ? parent.left : undefined
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            text: section.part.glance
            color: section.isInTrouble ? trouble.troubleColor : section.look.secondaryText
        }
    }

    Rectangle {
        width: parent.width
        height: body.implicitHeight + 24
        radius: 10
        color: section.look.isDark ? Qt.alpha(section.look.text, 0.05) : section.look.desktop.base
        border.width: 1
        border.color: section.look.line(0.14)

        Column {
            id: body

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.leftMargin: 16
            anchors.rightMargin: 16
            y: 12
            spacing: 10
        }
    }

    TroubleText {
        id: trouble

        look: section.look
        width: parent.width
        visible: text.length > 0
        isTrouble: section.part.isRefusal
        text: section.part.answer
        Accessible.role: Accessible.AlertMessage
    }
}
