#pragma once
/// The diagram plan: the small pipe-delimited text ("TITLE|", "NODE|",
/// "EDGE|" lines) through which plain-language requests become diagram
/// content, its in-memory form, the parser and writer, the keyword maps from
/// words to plan kinds and the three-column grid that parsed nodes are laid
/// out on.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace modelyne::ai {

enum class PlanNodeKind : std::int32_t {
  Block = 0, Actor = 1, State = 2, Action = 3, UseCase = 4,
  Requirement = 5, Constraint = 6, Interface = 7, Generic = 8,
};
inline constexpr int kPlanNodeKindCount = 9;

enum class PlanEdgeKind : std::int32_t {
  Connection = 0, Containment = 1, Flow = 2, Generalization = 3,
  Dependency = 4, Satisfy = 5, Allocate = 6,
};
inline constexpr int kPlanEdgeKindCount = 7;

/// Default size of a plan node, in diagram units.
inline constexpr float kPlanNodeWidth = 180.0f;
inline constexpr float kPlanNodeHeight = 100.0f;

struct PlanNode {
  std::string id;     ///< unique within its plan
  std::string label;
  PlanNodeKind kind = PlanNodeKind::Block;
  float x = 0.0f;
  float y = 0.0f;
  float width = kPlanNodeWidth;
  float height = kPlanNodeHeight;

  friend bool operator==(const PlanNode&, const PlanNode&) = default;
};

struct PlanEdge {
  std::string source;  ///< node id
  std::string target;  ///< node id
  PlanEdgeKind kind = PlanEdgeKind::Connection;
  std::string label;   ///< may be empty

  friend bool operator==(const PlanEdge&, const PlanEdge&) = default;
};

struct DiagramPlan {
  std::string title;
  std::vector<PlanNode> nodes;
  std::vector<PlanEdge> edges;
  std::string notes;  ///< what the producer did, for the log

  friend bool operator==(const DiagramPlan&, const DiagramPlan&) = default;
};

/// Appends `note` to `plan.notes`, separated by one space when notes are
/// already non-empty.
void AppendNote(DiagramPlan& plan, std::string_view note);

/// The plan word of a kind ("Block", "Containment"); a value outside the
/// enumeration yields "Block" or "Connection".
std::string_view PlanWord(PlanNodeKind kind) noexcept;
std::string_view PlanWord(PlanEdgeKind kind) noexcept;

/// Keyword maps: the word is compared whole, ASCII case-insensitively;
/// unknown words yield Block or Connection.
PlanNodeKind PlanNodeKindFromWord(std::string_view word) noexcept;
PlanEdgeKind PlanEdgeKindFromWord(std::string_view word) noexcept;

/// Puts node i at x = (i mod 3) * 220 + 80, y = (i div 3) * 150 + 80 with
/// the default size.
void PlaceOnGrid(std::vector<PlanNode>& nodes) noexcept;

/// Parses plan text into `plan` (replacing its content). Chatter, malformed
/// lines, echoed template lines, repeated node ids and edges to unknown ids
/// are skipped. Returns true when at least one node was parsed; on false
/// `plan` is left as it was. Never throws.
bool ParsePlan(std::string_view text, DiagramPlan& plan) noexcept;

/// The plan as text, one LF-ended line per record: the TITLE line when the
/// title is non-empty, then every node, then every edge.
std::string WritePlan(const DiagramPlan& plan);

}  // namespace modelyne::ai
