#pragma once
/// Constraint propagation over a parametric diagram: reads the value
/// properties, constraints, constraint parameters and binding connectors,
/// orders the equations by their dependencies, evaluates them with
/// `EvaluateExpression` (cycles repeat until they settle) and returns the
/// computed values with a trace. The document is only read.
///
/// How a diagram becomes equations:
/// - A value property ("sysmlValueProperty") is named by its text up to the
///   first ":" or "=" (trimmed). Its given value is, first found wins, the
///   "value" property, the "default" property, or the text after "=" in its
///   label. A value text is a decimal number, optionally followed by blanks
///   and a unit ("1500", "27.5 m/s"); anything else is reported and ignored.
/// - Constraint properties, constraint usages, constraint blocks and
///   constraint definitions hold equations, one per line, "target =
///   expression", in the "equation" and then the "bindings" property. A
///   constraint with neither takes the equations of its definition: the
///   constraint block or definition named by its "type" or "definition"
///   property or by the text after ":" in its label; failing that, the text
///   between "{" and "}" in its label. A block or definition that some
///   constraint in the diagram uses as its definition is not evaluated on
///   its own.
/// - A constraint parameter ("sysmlConstraintParameter", named by its text up
///   to ":") belongs to the constraint it is joined to by any edge other than
///   a binding connector; otherwise to the constraint whose box its own box
///   overlaps or touches (preferring a box holding its centre, then the
///   smallest box, then the first in drawing order). Parameters of no
///   constraint are reported and ignored.
/// - Binding connectors ("sysmlBindingConnector") join parameters and value
///   properties into one value. Inside a constraint's equations a name means
///   that constraint's parameter of that name (its bound value, or a value of
///   the constraint's own when unbound); a name with no such parameter means
///   the value property of that name (the first in drawing order); any other
///   name is a value local to the constraint.
/// - An unknown value read by an equation counts as 0.0 and is reported as
///   unresolved; the values of a cycle that have no value yet start at 0.0.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/document.h"
#include "core/model.h"

namespace modelyne::core::sim::parametric {

/// Largest absolute change that still counts as settled.
inline constexpr double kTolerance = 1e-9;
/// Sweeps over a cycle of equations before the pass gives up on it.
inline constexpr std::uint32_t kIterationLimit = 100;

/// Trace event codes.
enum class TraceCode : std::uint32_t {
  /// A given value entered the table: name, NaN, value; detail is the source
  /// (0 "value" property, 1 "default" property, 2 label text, 3 start value
  /// 0.0 of a cycle).
  valueRead = 1,
  /// An equation was evaluated: target name, value before (NaN when none),
  /// result; detail is the equation's index in `PropagationResult::equations`.
  equationEvaluated = 2,
  /// A target changed by more than the tolerance (or got its first value):
  /// name, before, after; detail is the equation index.
  valueChanged = 3,
  /// A cycle of equations finished (name: its first target), or the whole
  /// pass did (empty name): largest change of the last sweep, the tolerance;
  /// detail is the number of sweeps. A change above the tolerance means the
  /// iteration limit was reached without settling.
  converged = 4,
  /// An equation was rejected: name is the target (or the line), values NaN;
  /// detail is the byte offset of the fault in the expression. The message is
  /// in `PropagationResult::errors`.
  parseError = 5,
  /// An equation read a name that holds no value (counted as 0.0): name, NaN,
  /// 0.0; detail is the equation index.
  unresolvedName = 6,
};

/// The name of a trace event code as tools print it ("valueRead",
/// "equationEvaluated", "valueChanged", "converged", "parseError",
/// "unresolvedName"); "event" for a code outside the table.
std::string_view traceCodeName(TraceCode code) noexcept;

struct TraceEvent {
  TraceCode code;
  std::string name;
  double before;  ///< value before, or the value measured
  double after;   ///< value after, or the limit
  std::uint32_t detail;
  std::uint64_t sequence;  ///< counts the events of one pass from 1
};

/// One equation as the pass understood it.
struct Equation {
  std::string nodeId;      ///< the constraint that holds it
  std::string constraint;  ///< the constraint's name
  std::string text;        ///< the line as written, trimmed
  std::string target;      ///< name of the value it computes
  bool valid = false;      ///< false: rejected (see errors)
};

/// One value of the diagram.
struct ValueEntry {
  std::string name;     ///< value property name, or "constraint.parameter"
  double value = 0.0;   ///< NaN when `known` is false
  bool known = false;   ///< has a given or computed value
  bool given = false;   ///< came from the diagram, not from an equation
  std::string nodeId;   ///< the value property (or parameter, or constraint) it belongs to
  std::vector<std::string> valueNodeIds;  ///< every value property bound to this value
  int equation = -1;    ///< index of the equation that computed it, -1 when none
  std::string equationText;  ///< "constraint: target = expression", empty when none
};

/// A problem found in the diagram, with the node it concerns.
struct PropagationError {
  std::string nodeId;
  std::string message;  ///< a whole sentence, for showing as it is
  /// For an equation whose expression does not parse: the evaluator's own
  /// message ("unexpected end", "number out of range", ...); empty otherwise.
  std::string syntaxError;
  /// Where that fault is: the 1-based column in the equation line as
  /// written, 0 when the fault has no place (a number out of range).
  std::size_t column = 0;
};

struct PropagationResult {
  std::vector<ValueEntry> values;    ///< value properties in drawing order, then other values
  std::vector<Equation> equations;   ///< in the order of the constraints in the drawing
  std::vector<TraceEvent> trace;
  std::vector<std::string> unresolved;  ///< names read without a value, sorted, unique
  std::vector<PropagationError> errors; ///< in the order found
  bool converged = true;               ///< every cycle settled within the iteration limit
  std::uint32_t sweeps = 0;            ///< most sweeps any cycle needed (1 without cycles)

  /// The entry of a value by name, or null.
  const ValueEntry* find(std::string_view name) const noexcept;
};

/// Propagates over the nodes and edges of a diagram.
PropagationResult propagate(std::span<const Node> nodes, std::span<const Edge> edges);
PropagationResult propagate(const Document& document);

}  // namespace modelyne::core::sim::parametric
