// Property schemas: value validation and which shape types get which entries.

#include <gtest/gtest.h>

#include "core/catalogue.h"
#include "io/property_schema.h"

using namespace modelyne;
using io::PropertyDef;
using io::ValueKind;
using S = core::ShapeType;

namespace {

struct ValueCase {
  ValueKind kind;
  const char* value;
  bool valid;
};

// kind, value, expected validity
constexpr ValueCase kValueCases[] = {
    {ValueKind::boolean, "true", true},         {ValueKind::boolean, "false", true},
    {ValueKind::boolean, "True", false},        {ValueKind::boolean, "1", false},
    {ValueKind::multiplicity, "[1]", true},     {ValueKind::multiplicity, "[0..1]", true},
    {ValueKind::multiplicity, "[1..*]", true},  {ValueKind::multiplicity, "[10..20]", true},
    {ValueKind::multiplicity, "[*]", false},    {ValueKind::multiplicity, "1..2", false},
    {ValueKind::multiplicity, "[1..]", false},  {ValueKind::multiplicity, "[]", false},
    {ValueKind::multiplicity, "[-1]", false},   {ValueKind::multiplicity, "[1..2..3]", false},
    {ValueKind::integer, "+5", true},           {ValueKind::integer, "-0", true},
    {ValueKind::integer, "42", true},           {ValueKind::integer, "5.0", false},
    {ValueKind::integer, "+", false},           {ValueKind::integer, "1 ", false},
    {ValueKind::identifier, "REQ-1.2_a", true}, {ValueKind::identifier, "REQ 1", false},
    {ValueKind::identifier, "caf\xC3\xA9", false},
    {ValueKind::number, "1e3", true},           {ValueKind::number, "-2.5", true},
    {ValueKind::number, " 7", true},            {ValueKind::number, "12abc", false},
    {ValueKind::number, "1,5", false},          {ValueKind::number, "1e999", false},
    {ValueKind::text, "anything <at> all", true}, {ValueKind::multiLineText, "a\nb", true},
};

}  // namespace

TEST(ValidateValue, FollowsTheRulesOfEachKind) {
  for (const ValueCase& c : kValueCases) {
    PropertyDef def = PropertyDef::text("k", "K", "src");
    def.kind = c.kind;
    std::string message;
    EXPECT_EQ(io::validateValue(def, c.value, message), c.valid)
        << io::valueKindName(c.kind) << " '" << c.value << "'";
  }
}

TEST(ValidateValue, GivesTheExactMessages) {
  auto messageFor = [](PropertyDef def, const std::string& value) {
    std::string m;
    EXPECT_FALSE(io::validateValue(def, value, m));
    return m;
  };
  EXPECT_EQ(messageFor(PropertyDef::boolean("b", "B", "s", false), "yes"), "Expected true or false.");
  EXPECT_EQ(messageFor(PropertyDef::choice("c", "C", "s", {"in", "out"}, "in"), "In"),
            "Value is not one of the allowed choices.");
  EXPECT_EQ(messageFor(PropertyDef::multiplicity("m", "M", "s"), "[x]"), "Expected [n], [n..m] or [n..*].");
  EXPECT_EQ(messageFor(PropertyDef::integer("i", "I", "s"), "1.5"), "Expected an integer.");
  EXPECT_EQ(messageFor(PropertyDef::identifier("d", "D", "s"), "a b"),
            "Identifiers may only contain letters, digits, '_', '-' or '.'.");
  EXPECT_EQ(messageFor(PropertyDef::number("n", "N", "s"), "12abc"), "Expected a number.");
}

TEST(ValidateValue, EmptyAndUnknownKindsAreAccepted) {
  std::string m;
  for (int k = 0; k <= 7; ++k) {
    PropertyDef def = PropertyDef::choice("c", "C", "s", {"x"}, "x");
    def.kind = static_cast<ValueKind>(k);
    EXPECT_TRUE(io::validateValue(def, "", m)) << k;
  }
  PropertyDef odd = PropertyDef::integer("i", "I", "s");
  odd.kind = static_cast<ValueKind>(99);
  EXPECT_TRUE(io::validateValue(odd, "not an integer", m));
}

TEST(Schemas, EveryShapeTypeEndsWithTheDocumentationTrailer) {
  for (const core::ShapeInfo& info : core::shapeCatalogue()) {
    const io::Schema& s = io::schemaFor(info.type);
    ASSERT_FALSE(s.empty()) << info.key;
    const PropertyDef& last = s.back();
    EXPECT_EQ(last.key, "documentation") << info.key;
    EXPECT_EQ(last.label, "Documentation");
    EXPECT_EQ(last.kind, ValueKind::multiLineText);
    EXPECT_EQ(last.hint, "Free-form description / rationale");
    EXPECT_EQ(last.source, "KerML doc comment");
    // Defaults must pass their own validation.
    for (const PropertyDef& d : s) {
      std::string m;
      EXPECT_TRUE(io::validateValue(d, d.defaultValue, m)) << info.key << "." << d.key;
    }
  }
  EXPECT_EQ(io::schemaFor(static_cast<S>(7)).size(), 1u);
  EXPECT_EQ(io::schemaFor(static_cast<S>(-1)).size(), 1u);
}

TEST(Schemas, AssignTheExpectedEntries) {
  auto keysOf = [](S t) {
    std::vector<std::string> keys;
    for (const PropertyDef& d : io::schemaFor(t)) keys.push_back(d.key);
    return keys;
  };
  using V = std::vector<std::string>;
  EXPECT_EQ(keysOf(S::rect), V{"documentation"});
  for (S task : {S::bpmnTask, S::bpmnUserTask, S::bpmnServiceTask, S::bpmnScriptTask, S::bpmnSendTask, S::bpmnReceiveTask})
    EXPECT_EQ(keysOf(task), (V{"assignee", "priority", "implementation", "dueDate", "inputs", "outputs", "documentation"}));
  EXPECT_EQ(keysOf(S::sysmlRequirementUsage), (V{"definition", "reqId", "requirementText", "requirementKind", "documentation"}));
  EXPECT_EQ(keysOf(S::mindmapMainTopic), (V{"priority", "progress", "tag", "owner", "notes", "documentation"}));
  EXPECT_EQ(keysOf(S::bpmnDataObject), (V{"dataState", "isCollection", "itemSubjectRef", "documentation"}));
  EXPECT_EQ(keysOf(S::sysmlValueProperty), (V{"type", "value", "unit", "default", "documentation"}));

  const PropertyDef* reqId = io::findProperty(S::sysmlRequirementDef, "reqId");
  ASSERT_NE(reqId, nullptr);
  EXPECT_EQ(reqId->label, "Requirement Id");
  EXPECT_EQ(reqId->kind, ValueKind::identifier);
  EXPECT_EQ(reqId->source, "SysML V2 RequirementUsage");
  EXPECT_EQ(io::findProperty(S::sysmlTestCase, "reqId")->label, "Test Id");
  EXPECT_EQ(io::findProperty(S::sysmlValueProperty, "value")->kind, ValueKind::number);

  const PropertyDef* gw = io::findProperty(S::bpmnInclusiveGateway, "direction");
  ASSERT_NE(gw, nullptr);
  EXPECT_EQ(gw->defaultValue, "Diverging");
  EXPECT_EQ(gw->choices, (V{"Unspecified", "Converging", "Diverging", "Mixed"}));
  EXPECT_EQ(io::findProperty(S::sysmlPin, "direction")->defaultValue, "inout");
  EXPECT_EQ(io::findProperty(S::sysmlFullPort, "flavor")->defaultValue, "full");
  EXPECT_EQ(io::findProperty(S::sysmlPort, "boundaryPos")->kind, ValueKind::number);
  EXPECT_EQ(io::findProperty(S::sysmlDeepHistoryPseudostate, "historyKind")->defaultValue, "deep");
  EXPECT_EQ(io::findProperty(S::sysmlJunctionPseudostate, "pseudoKind")->defaultValue, "junction");
  EXPECT_EQ(io::findProperty(S::sysmlExitPoint, "pointKind")->defaultValue, "exit");
  EXPECT_EQ(io::findProperty(S::sysmlJoinPseudostate, "forkOrJoin")->defaultValue, "join");
  EXPECT_EQ(io::findProperty(S::umlCombinedFragment, "numOperands")->kind, ValueKind::integer);
  EXPECT_EQ(io::findProperty(S::rect, "reqId"), nullptr);
  EXPECT_EQ(io::findProperty(S::umlPackage, "language")->defaultValue, "SysML");
}

TEST(Schemas, DefaultPropertiesOfANewNode) {
  using M = std::map<std::string, std::string>;
  EXPECT_EQ(io::defaultProperties(S::rect), M{});
  EXPECT_EQ(io::defaultProperties(S::bpmnSubProcess),
            (M{{"isExpanded", "true"}, {"isTriggeredByEvent", "false"}, {"isTransaction", "false"}}));
  EXPECT_EQ(io::defaultProperties(S::mindmapSubTopic), (M{{"progress", "0"}}));
}
