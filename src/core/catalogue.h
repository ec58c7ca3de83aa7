#pragma once
/// The shape and edge type catalogue: every `ShapeType` and `EdgeType` with
/// its fixed integer, persistent key, display name and palette group, and the
/// key lookups with their fall-backs ("rect", "straightArrow").
/// The tables are data (catalogue.cpp); everything here looks them up.

#include <cstdint>
#include <span>
#include <string_view>

namespace modelyne::core {

enum class ShapeType : std::int32_t {
  // Basic and UML
  rect = 0, text = 1, oval = 2, rounded = 3, triangle = 4,
  umlClass = 10, umlInterface = 11, umlActor = 12, umlUseCase = 13, umlComponent = 14,
  umlPackage = 15, umlNodeDevice = 16, umlArtifact = 17, umlObject = 18,
  umlInitialNode = 20, umlFinalNode = 21, umlAction = 22, umlDecision = 23, umlForkJoin = 24,
  umlState = 25, umlLifeline = 30, umlActivation = 31, umlCombinedFragment = 32,
  umlNote = 40, umlBoundary = 41,
  // BPMN
  bpmnStartEvent = 100, bpmnEndEvent = 101, bpmnIntermediateThrow = 102,
  bpmnIntermediateCatch = 103, bpmnTimerEvent = 104, bpmnMessageEvent = 105,
  bpmnErrorEvent = 106, bpmnSignalEvent = 107,
  bpmnTask = 110, bpmnUserTask = 111, bpmnServiceTask = 112, bpmnScriptTask = 113,
  bpmnSendTask = 114, bpmnReceiveTask = 115, bpmnSubProcess = 116, bpmnCallActivity = 117,
  bpmnExclusiveGateway = 120, bpmnParallelGateway = 121, bpmnInclusiveGateway = 122,
  bpmnEventBasedGateway = 123,
  bpmnPool = 130, bpmnLane = 131,
  bpmnDataObject = 140, bpmnDataStore = 141, bpmnAnnotation = 142, bpmnGroup = 143,
  // Mind map
  mindmapCentral = 200, mindmapMainTopic = 201, mindmapSubTopic = 202,
  mindmapFloatingTopic = 203, mindmapCallout = 204, mindmapBoundary = 205, mindmapComment = 206,
  // SysML (v1 and v2 element kinds)
  sysmlPartDef = 300, sysmlPartUsage, sysmlActionDef, sysmlActionUsage, sysmlStateDef,
  sysmlStateUsage, sysmlRequirementDef, sysmlRequirementUsage, sysmlUseCaseDef,
  sysmlUseCaseUsage, sysmlInterfaceDef, sysmlInterfaceUsage, sysmlConstraintDef,
  sysmlConstraintUsage, sysmlBlock, sysmlValueType, sysmlConstraintBlock, sysmlFlowPort,
  sysmlProxyPort, sysmlFullPort, sysmlActor, sysmlActivityPartition, sysmlObjectNode,
  sysmlPin, sysmlSendSignalAction, sysmlAcceptEventAction, sysmlSystemBoundary,
  sysmlFlowFinalNode, sysmlWaitTimeAction, sysmlActivityParameter, sysmlSignal,
  sysmlFlowSpecification, sysmlEnumeration, sysmlReferenceProperty, sysmlStandardPort,
  sysmlCompositeState, sysmlJunctionPseudostate, sysmlOrthogonalRegion,
  sysmlConstraintProperty, sysmlConstraintParameter, sysmlValueProperty, sysmlConnectionDef,
  sysmlConnectionUsage, sysmlCalculationDef, sysmlCalculationUsage, sysmlAnalysisDef,
  sysmlAnalysisUsage, sysmlVerificationUsage, sysmlViewUsage, sysmlViewpointUsage,
  sysmlVariationDef, sysmlVariationUsage, sysmlAllocationDef, sysmlGate, sysmlTestCase,
  sysmlChoicePseudostate, sysmlForkPseudostate, sysmlJoinPseudostate,
  sysmlShallowHistoryPseudostate, sysmlDeepHistoryPseudostate, sysmlTerminatePseudostate,
  sysmlEntryPoint, sysmlExitPoint, sysmlSubmachineState, sysmlPort, sysmlContextBoundary,
};

enum class EdgeType : std::int32_t {
  straight = 0, straightArrow, straightDoubleArrow, elbow, elbowArrow, elbowDoubleArrow,
  curved, curvedArrow, curvedDoubleArrow, association, aggregation, composition,
  generalization, realization, dependency, bpmnSequence, bpmnMessage, bpmnAssociation,
  sysmlContainment, sysmlRedefines, sysmlSubsets, sysmlAllocate, sysmlSatisfy,
  sysmlDeriveReqt, sysmlRefine, sysmlVerify, sysmlTrace, sysmlCopy, sysmlItemFlow,
  sysmlBindingConnector, sysmlInclude, sysmlExtend, sysmlObjectFlow, sysmlControlFlow,
  sysmlImport, sysmlAccess, sysmlSyncMessage, sysmlAsyncMessage, sysmlReplyMessage,
  sysmlCreateMessage, sysmlDeleteMessage, sysmlTransition, sysmlFoundMessage,
  sysmlLostMessage, mindmapBranch, mindmapCommentLink,
};

/// Palette groups, in palette order.
enum class PaletteGroup : std::int32_t {
  basic, umlStructure, umlBehavior, umlInteraction, umlCommon, mindMap, bpmnEvents,
  bpmnActivities, bpmnGateways, bpmnOrganization, bpmnData, sysmlStructure, sysmlBehavior,
  sysmlRequirements, sysmlParametrics, sysmlCrossCutting,
};
inline constexpr int kPaletteGroupCount = 16;

struct ShapeInfo {
  ShapeType type;
  std::string_view key;
  std::string_view displayName;
  PaletteGroup group;
  bool retired;
};

struct EdgeInfo {
  EdgeType type;
  std::string_view key;
  std::string_view displayName;
};

/// Every shape type, in catalogue order (the palette's order within a group).
std::span<const ShapeInfo> shapeCatalogue() noexcept;
/// Every edge type, in value order 0..45.
std::span<const EdgeInfo> edgeCatalogue() noexcept;

/// The catalogue entry of a shape type, or nullptr for an unassigned value.
const ShapeInfo* shapeInfo(ShapeType t) noexcept;
/// Persistent key; an unassigned value yields "rect".
std::string_view shapeKey(ShapeType t) noexcept;
/// Exact, case-sensitive lookup; false (and `out` untouched) for any other text.
bool shapeFromKey(std::string_view key, ShapeType& out) noexcept;
/// Display name; an unassigned value yields the rectangle's.
std::string_view shapeDisplayName(ShapeType t) noexcept;
/// Whether the integer names a shape type of the catalogue.
bool isAssignedShape(std::int32_t value) noexcept;

/// Persistent key; any value outside 0..45 yields "straightArrow".
std::string_view edgeKey(EdgeType t) noexcept;
bool edgeFromKey(std::string_view key, EdgeType& out) noexcept;
std::string_view edgeDisplayName(EdgeType t) noexcept;

std::string_view paletteGroupName(PaletteGroup g) noexcept;

}  // namespace modelyne::core
