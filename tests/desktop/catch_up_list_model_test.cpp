#include "application/desktop/catch_up_list_model.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>

namespace orvan {
namespace {

CatchUpListRow row(const char* person, const char* headline = "Waits.") {
  return {person, QString("%1|%2").arg(person, headline), person, {}, headline, {}, "Now"};
}

TEST(CatchUpListModel, ChangesOnlyTheRowsThatChanged) {
  CatchUpListModel model;
  const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  model.setRows({row("Ada"), row("Bo"), row("Cleo"), row("Dag")});
  const QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
  const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
  const QSignalSpy moved(&model, &QAbstractItemModel::rowsMoved);
  QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);

  model.setRows({row("Ada"), row("Bo"), row("Cleo"), row("Dag")});
  EXPECT_EQ(inserted.count() + removed.count() + moved.count() + changed.count(), 0);

  const std::vector wanted{row("Ada"), row("Dag"), row("Bo", "Asks."), row("Eve")};
  model.setRows(wanted);
  EXPECT_EQ(model.rows(), wanted);
  EXPECT_EQ(inserted.count(), 1);
  EXPECT_EQ(removed.count(), 1);
  EXPECT_EQ(moved.count(), 1);
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(changed.front().at(0).toModelIndex().row(), 2);
  EXPECT_EQ(changed.front().at(2).value<QList<int>>(),
            (QList<int>{CatchUpListModel::itemKeyRole, CatchUpListModel::headlineRole}));
}

TEST(CatchUpListModel, MakesARowAnewThatComesUnderAnotherHeading) {
  CatchUpListModel model;
  model.setRows({row("Ada"), row("Bo")});
  const QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
  auto wanted = model.rows();
  wanted[1].group = "Lately";
  model.setRows(wanted);
  EXPECT_EQ(model.rows(), wanted);
  EXPECT_EQ(inserted.count(), 1);
}

} // namespace
} // namespace orvan
