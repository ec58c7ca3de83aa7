// Transition label syntax: the first fault found, and the split into parts.
#include <gtest/gtest.h>

#include "check/transition_label.h"

namespace modelyne::check {
namespace {

constexpr const char* kUnclosed = "guard bracket '[' is not closed by ']'";
constexpr const char* kUnopened = "guard bracket ']' has no matching '['";
constexpr const char* kNoEffect = "effect missing after '/'";

TEST(TransitionLabel, FirstFaultInCheckOrder) {
  // label, expected reason ("" for a well-formed label)
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"evt", ""},
      {"evt [x > 0] / y = 1", ""},
      {"[else]", ""},
      {"/ log()", ""},
      {"evt [a / b > 2]", ""},           // a slash inside the guard is division
      {"evt [x > 0", kUnclosed},
      {"evt ] x [", kUnclosed},          // the last "[" is never closed: first check wins
      {"evt ] [x]", kUnopened},
      {"]", kUnopened},
      {"evt / ", kNoEffect},
      {"evt [g] /\t\n", kNoEffect},
      {"evt [x > 0 / ", kUnclosed},      // bracket fault reported before the effect
  };
  for (const auto& [label, reason] : cases) {
    const auto fault = transitionLabelFault(label);
    if (*reason == '\0')
      EXPECT_FALSE(fault.has_value()) << label;
    else
      EXPECT_EQ(fault.value_or("<none>"), reason) << label;
  }
}

TEST(TransitionLabel, SplitsTriggerGuardAndEffect) {
  const TransitionLabel full = splitTransitionLabel("  tick [ count < 3 ] / count++ ");
  EXPECT_EQ(full.trigger, "tick");
  EXPECT_EQ(full.guard, "count < 3");
  EXPECT_EQ(full.effect, "count++");

  const TransitionLabel guardOnly = splitTransitionLabel("[a / b > 1]");
  EXPECT_EQ(guardOnly.trigger, "");
  EXPECT_EQ(guardOnly.guard, "a / b > 1");
  EXPECT_EQ(guardOnly.effect, "");

  const TransitionLabel effectOnly = splitTransitionLabel("/ reset()");
  EXPECT_EQ(effectOnly.trigger, "");
  EXPECT_EQ(effectOnly.guard, "");
  EXPECT_EQ(effectOnly.effect, "reset()");

  const TransitionLabel unclosed = splitTransitionLabel("evt [x");
  EXPECT_EQ(unclosed.trigger, "evt");
  EXPECT_EQ(unclosed.guard, "x");
}

}  // namespace
}  // namespace modelyne::check
