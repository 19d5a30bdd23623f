#pragma once

#include <QString>
#include <filesystem>

namespace orvan {

/// The file that somebody means who wrote `text` into a field: absolute, with "~" for their folder, without blanks and
/// quotation marks around it, and also when it was dragged here as a file's address. Empty when nothing is written.
std::filesystem::path writtenPath(const QString& text);

/// A path as it is shown: printable, and with "~" for the user's folder.
QString shownPath(const std::filesystem::path& path);

} // namespace orvan
