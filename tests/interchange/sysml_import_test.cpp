// Small texts per construct: the models, nodes, edges, properties and loss
// lines they become.
#include <gtest/gtest.h>

#include "interchange/sysml_import.h"
#include "sysml_test_support.h"

using namespace modelyne;
using namespace modelyne::interchange;

namespace {

const ImportedModel& model(const SysmlContent& c, core::DiagramKind kind, std::string_view owner) {
  for (const ImportedModel& m : c.models)
    if (m.frame.kind == kind && m.frame.elementName == owner) return m;
  ADD_FAILURE() << "no " << core::diagramKindKey(kind) << " model of '" << owner << "'";
  static const ImportedModel none;
  return none;
}

std::vector<std::string> nodes(const ImportedModel& m) {
  std::vector<std::string> out;
  for (const core::Node& n : m.nodes) out.push_back(support::nodeLine(n));
  return out;
}

std::vector<std::string> edges(const ImportedModel& m) {
  std::vector<std::string> out;
  for (const core::Edge& e : m.edges)
    out.push_back(std::string(core::edgeKey(e.type)) + " " + e.source + "->" + e.target + " '" + e.text + "'");
  return out;
}

}  // namespace

// Packages, imports, definitions with compartments, an ibd from a connection,
// requirements with satisfy, and what is not drawn.
TEST(SysmlImport, StructureRequirementsAndLosses) {
  const SysmlContent c = readSysml(
      "package P {\n"
      "  private import ISQ::*;\n"
      "  part def Vehicle :> Thing {\n"
      "    doc /* A car. */\n"
      "    attribute mass : Real = 1000;\n"
      "    port fuel : ~FuelPort[1];\n"
      "    part engine : Engine;\n"
      "    connect engine to fuel;\n"
      "  }\n"
      "  abstract item def Fuel;\n"
      "  requirement def <'R1'> MassReq { doc /* Below 2 t. */ }\n"
      "  satisfy MassReq by Vehicle;\n"
      "  @Safety;\n"
      "  alias V for Vehicle;\n"
      "}\n",
      "v.sysml");
  EXPECT_EQ(c.status, ImportStatus::ok);
  EXPECT_EQ(summaryLine(c.report), "Read 14 declarations: 6 as nodes, 3 as edges, 3 as properties, 2 not drawn.");
  EXPECT_EQ(lossLines(c.report), "v.sysml:13: metadata Safety: metadata not drawn\nv.sysml:14: alias V: alias not drawn\n");
  ASSERT_EQ(c.models.size(), 4u);

  const ImportedModel& pkg = model(c, core::DiagramKind::pkg, "");
  EXPECT_EQ(nodes(pkg), (std::vector<std::string>{"umlPackage 'P' qualifiedName=P",
                                                   "umlPackage 'ISQ' referenceOnly=true"}));
  EXPECT_EQ(edges(pkg), std::vector<std::string>{"sysmlImport n1->n2 'private ISQ::*'"});

  const ImportedModel& bdd = model(c, core::DiagramKind::bdd, "P");
  EXPECT_EQ(nodes(bdd), (std::vector<std::string>{
                            "sysmlPartDef 'Vehicle' documentation=A car. qualifiedName=P::Vehicle specializes=Thing "
                            "values=mass : Real = 1000",
                            "sysmlPartDef 'Fuel' isAbstract=true qualifiedName=P::Fuel sysmlKeyword=item def"}));

  const ImportedModel& ibd = model(c, core::DiagramKind::ibd, "P::Vehicle");
  EXPECT_EQ(nodes(ibd), (std::vector<std::string>{
                            "sysmlPort 'fuel' isConjugated=true multiplicity=[1] qualifiedName=P::Vehicle::fuel type=FuelPort",
                            "sysmlPartUsage 'engine' definition=Engine qualifiedName=P::Vehicle::engine"}));
  EXPECT_EQ(edges(ibd), std::vector<std::string>{"association n2->n1 ''"});

  const ImportedModel& req = model(c, core::DiagramKind::req, "P");
  EXPECT_EQ(nodes(req), (std::vector<std::string>{
                            "sysmlRequirementDef 'MassReq' qualifiedName=P::MassReq reqId=R1 requirementText=Below 2 t.",
                            "sysmlPartDef 'Vehicle' qualifiedName=P::Vehicle referenceOnly=true"}));
  EXPECT_EQ(edges(req), std::vector<std::string>{"sysmlSatisfy n2->n1 ''"});
}

// Actions with successions and flows; states with transitions and actions.
TEST(SysmlImport, BehaviourDiagrams) {
  const SysmlContent c = readSysml(
      "action def Drive {\n"
      "  in speed : Real;\n"
      "  first start;\n"
      "  then action accelerate;\n"
      "  then action brake;\n"
      "  flow of Torque from accelerate.out to brake.in;\n"
      "  then done;\n"
      "}\n"
      "state def Engine {\n"
      "  entry action init;\n"
      "  state off;\n"
      "  accept Start then on;\n"
      "  state on;\n"
      "  transition stop first on accept Stop if ok then off;\n"
      "}\n",
      "b.sysml");
  EXPECT_EQ(c.status, ImportStatus::ok);
  EXPECT_EQ(summaryLine(c.report), "Read 13 declarations: 7 as nodes, 4 as edges, 2 as properties, 0 not drawn.");

  const ImportedModel& bdd = model(c, core::DiagramKind::bdd, "");
  EXPECT_EQ(nodes(bdd), (std::vector<std::string>{
                            "sysmlActionDef 'Drive' parameters=in speed : Real qualifiedName=Drive",
                            "sysmlStateDef 'Engine' entry=action init qualifiedName=Engine"}));

  const ImportedModel& act = model(c, core::DiagramKind::act, "Drive");
  EXPECT_EQ(nodes(act), (std::vector<std::string>{
                            "sysmlActionUsage 'accelerate' qualifiedName=Drive::accelerate",
                            "sysmlActionUsage 'brake' qualifiedName=Drive::brake",
                            "umlInitialNode 'start' referenceOnly=true",
                            "sysmlActionUsage 'accelerate.out' referenceOnly=true",
                            "sysmlActionUsage 'brake.in' referenceOnly=true",
                            "umlFinalNode 'done' referenceOnly=true"}));
  EXPECT_EQ(edges(act), (std::vector<std::string>{"sysmlControlFlow n3->n1 ''", "sysmlControlFlow n1->n2 ''",
                                                  "sysmlObjectFlow n4->n5 'of Torque'",
                                                  "sysmlControlFlow n2->n6 ''"}));

  const ImportedModel& stm = model(c, core::DiagramKind::stm, "Engine");
  EXPECT_EQ(nodes(stm), (std::vector<std::string>{"sysmlStateUsage 'off' qualifiedName=Engine::off",
                                                  "sysmlStateUsage 'on' qualifiedName=Engine::on"}));
  EXPECT_EQ(edges(stm), (std::vector<std::string>{"sysmlTransition n1->n2 'accept Start'",
                                                  "sysmlTransition n2->n1 'stop accept Stop if ok'"}));
}

// Positions: every node gets a size and a place; the same text always the same.
TEST(SysmlImport, PlacesEveryNodeDeterministically) {
  const std::string text = "package P { part def A; part def B; port def C; part d : A; }";
  SysmlImport a = importSysml(text, "dir/p.sysml");
  SysmlImport b = importSysml(text, "dir/p.sysml");
  EXPECT_EQ(a.project, b.project);
  EXPECT_EQ(a.project.name, "p");
  SysmlContent c = readSysml(text, "p.sysml");
  for (ImportedModel& m : c.models) {
    placeImportedModel(m);
    for (std::size_t i = 0; i < m.nodes.size(); ++i)
      for (std::size_t j = i + 1; j < m.nodes.size(); ++j) {
        const auto& p = m.nodes[i].geom;
        const auto& q = m.nodes[j].geom;
        EXPECT_TRUE(p.x + p.w <= q.x || q.x + q.w <= p.x || p.y + p.h <= q.y || q.y + q.h <= p.y);
      }
    for (const core::Node& n : m.nodes) EXPECT_GT(n.geom.w, 0.0f);
  }
}
