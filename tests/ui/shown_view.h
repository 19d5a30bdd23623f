#pragma once

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QString>
#include <QVariantMap>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OrvanRelationshipAttention/why_now/internal/attention_why_now_item_maker.h"

namespace orvan {

/// One view of the module in a window 320 pixels wide, drawn without a screen.
class ShownView {
 public:
  /// `properties` are those that the view requires; `look` is QML for the properties of its AttentionLook.
  ShownView(const QString& type, const QVariantMap& properties, const QString& look = {});

  QQuickWindow& window() { return window_; }
  QQuickItem& view() { return *view_; }

  /// The visible items with this identifier, in the order in which the keyboard and assistive technology go through
  /// them.
  std::vector<QQuickItem*> all(const QString& objectName);
  /// The first of them; none when there is none.
  QQuickItem* find(const QString& objectName);
  /// The visible texts, in the same order.
  std::vector<std::string> texts();

  void click(QQuickItem* item);
  void press(int key);
  /// Brings the layout up to date.
  void settle();

 private:
  QQmlEngine engine_;
  QQuickWindow window_;
  std::unique_ptr<QQuickItem> view_;
};

inline AttentionWhyNowItem reason(std::string headline, std::vector<std::string> evidenceLines,
                                  std::string timestamp = "2026-03-01T10:00:00Z") {
  return internal::AttentionWhyNowItemMaker::make(AttentionWhyNowItem::Kind::openThread, std::move(timestamp),
                                                  std::move(headline), std::move(evidenceLines),
                                                  {AttentionWhyNowEvidenceReference::thread("t")});
}

} // namespace orvan
