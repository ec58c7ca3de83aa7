// The type catalogue: counts, stated values, key lookups and fall-backs.
#include <gtest/gtest.h>

#include <set>

#include "core/anchor.h"
#include "core/catalogue.h"
#include "core/diagram_kind.h"

using namespace modelyne::core;

TEST(Catalogue, HoldsEveryTypeOnceWithItsFixedValue) {
  EXPECT_EQ(shapeCatalogue().size(), 124u);
  EXPECT_EQ(edgeCatalogue().size(), 46u);
  std::set<std::string_view> keys, names;
  for (const ShapeInfo& s : shapeCatalogue()) {
    EXPECT_TRUE(keys.insert(s.key).second) << s.key;
    EXPECT_TRUE(names.insert(s.displayName).second) << s.displayName;
  }
  struct Fixed { int value; const char* key; };
  for (const Fixed f : {Fixed{0, "rect"}, {10, "umlClass"}, {41, "umlBoundary"}, {100, "bpmnStartEvent"},
                        {143, "bpmnGroup"}, {206, "mindmapComment"}, {300, "sysmlPartDef"}, {314, "sysmlBlock"},
                        {323, "sysmlPin"}, {353, "sysmlGate"}, {364, "sysmlPort"}, {365, "sysmlContextBoundary"}}) {
    EXPECT_EQ(shapeKey(static_cast<ShapeType>(f.value)), f.key);
    ShapeType t{};
    ASSERT_TRUE(shapeFromKey(f.key, t));
    EXPECT_EQ(static_cast<int>(t), f.value);
  }
  EXPECT_EQ(edgeKey(EdgeType::mindmapCommentLink), "mindmapCommentLink");
  EXPECT_EQ(static_cast<int>(EdgeType::mindmapCommentLink), 45);
  EXPECT_EQ(edgeDisplayName(EdgeType::sysmlInclude), "SysML: «include»");
  EXPECT_EQ(shapeDisplayName(ShapeType::sysmlShallowHistoryPseudostate), "Shallow History (H)");
  EXPECT_EQ(shapeDisplayName(ShapeType::sysmlFlowPort), "Flow Port (retired)");
  EXPECT_EQ(shapeDisplayName(ShapeType::umlNodeDevice), "Node (Device)");
}

TEST(Catalogue, LookupsAreExactAndFallBack) {
  ShapeType shape = ShapeType::umlNote;
  EXPECT_FALSE(shapeFromKey("Rect", shape));
  EXPECT_FALSE(shapeFromKey("", shape));
  EXPECT_EQ(shape, ShapeType::umlNote);  // caller keeps its default
  EXPECT_EQ(shapeKey(static_cast<ShapeType>(7)), "rect");
  EXPECT_EQ(shapeKey(static_cast<ShapeType>(-1)), "rect");
  EXPECT_EQ(shapeKey(static_cast<ShapeType>(366)), "rect");
  EXPECT_FALSE(isAssignedShape(19));
  EXPECT_TRUE(isAssignedShape(365));

  EdgeType edge = EdgeType::association;
  EXPECT_FALSE(edgeFromKey("StraightArrow", edge));
  EXPECT_EQ(edge, EdgeType::association);
  EXPECT_EQ(edgeKey(static_cast<EdgeType>(46)), "straightArrow");
  EXPECT_EQ(edgeKey(static_cast<EdgeType>(1000)), "straightArrow");
  EXPECT_TRUE(edgeFromKey("sysmlBindingConnector", edge));
  EXPECT_EQ(edge, EdgeType::sysmlBindingConnector);

  Anchor a = Anchor::left;
  EXPECT_FALSE(anchorFromKey("Right", a));
  EXPECT_EQ(a, Anchor::left);
  EXPECT_TRUE(anchorFromKey("bottomRight", a));
  EXPECT_EQ(a, Anchor::bottomRight);
  EXPECT_EQ(anchorKey(static_cast<Anchor>(8)), "right");
  EXPECT_EQ(normalizeAnchor(static_cast<Anchor>(-2)), Anchor::right);

  // Every key finds its own entry; a key with a byte more or less finds none.
  for (const ShapeInfo& s : shapeCatalogue()) {
    ShapeType t = ShapeType::rect;
    EXPECT_TRUE(shapeFromKey(s.key, t) && t == s.type) << s.key;
    EXPECT_FALSE(shapeFromKey(std::string(s.key) + "x", t)) << s.key;
    EXPECT_FALSE(shapeFromKey(s.key.substr(0, s.key.size() - 1), t)) << s.key;
  }
  for (const EdgeInfo& e : edgeCatalogue()) {
    EdgeType t = EdgeType::straight;
    EXPECT_TRUE(edgeFromKey(e.key, t) && t == e.type) << e.key;
    EXPECT_FALSE(edgeFromKey(std::string(e.key) + " ", t)) << e.key;
  }
  for (int i = 0; i < 8; ++i) {
    Anchor found = Anchor::right;
    EXPECT_TRUE(anchorFromKey(anchorKey(static_cast<Anchor>(i)), found) && static_cast<int>(found) == i) << i;
  }
}

TEST(Catalogue, PaletteGroupsAndDiagramKinds) {
  EXPECT_EQ(paletteGroupName(PaletteGroup::basic), "Basic");
  EXPECT_EQ(paletteGroupName(PaletteGroup::sysmlCrossCutting), "SysML / Cross-Cutting");
  std::set<PaletteGroup> used;
  for (const ShapeInfo& s : shapeCatalogue()) used.insert(s.group);
  EXPECT_EQ(used.size(), static_cast<std::size_t>(kPaletteGroupCount));

  EXPECT_EQ(diagramKindKey(DiagramKind::mm), "mm");
  EXPECT_EQ(diagramKindKey(static_cast<DiagramKind>(11)), "pkg");
  EXPECT_EQ(diagramKindDisplayName(DiagramKind::stm), "State Machine Diagram");
  EXPECT_EQ(diagramKindDisplayName(static_cast<DiagramKind>(-1)), "Package Diagram");
  EXPECT_EQ(diagramKindFromKey("test"), DiagramKind::test);
  EXPECT_FALSE(diagramKindFromKey("BDD").has_value());
  EXPECT_EQ(diagramKindMessageKey(DiagramKind::uc), "ui.diagkind.uc");
}
