#include "OrvanRelationshipAttention/ui/attention_views.h"

#include <QQmlEngine>
#include <QString>
#include <QStringList>

// Generated from the classes of this folder. Naming it keeps a linker from leaving it out of a program.
void qml_register_types_OrvanRelationshipAttention();

namespace orvan {

void addAttentionViews(QQmlEngine& engine) {
  const QString folderOfModules = QStringLiteral("qrc:/qt/qml");
  if (engine.importPathList().contains(folderOfModules)) {
    return;
  }
  qml_register_types_OrvanRelationshipAttention();
  engine.addImportPath(folderOfModules);
}

} // namespace orvan
