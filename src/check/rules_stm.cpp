// State machine rules: transition ends and labels, the degrees of every
// pseudostate, submachine references, and one start for a flat machine.

#include <string>
#include <vector>

#include "check/element_categories.h"
#include "check/rules.h"
#include "check/text.h"
#include "check/transition_label.h"

namespace modelyne::check {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;

// Which edges are transitions: the SysML transition, or a generic line
// standing in for one. Lines to a note annotate; dependencies are not
// transitions. Worked out once, as the degree rules ask about every edge
// from both of its ends.
std::vector<char> transitionsOf(const DiagramIndex& diagram) {
  const auto edges = diagram.edges();
  std::vector<char> transition(edges.size(), 0);
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const E type = edges[i].type;
    transition[i] = (type == E::sysmlTransition || isGenericLine(type)) && !diagram.touchesComment(i);
  }
  return transition;
}

struct Machine {
  const DiagramIndex& diagram;
  std::vector<char> transition;
  bool isTransition(std::uint32_t edge) const { return transition[edge] != 0; }
};

enum class Vertex { other, initial, final, junction, choice, fork, join, terminate, history, submachine };

struct Degree {
  unsigned in = 0;
  unsigned out = 0;
};

Degree transitionDegree(const Machine& m, std::int32_t node) {
  Degree d;
  for (const std::uint32_t e : m.diagram.incoming(node)) d.in += m.isTransition(e) ? 1 : 0;
  for (const std::uint32_t e : m.diagram.outgoing(node)) d.out += m.isTransition(e) ? 1 : 0;
  return d;
}

// The generic diamond is a choice unless its "pseudoKind" says junction; the
// generic bar is what its "forkOrJoin" says, else a join when two or more
// transitions enter it and a fork otherwise.
Vertex vertexOf(const core::Node& n, const Machine& m, std::int32_t index) {
  static const std::string kPseudoKind = "pseudoKind";
  static const std::string kForkOrJoin = "forkOrJoin";
  switch (n.type) {
    case S::umlInitialNode: return Vertex::initial;
    case S::umlFinalNode: return Vertex::final;
    case S::sysmlJunctionPseudostate: return Vertex::junction;
    case S::sysmlChoicePseudostate: return Vertex::choice;
    case S::sysmlForkPseudostate: return Vertex::fork;
    case S::sysmlJoinPseudostate: return Vertex::join;
    case S::sysmlTerminatePseudostate: return Vertex::terminate;
    case S::sysmlShallowHistoryPseudostate:
    case S::sysmlDeepHistoryPseudostate: return Vertex::history;
    case S::sysmlSubmachineState: return Vertex::submachine;
    case S::umlDecision:
      return keyword(property(n, kPseudoKind)) == "junction" ? Vertex::junction : Vertex::choice;
    case S::umlForkJoin: {
      const std::string mode = keyword(property(n, kForkOrJoin));
      if (mode == "fork") return Vertex::fork;
      if (mode == "join") return Vertex::join;
      return transitionDegree(m, index).in >= 2 ? Vertex::join : Vertex::fork;
    }
    default: return Vertex::other;
  }
}

bool carriesTriggerOrGuard(std::string_view label) {
  const TransitionLabel parts = splitTransitionLabel(label);
  return !parts.trigger.empty() || !parts.guard.empty();
}

bool anyCarriesTriggerOrGuard(const Machine& m, std::span<const std::uint32_t> edges) {
  for (const std::uint32_t e : edges)
    if (m.isTransition(e) && carriesTriggerOrGuard(m.diagram.edges()[e].text)) return true;
  return false;
}

bool hasElseBranch(const Machine& m, std::int32_t node) {
  for (const std::uint32_t e : m.diagram.outgoing(node))
    if (m.isTransition(e) && equalsIgnoreCase(splitTransitionLabel(m.diagram.edges()[e].text).guard, "else"))
      return true;
  return false;
}

void checkVertex(const Machine& m, std::int32_t index, Findings& findings) {
  static const std::string kSubmachine = "submachine";
  const DiagramIndex& diagram = m.diagram;
  const core::Node& n = diagram.nodes()[static_cast<std::size_t>(index)];
  const Vertex vertex = vertexOf(n, m, index);
  if (vertex == Vertex::other) return;
  const Degree d = transitionDegree(m, index);
  switch (vertex) {
    case Vertex::initial:
      if (d.in > 0)
        findings.add({"Initial pseudostate '", n.id,
                      "' must not have any incoming transitions (SysML Distilled §8.6)."});
      if (d.out != 1)
        findings.add({"Initial pseudostate '", n.id,
                      "' must have exactly one outgoing transition (SysML Distilled §8.6)."});
      break;
    case Vertex::final:
      if (d.out > 0)
        findings.add({"Final state '", n.id,
                      "' must not have any outgoing transitions (SysML Distilled §8.4.3)."});
      break;
    case Vertex::junction:
      if (d.in < 1 || d.out < 1)
        findings.add({"Junction pseudostate '", n.id,
                      "' must have at least one incoming and at least one outgoing transition (SysML "
                      "Distilled §8.6)."});
      break;
    case Vertex::choice:
      if (d.in < 1 || d.out < 2)
        findings.add({"Choice pseudostate '", n.id,
                      "' must have at least one incoming and at least two outgoing transitions (A "
                      "Practical Guide to SysML §11.4.2)."});
      if (!hasElseBranch(m, index))
        findings.add({"Choice pseudostate '", n.id,
                      "' should provide an '[else]' outgoing guard so a path is always taken (A "
                      "Practical Guide to SysML §11.4.2)."});
      break;
    case Vertex::fork:
      if (d.in != 1 || d.out < 2)
        findings.add({"Fork pseudostate '", n.id,
                      "' must have exactly one incoming and at least two outgoing transitions (A "
                      "Practical Guide to SysML §11.6.2)."});
      if (anyCarriesTriggerOrGuard(m, diagram.outgoing(index)))
        findings.add({"Fork pseudostate '", n.id,
                      "' outgoing transitions must not carry a trigger or a guard (A Practical Guide "
                      "to SysML §11.6.2)."});
      break;
    case Vertex::join:
      if (d.in < 2 || d.out != 1)
        findings.add({"Join pseudostate '", n.id,
                      "' must have at least two incoming and exactly one outgoing transition (A "
                      "Practical Guide to SysML §11.6.2)."});
      if (anyCarriesTriggerOrGuard(m, diagram.incoming(index)))
        findings.add({"Join pseudostate '", n.id,
                      "' incoming transitions must not carry a trigger or a guard (A Practical Guide "
                      "to SysML §11.6.2)."});
      break;
    case Vertex::terminate:
      if (d.out > 0)
        findings.add({"Terminate pseudostate '", n.id,
                      "' must not have any outgoing transitions: reaching it ends the whole state "
                      "machine (A Practical Guide to SysML §11.3)."});
      if (d.in == 0)
        findings.add({"Terminate pseudostate '", n.id,
                      "' is unreachable: it must have at least one incoming transition (A Practical "
                      "Guide to SysML §11.3)."});
      break;
    case Vertex::history:
      if (d.out > 1)
        findings.add({"History pseudostate '", n.id,
                      "' must have at most one outgoing (default-target) transition (A Practical "
                      "Guide to SysML §11.6.4)."});
      break;
    case Vertex::submachine:
      if (isBlank(property(n, kSubmachine)))
        findings.add({"Submachine state '", n.id,
                      "' should name the state machine it references via its `submachine` property "
                      "(A Practical Guide to SysML §11.6.5)."});
      break;
    case Vertex::other:
      break;
  }
}

}  // namespace

void checkStateMachine(const DiagramIndex& diagram, Findings& findings) {
  const Machine machine{diagram, transitionsOf(diagram)};
  const auto nodes = diagram.nodes();
  std::size_t initials = 0;
  bool hasRegion = false;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    initials += nodes[i].type == S::umlInitialNode ? 1 : 0;
    hasRegion = hasRegion || nodes[i].type == S::sysmlCompositeState ||
                nodes[i].type == S::sysmlOrthogonalRegion;
    checkVertex(machine, static_cast<std::int32_t>(i), findings);
  }

  const auto edges = diagram.edges();
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const core::Edge& e = edges[i];
    if (e.type != E::sysmlTransition) continue;
    if (diagram.resolved(i)) {
      if (!isStateVertex(diagram.sourceType(i)))
        findings.add({"Edge '", e.id, "' is a SysML transition whose source '", e.source,
                      "' is not a state-machine vertex (SysML Distilled §8.5)."});
      if (!isStateVertex(diagram.targetType(i)))
        findings.add({"Edge '", e.id, "' is a SysML transition whose target '", e.target,
                      "' is not a state-machine vertex (SysML Distilled §8.5)."});
    }
    if (const auto fault = transitionLabelFault(e.text))
      findings.add({"Edge '", e.id, "' transition label is malformed: ", *fault,
                    ". Expected '<trigger> [<guard>] / <effect>' (SysML Distilled §8.5)."});
  }

  // A machine-wide finding, so it follows those about single elements.
  if (initials > 1 && !hasRegion)
    findings.add({"State machine has ", std::to_string(initials),
                  " initial pseudostates but no composite / orthogonal region. A flat state machine "
                  "has exactly one start (SysML Distilled §8.6)."});
}

}  // namespace modelyne::check
