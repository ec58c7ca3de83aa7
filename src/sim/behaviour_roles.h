#pragma once
/// What each shape and edge type is to the behaviour simulations: the part
/// a node plays in an activity, in a state machine and in an interaction,
/// and which edges are flows, transitions and messages. One table per
/// question, looked up by type.

#include "core/catalogue.h"

namespace modelyne::core::sim {

/// The part a node plays in activity token flow.
enum class ActivityRole : unsigned char {
  none,       ///< takes no part (notes, partitions, pools, lanes, pins, ...)
  initial,    ///< offers one token on each outgoing flow at the start
  action,     ///< fires when every incoming flow holds a token
  task,       ///< BPMN: fires once per token arriving on any incoming flow
  decision,   ///< one outgoing flow per token (several outgoing), else merge
  forkJoin,   ///< copies to every outgoing; waits for every incoming
  inclusive,  ///< splits by guards; joins while no other token can arrive
  final,      ///< ends the run
  flowFinal,  ///< consumes its own token only
};

/// The part a node plays in a state machine.
enum class StateRole : unsigned char {
  none, initial, state, choice, junction, shallowHistory, deepHistory, terminate, final,
};

/// The part a node plays in an interaction.
enum class InteractionRole : unsigned char { none, lifeline, activation, fragment, gate };

ActivityRole activityRole(ShapeType type) noexcept;
StateRole stateRole(ShapeType type) noexcept;
InteractionRole interactionRole(ShapeType type) noexcept;

/// Control and object flows, BPMN sequence flows and the generic arrows.
bool isFlowEdge(EdgeType type) noexcept;
/// Transitions and the generic arrows.
bool isTransitionEdge(EdgeType type) noexcept;
/// The message edge types and the generic arrows.
bool isMessageEdge(EdgeType type) noexcept;

}  // namespace modelyne::core::sim
