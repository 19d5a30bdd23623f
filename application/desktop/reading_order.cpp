#include "application/desktop/reading_order.h"

#include <algorithm>

namespace orvan {

void ReadingOrder::setOf(QQuickItem* of) {
  if (of_ == of) {
    return;
  }
  if (of_) {
    of_->disconnect(this);
  }
  of_ = of;
  if (of_) {
    // Rows that come are put in their places a moment later.
    connect(of_, &QQuickItem::childrenChanged, this, [this] {
      if (!isDue_) {
        isDue_ = true;
        QMetaObject::invokeMethod(this, &ReadingOrder::sort, Qt::QueuedConnection);
      }
    });
    sort();
  }
  Q_EMIT changed();
}

void ReadingOrder::sort() {
  isDue_ = false;
  if (!of_) {
    return;
  }
  const auto made = of_->childItems();
  auto seen = made;
  std::ranges::sort(seen, {}, &QQuickItem::y);
  if (seen == made) {
    return;
  }
  for (qsizetype at = 1; at < seen.size(); ++at) {
    seen[at]->stackAfter(seen[at - 1]);
  }
}

} // namespace orvan
