// The whole-document automatic layouts as document operations, and the
// layout of inserted elements before they go in.

#include <cmath>
#include <memory>

#include "bridge/bridge_internal.h"
#include "core/commands.h"
#include "layout/layout.h"

namespace modelyne::bridge {

namespace {

// Field by field, a NaN equal to a NaN: an unchanged rectangle is not a change.
bool same(float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); }
bool sameGeometry(const core::NodeGeometry& a, const core::NodeGeometry& b) {
  return same(a.x, b.x) && same(a.y, b.y) && same(a.w, b.w) && same(a.h, b.h);
}

layout::LayoutResult run(const core::Document& doc, LayoutAlgorithm algorithm, const layout::LayoutOptions& options) {
  return algorithm == LayoutAlgorithm::organic ? layout::layoutOrganic(doc, options) : layout::layoutLayered(doc, options);
}

}  // namespace

LayoutOutcome layoutDocument(DocumentHandle h, LayoutAlgorithm algorithm) {
  core::Document& doc = detail::documentOf(h);
  const layout::LayoutResult result = run(doc, algorithm, {});
  LayoutOutcome outcome;
  outcome.laidOut = result.laidOut;
  outcome.reason = result.reason;
  if (!result.laidOut) return outcome;
  auto composite = std::make_unique<core::CompositeCommand>();
  for (std::size_t i = 0; i < result.placements.size(); ++i) {
    const layout::Placement& p = result.placements[i];
    if (sameGeometry(doc.nodes()[i].geom, p.geom)) continue;
    composite->add(std::make_unique<core::ResizeNodeCommand>(p.id, p.geom));
  }
  outcome.changed = composite->size();
  if (!composite->empty()) doc.history().pushAndExecute(std::move(composite), doc);
  return outcome;
}

LayoutOutcome layoutLayered(DocumentHandle h) { return layoutDocument(h, LayoutAlgorithm::layered); }

LayoutOutcome layoutOrganic(DocumentHandle h) { return layoutDocument(h, LayoutAlgorithm::organic); }

namespace detail {

void layoutInserted(const core::Document& doc, std::vector<core::Node>& nodes, const std::vector<core::Edge>& edges,
                    LayoutAlgorithm algorithm) {
  if (nodes.empty()) return;
  // The document as it will be, on a scratch copy; only the new nodes move.
  core::Document scratch;
  std::vector<core::Node> all = doc.nodes();
  all.insert(all.end(), nodes.begin(), nodes.end());
  std::vector<core::Edge> added = edges;
  scratch.replaceContent(std::move(all), std::move(added));
  layout::LayoutOptions options;
  for (const core::Node& n : nodes) options.onlyNodes.push_back(n.id);
  const layout::LayoutResult result = run(scratch, algorithm, options);
  if (!result.laidOut) return;
  const std::size_t first = doc.nodes().size();
  for (std::size_t i = 0; i < nodes.size(); ++i) nodes[i].geom = result.placements[first + i].geom;
}

}  // namespace detail

}  // namespace modelyne::bridge
