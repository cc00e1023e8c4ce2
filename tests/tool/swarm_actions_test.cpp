// What a person may do next: every draw lands on a row of the weight table
// with weight, each row as often as its weight says, nothing a person cannot
// do in the situation on screen, and waits that straddle the system's own
// thresholds.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "hiding/session_hooks.hpp"
#include "swarm_actions.hpp"
#include "triggers/entry_hooks.hpp"
#include "triggers/schedule.hpp"

namespace {

using qbsim::swarm::Action;
using qbsim::swarm::Situation;

// Every draw the table can take, once each: how often each action comes up.
std::map<Action, unsigned> everyDraw(const Situation& now) {
  std::uint64_t total = 0;
  for (const auto& a : qbsim::swarm::actionsNow(now)) total += a.weight;
  std::map<Action, unsigned> seen;
  for (std::uint64_t r = 0; r < total; ++r)
    ++seen[qbsim::swarm::nextAction(now, [&](std::uint64_t n) {
      EXPECT_EQ(n, total);
      return r;
    })];
  return seen;
}

TEST(SwarmActions, EachActionIsDrawnAsOftenAsItsWeightAndSettingNeverBehindThePanel) {
  std::map<Action, unsigned> free = everyDraw(Situation{false});
  std::map<Action, unsigned> panelUp = everyDraw(Situation{true});
  EXPECT_EQ(panelUp.count(Action::Setting), 0u);
  for (const auto& a : qbsim::swarm::kActionWeights) {
    EXPECT_EQ(free[a.action], a.weight) << int(a.action);
    bool allowed = a.action != Action::Setting;
    EXPECT_EQ(panelUp[a.action], allowed ? a.weight : 0u) << int(a.action);
  }
  EXPECT_GT(free[Action::Setting], 0u);
}

TEST(SwarmActions, EveryActionHasOneRowAndAWeight) {
  std::map<Action, int> rows;
  for (const auto& a : qbsim::swarm::kActionWeights) {
    ++rows[a.action];
    EXPECT_GT(a.weight, 0u) << "a row of weight 0 is an action the swarm never takes: "
                            << int(a.action);
  }
  for (int a = 0; a <= int(Action::Send); ++a) EXPECT_EQ(rows[Action(a)], 1) << a;
}

TEST(SwarmActions, ARowOfWeightZeroIsNeverDrawnAndAnEmptyTableDrawsNothing) {
  struct Row {
    char what;
    unsigned weight;
  };
  const Row rows[] = {{'a', 0}, {'b', 2}, {'c', 0}, {'d', 1}, {'e', 0}};
  std::string drawn;
  for (std::uint64_t r = 0; r < 3; ++r)
    drawn +=
        qbsim::swarm::choose(std::span<const Row>(rows), [&](std::uint64_t) { return r; })->what;
  EXPECT_EQ(drawn, "bbd");
  const Row none[] = {{'a', 0}, {'b', 0}};
  bool asked = false;
  EXPECT_EQ(qbsim::swarm::choose(std::span<const Row>(none),
                                 [&](std::uint64_t) {
                                   asked = true;
                                   return 0;
                                 }),
            nullptr);
  EXPECT_FALSE(asked) << "no draw below 0";
}

TEST(SwarmActions, EveryPanelStepIsReachedAndOnlyTheRareOnesAreWorthTheWayIn) {
  std::uint64_t total = 0;
  for (const auto& s : qbsim::swarm::kPanelStepWeights) total += s.weight;
  std::map<qbsim::swarm::PanelStep, unsigned> seen;
  for (std::uint64_t r = 0; r < total; ++r)
    ++seen[qbsim::swarm::nextPanelStep([&](std::uint64_t) { return r; }).step];
  for (const auto& s : qbsim::swarm::kPanelStepWeights) {
    EXPECT_EQ(seen[s.step], s.weight);
    EXPECT_GT(s.weight, 0u);
    if (s.worthTheWayIn) {
      EXPECT_LT(s.weight * 4, total) << "only a rare row is worth the way in";
    }
  }
}

TEST(SwarmActions, TheThresholdsAreTheSystemsOwnEachOnceInOrder) {
  std::span<const double> t = qbsim::swarm::thresholds();
  ASSERT_FALSE(t.empty());
  EXPECT_TRUE(std::is_sorted(t.begin(), t.end()));
  EXPECT_EQ(std::adjacent_find(t.begin(), t.end()), t.end()) << "a value shared is probed once";
  for (double named : {triggers::kEntryTapGap, triggers::kScheduleInterval_s,
                       hiding::kSoftReloadThrottle_s, hiding::kForceApplyThrottle_s})
    EXPECT_NE(std::find(t.begin(), t.end(), named), t.end()) << named;
}

}  // namespace
