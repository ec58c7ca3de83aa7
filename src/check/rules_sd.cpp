// Sequence diagram rules: what messages join, reply pairing, and the
// guards, references and operands of combined fragments.

#include <array>
#include <climits>
#include <stdexcept>
#include <string>
#include <vector>

#include "check/element_categories.h"
#include "check/rules.h"
#include "check/text.h"

namespace modelyne::check {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;

struct MessageKind {
  E type;
  std::string_view name;
};
constexpr MessageKind kMessageKinds[] = {
    {E::sysmlSyncMessage, "synchronous"}, {E::sysmlAsyncMessage, "asynchronous"},
    {E::sysmlCreateMessage, "create"},    {E::sysmlDeleteMessage, "delete"},
    {E::sysmlFoundMessage, "found"},      {E::sysmlLostMessage, "lost"},
    {E::sysmlReplyMessage, "reply"}};

std::string_view messageKind(E type) {
  for (const MessageKind& k : kMessageKinds)
    if (k.type == type) return k.name;
  return {};
}

// Operators whose operands are entered on a condition: the loop's bound,
// the option's and the break's condition, each alternative's guard.
constexpr std::array<std::string_view, 4> kGuardedOperators = {"loop", "opt", "alt", "break"};
// Operators that only mean something with two or more operands: a choice
// between alternatives, and parallel, strict or weak ordering of operands.
constexpr std::array<std::string_view, 4> kMultiOperandOperators = {"alt", "par", "strict", "seq"};

bool isOneOf(std::string_view op, std::span<const std::string_view> list) {
  for (const std::string_view o : list)
    if (equalsIgnoreCase(op, o)) return true;
  return false;
}

// Base-10 integer parse with the semantics of std::stoi (leading white
// space and a sign accepted, trailing text ignored) and its fixed messages.
int parseOperandCount(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  if (i >= text.size() || text[i] < '0' || text[i] > '9')
    throw std::invalid_argument("invalid stoi argument");
  long long value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    value = value * 10 + (text[i] - '0');
    if (value > static_cast<long long>(INT_MAX) + 1) throw std::out_of_range("stoi argument out of range");
  }
  if (negative) value = -value;
  if (value > INT_MAX || value < INT_MIN) throw std::out_of_range("stoi argument out of range");
  return static_cast<int>(value);
}

// Whom a message end stands for: an execution anchored to a lifeline
// ("ownerLifeline") stands for that lifeline, so a call to the lifeline and
// a reply from its execution pair up.
std::int32_t participant(const DiagramIndex& diagram, std::int32_t node) {
  static const std::string kOwnerLifeline = "ownerLifeline";
  const core::Node& n = diagram.nodes()[static_cast<std::size_t>(node)];
  if (n.type != S::umlActivation) return node;
  const std::string_view owner = trimmed(property(n, kOwnerLifeline));
  if (owner.empty()) return node;
  const std::int32_t lifeline = diagram.find(owner);
  return lifeline == DiagramIndex::kMissing ? node : lifeline;
}

void checkFragment(const core::Node& n, Findings& findings) {
  static const std::string kOperator = "operator";
  static const std::string kGuard = "guard";
  static const std::string kNumOperands = "numOperands";
  const std::string_view op = trimmed(property(n, kOperator));
  if (op.empty()) return;
  if (isOneOf(op, kGuardedOperators) && isBlank(property(n, kGuard)))
    findings.add({"Combined fragment '", n.id, "' (operator=", op,
                  ") should declare a guard (SysML Distilled §7.6.3 / §7.6.4)."});
  if (equalsIgnoreCase(op, "ref") && isBlank(n.text))
    findings.add({"Combined fragment '", n.id,
                  "' (operator=ref) should name the referenced interaction in its text (SysML "
                  "Distilled §7.6.9)."});
  if (isOneOf(op, kMultiOperandOperators)) {
    // A fragment without an operand count is drawn with one operand.
    const std::string_view count = property(n, kNumOperands);
    const int operands = isBlank(count) ? 1 : parseOperandCount(count);
    if (operands < 2)
      findings.add({"Combined fragment '", n.id, "' (operator=", op,
                    ") must have at least two operands separated by dashed lines (sequence-diagram.md "
                    "§5)."});
  }
}

}  // namespace

void checkSequence(const DiagramIndex& diagram, Findings& findings) {
  for (const core::Node& n : diagram.nodes())
    if (n.type == S::umlCombinedFragment) checkFragment(n, findings);

  const auto edges = diagram.edges();
  std::vector<char> called(diagram.nodes().size(), 0);
  for (std::size_t i = 0; i < edges.size(); ++i)
    if (edges[i].type == E::sysmlSyncMessage && diagram.target(i) != DiagramIndex::kMissing)
      called[static_cast<std::size_t>(participant(diagram, diagram.target(i)))] = 1;

  for (std::size_t i = 0; i < edges.size(); ++i) {
    const core::Edge& e = edges[i];
    const std::string_view kind = messageKind(e.type);
    if (kind.empty() || !diagram.resolved(i)) continue;
    const S s = diagram.sourceType(i);
    const S t = diagram.targetType(i);
    if (e.type == E::sysmlFoundMessage) {
      if (!isLifelineOrExecution(t))
        findings.add({"Edge '", e.id,
                      "' is a found message but does not terminate at a lifeline / execution "
                      "(sequence-diagram.md §3)."});
      continue;
    }
    if (e.type == E::sysmlLostMessage) {
      if (!isLifelineOrExecution(s))
        findings.add({"Edge '", e.id,
                      "' is a lost message but does not originate from a lifeline / execution "
                      "(sequence-diagram.md §3)."});
      continue;
    }
    if (!isMessageEnd(s) || !isMessageEnd(t))
      findings.add({"Edge '", e.id, "' is a ", kind,
                    " message but does not connect lifelines / activations / actors / gates (SysML "
                    "Distilled §7.5 / sequence-diagram.md §3)."});
    if (e.type == E::sysmlReplyMessage &&
        !called[static_cast<std::size_t>(participant(diagram, diagram.source(i)))])
      findings.add({"Edge '", e.id,
                    "' is a reply message but no synchronous call is directed at its source. Replies "
                    "must pair with a sync call (SysML Distilled §7.5.3)."});
  }
}

}  // namespace modelyne::check
