// What a table asks its data source and delegate, and when: a reload asks the
// counts and the cells of the rows that fit the screen; a row further down is
// asked when it is scrolled to or touched, once until the next reload; every
// row's height is asked up front only when the delegate answers heights and
// no estimate is set.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "support/sim_world.hpp"
#include "ui/tables.hpp"

namespace {

using rt::Id;
using rt::SEL;
using Row = std::pair<long, long>;  // section, row

std::vector<long> rowsPerSection;
double rowHeight = 100;
std::map<Row, int> cellsAsked, heightsAsked;

Row rowOf(Id ip) { return {rt::indexPathSection(ip), rt::indexPathRow(ip)}; }
long sections(Id, SEL, Id) { return long(rowsPerSection.size()); }
long rows(Id, SEL, Id, long section) { return rowsPerSection[std::size_t(section)]; }
Id cell(Id, SEL, Id, Id ip) {
  ++cellsAsked[rowOf(ip)];
  ui::CellSpec spec;
  spec.title = std::to_string(rowOf(ip).first) + "," + std::to_string(rowOf(ip).second);
  return ui::makeCell(spec, "");
}
double height(Id, SEL, Id, Id ip) {
  ++heightsAsked[rowOf(ip)];
  return rowHeight;
}

class TableRows : public qbtest::SimWorld {
 protected:
  void SetUp() override {
    cellsAsked.clear();
    heightsAsked.clear();
    rowsPerSection = {100};
    rowHeight = 100;
    rt::Class source = sim::ClassBuilder("Source")
                           .method("numberOfSectionsInTableView:", sections)
                           .method("tableView:numberOfRowsInSection:", rows)
                           .method("tableView:cellForRowAtIndexPath:", cell)
                           .build();
    sim::ClassBuilder("HeightDelegate")
        .method("tableView:heightForRowAtIndexPath:", height)
        .build();
    ds = rt::send<Id>(source, "new");
    table = rt::send<Id>(rt::getClass("UITableView"), "new");
    rt::send<void>(table, "setDataSource:", ds);
  }
  void answerHeights() {
    delegate = rt::send<Id>(rt::getClass("HeightDelegate"), "new");
    rt::send<void>(table, "setDelegate:", delegate);
  }
  static std::map<Row, int> firstRows(long n, long section = 0) {
    std::map<Row, int> out;
    for (long r = 0; r < n; ++r) out[{section, r}] = 1;
    return out;
  }

  Id ds = nullptr, delegate = nullptr, table = nullptr;
};

TEST_F(TableRows, AReloadAsksTheRowsThatFitAndScrollingAsksTheRestOnce) {
  rt::send<void>(table, "reloadData");
  EXPECT_EQ(cellsAsked, firstRows(20)) << "844 points of 44-point rows";
  EXPECT_EQ(sim::viewState(table)->shownRows.at(0).size(), 20u);
  sim::scrollThrough(table);
  EXPECT_EQ(cellsAsked, firstRows(100)) << "every row once, none twice";
  sim::scrollThrough(table);
  EXPECT_EQ(cellsAsked, firstRows(100)) << "the cells are kept until the next reload";
  rt::send<void>(table, "reloadData");
  EXPECT_EQ(cellsAsked.at({0, 0}), 2);
  EXPECT_EQ(cellsAsked.at({0, 19}), 2);
  EXPECT_EQ(cellsAsked.at({0, 20}), 1);
  EXPECT_TRUE(heightsAsked.empty());
}

TEST_F(TableRows, WithoutAnEstimateEveryHeightIsAskedAndTheHeightsDecideWhatFits) {
  rowsPerSection = {6, 6, 6};
  answerHeights();
  ui::TableLook look;
  look.estimatedRowHeight = 0;
  look.automaticRowHeight = false;
  ui::styleTable(table, look);
  rt::send<void>(table, "reloadData");
  EXPECT_EQ(heightsAsked.size(), 18u);
  std::map<Row, int> want = firstRows(6);
  want[{1, 0}] = want[{1, 1}] = want[{1, 2}] = 1;  // 9 rows of 100 points fill 844
  EXPECT_EQ(cellsAsked, want);
  auto& shown = sim::viewState(table)->shownRows;
  ASSERT_EQ(shown.size(), 3u);
  EXPECT_EQ(shown[1].size(), 3u);
  EXPECT_TRUE(shown[2].empty());
}

TEST_F(TableRows, WithAnEstimateOnlyTheRowsOnScreenAreMeasured) {
  answerHeights();  // the default look estimates rows, as UIKit does
  rt::send<void>(table, "reloadData");
  EXPECT_EQ(heightsAsked, firstRows(9));
  EXPECT_EQ(cellsAsked, firstRows(9));
  std::vector<sim::ShownSection> all = sim::showTable(table);
  ASSERT_EQ(all.size(), 1u);
  ASSERT_EQ(all[0].rows.size(), 100u);
  EXPECT_EQ(all[0].rows[99].title, "0,99");
  EXPECT_EQ(all[0].rows[99].height, 100);
  EXPECT_EQ(heightsAsked, firstRows(100)) << "read by scrolling, every row came on screen";
}

TEST_F(TableRows, TouchingARowBelowTheScreenScrollsItIntoView) {
  rt::send<void>(table, "reloadData");
  EXPECT_TRUE(sim::selectRow(table, 0, 60));
  EXPECT_EQ(cellsAsked.count({0, 60}), 1u);
  EXPECT_EQ(cellsAsked.count({0, 59}), 0u) << "a jump to the row, not a scroll through";
  EXPECT_FALSE(sim::selectRow(table, 0, 100));
  EXPECT_FALSE(sim::selectRow(table, 1, 0));
}

TEST_F(TableRows, AReloadedSectionAsksItsRowsOnScreenAgain) {
  rowsPerSection = {5, 30};
  rt::send<void>(table, "reloadData");
  ASSERT_EQ(cellsAsked.size(), 20u);
  ui::reloadSection(table, 1, ui::RowAnimation::None);
  EXPECT_EQ(cellsAsked.at({1, 14}), 2);
  EXPECT_EQ(cellsAsked.at({0, 4}), 1) << "the other section keeps its cells";
  EXPECT_EQ(cellsAsked.count({1, 15}), 0u);
}

}  // namespace
