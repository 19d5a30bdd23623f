#pragma once

#include <QCoreApplication>

namespace orvan {

/// Gives the program's texts in the first language of the user's that it has, and in English when it has none. With
/// them come Qt's own, where they are installed: a language that the window does not speak does not turn it round
/// either.
///
/// Texts that were made before stay as they are: call it first. Lasts as long as the application.
void speakLanguageOfUser(QCoreApplication& application);

} // namespace orvan
