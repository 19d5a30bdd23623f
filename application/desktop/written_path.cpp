#include "application/desktop/written_path.h"

#include <QDir>
#include <QFile>
#include <QUrl>

#include "application/desktop/wording.h"

namespace orvan {

std::filesystem::path writtenPath(const QString& text) {
  auto path = text.trimmed();
  const bool isQuoted =
      path.size() > 1 && path.front() == path.back() && (path.front() == u'"' || path.front() == u'\'');
  if (isQuoted) {
    path = path.mid(1, path.size() - 2);
  }
  if (path.startsWith(u"file://")) {
    path = QUrl(path).toLocalFile();
  }
  if (path.isEmpty()) {
    return {};
  }
  if (path == u"~" || path.startsWith(u"~/")) {
    path.replace(0, 1, QDir::homePath());
  }
  return QFile::encodeName(QDir::cleanPath(QDir::home().absoluteFilePath(path))).toStdString();
}

QString shownPath(const std::filesystem::path& path) {
  const auto text = displayText(path.string());
  const auto home = QDir::homePath();
  return text == home || text.startsWith(home + u'/') ? u'~' + text.mid(home.size()) : text;
}

} // namespace orvan
