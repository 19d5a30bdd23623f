#pragma once

#include <QQuickWindow>

namespace orvan {

/// Gives the window the size and the size of text that it had when it was last closed, and remembers both when it is
/// closed again. Nothing of the user's data is kept with them.
void rememberPlaceOf(QQuickWindow& window);

} // namespace orvan
