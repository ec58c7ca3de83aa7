#include "check/transition_label.h"

#include "check/text.h"

namespace modelyne::check {

namespace {

constexpr std::size_t npos = std::string_view::npos;

// The effect separator: the first "/" outside square brackets, so that a
// guard such as "[a / b > 2]" keeps its division.
std::size_t effectSlash(std::string_view label) noexcept {
  int depth = 0;
  for (std::size_t i = 0; i < label.size(); ++i) {
    const char c = label[i];
    if (c == '[') ++depth;
    else if (c == ']' && depth > 0) --depth;
    else if (c == '/' && depth == 0) return i;
  }
  return npos;
}

}  // namespace

std::optional<std::string_view> transitionLabelFault(std::string_view label) noexcept {
  const std::size_t open = label.find('[');
  if (open != npos && label.find(']', open + 1) == npos)
    return "guard bracket '[' is not closed by ']'";
  const std::size_t close = label.find(']');
  if (close != npos && (open == npos || open > close)) return "guard bracket ']' has no matching '['";
  const std::size_t slash = effectSlash(label);
  if (slash != npos && isBlank(label.substr(slash + 1))) return "effect missing after '/'";
  return std::nullopt;
}

TransitionLabel splitTransitionLabel(std::string_view label) noexcept {
  TransitionLabel out;
  const std::size_t slash = effectSlash(label);
  const std::string_view head = slash == npos ? label : label.substr(0, slash);
  if (slash != npos) out.effect = trimmed(label.substr(slash + 1));
  const std::size_t open = head.find('[');
  out.trigger = trimmed(head.substr(0, open));
  if (open != npos) {
    const std::size_t close = head.rfind(']');
    const std::size_t end = (close == npos || close < open) ? head.size() : close;
    out.guard = trimmed(head.substr(open + 1, end - open - 1));
  }
  return out;
}

}  // namespace modelyne::check
