#include "sim/behaviour_roles.h"

#include <algorithm>
#include <array>

namespace modelyne::core::sim {

namespace {

using S = ShapeType;
using E = EdgeType;

struct ShapeRoles {
  ShapeType type;
  ActivityRole activity;
  StateRole state;
  InteractionRole interaction;
};

using A = ActivityRole;
using St = StateRole;
using I = InteractionRole;

// Every shape type that takes part in some behaviour; all others take none.
// Sorted by type value for the binary search below.
constexpr std::array kShapeRoles = std::to_array<ShapeRoles>({
    {S::umlInitialNode, A::initial, St::initial, I::none},
    {S::umlFinalNode, A::final, St::final, I::none},
    {S::umlAction, A::action, St::none, I::none},
    {S::umlDecision, A::decision, St::choice, I::none},
    {S::umlForkJoin, A::forkJoin, St::none, I::none},
    {S::umlState, A::none, St::state, I::none},
    {S::umlLifeline, A::none, St::none, I::lifeline},
    {S::umlActivation, A::none, St::none, I::activation},
    {S::umlCombinedFragment, A::none, St::none, I::fragment},
    {S::bpmnStartEvent, A::initial, St::none, I::none},
    {S::bpmnEndEvent, A::flowFinal, St::none, I::none},
    {S::bpmnIntermediateThrow, A::task, St::none, I::none},
    {S::bpmnIntermediateCatch, A::task, St::none, I::none},
    {S::bpmnTimerEvent, A::task, St::none, I::none},
    {S::bpmnMessageEvent, A::task, St::none, I::none},
    {S::bpmnErrorEvent, A::task, St::none, I::none},
    {S::bpmnSignalEvent, A::task, St::none, I::none},
    {S::bpmnTask, A::task, St::none, I::none},
    {S::bpmnUserTask, A::task, St::none, I::none},
    {S::bpmnServiceTask, A::task, St::none, I::none},
    {S::bpmnScriptTask, A::task, St::none, I::none},
    {S::bpmnSendTask, A::task, St::none, I::none},
    {S::bpmnReceiveTask, A::task, St::none, I::none},
    {S::bpmnSubProcess, A::task, St::none, I::none},
    {S::bpmnCallActivity, A::task, St::none, I::none},
    {S::bpmnExclusiveGateway, A::decision, St::none, I::none},
    {S::bpmnParallelGateway, A::forkJoin, St::none, I::none},
    {S::bpmnInclusiveGateway, A::inclusive, St::none, I::none},
    {S::bpmnEventBasedGateway, A::decision, St::none, I::none},
    {S::sysmlActionDef, A::action, St::none, I::none},
    {S::sysmlActionUsage, A::action, St::none, I::none},
    {S::sysmlStateDef, A::none, St::state, I::none},
    {S::sysmlStateUsage, A::none, St::state, I::none},
    {S::sysmlObjectNode, A::action, St::none, I::none},
    {S::sysmlSendSignalAction, A::action, St::none, I::none},
    {S::sysmlAcceptEventAction, A::action, St::none, I::none},
    {S::sysmlFlowFinalNode, A::flowFinal, St::none, I::none},
    {S::sysmlWaitTimeAction, A::action, St::none, I::none},
    {S::sysmlActivityParameter, A::action, St::none, I::none},
    {S::sysmlCompositeState, A::none, St::state, I::none},
    {S::sysmlJunctionPseudostate, A::decision, St::junction, I::none},
    {S::sysmlGate, A::none, St::none, I::gate},
    {S::sysmlChoicePseudostate, A::decision, St::choice, I::none},
    {S::sysmlForkPseudostate, A::forkJoin, St::none, I::none},
    {S::sysmlJoinPseudostate, A::forkJoin, St::none, I::none},
    {S::sysmlShallowHistoryPseudostate, A::none, St::shallowHistory, I::none},
    {S::sysmlDeepHistoryPseudostate, A::none, St::deepHistory, I::none},
    {S::sysmlTerminatePseudostate, A::final, St::terminate, I::none},
    {S::sysmlSubmachineState, A::none, St::state, I::none},
});

static_assert(std::is_sorted(kShapeRoles.begin(), kShapeRoles.end(),
                             [](const ShapeRoles& a, const ShapeRoles& b) { return a.type < b.type; }));

constexpr ShapeRoles kNoRoles{S::rect, A::none, St::none, I::none};

const ShapeRoles& rolesOf(ShapeType type) noexcept {
  const auto it = std::lower_bound(kShapeRoles.begin(), kShapeRoles.end(), type,
                                   [](const ShapeRoles& r, ShapeType t) { return r.type < t; });
  return it != kShapeRoles.end() && it->type == type ? *it : kNoRoles;
}

struct EdgeRoles {
  EdgeType type;
  bool flow;
  bool transition;
  bool message;
};

constexpr std::array kEdgeRoles = std::to_array<EdgeRoles>({
    {E::straightArrow, true, true, true},
    {E::elbowArrow, true, true, true},
    {E::curvedArrow, true, true, true},
    {E::bpmnSequence, true, false, false},
    {E::sysmlObjectFlow, true, false, false},
    {E::sysmlControlFlow, true, false, false},
    {E::sysmlSyncMessage, false, false, true},
    {E::sysmlAsyncMessage, false, false, true},
    {E::sysmlReplyMessage, false, false, true},
    {E::sysmlCreateMessage, false, false, true},
    {E::sysmlDeleteMessage, false, false, true},
    {E::sysmlTransition, false, true, false},
    {E::sysmlFoundMessage, false, false, true},
    {E::sysmlLostMessage, false, false, true},
});

static_assert(std::is_sorted(kEdgeRoles.begin(), kEdgeRoles.end(),
                             [](const EdgeRoles& a, const EdgeRoles& b) { return a.type < b.type; }));

constexpr EdgeRoles kNoEdgeRoles{E::straight, false, false, false};

const EdgeRoles& rolesOf(EdgeType type) noexcept {
  const auto it = std::lower_bound(kEdgeRoles.begin(), kEdgeRoles.end(), type,
                                   [](const EdgeRoles& r, EdgeType t) { return r.type < t; });
  return it != kEdgeRoles.end() && it->type == type ? *it : kNoEdgeRoles;
}

}  // namespace

ActivityRole activityRole(ShapeType type) noexcept { return rolesOf(type).activity; }
StateRole stateRole(ShapeType type) noexcept { return rolesOf(type).state; }
InteractionRole interactionRole(ShapeType type) noexcept { return rolesOf(type).interaction; }

bool isFlowEdge(EdgeType type) noexcept { return rolesOf(type).flow; }
bool isTransitionEdge(EdgeType type) noexcept { return rolesOf(type).transition; }
bool isMessageEdge(EdgeType type) noexcept { return rolesOf(type).message; }

}  // namespace modelyne::core::sim
