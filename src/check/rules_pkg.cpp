// Package diagram rules: containment, import and access between packages,
// views and viewpoints, and unique names within a package's namespace.

#include <string>
#include <functional>
#include <vector>

#include "check/element_categories.h"
#include "check/first_seen.h"
#include "check/rules.h"
#include "check/text.h"

namespace modelyne::check {

namespace {

using E = core::EdgeType;

constexpr std::int32_t kRoot = -1;

// An element's owner is the source of the first containment edge that ends
// on it (the owning end carries the crosshair); without one it belongs to
// the root namespace.
std::vector<std::int32_t> owners(const DiagramIndex& diagram) {
  std::vector<std::int32_t> owner(diagram.nodes().size(), kRoot);
  std::vector<char> known(diagram.nodes().size(), 0);
  const auto edges = diagram.edges();
  for (std::size_t i = 0; i < edges.size(); ++i) {
    if (edges[i].type != E::sysmlContainment || !diagram.resolved(i)) continue;
    const auto t = static_cast<std::size_t>(diagram.target(i));
    if (known[t]) continue;
    known[t] = 1;
    owner[t] = diagram.source(i);
  }
  return owner;
}

// A view conforms to a viewpoint through "conformsTo" or a realization edge
// from the view to a package stereotyped «viewpoint».
bool realizesViewpoint(const DiagramIndex& diagram, std::int32_t view) {
  for (const std::uint32_t e : diagram.outgoing(view)) {
    if (diagram.edges()[e].type != E::realization) continue;
    const core::Node* t = diagram.targetNode(e);
    if (t && isPackage(t->type) && hasStereotype(*t, "viewpoint")) return true;
  }
  return false;
}

}  // namespace

void checkPackage(const DiagramIndex& diagram, Findings& findings) {
  static const std::string kConformsTo = "conformsTo";
  static const std::string kStakeholders = "stakeholders";
  static const std::string kConcerns = "concerns";
  static const std::string kPurpose = "purpose";

  const auto nodes = diagram.nodes();
  const std::vector<std::int32_t> owner = owners(diagram);
  FirstSeen names(nodes.size());

  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const core::Node& n = nodes[i];
    if (isPackage(n.type) && hasStereotype(n, "view") && isBlank(property(n, kConformsTo)) &&
        !realizesViewpoint(diagram, static_cast<std::int32_t>(i)))
      findings.add({"View package '", n.id,
                    "' should declare which viewpoint it conforms to (set the `conformsTo` property "
                    "or draw a Realization edge to a «viewpoint» package — SysML Distilled §9.7)."});
    if (isPackage(n.type) && hasStereotype(n, "viewpoint") && isBlank(property(n, kStakeholders)) &&
        isBlank(property(n, kConcerns)) && isBlank(property(n, kPurpose)))
      findings.add({"Viewpoint package '", n.id,
                    "' must declare at least one of stakeholders / concerns / purpose (SysML "
                    "Distilled §9.7)."});
    // Unnamed elements and comments have no name to clash; "kind" is the shape type.
    const std::string_view name = trimmed(n.text);
    if (name.empty() || isComment(n.type)) continue;
    const std::uint64_t key = std::hash<std::string_view>{}(name) ^
                              (static_cast<std::uint64_t>(static_cast<std::uint32_t>(owner[i])) << 16) ^
                              static_cast<std::uint64_t>(n.type);
    const auto sameName = [&](std::uint32_t other) {
      const core::Node& o = nodes[other];
      return o.type == n.type && owner[other] == owner[i] && trimmed(o.text) == name;
    };
    if (names.firstOf(key, static_cast<std::uint32_t>(i), sameName) != FirstSeen::kNew)
      findings.add({"Element '", name, "' ('", core::shapeKey(n.type),
                    "') duplicates the name of another element of the same kind in its package "
                    "namespace; each element of a given kind must have a unique name within its "
                    "package (A Practical Guide to SysML §6.6)."});
  }

  const auto edges = diagram.edges();
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const core::Edge& e = edges[i];
    if (e.type != E::sysmlContainment && e.type != E::sysmlImport && e.type != E::sysmlAccess) continue;
    if (!diagram.resolved(i)) continue;
    if (isPackage(diagram.sourceType(i)) && isPackage(diagram.targetType(i))) continue;
    if (e.type == E::sysmlContainment)
      findings.add({"Edge '", e.id, "' (Containment) must connect two packages (SysML Distilled §9.3)."});
    else
      findings.add({"Edge '", e.id, "' ", e.type == E::sysmlImport ? "«import»" : "«access»",
                    " must connect two packages (SysML Distilled §9.5)."});
  }
}

}  // namespace modelyne::check
