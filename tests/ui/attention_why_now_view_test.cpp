#include <gmock/gmock.h>

#include <QAccessible>

#include "OrvanRelationshipAttention/ui/attention_why_now_model.h"
#include "shown_view.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const QString button = "orvan.observatory.card.why-now";
const QString evidence = "orvan.observatory.card.why-now-evidence";

AttentionEvidenceBundle bundle(std::vector<OpenThreadEvidence> threads) {
  return {"p", "", 30, std::move(threads), {}, {}, {}, {}, {}, 0};
}

struct Card {
  AttentionWhyNowModel model;
  ShownView shown{"AttentionWhyNowView", {{"model", QVariant::fromValue(&model)}}};
};

TEST(WhyNowModel, ShowsTheSelectorsReasonAndTellsBeforeItChanges) {
  const auto waiting = bundle({{"t", "mail", "i", "se", "2026-03-01T10:00:00Z"}});
  EXPECT_FALSE(AttentionWhyNowModel(std::nullopt).item());
  EXPECT_FALSE(AttentionWhyNowModel(bundle({})).item());
  AttentionWhyNowModel model(waiting);
  EXPECT_EQ(model.headline(), "A conversation with them is waiting on your reply.");
  EXPECT_EQ(model.evidenceLines().size(), 1);

  std::vector<bool> hadItem;
  const auto note = [&] { hadItem.push_back(model.hasItem()); };
  QObject::connect(&model, &AttentionWhyNowModel::itemAboutToChange, note);
  QObject::connect(&model, &AttentionWhyNowModel::itemChanged, note);
  model.clear();
  model.refresh(waiting);
  model.refresh(bundle({}));
  EXPECT_THAT(hadItem, ElementsAre(true, false, false, true, true, false));
}

TEST(WhyNowView, ShowsNothingWithoutAReasonAndTheEvidenceOnDemand) {
  Card card;
  auto& shown = card.shown;
  EXPECT_THAT(shown.texts(), IsEmpty());
  card.model.setItem(reason("Headline", {"First.", "Second.", "Second."}));
  shown.settle();
  EXPECT_THAT(shown.texts(), ElementsAre("Headline"));
  EXPECT_FALSE(shown.find(evidence));
  shown.click(shown.find(button));
  EXPECT_THAT(shown.texts(), ElementsAre("Headline", "First.", "Second.", "Second."));
  EXPECT_EQ(shown.find(evidence)->y() + shown.find(evidence)->parentItem()->y(), shown.find(button)->height() + 4);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(shown.find(evidence))->text(QAccessible::Name),
            "First. Second. Second.");

  card.model.setItem(reason("Other", {}));
  shown.settle();
  EXPECT_THAT(shown.texts(), ElementsAre("Other")) << "it stays expanded, with nothing to show";
  EXPECT_TRUE(shown.find(evidence));
  shown.click(shown.find(button));
  EXPECT_FALSE(shown.find(evidence));
  card.model.clear();
  shown.settle();
  EXPECT_FALSE(shown.find(button));
  EXPECT_EQ(shown.view().implicitHeight(), 0);
}

TEST(WhyNowView, CutsTheHeadlineAfterTwoLinesAndSaysItWhole) {
  Card card;
  const std::string headline =
      "A headline that is much too long for two lines of a card as narrow as this one is, "
      "whatever the font may be, and that goes on for a while.";
  card.model.setItem(reason("One line", {}));
  card.shown.settle();
  auto* shownButton = card.shown.find(button);
  const qreal oneLine = shownButton->height();
  card.model.setItem(reason(headline, {}));
  card.shown.settle();
  EXPECT_EQ(shownButton->height(), 2 * oneLine);

  auto* accessible = QAccessible::queryAccessibleInterface(shownButton);
  EXPECT_EQ(accessible->role(), QAccessible::Button);
  EXPECT_EQ(accessible->text(QAccessible::Name).toStdString(), headline);
  EXPECT_EQ(accessible->text(QAccessible::Description), "collapsed");
  accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(accessible->text(QAccessible::Description), "expanded");
}

} // namespace
} // namespace orvan
