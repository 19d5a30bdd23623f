import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// Two years of contact with a person as a picture, with what it shows in words; nothing where there was none.
Item {
    id: years

    required property AttentionLook look
    required property contactPicture picture

    implicitHeight: picture.hasContact ? caption.y + caption.height : past.visible ? past.height : 0
    visible: picture.sentence.length > 0

    component Label: PlainText {
        look: years.look
        points: 11
        color: years.look.secondaryText
        wrapMode: Text.NoWrap
        Accessible.ignored: true
    }

    component Sample: Row {
        id: sample

        property alias text: words.text
        property alias color: mark.color
        property bool isDot: false

        spacing: years.look.pixelSize(6)

        Rectangle {
            id: mark

            anchors.verticalCenter: parent.verticalCenter
            width: years.look.pixelSize(sample.isDot ? 5 : 8)
            height: width
            radius: sample.isDot ? width / 2 : 1
        }

        Label {
            id: words
        }
    }

    PlainText {
        id: past

        look: years.look
        width: parent.width
        visible: !years.picture.hasContact && text.length > 0
        text: years.picture.sentence
        color: years.look.secondaryText
    }

    ContactSparkline {
        id: drawing

        width: parent.width
        height: years.look.pixelSize(72)
        visible: years.picture.hasContact
        picture: years.picture
        ownColor: years.look.accent
        theirColor: years.look.line(0.45)
        shade: Qt.alpha(years.look.text, years.look.isDark ? 0.12 : 0.08)
        isMirrored: years.look.isRightToLeft

        Accessible.role: Accessible.Graphic
        Accessible.name: years.picture.sentence

        Label {
            x: drawing.quietX + (drawing.quietWidth - width) / 2
            y: 3
            visible: width + 8 < drawing.quietWidth
            text: years.picture.quiet
        }
    }

    Item {
        id: caption

        readonly property real widthOfSamples: own.width + theirs.width + samples.columnSpacing
                                               + (met.visible ? met.width + samples.columnSpacing : 0)
        readonly property bool isOneLine: first.width + widthOfSamples + today.width + 48 <= width

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: drawing.bottom
        anchors.topMargin: 6
        height: isOneLine ? first.height : samples.y + samples.height
        visible: years.picture.hasContact

        Label {
            id: first

            anchors.left: parent.left
            text: years.picture.firstMonth
        }

        Grid {
            id: samples

            columns: caption.widthOfSamples <= parent.width ? 3 : 1
            rowSpacing: 4
            x: caption.isOneLine ? (parent.width - width) / 2 : years.look.isRightToLeft ? parent.width - width : 0
            y: caption.isOneLine ? 0 : first.height + 4
            columnSpacing: years.look.pixelSize(16)

            Sample {
                id: own

                text: qsTr("you wrote %1", "so many mails").arg(years.picture.mailsTo)
                color: drawing.ownColor
            }

            Sample {
                id: theirs

                text: qsTr("they wrote %1", "so many mails").arg(years.picture.mailsFrom)
                color: drawing.theirColor
            }

            Sample {
                id: met

                visible: years.picture.meetings > 0
                isDot: true
                text: qsTr("you met %1 ×", "so many times").arg(years.picture.meetings)
                color: drawing.theirColor
            }
        }

        Label {
            id: today

            anchors.right: parent.right
            text: qsTr("today")
        }
    }
}
