// What each shape and edge type means to the explainer, and the fixed texts
// of each explanation class. Tables only; lookups are by value.
#include <array>

#include "explain/explain_detail.h"

namespace modelyne::explain::detail {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;
using C = ExplanationClass;
using N = NodeRole;
using R = EdgeRole;

struct ShapeRow {
  S type;
  C cls;
  N role;
};

// Every shape type that is not general or that plays a role; the rest are general.
constexpr ShapeRow kShapeRows[] = {
    // Structural
    {S::umlClass, C::structural, N::part},
    {S::umlInterface, C::structural, N::interface},
    {S::umlComponent, C::structural, N::part},
    {S::umlPackage, C::structural, N::part},
    {S::umlNodeDevice, C::structural, N::part},
    {S::umlArtifact, C::structural, N::part},
    {S::umlObject, C::structural, N::part},
    {S::sysmlPartDef, C::structural, N::part},
    {S::sysmlPartUsage, C::structural, N::part},
    {S::sysmlInterfaceDef, C::structural, N::interface},
    {S::sysmlInterfaceUsage, C::structural, N::interface},
    {S::sysmlConstraintDef, C::structural, N::part},
    {S::sysmlConstraintUsage, C::structural, N::part},
    {S::sysmlBlock, C::structural, N::part},
    {S::sysmlValueType, C::structural, N::part},
    {S::sysmlConstraintBlock, C::structural, N::part},
    {S::sysmlFlowPort, C::structural, N::port},
    {S::sysmlProxyPort, C::structural, N::port},
    {S::sysmlFullPort, C::structural, N::port},
    {S::sysmlActor, C::structural, N::part},
    {S::sysmlSignal, C::structural, N::part},
    {S::sysmlFlowSpecification, C::structural, N::interface},
    {S::sysmlEnumeration, C::structural, N::part},
    {S::sysmlReferenceProperty, C::structural, N::part},
    {S::sysmlStandardPort, C::structural, N::port},
    {S::sysmlConstraintProperty, C::structural, N::part},
    {S::sysmlConstraintParameter, C::structural, N::part},
    {S::sysmlValueProperty, C::structural, N::part},
    {S::sysmlConnectionDef, C::structural, N::part},
    {S::sysmlConnectionUsage, C::structural, N::part},
    {S::sysmlCalculationDef, C::structural, N::part},
    {S::sysmlCalculationUsage, C::structural, N::part},
    {S::sysmlAnalysisDef, C::structural, N::part},
    {S::sysmlAnalysisUsage, C::structural, N::part},
    {S::sysmlVariationDef, C::structural, N::part},
    {S::sysmlVariationUsage, C::structural, N::part},
    {S::sysmlAllocationDef, C::structural, N::part},
    {S::sysmlPort, C::structural, N::port},
    {S::sysmlContextBoundary, C::structural, N::part},
    // Behavioral: BPMN events, tasks and gateways
    {S::bpmnStartEvent, C::behavioral, N::initial},
    {S::bpmnEndEvent, C::behavioral, N::final},
    {S::bpmnIntermediateThrow, C::behavioral, N::none},
    {S::bpmnIntermediateCatch, C::behavioral, N::none},
    {S::bpmnTimerEvent, C::behavioral, N::none},
    {S::bpmnMessageEvent, C::behavioral, N::none},
    {S::bpmnErrorEvent, C::behavioral, N::none},
    {S::bpmnSignalEvent, C::behavioral, N::none},
    {S::bpmnTask, C::behavioral, N::none},
    {S::bpmnUserTask, C::behavioral, N::none},
    {S::bpmnServiceTask, C::behavioral, N::none},
    {S::bpmnScriptTask, C::behavioral, N::none},
    {S::bpmnSendTask, C::behavioral, N::none},
    {S::bpmnReceiveTask, C::behavioral, N::none},
    {S::bpmnSubProcess, C::behavioral, N::none},
    {S::bpmnCallActivity, C::behavioral, N::none},
    {S::bpmnExclusiveGateway, C::behavioral, N::decision},
    {S::bpmnParallelGateway, C::behavioral, N::fork},
    {S::bpmnInclusiveGateway, C::behavioral, N::decision},
    {S::bpmnEventBasedGateway, C::behavioral, N::decision},
    // Behavioral: UML activities and states, SysML actions and states
    {S::umlInitialNode, C::behavioral, N::initial},
    {S::umlFinalNode, C::behavioral, N::final},
    {S::umlAction, C::behavioral, N::none},
    {S::umlDecision, C::behavioral, N::decision},
    {S::umlForkJoin, C::behavioral, N::fork},
    {S::umlState, C::behavioral, N::none},
    {S::sysmlActionDef, C::behavioral, N::none},
    {S::sysmlActionUsage, C::behavioral, N::none},
    {S::sysmlStateDef, C::behavioral, N::none},
    {S::sysmlStateUsage, C::behavioral, N::none},
    {S::sysmlUseCaseDef, C::behavioral, N::none},
    {S::sysmlUseCaseUsage, C::behavioral, N::none},
    {S::sysmlActivityPartition, C::behavioral, N::none},
    {S::sysmlObjectNode, C::behavioral, N::none},
    {S::sysmlPin, C::behavioral, N::none},
    {S::sysmlSendSignalAction, C::behavioral, N::none},
    {S::sysmlAcceptEventAction, C::behavioral, N::none},
    {S::sysmlFlowFinalNode, C::behavioral, N::final},
    {S::sysmlWaitTimeAction, C::behavioral, N::none},
    {S::sysmlActivityParameter, C::behavioral, N::none},
    {S::sysmlCompositeState, C::behavioral, N::none},
    {S::sysmlJunctionPseudostate, C::behavioral, N::decision},
    {S::sysmlOrthogonalRegion, C::behavioral, N::none},
    // General by vote, but they route or end a flow
    {S::sysmlChoicePseudostate, C::general, N::decision},
    {S::sysmlForkPseudostate, C::general, N::fork},
    {S::sysmlTerminatePseudostate, C::general, N::final},
    // Interaction
    {S::umlLifeline, C::interaction, N::lifeline},
    {S::umlActivation, C::interaction, N::activation},
    {S::umlCombinedFragment, C::interaction, N::none},
    // Requirements
    {S::sysmlRequirementDef, C::requirements, N::requirement},
    {S::sysmlRequirementUsage, C::requirements, N::requirement},
};

inline constexpr int kShapeValueLimit = 366;  // one past the largest shape value

// Indexed by edge type value, 0..45.
constexpr EdgeTraits kEdgeRows[] = {
    {E::straight, C::general, R::none, "", "", -1, ""},
    {E::straightArrow, C::general, R::genericArrow, "", "", -1, ""},
    {E::straightDoubleArrow, C::general, R::none, "", "", -1, ""},
    {E::elbow, C::general, R::none, "", "", -1, ""},
    {E::elbowArrow, C::general, R::genericArrow, "", "", -1, ""},
    {E::elbowDoubleArrow, C::general, R::none, "", "", -1, ""},
    {E::curved, C::general, R::none, "", "", -1, ""},
    {E::curvedArrow, C::general, R::genericArrow, "", "", -1, ""},
    {E::curvedDoubleArrow, C::general, R::none, "", "", -1, ""},
    {E::association, C::structural, R::relation, "association", " \u2194 ", 0, ""},
    {E::aggregation, C::structural, R::relation, "aggregation", " \u2192 ", 1, ""},
    {E::composition, C::structural, R::containment, "composition", " \u2192 ", 2, ""},
    {E::generalization, C::structural, R::relation, "generalization", " \u2192 ", 3, ""},
    {E::realization, C::structural, R::relation, "realization", " \u2192 ", 4, ""},
    {E::dependency, C::general, R::relation, "dependency", " \u2192 ", 11, ""},
    {E::bpmnSequence, C::behavioral, R::flow, "", "", -1, ""},
    {E::bpmnMessage, C::interaction, R::message, "sends to", "", -1, ""},
    {E::bpmnAssociation, C::general, R::none, "", "", -1, ""},
    {E::sysmlContainment, C::structural, R::containment, "containment", " \u2192 ", -1, ""},
    {E::sysmlRedefines, C::structural, R::relation, "redefinition", " \u2192 ", 6, ""},
    {E::sysmlSubsets, C::structural, R::relation, "subsetting", " \u2192 ", 7, ""},
    {E::sysmlAllocate, C::requirements, R::trace, "is allocated to", "", -1, ""},
    {E::sysmlSatisfy, C::requirements, R::trace, "satisfies", "", -1, ""},
    {E::sysmlDeriveReqt, C::requirements, R::trace, "is derived from", "", -1, ""},
    {E::sysmlRefine, C::requirements, R::trace, "refines", "", -1, ""},
    {E::sysmlVerify, C::requirements, R::trace, "verifies", "", -1, ""},
    {E::sysmlTrace, C::requirements, R::trace, "traces to", "", -1, ""},
    {E::sysmlCopy, C::requirements, R::trace, "is a copy of", "", -1, ""},
    {E::sysmlItemFlow, C::structural, R::relation, "item flow", " \u2192 ", 5, ""},
    {E::sysmlBindingConnector, C::structural, R::relation, "binding connector", " \u2194 ", 8, ""},
    {E::sysmlInclude, C::general, R::none, "", "", -1, ""},
    {E::sysmlExtend, C::general, R::none, "", "", -1, ""},
    {E::sysmlObjectFlow, C::behavioral, R::flow, "", "", -1, ""},
    {E::sysmlControlFlow, C::behavioral, R::flow, "", "", -1, ""},
    {E::sysmlImport, C::structural, R::relation, "import", " \u2192 ", 9, ""},
    {E::sysmlAccess, C::structural, R::relation, "access", " \u2192 ", 10, ""},
    {E::sysmlSyncMessage, C::interaction, R::message, "sends to", "", -1, ""},
    {E::sysmlAsyncMessage, C::interaction, R::message, "sends to", "", -1, ""},
    {E::sysmlReplyMessage, C::interaction, R::message, "replies to", "", -1, ""},
    {E::sysmlCreateMessage, C::interaction, R::message, "sends to", "", -1, "\u00abcreate\u00bb"},
    {E::sysmlDeleteMessage, C::interaction, R::message, "destroys", "", -1, ""},
    {E::sysmlTransition, C::behavioral, R::flow, "", "", -1, ""},
    {E::sysmlFoundMessage, C::general, R::message, "sends to", "", -1, ""},
    {E::sysmlLostMessage, C::general, R::message, "sends to", "", -1, ""},
    {E::mindmapBranch, C::general, R::none, "", "", -1, ""},
    {E::mindmapCommentLink, C::general, R::none, "", "", -1, ""},
};

constexpr bool edgeRowsInValueOrder() {
  for (std::size_t i = 0; i < std::size(kEdgeRows); ++i)
    if (static_cast<std::size_t>(kEdgeRows[i].type) != i) return false;
  return std::size(kEdgeRows) == 46;
}
static_assert(edgeRowsInValueOrder(), "edge traits must be indexed by edge type value");

constexpr EdgeTraits kUnknownEdge{E::straightArrow, C::general, R::none, "", "", -1, ""};

constexpr ClassTexts kClassTexts[] = {
    {"general-purpose", "General", "Diagram explanation", "",
     "This diagram captures the concepts and connections the author is working through. Add "
     "SysML / UML / BPMN element types to unlock a structural or behavioral interpretation."},
    {"structural", "Structural", "Structural diagram \u2014 system structure and relationships",
     "System Structure & Relationships",
     "This diagram models the architecture of the system \u2014 how it is decomposed into parts, "
     "what each part offers through its ports and interfaces, and how the parts relate. Read it "
     "to understand what is being built and how its pieces fit together."},
    {"behavioral", "Behavioral", "Behavioral diagram \u2014 execution flow and sequence",
     "Behavioral Flow & Execution Sequence",
     "This diagram models how the system behaves over time \u2014 the order in which actions "
     "execute, the conditions that route the flow, and the outcomes it produces. Read it to "
     "understand what the process is intended to accomplish, not merely which nodes exist."},
    {"interaction", "Interaction", "Interaction diagram \u2014 message exchange sequence",
     "Interaction Sequence",
     "This diagram models a collaboration scenario \u2014 the messages the participants exchange "
     "and the order in which they occur. Read it to understand how the parts cooperate to "
     "deliver a specific behaviour."},
    {"requirements", "Requirement", "Requirement diagram \u2014 requirements and traceability",
     "Requirements & Traceability",
     "This diagram models the requirements baseline \u2014 what the system must do and how those "
     "obligations are satisfied, verified, and traced. Read it to understand the intent the "
     "design is accountable to."},
};

}  // namespace

ShapeTraits shapeTraits(core::ShapeType type) noexcept {
  static const auto table = [] {
    std::array<ShapeTraits, kShapeValueLimit> t{};
    for (const ShapeRow& row : kShapeRows) t[static_cast<std::size_t>(row.type)] = {row.cls, row.role};
    return t;
  }();
  const auto value = static_cast<std::int32_t>(type);
  if (value < 0 || value >= kShapeValueLimit) return {};
  return table[static_cast<std::size_t>(value)];
}

const EdgeTraits& edgeTraits(core::EdgeType type) noexcept {
  const auto value = static_cast<std::int32_t>(type);
  if (value < 0 || value >= static_cast<std::int32_t>(std::size(kEdgeRows))) return kUnknownEdge;
  return kEdgeRows[value];
}

const ClassTexts& classTexts(ExplanationClass cls) noexcept {
  const auto value = static_cast<int>(cls);
  if (value < 0 || value >= static_cast<int>(std::size(kClassTexts))) return kClassTexts[0];
  return kClassTexts[value];
}

}  // namespace modelyne::explain::detail
