// Export: the text written for a small model, exactly, and the round trip.
#include <gtest/gtest.h>

#include "interchange/sysml_export.h"
#include "sysml_test_support.h"

using namespace modelyne;
using namespace modelyne::interchange;

TEST(SysmlExport, WritesTheModelBackAndIsStable) {
  const std::string source =
      "package 'Vehicle Example' {\n"
      "\tprivate import ISQ::*;\n"
      "\tpart def Vehicle { attribute mass : Real; port p : ~P; part e : Engine[1]; part t : Tank;\n"
      "\t  connect e.o to t.i; bind e.x = t.y; flow of Fuel from t.o to e.i; }\n"
      "\trequirement def <'R1'> Mass { doc /* Light.\n\t\t * Really. */ }\n"
      "\tsatisfy Mass by Vehicle;\n"
      "\taction def A { first start; then action 'step one'; then done; }\n"
      "}\n";
  const SysmlContent first = readSysml(source, "in.sysml");
  const SysmlExport out = exportSysml(first.models, "out.sysml");
  EXPECT_EQ(out.text,
            "package 'Vehicle Example' {\n"
            "  private import ISQ::*;\n"
            "  part def Vehicle {\n"
            "    attribute mass : Real;\n"
            "    port p : ~P;\n"
            "    part e : Engine[1];\n"
            "    part t : Tank;\n"
            "    connect e.o to t.i;\n"
            "    bind e.x = t.y;\n"
            "    flow of Fuel from t.o to e.i;\n"
            "  }\n"
            "  action def A {\n"
            "    action 'step one';\n"
            "    first start then 'step one';\n"
            "    first 'step one' then done;\n"
            "  }\n"
            "  requirement def <R1> Mass {\n"
            "    doc /*\n"
            "     * Light.\n"
            "     * Really.\n"
            "     */\n"
            "  }\n"
            "  satisfy Mass by Vehicle;\n"
            "}\n");
  EXPECT_EQ(lossLines(out.report), "out.sysml: position: positions and sizes of nodes not written\n");
  const SysmlContent second = readSysml(out.text, "out.sysml");
  EXPECT_TRUE(second.report.errors.empty());
  EXPECT_EQ(support::signature(second.models), support::signature(first.models));
  EXPECT_EQ(exportSysml(second.models, "out.sysml").text, out.text);
}

// A diagram drawn by hand: one package per model, keywords from node types,
// relationships from edges, and what text cannot hold in the report.
TEST(SysmlExport, DrawnDiagramBecomesAPackage) {
  ImportedModel m;
  m.name = "Drone";
  m.frame.kind = core::DiagramKind::bdd;
  m.frame.elementName = "Drone";
  core::Node a{"a", core::ShapeType::sysmlBlock, {0, 0, 10, 10}, "Airframe", "red", false, {}};
  core::Node b{"b", core::ShapeType::sysmlPartDef, {}, "Rotor unit", "", false, {{"isAbstract", "true"}}};
  core::Node c{"c", core::ShapeType::bpmnTask, {}, "Fly", "", false, {}};
  core::Edge g;
  g.id = "g";
  g.source = "b";
  g.target = "a";
  g.type = core::EdgeType::generalization;
  m.nodes = {a, b, c};
  m.edges = {g};
  const SysmlExport out = exportSysml({m}, "d.sysml");
  EXPECT_EQ(out.text,
            "package Drone {\n"
            "  part def Airframe;\n"
            "  abstract part def 'Rotor unit' :> Airframe;\n"
            "}\n");
  EXPECT_EQ(lossLines(out.report),
            "d.sysml: bpmnTask Fly: node type without a SysML v2 form not written\n"
            "d.sysml: colour Airframe: fill colour not written\n"
            "d.sysml: position: positions and sizes of nodes not written\n");
}
