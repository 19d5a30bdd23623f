#pragma once

class QQmlEngine;

namespace orvan {

/// Makes the QML module OrvanRelationshipAttention known to `engine`, which must not have loaded anything that imports
/// it yet: afterwards `import OrvanRelationshipAttention` finds AttentionWhyNowView, AttentionCatchUpView and
/// AttentionLook. Needs no file beside the program. Call it on the engine's thread; calling it again changes nothing.
void addAttentionViews(QQmlEngine& engine);

} // namespace orvan
