// The behavioral section: where execution starts, the primary flow walked from
// the start, the decisions and forks with their branches, and where it ends.
#include "explain/explain_detail.h"

namespace modelyne::explain::detail {

namespace {

bool takesPartInFlow(const ShapeTraits& t) {
  return t.cls == ExplanationClass::behavioral || t.role == NodeRole::initial ||
         t.role == NodeRole::final || t.role == NodeRole::decision || t.role == NodeRole::fork;
}

// Outgoing flow edges per node, in edge order.
struct FlowGraph {
  std::vector<std::size_t> offset;  // size nodes + 1
  std::vector<std::size_t> edge;
  std::vector<std::size_t> in;

  std::size_t outCount(std::size_t node) const { return offset[node + 1] - offset[node]; }
  std::span<const std::size_t> outOf(std::size_t node) const {
    return {edge.data() + offset[node], outCount(node)};
  }
};

FlowGraph buildFlow(const DiagramView& view) {
  const std::size_t n = view.nodes.size();
  std::vector<bool> isFlow(view.edges.size(), false);
  for (std::size_t e = 0; e < view.edges.size(); ++e) {
    if (!view.resolved(e)) continue;
    const EdgeRole role = view.edgeTraits[e]->role;
    // A plain arrow between activity elements is read as flow: many users draw with the default edge.
    isFlow[e] = role == EdgeRole::flow ||
                (role == EdgeRole::genericArrow &&
                 takesPartInFlow(view.nodeTraits[static_cast<std::size_t>(view.source[e])]) &&
                 takesPartInFlow(view.nodeTraits[static_cast<std::size_t>(view.target[e])]));
  }
  FlowGraph g;
  g.offset.assign(n + 1, 0);
  g.in.assign(n, 0);
  for (std::size_t e = 0; e < view.edges.size(); ++e) {
    if (!isFlow[e]) continue;
    ++g.offset[static_cast<std::size_t>(view.source[e]) + 1];
    ++g.in[static_cast<std::size_t>(view.target[e])];
  }
  for (std::size_t i = 0; i < n; ++i) g.offset[i + 1] += g.offset[i];
  g.edge.resize(g.offset[n]);
  std::vector<std::size_t> fill(g.offset.begin(), g.offset.end() - 1);
  for (std::size_t e = 0; e < view.edges.size(); ++e)
    if (isFlow[e]) g.edge[fill[static_cast<std::size_t>(view.source[e])]++] = e;
  return g;
}

// "Approve [amount < 1000]": the target and the guard written on the edge.
std::string branch(const DiagramView& view, std::size_t e) {
  std::string out = view.name(static_cast<std::size_t>(view.target[e]));
  std::string guard = oneLine(view.edges[e].text);
  if (guard.size() >= 2 && guard.front() == '[' && guard.back() == ']')
    guard = guard.substr(1, guard.size() - 2);
  if (!guard.empty()) out += " [" + guard + "]";
  return out;
}

// "A and B", "A, B and C"; beyond the cap ", and N more".
std::string branchList(const DiagramView& view, std::span<const std::size_t> edges) {
  std::vector<std::string> items;
  const std::size_t shown = edges.size() < kBranchCap ? edges.size() : kBranchCap;
  for (std::size_t k = 0; k < shown; ++k) items.push_back(branch(view, edges[k]));
  if (edges.size() > shown) {
    items.push_back("and " + std::to_string(edges.size() - shown) + " more");
    return joinCapped(items, items.size());
  }
  std::string out;
  for (std::size_t k = 0; k < items.size(); ++k) {
    if (k > 0) out += k + 1 == items.size() ? " and " : ", ";
    out += items[k];
  }
  return out;
}

// Follows the first untaken outgoing flow from each node until a final node or a dead end.
std::vector<std::size_t> primaryPath(const DiagramView& view, const FlowGraph& g,
                                     std::size_t start) {
  std::vector<bool> visited(view.nodes.size(), false);
  std::vector<std::size_t> path{start};
  visited[start] = true;
  std::size_t current = start;
  while (view.nodeTraits[current].role != NodeRole::final) {
    bool moved = false;
    for (const std::size_t e : g.outOf(current)) {
      const auto next = static_cast<std::size_t>(view.target[e]);
      if (visited[next]) continue;
      visited[next] = true;
      path.push_back(next);
      current = next;
      moved = true;
      break;
    }
    if (!moved) break;
  }
  return path;
}

// One line per node, capped; the overflow is counted in `noun`.
void cappedLines(std::vector<std::string>& lines, std::vector<std::string>&& items,
                 std::string_view noun) {
  const std::size_t total = items.size();
  for (std::size_t k = 0; k < total && k < kLineCap; ++k) lines.push_back(std::move(items[k]));
  if (total > kLineCap)
    lines.push_back("and " + std::to_string(total - kLineCap) + " more " + std::string(noun) + ".");
}

}  // namespace

std::string behavioralBody(const DiagramView& view) {
  const FlowGraph g = buildFlow(view);
  if (g.edge.empty())
    return "No directed flow could be traced; the activity nodes are not yet connected by control "
           "or object flows.";
  const std::size_t n = view.nodes.size();

  std::vector<std::size_t> initials, sources, finals, sinks;
  std::size_t firstWithOut = n;
  for (std::size_t i = 0; i < n; ++i) {
    const NodeRole role = view.nodeTraits[i].role;
    const bool out = g.outCount(i) > 0;
    if (role == NodeRole::initial) initials.push_back(i);
    if (role == NodeRole::final) finals.push_back(i);
    if (out && g.in[i] == 0) sources.push_back(i);
    if (!out && g.in[i] > 0) sinks.push_back(i);
    if (out && firstWithOut == n) firstWithOut = i;
  }

  std::size_t start = n;
  for (const std::size_t i : initials)
    if (g.outCount(i) > 0) { start = i; break; }
  if (start == n) start = sources.empty() ? firstWithOut : sources.front();

  std::vector<std::string> lines;
  const std::vector<std::size_t>& begins =
      !initials.empty() ? initials : (!sources.empty() ? sources : std::vector<std::size_t>{start});
  lines.push_back("Execution begins at: " + joinNames(view, begins, kInlineCap) + ".");

  const std::vector<std::size_t> path = primaryPath(view, g, start);
  std::string flow = "Primary flow: ";
  for (std::size_t k = 0; k < path.size() && k < kPathCap; ++k) {
    if (k > 0) flow += " \u2192 ";
    flow += view.name(path[k]);
  }
  if (path.size() > kPathCap)
    flow += " \u2192 \u2026 and " + std::to_string(path.size() - kPathCap) + " more";
  lines.push_back(flow + ".");

  std::vector<std::string> decisions, forks;
  for (std::size_t i = 0; i < n; ++i) {
    if (g.outCount(i) < 2) continue;
    const NodeRole role = view.nodeTraits[i].role;
    if (role == NodeRole::decision)
      decisions.push_back("Decision point: " + view.name(i) + " chooses between " +
                          branchList(view, g.outOf(i)) + ".");
    else if (role == NodeRole::fork)
      forks.push_back("Concurrency: " + view.name(i) + " runs in parallel: " +
                      branchList(view, g.outOf(i)) + ".");
  }
  cappedLines(lines, std::move(decisions), "decision points");
  cappedLines(lines, std::move(forks), "forks");

  const std::vector<std::size_t>& ends = !finals.empty() ? finals : sinks;
  if (!ends.empty()) lines.push_back("Execution ends at: " + joinNames(view, ends, kInlineCap) + ".");
  return joinBlocks(lines);
}

}  // namespace modelyne::explain::detail
