#include "core/catalogue.h"

#include <array>

#include "core/key_table.h"

namespace modelyne::core {

namespace {

using S = ShapeType;
using G = PaletteGroup;

// The shape catalogue, in palette order within each group.
constexpr ShapeInfo kShapes[] = {
    {S::rect, "rect", "Rectangle", G::basic, false},
    {S::text, "text", "Text", G::basic, false},
    {S::oval, "oval", "Oval", G::basic, false},
    {S::rounded, "rounded", "Rounded Rectangle", G::basic, false},
    {S::triangle, "triangle", "Triangle", G::basic, false},
    {S::umlClass, "umlClass", "Class", G::umlStructure, false},
    {S::umlInterface, "umlInterface", "Interface", G::umlStructure, false},
    {S::umlActor, "umlActor", "Actor", G::umlBehavior, false},
    {S::umlUseCase, "umlUseCase", "Use Case", G::umlBehavior, false},
    {S::umlComponent, "umlComponent", "Component", G::umlStructure, false},
    {S::umlPackage, "umlPackage", "Package", G::umlStructure, false},
    {S::umlNodeDevice, "umlNodeDevice", "Node (Device)", G::umlStructure, false},
    {S::umlArtifact, "umlArtifact", "Artifact", G::umlStructure, false},
    {S::umlObject, "umlObject", "Object", G::umlStructure, false},
    {S::umlInitialNode, "umlInitialNode", "Initial Node", G::umlBehavior, false},
    {S::umlFinalNode, "umlFinalNode", "Final Node", G::umlBehavior, false},
    {S::umlAction, "umlAction", "Action", G::umlBehavior, false},
    {S::umlDecision, "umlDecision", "Decision", G::umlBehavior, false},
    {S::umlForkJoin, "umlForkJoin", "Fork / Join", G::umlBehavior, false},
    {S::umlState, "umlState", "State", G::umlBehavior, false},
    {S::umlLifeline, "umlLifeline", "Lifeline", G::umlInteraction, false},
    {S::umlActivation, "umlActivation", "Activation", G::umlInteraction, false},
    {S::umlCombinedFragment, "umlCombinedFragment", "Combined Fragment", G::umlInteraction, false},
    {S::umlNote, "umlNote", "Note", G::umlCommon, false},
    {S::umlBoundary, "umlBoundary", "Boundary", G::umlCommon, false},
    {S::bpmnStartEvent, "bpmnStartEvent", "Start Event", G::bpmnEvents, false},
    {S::bpmnEndEvent, "bpmnEndEvent", "End Event", G::bpmnEvents, false},
    {S::bpmnIntermediateThrow, "bpmnIntermediateThrow", "Intermediate Throw", G::bpmnEvents, false},
    {S::bpmnIntermediateCatch, "bpmnIntermediateCatch", "Intermediate Catch", G::bpmnEvents, false},
    {S::bpmnTimerEvent, "bpmnTimerEvent", "Timer Event", G::bpmnEvents, false},
    {S::bpmnMessageEvent, "bpmnMessageEvent", "Message Event", G::bpmnEvents, false},
    {S::bpmnErrorEvent, "bpmnErrorEvent", "Error Event", G::bpmnEvents, false},
    {S::bpmnSignalEvent, "bpmnSignalEvent", "Signal Event", G::bpmnEvents, false},
    {S::bpmnTask, "bpmnTask", "Task", G::bpmnActivities, false},
    {S::bpmnUserTask, "bpmnUserTask", "User Task", G::bpmnActivities, false},
    {S::bpmnServiceTask, "bpmnServiceTask", "Service Task", G::bpmnActivities, false},
    {S::bpmnScriptTask, "bpmnScriptTask", "Script Task", G::bpmnActivities, false},
    {S::bpmnSendTask, "bpmnSendTask", "Send Task", G::bpmnActivities, false},
    {S::bpmnReceiveTask, "bpmnReceiveTask", "Receive Task", G::bpmnActivities, false},
    {S::bpmnSubProcess, "bpmnSubProcess", "Sub-Process", G::bpmnActivities, false},
    {S::bpmnCallActivity, "bpmnCallActivity", "Call Activity", G::bpmnActivities, false},
    {S::bpmnExclusiveGateway, "bpmnExclusiveGateway", "Exclusive Gateway", G::bpmnGateways, false},
    {S::bpmnParallelGateway, "bpmnParallelGateway", "Parallel Gateway", G::bpmnGateways, false},
    {S::bpmnInclusiveGateway, "bpmnInclusiveGateway", "Inclusive Gateway", G::bpmnGateways, false},
    {S::bpmnEventBasedGateway, "bpmnEventBasedGateway", "Event-Based Gateway", G::bpmnGateways, false},
    {S::bpmnPool, "bpmnPool", "Pool", G::bpmnOrganization, false},
    {S::bpmnLane, "bpmnLane", "Lane", G::bpmnOrganization, false},
    {S::bpmnDataObject, "bpmnDataObject", "Data Object", G::bpmnData, false},
    {S::bpmnDataStore, "bpmnDataStore", "Data Store", G::bpmnData, false},
    {S::bpmnAnnotation, "bpmnAnnotation", "Annotation", G::bpmnData, false},
    {S::bpmnGroup, "bpmnGroup", "Group", G::bpmnOrganization, false},
    {S::mindmapCentral, "mindmapCentral", "Central Idea", G::mindMap, false},
    {S::mindmapMainTopic, "mindmapMainTopic", "Main Topic", G::mindMap, false},
    {S::mindmapSubTopic, "mindmapSubTopic", "Sub Topic", G::mindMap, false},
    {S::mindmapFloatingTopic, "mindmapFloatingTopic", "Floating Topic", G::mindMap, false},
    {S::mindmapCallout, "mindmapCallout", "Callout", G::mindMap, false},
    {S::mindmapComment, "mindmapComment", "Comment", G::mindMap, false},
    {S::mindmapBoundary, "mindmapBoundary", "Topic Boundary", G::mindMap, false},
    {S::sysmlPartDef, "sysmlPartDef", "Part Def", G::sysmlStructure, false},
    {S::sysmlPartUsage, "sysmlPartUsage", "Part Usage", G::sysmlStructure, false},
    {S::sysmlInterfaceDef, "sysmlInterfaceDef", "Interface Def", G::sysmlStructure, false},
    {S::sysmlInterfaceUsage, "sysmlInterfaceUsage", "Interface Usage", G::sysmlStructure, false},
    {S::sysmlActionDef, "sysmlActionDef", "Action Def", G::sysmlBehavior, false},
    {S::sysmlActionUsage, "sysmlActionUsage", "Action Usage", G::sysmlBehavior, false},
    {S::sysmlStateDef, "sysmlStateDef", "State Def", G::sysmlBehavior, false},
    {S::sysmlStateUsage, "sysmlStateUsage", "State Usage", G::sysmlBehavior, false},
    {S::sysmlUseCaseDef, "sysmlUseCaseDef", "Use Case Def", G::sysmlBehavior, false},
    {S::sysmlUseCaseUsage, "sysmlUseCaseUsage", "Use Case Usage", G::sysmlBehavior, false},
    {S::sysmlRequirementDef, "sysmlRequirementDef", "Requirement Def", G::sysmlRequirements, false},
    {S::sysmlRequirementUsage, "sysmlRequirementUsage", "Requirement Usage", G::sysmlRequirements, false},
    {S::sysmlConstraintDef, "sysmlConstraintDef", "Constraint Def", G::sysmlParametrics, false},
    {S::sysmlConstraintUsage, "sysmlConstraintUsage", "Constraint Usage", G::sysmlParametrics, false},
    {S::sysmlConstraintBlock, "sysmlConstraintBlock", "Constraint Block", G::sysmlParametrics, false},
    {S::sysmlConstraintProperty, "sysmlConstraintProperty", "Constraint Property", G::sysmlParametrics, false},
    {S::sysmlConstraintParameter, "sysmlConstraintParameter", "Constraint Parameter", G::sysmlParametrics, false},
    {S::sysmlValueProperty, "sysmlValueProperty", "Value Property", G::sysmlParametrics, false},
    {S::sysmlBlock, "sysmlBlock", "Block", G::sysmlStructure, false},
    {S::sysmlSignal, "sysmlSignal", "Signal", G::sysmlStructure, false},
    {S::sysmlFlowSpecification, "sysmlFlowSpecification", "Flow Specification", G::sysmlStructure, false},
    {S::sysmlEnumeration, "sysmlEnumeration", "Enumeration", G::sysmlStructure, false},
    {S::sysmlReferenceProperty, "sysmlReferenceProperty", "Reference Property", G::sysmlStructure, false},
    {S::sysmlPort, "sysmlPort", "Port", G::sysmlStructure, false},
    {S::sysmlContextBoundary, "sysmlContextBoundary", "Context Boundary", G::sysmlStructure, false},
    {S::sysmlValueType, "sysmlValueType", "Value Type (retired)", G::sysmlStructure, true},
    {S::sysmlFlowPort, "sysmlFlowPort", "Flow Port (retired)", G::sysmlStructure, true},
    {S::sysmlProxyPort, "sysmlProxyPort", "Proxy Port (retired)", G::sysmlStructure, true},
    {S::sysmlFullPort, "sysmlFullPort", "Full Port (retired)", G::sysmlStructure, true},
    {S::sysmlStandardPort, "sysmlStandardPort", "Standard Port (retired)", G::sysmlStructure, true},
    {S::sysmlActor, "sysmlActor", "Actor (SysML)", G::sysmlBehavior, false},
    {S::sysmlActivityPartition, "sysmlActivityPartition", "Activity Partition", G::sysmlBehavior, false},
    {S::sysmlObjectNode, "sysmlObjectNode", "Object Node", G::sysmlBehavior, false},
    {S::sysmlPin, "sysmlPin", "Pin", G::sysmlBehavior, false},
    {S::sysmlSendSignalAction, "sysmlSendSignalAction", "Send Signal Action", G::sysmlBehavior, false},
    {S::sysmlAcceptEventAction, "sysmlAcceptEventAction", "Accept Event Action", G::sysmlBehavior, false},
    {S::sysmlSystemBoundary, "sysmlSystemBoundary", "System Boundary (Subject)", G::sysmlBehavior, false},
    {S::sysmlFlowFinalNode, "sysmlFlowFinalNode", "Flow Final Node", G::sysmlBehavior, false},
    {S::sysmlWaitTimeAction, "sysmlWaitTimeAction", "Wait Time Action", G::sysmlBehavior, false},
    {S::sysmlActivityParameter, "sysmlActivityParameter", "Activity Parameter", G::sysmlBehavior, false},
    {S::sysmlCompositeState, "sysmlCompositeState", "Composite State", G::sysmlBehavior, false},
    {S::sysmlJunctionPseudostate, "sysmlJunctionPseudostate", "Junction Pseudostate", G::sysmlBehavior, false},
    {S::sysmlOrthogonalRegion, "sysmlOrthogonalRegion", "Orthogonal Region", G::sysmlBehavior, false},
    {S::sysmlChoicePseudostate, "sysmlChoicePseudostate", "Choice Pseudostate", G::sysmlBehavior, false},
    {S::sysmlForkPseudostate, "sysmlForkPseudostate", "Fork Pseudostate", G::sysmlBehavior, false},
    {S::sysmlJoinPseudostate, "sysmlJoinPseudostate", "Join Pseudostate", G::sysmlBehavior, false},
    {S::sysmlShallowHistoryPseudostate, "sysmlShallowHistoryPseudostate", "Shallow History (H)", G::sysmlBehavior, false},
    {S::sysmlDeepHistoryPseudostate, "sysmlDeepHistoryPseudostate", "Deep History (H*)", G::sysmlBehavior, false},
    {S::sysmlTerminatePseudostate, "sysmlTerminatePseudostate", "Terminate Pseudostate", G::sysmlBehavior, false},
    {S::sysmlEntryPoint, "sysmlEntryPoint", "Entry Point", G::sysmlBehavior, false},
    {S::sysmlExitPoint, "sysmlExitPoint", "Exit Point", G::sysmlBehavior, false},
    {S::sysmlSubmachineState, "sysmlSubmachineState", "Submachine State", G::sysmlBehavior, false},
    {S::sysmlGate, "sysmlGate", "Message Gate (Found/Lost)", G::sysmlBehavior, false},
    {S::sysmlConnectionDef, "sysmlConnectionDef", "Connection Def", G::sysmlStructure, false},
    {S::sysmlConnectionUsage, "sysmlConnectionUsage", "Connection Usage", G::sysmlStructure, false},
    {S::sysmlCalculationDef, "sysmlCalculationDef", "Calculation Def", G::sysmlBehavior, false},
    {S::sysmlCalculationUsage, "sysmlCalculationUsage", "Calculation Usage", G::sysmlBehavior, false},
    {S::sysmlVerificationUsage, "sysmlVerificationUsage", "Verification Usage", G::sysmlRequirements, false},
    {S::sysmlAnalysisDef, "sysmlAnalysisDef", "Analysis Def", G::sysmlParametrics, false},
    {S::sysmlAnalysisUsage, "sysmlAnalysisUsage", "Analysis Usage", G::sysmlParametrics, false},
    {S::sysmlViewUsage, "sysmlViewUsage", "View Usage", G::sysmlCrossCutting, false},
    {S::sysmlViewpointUsage, "sysmlViewpointUsage", "Viewpoint Usage", G::sysmlCrossCutting, false},
    {S::sysmlVariationDef, "sysmlVariationDef", "Variation Def", G::sysmlCrossCutting, false},
    {S::sysmlVariationUsage, "sysmlVariationUsage", "Variation Usage", G::sysmlCrossCutting, false},
    {S::sysmlAllocationDef, "sysmlAllocationDef", "Allocation Def", G::sysmlCrossCutting, false},
    {S::sysmlTestCase, "sysmlTestCase", "Test Case", G::sysmlRequirements, false},
};

using E = EdgeType;
constexpr EdgeInfo kEdges[] = {
    {E::straight, "straight", "Straight"},
    {E::straightArrow, "straightArrow", "Straight + Arrow"},
    {E::straightDoubleArrow, "straightDoubleArrow", "Straight + Double Arrow"},
    {E::elbow, "elbow", "Elbow"},
    {E::elbowArrow, "elbowArrow", "Elbow + Arrow"},
    {E::elbowDoubleArrow, "elbowDoubleArrow", "Elbow + Double Arrow"},
    {E::curved, "curved", "Curved"},
    {E::curvedArrow, "curvedArrow", "Curved + Arrow"},
    {E::curvedDoubleArrow, "curvedDoubleArrow", "Curved + Double Arrow"},
    {E::association, "association", "UML: Association"},
    {E::aggregation, "aggregation", "UML: Aggregation"},
    {E::composition, "composition", "UML: Composition"},
    {E::generalization, "generalization", "UML: Generalization"},
    {E::realization, "realization", "UML: Realization"},
    {E::dependency, "dependency", "UML: Dependency"},
    {E::bpmnSequence, "bpmnSequence", "BPMN: Sequence"},
    {E::bpmnMessage, "bpmnMessage", "BPMN: Message"},
    {E::bpmnAssociation, "bpmnAssociation", "BPMN: Association"},
    {E::sysmlContainment, "sysmlContainment", "SysML: Containment"},
    {E::sysmlRedefines, "sysmlRedefines", "SysML: Redefines"},
    {E::sysmlSubsets, "sysmlSubsets", "SysML: Subsets"},
    {E::sysmlAllocate, "sysmlAllocate", "SysML: Allocate"},
    {E::sysmlSatisfy, "sysmlSatisfy", "SysML: Satisfy"},
    {E::sysmlDeriveReqt, "sysmlDeriveReqt", "SysML: DeriveReqt"},
    {E::sysmlRefine, "sysmlRefine", "SysML: Refine"},
    {E::sysmlVerify, "sysmlVerify", "SysML: Verify"},
    {E::sysmlTrace, "sysmlTrace", "SysML: Trace"},
    {E::sysmlCopy, "sysmlCopy", "SysML: Copy"},
    {E::sysmlItemFlow, "sysmlItemFlow", "SysML: Item Flow"},
    {E::sysmlBindingConnector, "sysmlBindingConnector", "SysML: Binding Connector"},
    {E::sysmlInclude, "sysmlInclude", "SysML: «include»"},
    {E::sysmlExtend, "sysmlExtend", "SysML: «extend»"},
    {E::sysmlObjectFlow, "sysmlObjectFlow", "SysML: Object Flow"},
    {E::sysmlControlFlow, "sysmlControlFlow", "SysML: Control Flow"},
    {E::sysmlImport, "sysmlImport", "SysML: «import»"},
    {E::sysmlAccess, "sysmlAccess", "SysML: «access»"},
    {E::sysmlSyncMessage, "sysmlSyncMessage", "SysML: Sync Message"},
    {E::sysmlAsyncMessage, "sysmlAsyncMessage", "SysML: Async Message"},
    {E::sysmlReplyMessage, "sysmlReplyMessage", "SysML: Reply Message"},
    {E::sysmlCreateMessage, "sysmlCreateMessage", "SysML: Create Message"},
    {E::sysmlDeleteMessage, "sysmlDeleteMessage", "SysML: Delete Message"},
    {E::sysmlTransition, "sysmlTransition", "SysML: Transition"},
    {E::sysmlFoundMessage, "sysmlFoundMessage", "SysML: Found Message"},
    {E::sysmlLostMessage, "sysmlLostMessage", "SysML: Lost Message"},
    {E::mindmapBranch, "mindmapBranch", "Mind Map: Branch"},
    {E::mindmapCommentLink, "mindmapCommentLink", "Mind Map: Comment Link"},
};

constexpr std::string_view kGroupNames[kPaletteGroupCount] = {
    "Basic", "UML / Structure", "UML / Behavior", "UML / Interaction", "UML / Common",
    "Mind Map", "BPMN / Events", "BPMN / Activities", "BPMN / Gateways", "BPMN / Organization",
    "BPMN / Data", "SysML / Structure", "SysML / Behavior", "SysML / Requirements",
    "SysML / Parametrics", "SysML / Cross-Cutting"};

// Shape values run 0..365; a dense table maps each to its catalogue entry.
constexpr int kMaxShapeValue = 365;

struct ShapeIndex {
  std::array<std::int16_t, kMaxShapeValue + 1> pos{};
  constexpr ShapeIndex() {
    for (auto& p : pos) p = -1;
    for (std::size_t i = 0; i < std::size(kShapes); ++i)
      pos[static_cast<std::size_t>(kShapes[i].type)] = static_cast<std::int16_t>(i);
  }
};
constexpr ShapeIndex kShapeIndex{};

static_assert(std::size(kShapes) == 124, "every shape type is in the catalogue once");
static_assert(std::size(kEdges) == 46, "every edge type is in the catalogue once");

// Key lookups, built by the compiler from the same tables.
constexpr KeyTable<ShapeType, 256> kShapeByKey(
    kShapes, [](const ShapeInfo& i) { return i.key; }, [](const ShapeInfo& i) { return i.type; });
constexpr KeyTable<EdgeType, 128> kEdgeByKey(
    kEdges, [](const EdgeInfo& i) { return i.key; }, [](const EdgeInfo& i) { return i.type; });

}  // namespace

std::span<const ShapeInfo> shapeCatalogue() noexcept { return kShapes; }
std::span<const EdgeInfo> edgeCatalogue() noexcept { return kEdges; }

const ShapeInfo* shapeInfo(ShapeType t) noexcept {
  const auto v = static_cast<std::int32_t>(t);
  if (v < 0 || v > kMaxShapeValue) return nullptr;
  const auto p = kShapeIndex.pos[static_cast<std::size_t>(v)];
  return p < 0 ? nullptr : &kShapes[p];
}

bool isAssignedShape(std::int32_t value) noexcept {
  return shapeInfo(static_cast<ShapeType>(value)) != nullptr;
}

std::string_view shapeKey(ShapeType t) noexcept {
  const ShapeInfo* info = shapeInfo(t);
  return info ? info->key : std::string_view("rect");
}

bool shapeFromKey(std::string_view key, ShapeType& out) noexcept { return kShapeByKey.find(key, out); }

std::string_view shapeDisplayName(ShapeType t) noexcept {
  const ShapeInfo* info = shapeInfo(t);
  return info ? info->displayName : kShapes[0].displayName;
}

std::string_view edgeKey(EdgeType t) noexcept {
  const auto v = static_cast<std::int32_t>(t);
  if (v < 0 || v >= static_cast<std::int32_t>(std::size(kEdges))) return "straightArrow";
  return kEdges[v].key;
}

bool edgeFromKey(std::string_view key, EdgeType& out) noexcept { return kEdgeByKey.find(key, out); }

std::string_view edgeDisplayName(EdgeType t) noexcept {
  const auto v = static_cast<std::int32_t>(t);
  if (v < 0 || v >= static_cast<std::int32_t>(std::size(kEdges))) return kEdges[1].displayName;
  return kEdges[v].displayName;
}

std::string_view paletteGroupName(PaletteGroup g) noexcept {
  const auto v = static_cast<std::int32_t>(g);
  if (v < 0 || v >= kPaletteGroupCount) return kGroupNames[0];
  return kGroupNames[v];
}

}  // namespace modelyne::core
