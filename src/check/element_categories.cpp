#include "check/element_categories.h"

#include <array>

#include "check/text.h"
#include "check/type_set.h"

namespace modelyne::check {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;

constexpr ShapeSet kActors = {S::umlActor, S::sysmlActor};

constexpr ShapeSet kUseCases = {S::umlUseCase, S::sysmlUseCaseDef, S::sysmlUseCaseUsage};

// Pins and activity parameter nodes are object nodes in UML, so they take
// part in object flow like the plain object node.
constexpr ShapeSet kObjectNodes = {S::sysmlObjectNode, S::sysmlPin, S::sysmlActivityParameter};

// The current port and the retired port kinds still found in older models.
constexpr ShapeSet kPorts = {S::sysmlPort,     S::sysmlFlowPort,    S::sysmlProxyPort,
                             S::sysmlFullPort, S::sysmlStandardPort};
constexpr ShapeSet kPortLike = kPorts | kObjectNodes;

// A package with a stereotype ("model", "profile", "view", "viewpoint",
// "modelLibrary") is still a package.
constexpr ShapeSet kPackages = {S::umlPackage};

// Both requirement kinds: the definition and the usage.
constexpr ShapeSet kRequirements = {S::sysmlRequirementDef, S::sysmlRequirementUsage};

// States and pseudostates of every notation the state-machine palette offers.
// The send-signal and accept-event shapes are included: the transition-
// oriented notation draws them as steps of a transition, joined to states
// by transitions. Regions are not vertices: transitions never end on them.
constexpr ShapeSet kStateVertices = {
    S::umlInitialNode, S::umlFinalNode, S::umlDecision, S::umlForkJoin, S::umlState,
    S::sysmlStateDef, S::sysmlStateUsage, S::sysmlCompositeState, S::sysmlSubmachineState,
    S::sysmlJunctionPseudostate, S::sysmlChoicePseudostate, S::sysmlForkPseudostate,
    S::sysmlJoinPseudostate, S::sysmlShallowHistoryPseudostate, S::sysmlDeepHistoryPseudostate,
    S::sysmlTerminatePseudostate, S::sysmlEntryPoint, S::sysmlExitPoint,
    S::sysmlSendSignalAction, S::sysmlAcceptEventAction};

constexpr ShapeSet kLifelinesAndExecutions = {S::umlLifeline, S::umlActor, S::sysmlActor,
                                              S::umlActivation};
constexpr ShapeSet kMessageEnds = kLifelinesAndExecutions | ShapeSet{S::sysmlGate};

// A callout is a comment bubble pinned to a topic, so it counts as a comment.
constexpr ShapeSet kComments = {S::umlNote, S::mindmapComment, S::mindmapCallout};

constexpr EdgeSet kGenericLines = {E::straight, E::straightArrow, E::straightDoubleArrow,
                                   E::elbow,    E::elbowArrow,    E::elbowDoubleArrow,
                                   E::curved,   E::curvedArrow,   E::curvedDoubleArrow};

// Allocation ends. Behaviours are what functional allocation moves onto
// structure: actions of every kind, activities, states, calculations and
// interaction elements. Flow elements are what flow allocation maps onto
// item flows and connectors.
constexpr ShapeSet kBehaviours = {
    S::umlAction, S::umlState, S::umlLifeline, S::umlActivation, S::umlCombinedFragment,
    S::sysmlActionDef, S::sysmlActionUsage, S::sysmlStateDef, S::sysmlStateUsage,
    S::sysmlCompositeState, S::sysmlSubmachineState, S::sysmlSendSignalAction,
    S::sysmlAcceptEventAction, S::sysmlWaitTimeAction, S::sysmlCalculationDef,
    S::sysmlCalculationUsage};
constexpr ShapeSet kFlowElements = {S::sysmlObjectNode,  S::sysmlPin,
                                    S::sysmlActivityParameter, S::sysmlSignal,
                                    S::sysmlFlowSpecification, S::sysmlConnectionDef,
                                    S::sysmlConnectionUsage};

// ---- Block-stereotype kinds ----
// The shape type gives the default kind; a "stereotype" property that names
// one of the seven kinds overrides it (a class stereotyped «block» is a
// block, a block stereotyped «valueType» a value type). Other stereotypes
// ("external", "controller") leave the shape's kind as it is.

struct ShapeKind {
  S shape;
  std::string_view kind;
};
constexpr ShapeKind kShapeKinds[] = {
    {S::sysmlBlock, "block"},
    {S::sysmlPartDef, "block"},  // a part definition is the v2 form of a block
    {S::sysmlSignal, "signal"},
    {S::sysmlFlowSpecification, "flowSpecification"},
    {S::sysmlEnumeration, "enumeration"},
    {S::sysmlValueType, "valueType"},
    {S::sysmlInterfaceDef, "interface"},
    {S::umlInterface, "interface"},
    {S::sysmlConstraintBlock, "constraint"},
    {S::sysmlConstraintDef, "constraint"},
};

struct WordKind {
  std::string_view word;  // as `keyword` writes it
  std::string_view kind;
};
constexpr WordKind kStereotypeKinds[] = {
    {"block", "block"},
    {"signal", "signal"},
    {"flowspecification", "flowSpecification"},
    {"enumeration", "enumeration"},
    {"valuetype", "valueType"},
    {"interface", "interface"},
    {"interfaceblock", "interface"},
    {"constraint", "constraint"},
    {"constraintblock", "constraint"},
};

const std::string kStereotypeKey = "stereotype";

}  // namespace

bool isActor(S t) noexcept { return kActors.contains(t); }
bool isUseCase(S t) noexcept { return kUseCases.contains(t); }
bool isObjectNode(S t) noexcept { return kObjectNodes.contains(t); }
bool isPortLike(S t) noexcept { return kPortLike.contains(t); }
bool isPackage(S t) noexcept { return kPackages.contains(t); }
bool isRequirement(S t) noexcept { return kRequirements.contains(t); }
bool isStateVertex(S t) noexcept { return kStateVertices.contains(t); }
bool isMessageEnd(S t) noexcept { return kMessageEnds.contains(t); }
bool isLifelineOrExecution(S t) noexcept { return kLifelinesAndExecutions.contains(t); }
bool isComment(S t) noexcept { return kComments.contains(t); }
bool isGenericLine(E t) noexcept { return kGenericLines.contains(t); }

std::string_view blockKind(const core::Node& node) {
  const std::string_view stereotype = property(node, kStereotypeKey);
  if (!isBlank(stereotype)) {
    const std::string word = keyword(stereotype);
    for (const WordKind& w : kStereotypeKinds)
      if (w.word == word) return w.kind;
  }
  for (const ShapeKind& s : kShapeKinds)
    if (s.shape == node.type) return s.kind;
  return {};
}

bool hasStereotype(const core::Node& node, std::string_view keywordText) {
  const std::string_view stereotype = property(node, kStereotypeKey);
  return !stereotype.empty() && keyword(stereotype) == keywordText;
}

AllocationCategory allocationCategory(S t) noexcept {
  if (kFlowElements.contains(t)) return AllocationCategory::itemFlow;
  if (kBehaviours.contains(t)) return AllocationCategory::behavioral;
  return AllocationCategory::structural;
}

}  // namespace modelyne::check
