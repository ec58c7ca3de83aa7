// Mind map rules: one central idea, comment links that annotate, branches
// between different topics, and every topic connected to the centre.

#include <string>
#include <vector>

#include "check/element_categories.h"
#include "check/rules.h"

namespace modelyne::check {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;

// A branch, or a generic line drawn between topics in its place; lines to
// a comment or note annotate and connect nothing.
bool joinsTopics(const DiagramIndex& diagram, std::size_t edge) {
  const E type = diagram.edges()[edge].type;
  if (type != E::mindmapBranch && !isGenericLine(type)) return false;
  return !diagram.touchesComment(edge);
}

// Nodes reachable from any central topic over branches, in either direction.
std::vector<char> reachedFromCentre(const DiagramIndex& diagram) {
  const auto nodes = diagram.nodes();
  std::vector<char> reached(nodes.size(), 0);
  std::vector<std::int32_t> stack;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (nodes[i].type != S::mindmapCentral) continue;
    reached[i] = 1;
    stack.push_back(static_cast<std::int32_t>(i));
  }
  const auto visit = [&](std::int32_t next) {
    if (reached[static_cast<std::size_t>(next)]) return;
    reached[static_cast<std::size_t>(next)] = 1;
    stack.push_back(next);
  };
  while (!stack.empty()) {
    const std::int32_t n = stack.back();
    stack.pop_back();
    for (const std::uint32_t e : diagram.outgoing(n))
      if (diagram.resolved(e) && joinsTopics(diagram, e)) visit(diagram.target(e));
    for (const std::uint32_t e : diagram.incoming(n))
      if (diagram.resolved(e) && joinsTopics(diagram, e)) visit(diagram.source(e));
  }
  return reached;
}

}  // namespace

void checkMindMap(const DiagramIndex& diagram, Findings& findings) {
  const auto nodes = diagram.nodes();

  // A map-wide finding; it leads, as the map's shape comes before its parts.
  std::size_t centrals = 0;
  const core::Node* firstCentral = nullptr;
  for (const core::Node& n : nodes) {
    if (n.type != S::mindmapCentral) continue;
    if (centrals++ == 0) firstCentral = &n;
  }
  if (centrals >= 2)
    findings.add({"Mind map has ", std::to_string(centrals), " Central topics ('", firstCentral->id,
                  "' and ", std::to_string(centrals - 1),
                  " more). A mind map radiates from exactly one central idea; make the others Major "
                  "topics."});

  const std::vector<char> reached = reachedFromCentre(diagram);
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const S t = nodes[i].type;
    if ((t == S::mindmapMainTopic || t == S::mindmapSubTopic) && !reached[i])
      findings.add({"Topic '", nodes[i].id,
                    "' is not connected to the Central topic by any branch. Draw a branch, or make it "
                    "a Floating Topic."});
  }

  const auto edges = diagram.edges();
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const core::Edge& e = edges[i];
    if (!diagram.resolved(i)) continue;
    if (e.type == E::mindmapCommentLink) {
      const bool sourceComment = isComment(diagram.sourceType(i));
      const bool targetComment = isComment(diagram.targetType(i));
      if (!sourceComment && !targetComment)
        findings.add({"Edge '", e.id,
                      "' is a Comment Link but neither end is a Comment. A comment link attaches one "
                      "Comment to one annotated element (UML 2.5.1 §7.2)."});
      else if (sourceComment && targetComment)
        findings.add({"Edge '", e.id,
                      "' is a Comment Link between two Comments, which annotates nothing (UML 2.5.1 "
                      "§7.2)."});
    } else if (e.type == E::mindmapBranch && diagram.source(i) == diagram.target(i)) {
      findings.add({"Edge '", e.id,
                    "' is a Branch from a topic to itself. A branch joins two different topics."});
    }
  }
}

}  // namespace modelyne::check
