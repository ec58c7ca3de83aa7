#include "check/assessment.h"

#include <vector>

#include "check/diagram_index.h"
#include "check/type_set.h"

namespace modelyne::check {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;

// ---- Pillars ----
// SysML types by pillar; of the others, values 10..19 are Structure, 20..32
// Behavior, and everything else (basic shapes, notes, BPMN, mind map) counts
// toward CrossCutting, so every node lands in exactly one pillar.
enum Pillar { kStructure, kBehavior, kRequirements, kParametrics, kCrossCutting, kPillarCount };

constexpr ShapeSet kSysmlStructure = {
    S::sysmlPartDef, S::sysmlPartUsage, S::sysmlInterfaceDef, S::sysmlInterfaceUsage, S::sysmlBlock,
    S::sysmlValueType, S::sysmlFlowPort, S::sysmlProxyPort, S::sysmlFullPort, S::sysmlSignal,
    S::sysmlFlowSpecification, S::sysmlEnumeration, S::sysmlReferenceProperty,
    S::sysmlStandardPort, S::sysmlConnectionDef, S::sysmlConnectionUsage, S::sysmlPort,
    S::sysmlContextBoundary};
constexpr ShapeSet kSysmlBehavior = {
    S::sysmlActionDef, S::sysmlActionUsage, S::sysmlStateDef, S::sysmlStateUsage,
    S::sysmlUseCaseDef, S::sysmlUseCaseUsage, S::sysmlActor, S::sysmlActivityPartition,
    S::sysmlObjectNode, S::sysmlPin, S::sysmlSendSignalAction, S::sysmlAcceptEventAction,
    S::sysmlSystemBoundary, S::sysmlFlowFinalNode, S::sysmlWaitTimeAction,
    S::sysmlActivityParameter, S::sysmlCompositeState, S::sysmlJunctionPseudostate,
    S::sysmlOrthogonalRegion, S::sysmlCalculationDef, S::sysmlCalculationUsage,
    S::sysmlChoicePseudostate, S::sysmlForkPseudostate, S::sysmlJoinPseudostate,
    S::sysmlShallowHistoryPseudostate, S::sysmlDeepHistoryPseudostate,
    S::sysmlTerminatePseudostate, S::sysmlEntryPoint, S::sysmlExitPoint, S::sysmlSubmachineState};
constexpr ShapeSet kSysmlRequirements = {S::sysmlRequirementDef, S::sysmlRequirementUsage,
                                         S::sysmlVerificationUsage, S::sysmlTestCase};
constexpr ShapeSet kSysmlParametrics = {
    S::sysmlConstraintDef, S::sysmlConstraintUsage, S::sysmlConstraintBlock,
    S::sysmlConstraintProperty, S::sysmlConstraintParameter, S::sysmlValueProperty,
    S::sysmlAnalysisDef, S::sysmlAnalysisUsage};

Pillar pillarOf(S t) noexcept {
  if (kSysmlStructure.contains(t)) return kStructure;
  if (kSysmlBehavior.contains(t)) return kBehavior;
  if (kSysmlRequirements.contains(t)) return kRequirements;
  if (kSysmlParametrics.contains(t)) return kParametrics;
  const auto v = static_cast<std::int32_t>(t);
  if (v >= 10 && v <= 19) return kStructure;
  if (v >= 20 && v <= 32) return kBehavior;
  return kCrossCutting;
}

// ---- Traceability sets ----
constexpr ShapeSet kRequirementTypes = {S::sysmlRequirementDef, S::sysmlRequirementUsage};
constexpr ShapeSet kBehaviourTypes = {
    S::sysmlActionDef, S::sysmlActionUsage, S::sysmlStateDef, S::sysmlStateUsage,
    S::sysmlSendSignalAction, S::sysmlAcceptEventAction, S::sysmlWaitTimeAction,
    S::sysmlCalculationDef, S::sysmlCalculationUsage, S::umlAction, S::umlState, S::umlLifeline,
    S::umlActivation, S::umlCombinedFragment};
constexpr ShapeSet kAllocationTargets = {S::sysmlPartDef, S::sysmlPartUsage, S::sysmlBlock,
                                         S::sysmlReferenceProperty, S::umlClass, S::umlComponent,
                                         S::umlNodeDevice, S::umlObject};

std::int32_t percent(std::int32_t part, std::int32_t whole) {
  if (whole <= 0) return 0;
  return static_cast<std::int32_t>(static_cast<double>(part) / static_cast<double>(whole) * 100.0 + 0.5);
}

}  // namespace

AssessmentMetrics computeAssessment(std::span<const core::Node> nodes,
                                    std::span<const core::Edge> edges) {
  AssessmentMetrics m;
  m.nodeCount = static_cast<std::int32_t>(nodes.size());
  m.edgeCount = static_cast<std::int32_t>(edges.size());

  std::int32_t pillars[kPillarCount] = {};
  for (const core::Node& n : nodes) {
    ++pillars[pillarOf(n.type)];
    if (kRequirementTypes.contains(n.type)) ++m.requirementCount;
    if (kBehaviourTypes.contains(n.type)) ++m.behaviourCount;
  }
  m.structureCount = pillars[kStructure];
  m.behaviorCount = pillars[kBehavior];
  m.requirementsPillarCount = pillars[kRequirements];
  m.parametricsCount = pillars[kParametrics];
  m.crossCuttingCount = pillars[kCrossCutting];
  for (const std::int32_t count : pillars) m.pillarsPresent += count > 0 ? 1 : 0;

  // The index resolves an id to its first node, so marking positions counts
  // distinct ids: a requirement traced twice counts once.
  const DiagramIndex diagram(nodes, edges);
  std::vector<std::uint8_t> traced(nodes.size(), 0);
  constexpr std::uint8_t kSatisfied = 1, kVerified = 2, kAllocated = 4;
  const auto mark = [&](std::int32_t node, std::uint8_t flag, std::int32_t& count) {
    std::uint8_t& t = traced[static_cast<std::size_t>(node)];
    if (!(t & flag)) ++count;
    t |= flag;
  };
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const E type = edges[i].type;
    if ((type != E::sysmlSatisfy && type != E::sysmlVerify && type != E::sysmlAllocate) ||
        !diagram.resolved(i))
      continue;
    const S s = diagram.sourceType(i);
    const S t = diagram.targetType(i);
    if (type == E::sysmlAllocate) {
      if (kBehaviourTypes.contains(s) && kAllocationTargets.contains(t))
        mark(diagram.source(i), kAllocated, m.behavioursAllocated);
      if (kBehaviourTypes.contains(t) && kAllocationTargets.contains(s))
        mark(diagram.target(i), kAllocated, m.behavioursAllocated);
      continue;
    }
    const std::uint8_t flag = type == E::sysmlSatisfy ? kSatisfied : kVerified;
    std::int32_t& count = type == E::sysmlSatisfy ? m.requirementsSatisfied : m.requirementsVerified;
    if (kRequirementTypes.contains(s)) mark(diagram.source(i), flag, count);
    if (kRequirementTypes.contains(t)) mark(diagram.target(i), flag, count);
  }
  return m;
}

std::string formatAssessment(const AssessmentMetrics& m) {
  const auto n = [](std::int32_t v) { return std::to_string(v); };
  std::string out;
  out += "MBSE Model Assessment (A Practical Guide to SysML, Part IV)\n";
  out += "===========================================================\n";
  out += "[Model Metrics - ch.19 §19.1.1]\n";
  out += "  Nodes: " + n(m.nodeCount) + "   Edges: " + n(m.edgeCount) + "\n";
  out += "  Pillars present: " + n(m.pillarsPresent) + "/5\n";
  out += "    Structure=" + n(m.structureCount) + "  Behavior=" + n(m.behaviorCount) +
         "  Requirements=" + n(m.requirementsPillarCount) + "  Parametrics=" + n(m.parametricsCount) +
         "  CrossCutting=" + n(m.crossCuttingCount) + "\n";
  out += "[Integrating-Framework Traceability - ch.18 §18.1]\n";
  out += "  Requirements: " + n(m.requirementCount) + "\n";
  out += "    Satisfied by design: " + n(m.requirementsSatisfied) + "/" + n(m.requirementCount) + " (" +
         n(percent(m.requirementsSatisfied, m.requirementCount)) + "%)\n";
  out += "    Verified: " + n(m.requirementsVerified) + "/" + n(m.requirementCount) + " (" +
         n(percent(m.requirementsVerified, m.requirementCount)) + "%)\n";
  out += "  Behaviors: " + n(m.behaviourCount) + "\n";
  out += "    Allocated to structure: " + n(m.behavioursAllocated) + "/" + n(m.behaviourCount) + " (" +
         n(percent(m.behavioursAllocated, m.behaviourCount)) + "%)\n";
  return out;
}

}  // namespace modelyne::check
