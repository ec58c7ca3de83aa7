#include "sim/guard.h"

#include <array>
#include <stdexcept>

#include "sim/compiled_expression.h"

namespace modelyne::core::sim {

namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

std::string_view trimmed(std::string_view s) {
  const auto b = s.find_first_not_of(kBlanks);
  if (b == std::string_view::npos) return {};
  return s.substr(b, s.find_last_not_of(kBlanks) - b + 1);
}

enum class Compare : unsigned char { lt, le, gt, ge, eq, ne };

struct Operator {
  std::string_view text;
  Compare op;
};

// Two-character operators first, so "<=" is not read as "<" and "=".
constexpr std::array<Operator, 6> kOperators{{
    {"<=", Compare::le}, {">=", Compare::ge}, {"==", Compare::eq},
    {"!=", Compare::ne}, {"<", Compare::lt},  {">", Compare::gt},
}};

bool compare(Compare op, double a, double b) {
  switch (op) {
    case Compare::lt: return a < b;
    case Compare::le: return a <= b;
    case Compare::gt: return a > b;
    case Compare::ge: return a >= b;
    case Compare::eq: return a == b;
    case Compare::ne: return a != b;
  }
  return false;
}

// The first comparison operator outside parentheses: its position and entry.
std::pair<std::size_t, const Operator*> findOperator(std::string_view text) {
  int depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '(') ++depth;
    if (c == ')') --depth;
    if (depth != 0) continue;
    for (const Operator& o : kOperators)
      if (text.substr(i, o.text.size()) == o.text) return {i, &o};
  }
  return {std::string_view::npos, nullptr};
}

// One side of a guard; throws ParseError, or reports a missing name.
struct Side {
  double value = 0.0;
  std::string missing;  ///< first name the values lack
};

Side evaluateSide(std::string_view text, const GuardValues& values) {
  Side side;
  const parametric::Evaluation e = parametric::EvaluateExpression(text, values);
  side.value = e.value;
  if (e.unresolved) {
    const parametric::CompiledExpression compiled = parametric::CompiledExpression::compile(text);
    for (const std::string& name : compiled.variables())
      if (!values.contains(name)) {
        side.missing = name;
        break;
      }
  }
  return side;
}

}  // namespace

std::string guardOfLabel(std::string_view label) {
  const auto open = label.find('[');
  if (open == std::string_view::npos) return {};
  int depth = 0;
  for (std::size_t i = open; i < label.size(); ++i) {
    if (label[i] == '[') ++depth;
    if (label[i] == ']' && --depth == 0) return std::string(trimmed(label.substr(open + 1, i - open - 1)));
  }
  // An unclosed bracket: the rest of the label is the guard.
  return std::string(trimmed(label.substr(open + 1)));
}

GuardResult evaluateGuard(std::string_view raw, const GuardValues& values) {
  GuardResult r;
  const std::string_view text = trimmed(raw);
  r.text = std::string(text);
  if (text.empty()) return r;
  if (text == "else") {
    r.outcome = GuardOutcome::elseBranch;
    return r;
  }
  try {
    const auto [at, op] = findOperator(text);
    Side left, right;
    bool holds = false;
    if (op) {
      left = evaluateSide(text.substr(0, at), values);
      right = evaluateSide(text.substr(at + op->text.size()), values);
      holds = compare(op->op, left.value, right.value);
    } else {
      left = evaluateSide(text, values);
      holds = left.value != 0.0;
    }
    const std::string& missing = !left.missing.empty() ? left.missing : right.missing;
    if (!missing.empty()) {
      r.outcome = GuardOutcome::unknown;
      r.reason = "unknown name " + missing;
      return r;
    }
    r.outcome = holds ? GuardOutcome::isTrue : GuardOutcome::isFalse;
  } catch (const parametric::ParseError& e) {
    r.outcome = GuardOutcome::unknown;
    r.reason = e.what();
  } catch (const std::out_of_range&) {
    r.outcome = GuardOutcome::unknown;
    r.reason = "number out of range";
  } catch (const std::invalid_argument&) {
    r.outcome = GuardOutcome::unknown;
    r.reason = "invalid number";
  }
  return r;
}

std::string describeUnknown(std::string_view where, const GuardResult& r) {
  std::string out(where);
  out += " [" + r.text + "] cannot be evaluated (" + r.reason + ")";
  return out;
}

}  // namespace modelyne::core::sim
