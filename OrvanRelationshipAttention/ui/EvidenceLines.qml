import QtQuick

// What a reason rests on, one line of text after the other; to assistive technology they are one.
Column {
    id: evidence

    required property var lines
    required property AttentionLook look

    spacing: 2

    Accessible.role: Accessible.StaticText
    Accessible.name: lines.join(" ")

    Repeater {
        model: evidence.lines.length

        Text {
            required property int index

            width: evidence.width
            text: evidence.lines[index] ?? ""
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignLeft
            color: evidence.look.secondaryText
            font.pixelSize: evidence.look.pixelSize(11)
        }
    }

    NumberAnimation on opacity {
        from: 0
        to: 1
        duration: evidence.look.reducesMotion ? 0 : 120
    }
}
