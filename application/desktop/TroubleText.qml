import QtQuick
import OrvanRelationshipAttention
import Orvan.Desktop

// What went wrong, in the colour of that; or else what was done.
PlainText {
    property bool isTrouble: true
    readonly property color troubleColor: look.isDark ? "#ff9b8f" : "#b3261e"

    color: isTrouble ? troubleColor : look.secondaryText
}
