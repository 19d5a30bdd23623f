#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QFont>
#include <QSignalSpy>

#include "OrvanRelationshipAttention/catch_up/internal/attention_catch_up_item_maker.h"
#include "OrvanRelationshipAttention/ui/attention_catch_up_model.h"
#include "shown_view.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

AttentionCatchUpItem item(const std::string& name, const std::string& headline = "Headline",
                          std::vector<std::string> evidenceLines = {"Evidence."}) {
  return internal::AttentionCatchUpItemMaker::make("p-" + name, name, reason(headline, std::move(evidenceLines)))
      .value();
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
      : model([this] { return snoozeEnd += 1us; }),
        shown("AttentionCatchUpView", {{"model", QVariant::fromValue(&model)}}, look) {
    model.setItems(std::move(items));
    QObject::connect(&model, &AttentionCatchUpModel::routeRequested, [this](const auto& it) { routes.push_back(it); });
    QObject::connect(&model, &AttentionCatchUpModel::actionRequested,
                     [this](const auto& it) { actions.push_back(it); });
    shown.settle();
  }

  Instant snoozeEnd{};
  AttentionCatchUpModel model;
  ShownView shown;
  std::vector<AttentionRouteRequest> routes;
  std::vector<AttentionItemActionRequest> actions;
};

TEST(CatchUpView, ShowsRowsThenTheFailureNothingWithoutRowsAndOnlyThatItIsUnavailable) {
  List list(items("ab"));
  auto& shown = list.shown;
  EXPECT_THAT(shown.texts(), ElementsAre("a", "Headline", "Snooze", "Dismiss", "Resolve", "Why now", "b", "Headline",
                                         "Snooze", "Dismiss", "Resolve", "Why now"));
  EXPECT_TRUE(shown.find("orvan.catch-up"));
  EXPECT_EQ(shown.all("orvan.catch-up.why-now").size(), 2);

  list.model.setHasActionFailure(true);
  shown.settle();
  EXPECT_EQ(shown.texts().back(), "Couldn't save — try again");
  EXPECT_TRUE(shown.find("orvan.catch-up.action-failed"));
  list.model.setItems({});
  shown.settle();
  EXPECT_THAT(shown.texts(), IsEmpty());
  EXPECT_EQ(shown.view().implicitHeight(), 0);

  list.model.setItems(items("a"));
  list.model.setIsUnavailable(true);
  shown.settle();
  EXPECT_THAT(shown.texts(), ElementsAre("Catch-up unavailable"));
  EXPECT_TRUE(shown.find("orvan.catch-up.unavailable"));
}

TEST(CatchUpView, KeepsItsSpacesAndSizesAndLeadsFromTheRightWhereScriptsDo) {
  for (const int scale : {1, 2}) {
    List list(items("ab"),
              QStringLiteral("textScale: %1; isRightToLeft: %2").arg(scale).arg(scale == 2 ? "true" : "false"));
    const auto top = [](const QQuickItem* shown) { return shown->mapToScene({}).y(); };
    const auto bottom = [&](const QQuickItem* shown) { return top(shown) + shown->height(); };
    const auto mains = list.shown.all("main");
    auto* snooze = list.shown.find("snooze");
    auto* dismiss = list.shown.find("dismiss");
    auto* whyNow = list.shown.find("orvan.catch-up.why-now");
    list.shown.click(list.shown.find("disclosure"));
    auto* evidence = list.shown.find("evidence");
    EXPECT_EQ(top(snooze) - bottom(mains[0]), 8);
    EXPECT_EQ(top(whyNow) - bottom(snooze), 8);
    EXPECT_EQ(top(mains[1]) - bottom(whyNow), 8);
    EXPECT_EQ(bottom(whyNow), bottom(evidence));
    EXPECT_EQ(evidence->property("topPadding").toReal(), 2);
    EXPECT_EQ(mains[0]->width(), 320);
    if (scale == 1) {
      EXPECT_EQ(snooze->x(), 0);
      EXPECT_EQ(dismiss->x() - snooze->width(), 8);
    } else {
      EXPECT_EQ(snooze->x() + snooze->width(), 320);
      EXPECT_EQ(snooze->x() - dismiss->width() - dismiss->x(), 8);
    }
    const auto content = [](const QQuickItem* button) { return button->property("contentItem").value<QQuickItem*>(); };
    const auto font = [](const QQuickItem* text) { return text->property("font").value<QFont>(); };
    const auto label = content(mains[0])->childItems();
    EXPECT_EQ(font(label[0]).pixelSize(), 13 * scale);
    EXPECT_EQ(font(label[0]).weight(), QFont::Medium);
    EXPECT_EQ(font(label[1]).pixelSize(), 12 * scale);
    EXPECT_EQ(label[1]->y() - label[0]->height(), 2);
    EXPECT_EQ(font(content(snooze)).pixelSize(), 11 * scale);
  }
}

TEST(CatchUpView, SendsTheItemsRequestsAndAsksForTheEndOfEachSnooze) {
  List list({item("Ada")});
  auto& shown = list.shown;
  const auto ada = item("Ada");
  const auto start = list.snoozeEnd;
  for (const auto* button : {"main", "snooze", "snooze", "dismiss", "resolve"}) {
    shown.click(shown.find(button));
  }
  EXPECT_THAT(list.routes, ElementsAre(ada.routeRequest()));
  EXPECT_THAT(list.actions, ElementsAre(ada.actionRequest(AttentionItemAction::snooze(start + 1us)),
                                        ada.actionRequest(AttentionItemAction::snooze(start + 2us)),
                                        ada.actionRequest(AttentionItemAction::dismiss()),
                                        ada.actionRequest(AttentionItemAction::resolve())));
  EXPECT_EQ(list.model.count(), 1) << "a request changes nothing by itself";

  QObject::connect(&list.model, &AttentionCatchUpModel::actionRequested, [&] { list.model.setItems({}); });
  shown.click(shown.find("dismiss"));
  EXPECT_EQ(list.actions.back(), ada.actionRequest(AttentionItemAction::dismiss()));
  EXPECT_THAT(shown.texts(), IsEmpty());
}

TEST(CatchUpView, IsWorkedByKeysAndNamedForAssistiveTechnology) {
  List list({item("Ada"), item("")});
  auto& shown = list.shown;
  std::vector<QString> reached;
  for (int count = 0; count < 6; ++count) {
    shown.press(Qt::Key_Tab);
    reached.push_back(shown.window().activeFocusItem()->objectName());
  }
  EXPECT_THAT(reached, ElementsAre("main", "snooze", "dismiss", "resolve", "disclosure", "main"));
  EXPECT_EQ(shown.window().activeFocusItem(), shown.all("main")[1]);
  shown.press(Qt::Key_Return);
  shown.press(Qt::Key_Space);
  EXPECT_EQ(list.routes.size(), 2);
  list.model.setItems({item("Ada")});
  shown.settle();
  EXPECT_EQ(shown.window().activeFocusItem(), shown.find("main")) << "keys go on from the neighbour of a row that left";
  list.model.setItems({item("Ada"), item("")});
  shown.settle();

  const auto accessible = [](QQuickItem* shownItem) { return QAccessible::queryAccessibleInterface(shownItem); };
  EXPECT_EQ(accessible(shown.all("main")[0])->text(QAccessible::Name), "Ada. Headline");
  EXPECT_EQ(accessible(shown.all("main")[1])->text(QAccessible::Name), ". Headline");
  auto* snooze = accessible(shown.find("snooze"));
  EXPECT_EQ(snooze->role(), QAccessible::Button);
  EXPECT_TRUE(snooze->state().focusable);
  EXPECT_EQ(snooze->text(QAccessible::Name), "Snooze");
  EXPECT_EQ(snooze->text(QAccessible::Description), "Ada");
  snooze->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(list.actions.size(), 1);
  EXPECT_EQ(accessible(shown.find("disclosure"))->text(QAccessible::Name), "Why now");
}

TEST(CatchUpView, KeepsWhatIsExpandedAsLongAsTheItemStays) {
  List list({item("a"), item("b", "Headline", {}), item("c")});
  auto& shown = list.shown;
  const auto expanded = [&] { return shown.all("evidence").size(); };
  shown.click(shown.all("disclosure")[1]);
  EXPECT_EQ(expanded(), 1) << "an empty stack";
  const auto* row = shown.all("main")[1];

  list.model.setItems({item("c"), item("b", "Reworded", {"Found."})});
  shown.settle();
  EXPECT_EQ(shown.all("main")[1], row);
  EXPECT_THAT(shown.texts(), testing::IsSupersetOf({"Reworded", "Found."}));
  EXPECT_EQ(expanded(), 1);
  list.model.setItems(items("c"));
  list.model.setItems({item("c"), item("b")});
  shown.settle();
  EXPECT_EQ(expanded(), 0) << "a new row starts collapsed";
}

TEST(CatchUpModel, GoesFromAnyListToAnyOtherAndTouchesOnlyWhatChanged) {
  AttentionCatchUpModel model([] { return Instant{}; });
  const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  for (const auto* names : {"abcd", "dcba", "bd", "xbyd", "", "aab", "a", "ecdba", "abcde"}) {
    model.setItems(items(names));
    EXPECT_THAT(model.items(), testing::ElementsAreArray(items(names)));
  }
  QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
  QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
  QSignalSpy moved(&model, &QAbstractItemModel::rowsMoved);
  QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
  model.setItems({item("b"), item("c", "Reworded"), item("d"), item("e")});
  EXPECT_THAT((std::vector{inserted.size(), removed.size(), moved.size(), changed.size()}), ElementsAre(0, 1, 0, 1));
  EXPECT_EQ(changed[0][0].toModelIndex().row(), 1);
  EXPECT_EQ(changed[0][2].value<QList<int>>(), QList<int>{AttentionCatchUpModel::headlineRole});
  model.route(-1);
  model.snooze(4);
}

} // namespace
} // namespace orvan
