import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention

Templates.ScrollBar {
    id: bar

    required property AttentionLook look

    implicitWidth: 10
    padding: 2
    visible: size < 1
    minimumSize: 0.06

    // Who works by ear or by keys moves along the rows themselves.
    Accessible.ignored: true

    contentItem: Rectangle {
        implicitWidth: 6
        radius: 3
        color: Qt.alpha(bar.look.text, bar.pressed ? 0.5 : bar.hovered ? 0.35 : 0.18)
    }
}
