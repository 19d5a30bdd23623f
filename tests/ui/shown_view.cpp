#include "shown_view.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QTest>

#include "OrvanRelationshipAttention/ui/attention_views.h"

namespace orvan {
namespace {

class QtApplication : public testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    application_ = std::make_unique<QGuiApplication>(argumentCount_, &name_);
    QAccessible::setActive(true);
  }
  void TearDown() override { application_.reset(); }

 private:
  int argumentCount_ = 1;
  char* name_ = const_cast<char*>("ui_test");
  std::unique_ptr<QGuiApplication> application_;
};

[[maybe_unused]] const auto* const environment = testing::AddGlobalTestEnvironment(new QtApplication);

void collect(QQuickItem* item, std::vector<QQuickItem*>& found) {
  if (!item->isVisible()) {
    return;
  }
  found.push_back(item);
  for (auto* child : item->childItems()) {
    collect(child, found);
  }
}

std::vector<QQuickItem*> visibleItems(QQuickItem* root) {
  std::vector<QQuickItem*> found;
  collect(root, found);
  return found;
}

} // namespace

ShownView::ShownView(const QString& type, const QVariantMap& properties, const QString& look) {
  addAttentionViews(engine_);
  QQmlComponent component(&engine_);
  component.setData(
      QStringLiteral(
          "import QtQuick\nimport OrvanRelationshipAttention\n%1 { look: AttentionLook { reducesMotion: true; %2 } }")
          .arg(type, look)
          .toUtf8(),
      {});
  view_.reset(qobject_cast<QQuickItem*>(component.createWithInitialProperties(properties)));
  EXPECT_TRUE(view_) << component.errorString().toStdString();
  window_.resize(320, 900);
  view_->setParentItem(window_.contentItem());
  view_->setWidth(320);
  window_.show();
  window_.requestActivate();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&window_));
  settle();
}

std::vector<QQuickItem*> ShownView::all(const QString& objectName) {
  auto items = visibleItems(view_.get());
  std::erase_if(items, [&](const QQuickItem* item) { return item->objectName() != objectName; });
  return items;
}

QQuickItem* ShownView::find(const QString& objectName) {
  const auto items = all(objectName);
  return items.empty() ? nullptr : items.front();
}

std::vector<std::string> ShownView::texts() {
  std::vector<std::string> texts;
  for (const auto* item : visibleItems(view_.get())) {
    if (item->inherits("QQuickText")) {
      texts.push_back(item->property("text").toString().toStdString());
    }
  }
  return texts;
}

void ShownView::click(QQuickItem* item) {
  ASSERT_TRUE(item);
  const QPointF middle = item->mapToScene({item->width() / 2, item->height() / 2});
  QTest::mouseClick(&window_, Qt::LeftButton, {}, middle.toPoint());
  settle();
}

void ShownView::press(int key) {
  QTest::keyClick(&window_, static_cast<Qt::Key>(key));
  settle();
}

void ShownView::settle() {
  QCoreApplication::processEvents();
  window_.grabWindow();
}

} // namespace orvan
