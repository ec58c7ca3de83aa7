// Activity diagram rules: object versus control flow, and the degrees of
// initial, final, decision/merge and fork/join nodes.

#include <string>
#include <vector>

#include "check/element_categories.h"
#include "check/rules.h"

namespace modelyne::check {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;

// Which edges are activity edges: control and object flows, and generic
// lines, which users draw as flows as often as not. Lines to a note
// annotate, and dependencies or allocations relate model elements; none of
// them carries tokens. Worked out once for all the degree counts.
std::vector<char> flowsOf(const DiagramIndex& diagram) {
  const auto edges = diagram.edges();
  std::vector<char> flow(edges.size(), 0);
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const E type = edges[i].type;
    flow[i] = (type == E::sysmlControlFlow || type == E::sysmlObjectFlow || isGenericLine(type)) &&
              !diagram.touchesComment(i);
  }
  return flow;
}

struct Degree {
  unsigned in = 0;
  unsigned out = 0;
  unsigned controlOut = 0;  // outgoing flows that are not object flows
};

Degree flowDegree(const DiagramIndex& diagram, const std::vector<char>& flow, std::int32_t node) {
  Degree d;
  for (const std::uint32_t e : diagram.incoming(node))
    if (flow[e]) ++d.in;
  for (const std::uint32_t e : diagram.outgoing(node)) {
    if (!flow[e]) continue;
    ++d.out;
    if (diagram.edges()[e].type != E::sysmlObjectFlow) ++d.controlOut;
  }
  return d;
}

bool decisionOrMergeShape(const Degree& d) {
  return (d.in == 1 && d.out >= 2) || (d.in >= 2 && d.out == 1);
}

}  // namespace

void checkActivity(const DiagramIndex& diagram, Findings& findings) {
  const std::vector<char> flow = flowsOf(diagram);
  const auto nodes = diagram.nodes();
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const core::Node& n = nodes[i];
    const S type = n.type;
    const bool final = type == S::umlFinalNode || type == S::sysmlFlowFinalNode;
    if (type != S::umlInitialNode && !final && type != S::umlDecision && type != S::umlForkJoin)
      continue;
    const Degree d = flowDegree(diagram, flow, static_cast<std::int32_t>(i));
    if (type == S::umlInitialNode) {
      if (d.in > 0)
        findings.add({"Initial Node '", n.id,
                      "' must not have any incoming edges (SysML Distilled §6.9.1)."});
      if (d.out != 1 || d.controlOut != 1)
        findings.add({"Initial Node '", n.id,
                      "' must have exactly one outgoing control flow (SysML Distilled §6.9.1)."});
    } else if (final) {
      // A flow final ends one flow rather than the activity, but it too is a sink.
      if (d.out > 0)
        findings.add({"Final Node '", n.id,
                      "' must not have any outgoing edges (SysML Distilled §6.9.2)."});
    } else if (!decisionOrMergeShape(d)) {
      const std::string in = std::to_string(d.in);
      const std::string out = std::to_string(d.out);
      if (type == S::umlDecision)
        findings.add({"Diamond node '", n.id,
                      "' is neither a valid Decision (1-in, 2+-out) nor a valid Merge (2+-in, 1-out). Has ",
                      in, " in / ", out, " out (SysML Distilled §6.9.3 / §6.9.4)."});
      else
        findings.add({"Fork/Join bar '", n.id,
                      "' is neither a valid Fork (1-in, 2+-out) nor a valid Join (2+-in, 1-out). Has ",
                      in, " in / ", out, " out (SysML Distilled §6.9.5 / §6.9.6)."});
    }
  }

  const auto edges = diagram.edges();
  for (std::size_t i = 0; i < edges.size(); ++i) {
    if (edges[i].type != E::sysmlControlFlow || !diagram.resolved(i)) continue;
    if (isObjectNode(diagram.sourceType(i)) && isObjectNode(diagram.targetType(i)))
      findings.add({"Edge '", edges[i].id,
                    "' is a Control Flow but connects two object nodes. Use Object Flow for "
                    "object-token transport (SysML Distilled §6.7.2)."});
  }
}

}  // namespace modelyne::check
