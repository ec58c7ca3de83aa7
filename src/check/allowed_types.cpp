#include "check/allowed_types.h"

#include <array>

#include "check/type_set.h"

namespace modelyne::check {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;

// ---- The allowed types per diagram kind, in table order ----
// "umlNote" is listed for every kind; the basic shapes and the retired SysML
// types are listed for none. The generic edges 0..8 are not listed: they are
// allowed on every kind.

constexpr S kBddShapes[] = {
    S::umlClass, S::umlInterface, S::umlPackage, S::umlObject, S::umlNote, S::umlBoundary,
    S::sysmlPartDef, S::sysmlPartUsage, S::sysmlInterfaceDef, S::sysmlInterfaceUsage,
    S::sysmlConstraintDef, S::sysmlConstraintUsage, S::sysmlBlock, S::sysmlConstraintBlock,
    S::sysmlActor, S::sysmlSignal, S::sysmlFlowSpecification, S::sysmlEnumeration,
    S::sysmlConstraintProperty, S::sysmlConnectionDef, S::sysmlConnectionUsage,
    S::sysmlCalculationDef, S::sysmlCalculationUsage, S::sysmlAnalysisDef, S::sysmlAnalysisUsage,
    S::sysmlVerificationUsage, S::sysmlViewUsage, S::sysmlViewpointUsage, S::sysmlVariationDef,
    S::sysmlVariationUsage, S::sysmlAllocationDef};
constexpr E kBddEdges[] = {E::association, E::aggregation, E::composition, E::generalization,
                           E::realization, E::dependency, E::sysmlContainment, E::sysmlRedefines,
                           E::sysmlSubsets, E::sysmlAllocate};

constexpr S kIbdShapes[] = {
    S::umlClass, S::umlInterface, S::umlObject, S::umlNote, S::sysmlPartDef, S::sysmlPartUsage,
    S::sysmlInterfaceDef, S::sysmlInterfaceUsage, S::sysmlBlock, S::sysmlObjectNode,
    S::sysmlSignal, S::sysmlFlowSpecification, S::sysmlReferenceProperty,
    S::sysmlConnectionUsage, S::sysmlPort, S::sysmlContextBoundary};
constexpr E kIbdEdges[] = {E::association, E::sysmlAllocate, E::sysmlItemFlow,
                           E::sysmlBindingConnector};

constexpr S kPkgShapes[] = {
    S::umlClass, S::umlInterface, S::umlPackage, S::umlObject, S::umlNote, S::umlBoundary,
    S::sysmlPartDef, S::sysmlPartUsage, S::sysmlRequirementDef, S::sysmlRequirementUsage,
    S::sysmlInterfaceDef, S::sysmlInterfaceUsage, S::sysmlBlock, S::sysmlSignal,
    S::sysmlFlowSpecification, S::sysmlEnumeration, S::sysmlConnectionDef,
    S::sysmlConnectionUsage, S::sysmlVerificationUsage};
constexpr E kPkgEdges[] = {E::realization,  E::dependency, E::sysmlContainment, E::sysmlAllocate,
                           E::sysmlRefine,  E::sysmlTrace, E::sysmlImport,      E::sysmlAccess};

constexpr S kParShapes[] = {
    S::umlClass, S::umlObject, S::umlNote, S::sysmlPartDef, S::sysmlPartUsage,
    S::sysmlConstraintDef, S::sysmlConstraintUsage, S::sysmlBlock, S::sysmlConstraintBlock,
    S::sysmlReferenceProperty, S::sysmlConstraintProperty, S::sysmlConstraintParameter,
    S::sysmlValueProperty, S::sysmlAnalysisDef, S::sysmlAnalysisUsage};
constexpr E kParEdges[] = {E::association, E::dependency, E::sysmlBindingConnector};

constexpr S kActShapes[] = {
    S::umlInitialNode, S::umlFinalNode, S::umlAction, S::umlDecision, S::umlForkJoin, S::umlNote,
    S::umlBoundary, S::sysmlActionDef, S::sysmlActionUsage, S::sysmlActor,
    S::sysmlActivityPartition, S::sysmlObjectNode, S::sysmlPin, S::sysmlSendSignalAction,
    S::sysmlAcceptEventAction, S::sysmlFlowFinalNode, S::sysmlWaitTimeAction,
    S::sysmlActivityParameter};
constexpr E kActEdges[] = {E::dependency, E::sysmlAllocate, E::sysmlItemFlow, E::sysmlObjectFlow,
                           E::sysmlControlFlow};

constexpr S kSdShapes[] = {S::umlActor, S::umlLifeline, S::umlActivation, S::umlCombinedFragment,
                           S::umlNote,  S::sysmlActor,  S::sysmlGate};
constexpr E kSdEdges[] = {E::dependency,         E::sysmlSyncMessage,   E::sysmlAsyncMessage,
                          E::sysmlReplyMessage,  E::sysmlCreateMessage, E::sysmlDeleteMessage,
                          E::sysmlFoundMessage,  E::sysmlLostMessage};

constexpr S kStmShapes[] = {
    S::umlInitialNode, S::umlFinalNode, S::umlDecision, S::umlForkJoin, S::umlState, S::umlNote,
    S::sysmlStateDef, S::sysmlStateUsage, S::sysmlSendSignalAction, S::sysmlAcceptEventAction,
    S::sysmlCompositeState, S::sysmlJunctionPseudostate, S::sysmlOrthogonalRegion,
    S::sysmlChoicePseudostate, S::sysmlForkPseudostate, S::sysmlJoinPseudostate,
    S::sysmlShallowHistoryPseudostate, S::sysmlDeepHistoryPseudostate,
    S::sysmlTerminatePseudostate, S::sysmlEntryPoint, S::sysmlExitPoint, S::sysmlSubmachineState};
constexpr E kStmEdges[] = {E::dependency, E::sysmlTransition};

constexpr S kUcShapes[] = {S::umlActor,           S::umlUseCase,        S::umlNote,
                           S::umlBoundary,        S::sysmlUseCaseDef,   S::sysmlUseCaseUsage,
                           S::sysmlActor,         S::sysmlSystemBoundary, S::sysmlTestCase};
constexpr E kUcEdges[] = {E::association, E::generalization, E::dependency, E::sysmlInclude,
                          E::sysmlExtend};

constexpr S kReqShapes[] = {
    S::umlClass, S::umlPackage, S::umlObject, S::umlNote, S::umlBoundary, S::sysmlPartDef,
    S::sysmlPartUsage, S::sysmlRequirementDef, S::sysmlRequirementUsage, S::sysmlConstraintDef,
    S::sysmlConstraintUsage, S::sysmlBlock, S::sysmlTestCase};
constexpr E kReqEdges[] = {E::dependency,  E::sysmlContainment, E::sysmlSatisfy, E::sysmlDeriveReqt,
                           E::sysmlRefine, E::sysmlVerify,      E::sysmlTrace,   E::sysmlCopy};

constexpr S kTestShapes[] = {
    S::umlClass, S::umlActor, S::umlUseCase, S::umlPackage, S::umlObject, S::umlNote,
    S::umlBoundary, S::sysmlPartDef, S::sysmlPartUsage, S::sysmlRequirementDef,
    S::sysmlRequirementUsage, S::sysmlUseCaseDef, S::sysmlUseCaseUsage, S::sysmlConstraintDef,
    S::sysmlConstraintUsage, S::sysmlBlock, S::sysmlActor, S::sysmlSystemBoundary,
    S::sysmlVerificationUsage, S::sysmlTestCase};
constexpr E kTestEdges[] = {E::association,  E::generalization, E::dependency, E::sysmlContainment,
                            E::sysmlSatisfy, E::sysmlDeriveReqt, E::sysmlRefine, E::sysmlVerify,
                            E::sysmlTrace,   E::sysmlCopy,      E::sysmlInclude, E::sysmlExtend};

constexpr S kMmShapes[] = {S::umlNote,           S::mindmapCentral,       S::mindmapMainTopic,
                           S::mindmapSubTopic,   S::mindmapFloatingTopic, S::mindmapCallout,
                           S::mindmapBoundary,   S::mindmapComment};
constexpr E kMmEdges[] = {E::mindmapBranch, E::mindmapCommentLink};

// The generic connectors "straight" .. "curvedDoubleArrow".
constexpr EdgeSet kGenericEdges = {E::straight, E::straightArrow, E::straightDoubleArrow,
                                   E::elbow,    E::elbowArrow,    E::elbowDoubleArrow,
                                   E::curved,   E::curvedArrow,   E::curvedDoubleArrow};

struct KindTypes {
  std::span<const S> shapes;
  std::span<const E> edges;
  ShapeSet shapeSet;
  EdgeSet edgeSet;
};

constexpr KindTypes make(std::span<const S> shapes, std::span<const E> edges) {
  return {shapes, edges, ShapeSet(shapes), EdgeSet(edges)};
}

// Indexed by the kind's enumeration value, "bdd" .. "mm".
constexpr std::array<KindTypes, core::kDiagramKindCount> kAllowed = {
    make(kBddShapes, kBddEdges),   make(kIbdShapes, kIbdEdges), make(kPkgShapes, kPkgEdges),
    make(kParShapes, kParEdges),   make(kActShapes, kActEdges), make(kSdShapes, kSdEdges),
    make(kStmShapes, kStmEdges),   make(kUcShapes, kUcEdges),   make(kReqShapes, kReqEdges),
    make(kTestShapes, kTestEdges), make(kMmShapes, kMmEdges)};

const KindTypes& typesOf(core::DiagramKind kind) noexcept {
  const auto v = static_cast<int>(kind);
  const bool inRange = v >= 0 && v < core::kDiagramKindCount;
  return kAllowed[inRange ? v : static_cast<int>(core::DiagramKind::pkg)];
}

}  // namespace

bool isShapeAllowed(core::DiagramKind kind, core::ShapeType shape) noexcept {
  return typesOf(kind).shapeSet.contains(shape);
}

bool isEdgeAllowed(core::DiagramKind kind, core::EdgeType edge) noexcept {
  return kGenericEdges.contains(edge) || typesOf(kind).edgeSet.contains(edge);
}

std::span<const core::ShapeType> allowedShapes(core::DiagramKind kind) noexcept {
  return typesOf(kind).shapes;
}

std::span<const core::EdgeType> allowedSpecificEdges(core::DiagramKind kind) noexcept {
  return typesOf(kind).edges;
}

}  // namespace modelyne::check
