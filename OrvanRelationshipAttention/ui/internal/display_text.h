#pragma once

#include <QString>
#include <QStringList>
#include <string>
#include <vector>

namespace orvan::internal {

inline QString displayText(const std::string& text) {
  return QString::fromStdString(text);
}

inline QStringList displayTexts(const std::vector<std::string>& texts) {
  QStringList list;
  list.reserve(static_cast<qsizetype>(texts.size()));
  for (const auto& text : texts) {
    list.append(displayText(text));
  }
  return list;
}

} // namespace orvan::internal
