#include "OrvanRelationshipAttention/ui/attention_views.h"

#include <QQmlEngine>
#include <QString>

// Generated from the classes of this folder. Qt calls it when the module is imported.
void qml_register_types_OrvanRelationshipAttention();

namespace orvan {

void addAttentionViews(QQmlEngine& engine) {
  // Or the linker would find that nobody needs it, and leave it out.
  [[maybe_unused]] const volatile auto types = &qml_register_types_OrvanRelationshipAttention;
  engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
}

} // namespace orvan
