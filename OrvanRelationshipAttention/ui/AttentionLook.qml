import QtQuick

// How the views look. One may be shared by several views, and by the window around them.
QtObject {
    id: look

    // The desktop's own colours, in light and dark, unless the program has others.
    property color text: look.desktop.windowText
    property color background: look.desktop.window
    readonly property bool isDark: background.hslLightness < 0.5
    property color accent: isDark ? "#7ab5ee" : "#1b60a5"
    readonly property color secondaryText: Qt.alpha(text, hasHighContrast ? 0.9 : 0.68)

    // Sizes of text are in points; one point is one pixel at a scale of 1.
    property real textScale: 1
    // What is quiet by being pale stands out as well.
    property bool hasHighContrast: false
    // Nothing moves that the user did not move.
    property bool reducesMotion: false
    property bool isRightToLeft: Application.layoutDirection === Qt.RightToLeft

    readonly property SystemPalette desktop: SystemPalette {}

    // Of frames and rules: the text's colour, to such a part.
    function line(strength: real): color {
        return Qt.alpha(text, hasHighContrast ? Math.max(0.6, strength) : strength)
    }

    function pixelSize(points: real): int {
        return Math.round(points * textScale)
    }
}
