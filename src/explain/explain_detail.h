#pragma once
/// Internals shared by the explainer's sources: what each shape and edge type
/// means to the explanation (class and role), the fixed class texts, an index
/// of the diagram built once per call, and the text helpers every section uses.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/model.h"
#include "explain/explain.h"

namespace modelyne::explain::detail {

/// What a node does in the class sections.
enum class NodeRole : std::uint8_t {
  none, part, interface, port, initial, final, decision, fork, lifeline, activation, requirement,
};

/// What an edge does in the class sections.
enum class EdgeRole : std::uint8_t {
  none,
  genericArrow,  ///< a plain directed arrow: flow when it joins two flow nodes
  relation,      ///< a structural relationship, listed by its word
  containment,   ///< whole (source) contains part (target)
  flow,          ///< control flow, object flow, sequence flow, transition
  message,       ///< a message between lifelines
  trace,         ///< a requirement relationship, read "source verb target"
};

struct ShapeTraits {
  ExplanationClass cls = ExplanationClass::general;
  NodeRole role = NodeRole::none;
};

struct EdgeTraits {
  core::EdgeType type;
  ExplanationClass cls;
  EdgeRole role;
  std::string_view word;          ///< relation word or verb ("composition", "satisfies", "sends to")
  std::string_view joiner;        ///< between the ends in relation examples (" → ")
  int relationRank;               ///< listing order of relation words; -1 when not a relation
  std::string_view defaultLabel;  ///< message label when the edge has no text
};

ShapeTraits shapeTraits(core::ShapeType type) noexcept;
/// Types outside the catalogue get general traits with no role.
const EdgeTraits& edgeTraits(core::EdgeType type) noexcept;
/// Number of distinct relation ranks.
inline constexpr int kRelationCount = 12;

struct ClassTexts {
  std::string_view word;
  std::string_view shortName;
  std::string_view title;
  std::string_view sectionHeading;  ///< empty for general
  std::string_view purpose;
};
const ClassTexts& classTexts(ExplanationClass cls) noexcept;

/// The diagram with ends resolved to node positions, built once per call.
struct DiagramView {
  DiagramView(std::span<const core::Node> nodes, std::span<const core::Edge> edges);

  std::span<const core::Node> nodes;
  std::span<const core::Edge> edges;
  std::vector<ShapeTraits> nodeTraits;       ///< per node
  std::vector<const EdgeTraits*> edgeTraits; ///< per edge
  std::vector<std::int64_t> source;          ///< per edge: node position, -1 when no node has the id
  std::vector<std::int64_t> target;
  std::vector<std::size_t> degree;           ///< per node: incident edge ends, by id

  /// Whether edge `e` has both ends on nodes of this diagram.
  bool resolved(std::size_t e) const noexcept { return source[e] >= 0 && target[e] >= 0; }
  /// The node's text on one line, or its shape key + " [" + id + "]" when it has none.
  std::string name(std::size_t node) const;
};

/// The text on one line: every run of control characters becomes one space.
std::string oneLine(std::string_view text);

/// "A, B, C" with at most `cap` items; beyond it ", and N more".
std::string joinCapped(const std::vector<std::string>& items, std::size_t cap,
                       std::string_view separator = ", ");

/// The names of the given nodes, joined as `joinCapped` does; only the shown
/// names are built.
std::string joinNames(const DiagramView& view, const std::vector<std::size_t>& nodes,
                      std::size_t cap);

/// "1 node", "0 nodes".
std::string countPhrase(std::size_t n, std::string_view word);

/// Lines joined by '\n', with a blank line before every line that is not a list
/// line (list lines start with a space), so each statement is its own Markdown
/// paragraph and no statement is swallowed by the list above it.
std::string joinBlocks(const std::vector<std::string>& lines);

/// Caps shared by the class sections.
inline constexpr std::size_t kInlineCap = 12;  ///< names in one comma-separated list
inline constexpr std::size_t kLineCap = 25;    ///< lines of one list
inline constexpr std::size_t kBranchCap = 8;   ///< branches of one decision or fork
inline constexpr std::size_t kPathCap = 15;    ///< steps shown of the primary flow
inline constexpr std::size_t kExampleCap = 3;  ///< examples of one relation

std::string structuralBody(const DiagramView& view);
std::string behavioralBody(const DiagramView& view);
std::string interactionBody(const DiagramView& view);
std::string requirementsBody(const DiagramView& view);

}  // namespace modelyne::explain::detail
