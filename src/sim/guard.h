#pragma once
/// Guards of flows, transitions and fragment operands. A guard is the text
/// in square brackets on an edge label ("[stock > 0]", "openCmd [unlocked]
/// / beep()"), or a fragment's "guard" property. It is "else", one
/// comparison (<, <=, >, >=, ==, !=) between two expressions of the
/// parametric expression language, or one expression (true when not zero).
/// A guard that does not parse, or that names a value nobody gave, cannot
/// be evaluated: it counts as false and says why.

#include <string>
#include <string_view>

#include "sim/expression.h"

namespace modelyne::core::sim {

/// Named values guards read: from `--var` and the diagram's value properties.
using GuardValues = parametric::VariableTable;

enum class GuardOutcome : unsigned char { absent, isTrue, isFalse, unknown, elseBranch };

struct GuardResult {
  GuardOutcome outcome = GuardOutcome::absent;
  std::string text;    ///< the guard as written, trimmed, without brackets
  std::string reason;  ///< unknown: why ("trailing input", "unknown name stock")
};

/// The text between the first "[" of an edge label and its matching "]",
/// trimmed; empty when the label holds no brackets.
std::string guardOfLabel(std::string_view label);

/// Evaluates guard text (without brackets); empty text is `absent`.
GuardResult evaluateGuard(std::string_view text, const GuardValues& values);

/// Whether a result lets its flow be taken (true, or absent: no guard).
inline bool guardHolds(const GuardResult& r) noexcept {
  return r.outcome == GuardOutcome::isTrue || r.outcome == GuardOutcome::absent;
}

/// "e4 [x > 1] cannot be evaluated (unknown name x)" style wording of an
/// unknown guard for trace details.
std::string describeUnknown(std::string_view where, const GuardResult& r);

}  // namespace modelyne::core::sim
