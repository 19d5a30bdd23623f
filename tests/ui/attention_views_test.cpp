#include "OrvanRelationshipAttention/ui/attention_views.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QFont>
#include <QGuiApplication>
#include <QPalette>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "OrvanRelationshipAttention/catch_up/internal/attention_catch_up_item_maker.h"
#include "OrvanRelationshipAttention/ui/attention_catch_up_model.h"
#include "OrvanRelationshipAttention/ui/attention_why_now_model.h"
#include "OrvanRelationshipAttention/why_now/internal/attention_why_now_item_maker.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

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

/// A view of the module in a window 320 pixels wide.
struct Shown {
  template <class Model>
  Shown(const QString& type, Model& model, const QString& look) {
    addAttentionViews(engine);
    QQmlComponent component(&engine);
    component.setData(QStringLiteral("import OrvanRelationshipAttention\n"
                                     "%1 { look: AttentionLook { reducesMotion: true; %2 } }")
                          .arg(type, look)
                          .toUtf8(),
                      {});
    view.reset(
        qobject_cast<QQuickItem*>(component.createWithInitialProperties({{"model", QVariant::fromValue(&model)}})));
    view->setParentItem(window.contentItem());
    view->setWidth(320);
    window.resize(320, 900);
    window.show();
    window.requestActivate();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    settle();
  }

  /// Brings the layout up to date.
  void settle() {
    QCoreApplication::processEvents();
    window.grabWindow();
  }

  /// What is visible, in the order in which keys and assistive technology go through it.
  std::vector<QQuickItem*> visible() {
    std::vector<QQuickItem*> items{view.get()};
    for (std::size_t next = 0; next < items.size(); ++next) {
      const auto children = items[next]->childItems();
      items.insert(items.begin() + static_cast<std::ptrdiff_t>(next) + 1, children.begin(), children.end());
      std::erase_if(items, [](const QQuickItem* item) { return !item->isVisible(); });
    }
    return items;
  }

  QQuickItem* find(const QString& objectName, int number = 0) {
    for (auto* item : visible()) {
      if (item->objectName() == objectName && number-- == 0) {
        return item;
      }
    }
    return nullptr;
  }

  std::vector<std::string> texts() {
    std::vector<std::string> texts;
    for (const auto* item : visible()) {
      if (item->inherits("QQuickText")) {
        texts.push_back(item->property("text").toString().toStdString());
      }
    }
    return texts;
  }

  QAccessibleInterface& accessible(const QString& objectName, int number = 0) {
    return *QAccessible::queryAccessibleInterface(find(objectName, number));
  }

  void click(QQuickItem* item) {
    QTest::mouseClick(&window, Qt::LeftButton, {}, item->mapToScene({item->width() / 2, item->height() / 2}).toPoint());
    settle();
  }

  QQmlEngine engine;
  QQuickWindow window;
  std::unique_ptr<QQuickItem> view;
};

AttentionWhyNowItem reason(std::string headline, std::vector<std::string> evidenceLines) {
  return internal::AttentionWhyNowItemMaker::make(AttentionWhyNowItem::Kind::openThread, "2026-03-01T10:00:00Z",
                                                  std::move(headline), std::move(evidenceLines),
                                                  {AttentionWhyNowEvidenceReference::thread("t")});
}

AttentionCatchUpItem item(const std::string& name, const std::string& headline = "Headline",
                          std::vector<std::string> evidence = {"Evidence."}) {
  return internal::AttentionCatchUpItemMaker::make("p-" + name, name, reason(headline, std::move(evidence))).value();
}

/// One item for each letter.
std::vector<AttentionCatchUpItem> items(const std::string& names) {
  std::vector<AttentionCatchUpItem> items;
  for (const char name : names) {
    items.push_back(item({name}));
  }
  return items;
}

struct List {
  explicit List(std::vector<AttentionCatchUpItem> items, const QString& look = {})
      : model([this] { return snoozeEnd += 1us; }), shown("AttentionCatchUpView", model, look) {
    QObject::connect(&model, &AttentionCatchUpModel::routeRequested, [this](const auto& it) { routes.push_back(it); });
    QObject::connect(&model, &AttentionCatchUpModel::actionRequested,
                     [this](const auto& it) { actions.push_back(it); });
    show(std::move(items));
  }

  void show(std::vector<AttentionCatchUpItem> items) {
    model.setItems(std::move(items));
    shown.settle();
  }

  Instant snoozeEnd{};
  AttentionCatchUpModel model;
  Shown shown;
  std::vector<AttentionRouteRequest> routes;
  std::vector<AttentionItemActionRequest> actions;
};

TEST(WhyNow, IsTheSelectorsReasonAndIsToldOfBeforeItChanges) {
  const auto bundle = [](std::vector<OpenThreadEvidence> threads) {
    return AttentionEvidenceBundle("p", "", 30, std::move(threads), {}, {}, {}, {}, {}, 0);
  };
  const auto waiting = bundle({{"t", "mail", "i", "se", "2026-03-01T10:00:00Z"}});
  EXPECT_FALSE(AttentionWhyNowModel(std::nullopt).item());
  EXPECT_FALSE(AttentionWhyNowModel(bundle({})).item());
  AttentionWhyNowModel model(waiting);
  EXPECT_EQ(model.headline(), "A conversation with them is waiting on your reply.");
  std::vector<bool> hadItem;
  QObject::connect(&model, &AttentionWhyNowModel::itemAboutToChange, [&] { hadItem.push_back(model.hasItem()); });
  QObject::connect(&model, &AttentionWhyNowModel::itemChanged, [&] { hadItem.push_back(model.hasItem()); });
  model.clear();
  model.refresh(waiting);
  model.refresh(bundle({}));
  EXPECT_THAT(hadItem, ElementsAre(true, false, false, true, true, false));
}

TEST(WhyNow, ShowsTheEvidenceOnDemandAndTwoLinesOfTheHeadline) {
  const QString button = "orvan.observatory.card.why-now";
  const QString evidence = button + "-evidence";
  AttentionWhyNowModel model;
  Shown shown("AttentionWhyNowView", model, {});
  EXPECT_THAT(shown.texts(), IsEmpty());
  model.setItem(reason("Headline", {"First.", "Second.", "Second."}));
  shown.settle();
  EXPECT_THAT(shown.texts(), ElementsAre("Headline"));
  EXPECT_TRUE(shown.find("chevron.down"));
  const qreal lineHeight = shown.find(button)->height();
  shown.click(shown.find(button));
  EXPECT_TRUE(shown.find("chevron.up"));
  EXPECT_THAT(shown.texts(), ElementsAre("Headline", "First.", "Second.", "Second."));
  EXPECT_EQ(shown.find(evidence)->mapToScene({}).y(), lineHeight + 4);
  EXPECT_EQ(shown.accessible(evidence).text(QAccessible::Name), "First. Second. Second.");

  const std::string longHeadline(300, 'x');
  model.setItem(reason(longHeadline, {}));
  shown.settle();
  EXPECT_EQ(shown.find(button)->height(), 2 * lineHeight);
  EXPECT_EQ(shown.accessible(button).text(QAccessible::Name).toStdString(), longHeadline);
  EXPECT_TRUE(shown.find(evidence)) << "it stays expanded, with nothing to show";
  shown.accessible(button).actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_FALSE(shown.find(evidence));
  model.clear();
  shown.settle();
  EXPECT_EQ(shown.view->implicitHeight(), 0);
}

TEST(CatchUp, ShowsRowsThenTheFailureNothingWithoutRowsAndOnlyThatItIsUnavailable) {
  List list(items("ab"));
  list.model.setHasActionFailure(true);
  list.shown.settle();
  EXPECT_THAT(list.shown.texts(),
              ElementsAre("a", "Headline", "Snooze", "Dismiss", "Resolve", "Why now", "b", "Headline", "Snooze",
                          "Dismiss", "Resolve", "Why now", "Couldn't save — try again"));
  EXPECT_TRUE(list.shown.find("orvan.catch-up") && list.shown.find("orvan.catch-up.action-failed"));
  list.show({});
  EXPECT_THAT(list.shown.texts(), IsEmpty());
  EXPECT_EQ(list.shown.view->implicitHeight(), 0);
  list.model.setIsUnavailable(true);
  list.show(items("a"));
  EXPECT_THAT(list.shown.texts(), ElementsAre("Catch-up unavailable"));
  EXPECT_TRUE(list.shown.find("orvan.catch-up.unavailable"));
}

TEST(CatchUp, KeepsItsSpacesAndSizesAndLeadsFromTheRightWhereScriptsDo) {
  for (const int scale : {1, 2}) {
    List list(items("ab"), QStringLiteral("textScale: %1; isRightToLeft: textScale > 1").arg(scale));
    list.shown.click(list.shown.find("disclosure"));
    auto* main = list.shown.find("main");
    auto* snooze = list.shown.find("snooze");
    auto* dismiss = list.shown.find("dismiss");
    auto* whyNow = list.shown.find("orvan.catch-up.why-now");
    const auto gap = [](const QQuickItem* above, const QQuickItem* below) {
      return below->mapToScene({}).y() - above->mapToScene({}).y() - above->height();
    };
    EXPECT_EQ(gap(main, snooze), 8);
    EXPECT_EQ(gap(snooze, whyNow), 8);
    EXPECT_EQ(gap(whyNow, list.shown.find("main", 1)), 8);
    EXPECT_EQ(list.shown.find("evidence")->property("topPadding"), 2);
    EXPECT_EQ(main->width(), 320);
    EXPECT_EQ(snooze->x(), scale == 1 ? 0 : 320 - snooze->width());
    EXPECT_EQ(list.shown.find("disclosure")->x(), scale == 1 ? 0 : 320 - list.shown.find("disclosure")->width());
    EXPECT_EQ(dismiss->x(), scale == 1 ? snooze->width() + 8 : snooze->x() - 8 - dismiss->width());
    const auto label = main->property("contentItem").value<QQuickItem*>()->childItems();
    const auto font = label[0]->property("font").value<QFont>();
    EXPECT_EQ(font.pixelSize(), 13 * scale);
    EXPECT_EQ(font.weight(), QFont::Medium);
    EXPECT_EQ(label[1]->property("font").value<QFont>().pixelSize(), 12 * scale);
    EXPECT_EQ(gap(label[0], label[1]), 2);
  }
}

TEST(CatchUp, SendsTheItemsRequestsAndAsksForTheEndOfEachSnooze) {
  List list({item("Ada")});
  const auto ada = item("Ada");
  for (const auto* button : {"main", "snooze", "snooze", "dismiss", "resolve"}) {
    list.shown.click(list.shown.find(button));
  }
  EXPECT_THAT(list.routes, ElementsAre(ada.routeRequest()));
  EXPECT_THAT(list.actions, ElementsAre(ada.actionRequest(AttentionItemAction::snooze(Instant{1us})),
                                        ada.actionRequest(AttentionItemAction::snooze(Instant{2us})),
                                        ada.actionRequest(AttentionItemAction::dismiss()),
                                        ada.actionRequest(AttentionItemAction::resolve())));
  QObject::connect(&list.model, &AttentionCatchUpModel::routeRequested, [&](const auto& request) {
    list.model.setItems({});
    EXPECT_EQ(request, ada.routeRequest());
  });
  list.shown.click(list.shown.find("main"));
  EXPECT_THAT(list.shown.texts(), IsEmpty()) << "a row may go while its request is sent";
}

TEST(CatchUp, IsWorkedByKeysNamedForAssistiveTechnologyAndFollowsThePalette) {
  List list({item("Ada"), item("")});
  auto& shown = list.shown;
  for (const auto* name : {"main", "snooze", "dismiss", "resolve", "disclosure", "main"}) {
    QTest::keyClick(&shown.window, Qt::Key_Tab);
    EXPECT_EQ(shown.window.activeFocusItem()->objectName(), name);
  }
  QTest::keyClick(&shown.window, Qt::Key_Return);
  QTest::keyClick(&shown.window, Qt::Key_Space);
  EXPECT_THAT(list.routes, ElementsAre(item("").routeRequest(), item("").routeRequest()));
  EXPECT_EQ(shown.accessible("main", 1).text(QAccessible::Name), ". Headline");
  list.show({item("Ada")});
  EXPECT_EQ(shown.window.activeFocusItem(), shown.find("main")) << "keys go on from the neighbour of a row that left";

  EXPECT_EQ(shown.accessible("snooze").role(), QAccessible::Button);
  EXPECT_EQ(shown.accessible("snooze").text(QAccessible::Name), "Snooze");
  shown.accessible("snooze").actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(list.actions.size(), 1);

  QPalette dark;
  dark.setColor(QPalette::WindowText, Qt::white);
  dark.setColor(QPalette::Window, Qt::black);
  QGuiApplication::setPalette(dark);
  shown.settle();
  const auto* label = shown.find("snooze")->property("contentItem").value<QQuickItem*>();
  EXPECT_GT(label->property("color").value<QColor>().lightnessF(), 0.5F);
  QGuiApplication::setPalette({});
}

TEST(CatchUp, KeepsWhatIsExpandedAsLongAsTheItemStaysAndTouchesOnlyWhatChanged) {
  List list(items("abc"));
  const QAbstractItemModelTester tester(&list.model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  list.shown.click(list.shown.find("disclosure", 1));
  list.show({item("c"), item("b", "Headline", {"Found."})});
  EXPECT_THAT(list.shown.texts(), testing::Contains("Found."));
  list.show(items("c"));
  list.show(items("cb"));
  EXPECT_FALSE(list.shown.find("evidence")) << "a new row starts collapsed";

  for (const auto* names : {"abcd", "dcba", "bd", "xbyd", "", "aab", "a", "ecdba", "abcde"}) {
    list.model.setItems(items(names));
    EXPECT_THAT(list.model.items(), testing::ElementsAreArray(items(names)));
  }
  const QSignalSpy inserted(&list.model, &QAbstractItemModel::rowsInserted);
  const QSignalSpy removed(&list.model, &QAbstractItemModel::rowsRemoved);
  const QSignalSpy moved(&list.model, &QAbstractItemModel::rowsMoved);
  const QSignalSpy changed(&list.model, &QAbstractItemModel::dataChanged);
  list.model.setItems({item("b"), item("c", "Reworded"), item("d"), item("e")});
  EXPECT_THAT((std::vector{inserted.size(), removed.size(), moved.size(), changed.size()}), ElementsAre(0, 1, 0, 1));
  EXPECT_EQ(changed[0][0].toModelIndex().row(), 1);
}

} // namespace
} // namespace orvan
