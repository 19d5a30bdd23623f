#include "application/desktop/user_language.h"

#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace orvan {
namespace {

/// Of the files NAME_LANGUAGE in the folder, the one of the locale's first language that has one.
bool speak(QCoreApplication& application, const QLocale& locale, const QString& name, const QString& folder) {
  auto* translator = new QTranslator(&application);
  return translator->load(locale, name, QStringLiteral("_"), folder) && QCoreApplication::installTranslator(translator);
}

} // namespace

void speakLanguageOfUser(QCoreApplication& application) {
  const auto name = QStringLiteral("orvan");
  const auto folder = QStringLiteral(":/translations");
  const QLocale user;
  if (speak(application, user, name, folder)) {
    speak(application, user, QStringLiteral("qtbase"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
  } else {
    // Its plurals have to be known, too.
    speak(application, QLocale(QLocale::English), name, folder);
  }
}

} // namespace orvan
