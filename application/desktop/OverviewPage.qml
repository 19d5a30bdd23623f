import QtQuick
import QtQuick.Templates as Templates
import OrvanRelationshipAttention
import Orvan.Desktop

// Who drifted away, who is in touch and who waits for whom: a picture of all, and the first of each as lists, which are
// all there is where there is no room for the picture.
FocusScope {
    id: page

    required property OverviewModel overview
    required property AttentionLook look
    property bool isNarrow: false

    readonly property bool isEmpty: overview.isRead && overview.peopleCount === 0

    signal chosen(personKey: string)

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Overview")

    Component.onCompleted: overview.isShown = true
    Component.onDestruction: overview.isShown = false

    Rectangle {
        anchors.fill: parent
        color: page.look.desktop.base
    }

    Flickable {
        id: scroll

        function show(item: Item) {
            const top = item.mapToItem(content, 0, 0).y
            contentY = Math.max(0, Math.min(top, Math.max(contentY, top + item.height + 24 - height)))
        }

        anchors.fill: parent
        focus: !field.visible
        contentHeight: content.implicitHeight + 56
        clip: true
        boundsBehavior: Flickable.StopAtBounds

        Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)

        Column {
            id: content

            x: 32
            y: 24
            width: page.width - 64

            PlainText {
                look: page.look
                width: parent.width
                points: 20
                text: qsTr("Overview")
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }

            PlainText {
                look: page.look
                width: parent.width
                topPadding: 4
                visible: !page.isEmpty
                text: page.overview.sentence
                color: page.look.secondaryText
            }

            PlainText {
                look: page.look
                width: parent.width
                topPadding: 20
                points: 13
                visible: text.length > 0
                text: page.overview.failure
            }

            PlainText {
                look: page.look
                width: Math.min(parent.width, page.look.pixelSize(520))
                topPadding: 20
                points: 13
                visible: page.isEmpty
                text: qsTr("There is no contact of the last two years yet. With some months of your mail and calendars, you see here who drifted away, who is in touch and who waits.")
            }

            Item {
                width: 1
                height: 16
            }

            ContactField {
                id: field

                property int hovered: -1
                property int current: -1
                readonly property int told: hovered >= 0 ? hovered : activeFocus ? current : -1

                function open(person: int) {
                    if (keyOf(person).length > 0)
                        page.chosen(keyOf(person))
                }

                function move(across: int, down: int) {
                    current = neighbourOf(current, across, down)
                }

                width: parent.width
                height: Math.max(page.look.pixelSize(300), Math.min(page.look.pixelSize(560), page.height * 0.56))
                visible: !page.isNarrow && page.overview.pictureCount > 0
                overview: page.overview
                textColor: page.look.text
                accent: page.look.accent
                unit: page.look.pixelSize(100) / 100
                font.family: summary.font.family
                font.pixelSize: page.look.pixelSize(11)
                isMirrored: page.look.isRightToLeft
                activeFocusOnTab: true
                focus: visible

                Accessible.role: Accessible.Graphic
                Accessible.name: qsTr("People by how long ago there was contact, and by who waits for whom")
                Accessible.description: told >= 0 ? nameOf(told) + "\n" + factsOf(told) : page.overview.sentence
                Accessible.focusable: true

                onLaidOut: {
                    hovered = -1
                    current = Math.min(current, drawnCount - 1)
                }
                onActiveFocusChanged: {
                    if (activeFocus) {
                        scroll.show(field)
                        if (current < 0)
                            current = neighbourOf(-1, 0, 0)
                    }
                }

                Keys.onLeftPressed: move(-1, 0)
                Keys.onRightPressed: move(1, 0)
                Keys.onUpPressed: move(0, -1)
                Keys.onDownPressed: move(0, 1)
                Keys.onReturnPressed: open(current)
                Keys.onEnterPressed: open(current)
                Keys.onSpacePressed: open(current)

                HoverHandler {
                    cursorShape: field.hovered >= 0 ? Qt.PointingHandCursor : Qt.ArrowCursor
                    onPointChanged: field.hovered = field.personAt(point.position.x, point.position.y)
                    onHoveredChanged: {
                        if (!hovered)
                            field.hovered = -1
                    }
                }

                TapHandler {
                    onTapped: point => field.open(field.personAt(point.position.x, point.position.y))
                }

                Rectangle {
                    id: ring

                    readonly property rect area: field.told >= 0 ? field.areaOf(field.told) : Qt.rect(0, 0, 0, 0)

                    x: area.x - 4
                    y: area.y - 4
                    width: area.width + 8
                    height: width
                    radius: width / 2
                    visible: field.told >= 0
                    color: "transparent"
                    border.width: 2
                    border.color: page.look.text
                }

                Rectangle {
                    readonly property real besideX: ring.x + ring.width + 8

                    x: Math.max(0, besideX + width <= field.width ? besideX : ring.x - width - 8)
                    y: Math.max(0, Math.min(field.height - height, ring.y + ring.height / 2 - height / 2))
                    width: Math.min(page.look.pixelSize(300), Math.max(cardName.implicitWidth, cardFacts.implicitWidth) + 24)
                    height: card.implicitHeight + 20
                    visible: field.told >= 0
                    radius: 8
                    color: page.look.isDark ? Qt.lighter(page.look.background, 1.25) : page.look.desktop.base
                    border.width: 1
                    border.color: page.look.line(0.2)

                    Column {
                        id: card

                        anchors.left: parent.left
                        anchors.right: parent.right
                        anchors.leftMargin: 12
                        anchors.rightMargin: 12
                        y: 10
                        spacing: 3

                        PlainText {
                            id: cardName

                            look: page.look
                            width: parent.width
                            text: field.nameOf(field.told)
                            font.weight: Font.DemiBold
                            Accessible.ignored: true
                        }

                        PlainText {
                            id: cardFacts

                            look: page.look
                            width: parent.width
                            points: 11
                            text: field.factsOf(field.told)
                            color: page.look.secondaryText
                            Accessible.ignored: true
                        }
                    }
                }
            }

            Flow {
                width: parent.width
                topPadding: 8
                spacing: page.look.pixelSize(16)
                visible: field.visible

                Sample {
                    text: qsTr("drifted away")
                    color: page.look.accent
                }

                Sample {
                    text: qsTr("in touch")
                    color: Qt.alpha(page.look.text, 0.42)
                }

                Sample {
                    text: qsTr("too little contact to tell")
                    color: Qt.alpha(page.look.text, 0.42)
                    isRing: true
                }
            }

            PlainText {
                id: summary

                look: page.look
                width: parent.width
                topPadding: 4
                points: 11
                visible: field.visible
                color: page.look.secondaryText
                text: field.drawnCount < page.overview.peopleCount
                    ? qsTr("The larger a dot, the more you exchange. %1 people are shown, and %2 more are not.").arg(field.drawnCount).arg(page.overview.peopleCount - field.drawnCount)
                    : qsTr("The larger a dot, the more you exchange.")
            }

            Grid {
                id: lists

                readonly property real columnWidth: (width - (columns - 1) * columnSpacing) / columns

                width: parent.width
                topPadding: field.visible ? 20 : 4
                columns: page.isNarrow ? 1 : 3
                columnSpacing: 28
                rowSpacing: 16
                visible: page.overview.isRead && !page.isEmpty

                Repeater {
                    model: page.overview.groups

                    PeopleColumn {
                        width: lists.columnWidth
                    }
                }
            }
        }

        Templates.ScrollBar.vertical: QuietScrollBar {
            look: page.look
        }
    }

    component Sample: Row {
        id: sample

        property alias text: words.text
        property color color
        property bool isRing: false

        spacing: page.look.pixelSize(6)

        Rectangle {
            id: mark

            anchors.verticalCenter: parent.verticalCenter
            width: page.look.pixelSize(9)
            height: width
            radius: width / 2
            color: sample.isRing ? "transparent" : sample.color
            border.width: sample.isRing ? 1 : 0
            border.color: sample.color
        }

        PlainText {
            id: words

            look: page.look
            points: 11
            color: page.look.secondaryText
            Accessible.ignored: true
        }
    }

    component PeopleColumn: Column {
        id: group

        required property var modelData

        PlainText {
            look: page.look
            width: parent.width
            points: 13
            bottomPadding: 4
            text: qsTr("%1 (%2)", "a heading, and how many there are").arg(group.modelData.title).arg(group.modelData.count)
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }

        PlainText {
            look: page.look
            width: parent.width
            visible: group.modelData.count === 0
            text: group.modelData.nobody
            color: page.look.secondaryText
        }

        Repeater {
            model: group.modelData.people

            PersonRow {
                width: group.width
            }
        }

        PlainText {
            look: page.look
            width: parent.width
            topPadding: 4
            visible: group.modelData.count > group.modelData.people.length
            text: qsTr("and %1 more", "people").arg(group.modelData.count - group.modelData.people.length)
            color: page.look.secondaryText
        }
    }

    component PersonRow: Templates.AbstractButton {
        id: row

        required property var modelData

        implicitHeight: words.implicitHeight + 12
        focusPolicy: Qt.StrongFocus
        hoverEnabled: true

        Accessible.role: Accessible.Button
        Accessible.name: modelData.name
        Accessible.description: modelData.fact
        Accessible.onPressAction: clicked()

        onClicked: page.chosen(modelData.personKey)
        onActiveFocusChanged: {
            if (activeFocus)
                scroll.show(row)
        }
        Keys.onReturnPressed: clicked()
        Keys.onEnterPressed: clicked()
        Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
        Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

        background: Rectangle {
            x: -8
            width: row.width + 16
            height: row.height
            radius: 6
            color: Qt.alpha(page.look.accent, row.hovered ? 0.08 : 0)
            border.width: row.visualFocus ? 2 : 0
            border.color: page.look.accent
        }

        contentItem: Item {
            Column {
                id: words

                anchors.left: parent.left
                anchors.right: parent.right
                y: 6
                spacing: 1

                PlainText {
                    look: page.look
                    width: parent.width
                    text: row.modelData.name
                    wrapMode: Text.NoWrap
                    elide: Text.ElideRight
                    Accessible.ignored: true
                }

                PlainText {
                    look: page.look
                    width: parent.width
                    points: 11
                    text: row.modelData.fact
                    color: page.look.secondaryText
                    Accessible.ignored: true
                }
            }
        }
    }
}
