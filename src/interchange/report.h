#pragma once
/// The account an importer or exporter gives of what it read: every element
/// of the source is counted once as a node, an edge, a property or a loss,
/// losses carry the line and a reason, syntax errors their line and column,
/// and each model made is listed. Shared by every interchange format.
///
///   InterchangeReport r; r.file = "a.sysml";
///   r.account(Disposition::node);
///   r.lose({12, "metadata", "Safety", "metadata not drawn"});
///   std::cerr << summaryLine(r) << lossLines(r);    // text form
///   std::cout << reportJson(r);                      // the JSON form
///
/// Locations are fields; they become text only when printed.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/diagram_kind.h"

namespace modelyne::interchange {

/// A statement that could not be read; the reader skipped to the next one.
struct SyntaxError {
  std::uint32_t line = 0;    ///< 1-based
  std::uint32_t column = 0;  ///< 1-based, in bytes
  std::string message;       ///< one sentence saying what was expected

  friend bool operator==(const SyntaxError&, const SyntaxError&) = default;
};

/// How one element of the source ended up.
enum class Disposition : std::uint8_t { node, edge, property, lost };

/// Something the target cannot hold. `drawn` is false when the element is
/// not represented at all (it then counts as lost), true when it is drawn
/// but a detail of it is kept only as text or dropped.
struct LossEntry {
  std::uint32_t line = 0;  ///< 1-based line in the source, 0 when none
  std::string kind;        ///< e.g. "metadata", "alias", "position"
  std::string name;        ///< may be empty
  std::string reason;      ///< e.g. "metadata not drawn"
  bool drawn = false;

  friend bool operator==(const LossEntry&, const LossEntry&) = default;
};

struct ModelSummary {
  std::string id;
  core::DiagramKind kind = core::DiagramKind::pkg;
  std::size_t nodes = 0;
  std::size_t edges = 0;

  friend bool operator==(const ModelSummary&, const ModelSummary&) = default;
};

struct InterchangeReport {
  std::string file;                   ///< as named in printed lines
  std::string unit = "declarations";  ///< what the source is made of ("elements" for XMI)
  std::size_t nodes = 0;
  std::size_t edges = 0;
  std::size_t properties = 0;
  std::size_t lost = 0;
  std::vector<LossEntry> losses;      ///< in source order
  std::vector<SyntaxError> errors;    ///< in source order
  std::vector<ModelSummary> models;

  /// Every element read: the sum of the four counts.
  std::size_t total() const noexcept { return nodes + edges + properties + lost; }
  void account(Disposition d) noexcept;
  /// Adds a loss line; one that is not drawn also counts the element as lost.
  void lose(LossEntry entry);
};

/// "Read N declarations: A as nodes, B as edges, C as properties, D not drawn."
std::string summaryLine(const InterchangeReport& report);
/// One "FILE:LINE: KIND NAME: REASON" line per loss, each ending in a line feed.
std::string lossLines(const InterchangeReport& report);
/// One "FILE:LINE:COLUMN: MESSAGE" line per syntax error.
std::string errorLines(const InterchangeReport& report);
/// The JSON form: {"declarations": N, "nodes": A, "edges": B, "properties": C,
/// "lost": [...], "errors": [...], "models": [...]} and a line feed.
std::string reportJson(const InterchangeReport& report);

/// A JSON string literal (quotes, backslashes and control characters
/// escaped; bytes that are not UTF-8 become U+FFFD).
std::string jsonQuoted(std::string_view s);

}  // namespace modelyne::interchange
