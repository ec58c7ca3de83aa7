// The interaction section: lifelines from left to right and the messages from
// top to bottom.
#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

#include "explain/explain_detail.h"

namespace modelyne::explain::detail {

namespace {

// NaN coordinates sort last instead of breaking the ordering.
float sortable(float v) { return std::isnan(v) ? std::numeric_limits<float>::infinity() : v; }

float centreX(const core::Node& n) { return sortable(n.geom.x + n.geom.w * 0.5f); }

// The y where an edge end meets its node: the anchor offset when set, else the port's height.
float endY(const core::Node& n, core::Anchor port, float offset) {
  if (!std::isnan(offset)) return sortable(n.geom.y + offset);
  switch (core::normalizeAnchor(port)) {
    case core::Anchor::top:
    case core::Anchor::topLeft:
    case core::Anchor::topRight: return sortable(n.geom.y);
    case core::Anchor::bottom:
    case core::Anchor::bottomLeft:
    case core::Anchor::bottomRight: return sortable(n.geom.y + n.geom.h);
    default: return sortable(n.geom.y + n.geom.h * 0.5f);
  }
}

float messageY(const DiagramView& view, std::size_t e) {
  const core::Edge& edge = view.edges[e];
  const core::Node& src = view.nodes[static_cast<std::size_t>(view.source[e])];
  const core::Node& tgt = view.nodes[static_cast<std::size_t>(view.target[e])];
  if (std::isnan(edge.srcAnchorDY) && !std::isnan(edge.tgtAnchorDY))
    return endY(tgt, edge.targetPort, edge.tgtAnchorDY);
  return endY(src, edge.sourcePort, edge.srcAnchorDY);
}

// Activations stand for the lifeline they sit on; lifelines are sorted by centre x.
class Participants {
 public:
  explicit Participants(const DiagramView& view) : view_(view) {
    for (std::size_t i = 0; i < view.nodes.size(); ++i)
      if (view.nodeTraits[i].role == NodeRole::lifeline) lifelines_.push_back(i);
    std::stable_sort(lifelines_.begin(), lifelines_.end(), [&view](std::size_t a, std::size_t b) {
      return centreX(view.nodes[a]) < centreX(view.nodes[b]);
    });
  }

  const std::vector<std::size_t>& lifelines() const { return lifelines_; }

  std::string name(std::size_t node) const {
    if (view_.nodeTraits[node].role == NodeRole::activation) {
      const std::size_t host = hostOf(view_.nodes[node]);
      if (host != kNone) return view_.name(host);
    }
    return view_.name(node);
  }

  /// Builds the id lookup of the lifelines for the activations that name their owner.
  void indexOwners() {
    for (const std::size_t l : lifelines_) byId_.emplace(view_.nodes[l].id, l);
  }

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  // The lifeline the activation names as its owner, else the one whose box
  // spans the activation's centre, nearest centre first.
  std::size_t hostOf(const core::Node& activation) const {
    const auto owner = activation.properties.find("ownerLifeline");
    if (owner != activation.properties.end()) {
      const auto it = byId_.find(owner->second);
      if (it != byId_.end()) return it->second;
    }
    const float x = centreX(activation);
    const auto it = std::lower_bound(
        lifelines_.begin(), lifelines_.end(), x,
        [this](std::size_t l, float v) { return centreX(view_.nodes[l]) < v; });
    std::size_t best = kNone;
    float bestDistance = std::numeric_limits<float>::infinity();
    for (auto c = it == lifelines_.begin() ? it : it - 1; c != lifelines_.end() && c <= it; ++c) {
      const core::Node& l = view_.nodes[*c];
      const float d = std::fabs(centreX(l) - x);
      if (x >= l.geom.x && x <= l.geom.x + l.geom.w && d < bestDistance) {
        best = *c;
        bestDistance = d;
      }
    }
    return best;
  }

  const DiagramView& view_;
  std::vector<std::size_t> lifelines_;
  std::unordered_map<std::string_view, std::size_t> byId_;
};

// "loop [retry < 3] Resend", from the fragment's operator, guard and label.
std::string fragmentName(const DiagramView& view, std::size_t node) {
  const auto& props = view.nodes[node].properties;
  const auto prop = [&props](const char* key) {
    const auto it = props.find(key);
    return it == props.end() ? std::string() : oneLine(it->second);
  };
  std::string out = prop("operator");
  const std::string guard = prop("guard");
  if (!guard.empty()) out += (out.empty() ? "[" : " [") + guard + "]";
  const std::string text = oneLine(view.nodes[node].text);
  if (!text.empty()) out += (out.empty() ? "" : " ") + text;
  return out.empty() ? view.name(node) : out;
}

}  // namespace

std::string interactionBody(const DiagramView& view) {
  Participants participants(view);
  participants.indexOwners();
  std::vector<std::string> lines;
  if (!participants.lifelines().empty())
    lines.push_back("Participants (lifelines): " +
                    joinNames(view, participants.lifelines(), kInlineCap) + ".");

  std::vector<std::pair<float, std::size_t>> fragments;
  for (std::size_t i = 0; i < view.nodes.size(); ++i)
    if (view.nodes[i].type == core::ShapeType::umlCombinedFragment)
      fragments.emplace_back(sortable(view.nodes[i].geom.y), i);
  std::stable_sort(fragments.begin(), fragments.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  if (!fragments.empty()) {
    std::vector<std::string> names;
    for (std::size_t k = 0; k < fragments.size() && k < kInlineCap; ++k)
      names.push_back(fragmentName(view, fragments[k].second));
    std::string line = "Combined fragments: " + joinCapped(names, kInlineCap);
    if (fragments.size() > names.size())
      line += ", and " + std::to_string(fragments.size() - names.size()) + " more";
    lines.push_back(line + ".");
  }

  std::vector<std::pair<float, std::size_t>> messages;
  for (std::size_t e = 0; e < view.edges.size(); ++e)
    if (view.edgeTraits[e]->role == EdgeRole::message && view.resolved(e))
      messages.emplace_back(messageY(view, e), e);
  // Same height: drawing order of the edges decides.
  std::stable_sort(messages.begin(), messages.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });

  if (messages.empty()) {
    lines.emplace_back("No messages are exchanged between the lifelines yet.");
    return joinBlocks(lines);
  }
  for (std::size_t k = 0; k < messages.size() && k < kLineCap; ++k) {
    const std::size_t e = messages[k].second;
    const EdgeTraits& t = *view.edgeTraits[e];
    std::string line = "  " + std::to_string(k + 1) + ". ";
    line += participants.name(static_cast<std::size_t>(view.source[e]));
    line += ' ';
    line += t.word;
    line += ' ';
    line += participants.name(static_cast<std::size_t>(view.target[e]));
    std::string label = oneLine(view.edges[e].text);
    if (label.empty()) label = std::string(t.defaultLabel);
    if (!label.empty()) line += ": " + label;
    line += '.';
    lines.push_back(std::move(line));
  }
  if (messages.size() > kLineCap)
    lines.push_back("  - and " + std::to_string(messages.size() - kLineCap) + " more messages.");
  return joinBlocks(lines);
}

}  // namespace modelyne::explain::detail
