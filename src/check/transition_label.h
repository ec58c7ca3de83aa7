#pragma once
/// Transition labels of the form "trigger [guard] / effect", every part
/// optional: the syntax check that gives the reason of the first fault, and
/// the split into parts that the pseudostate rules read.

#include <optional>
#include <string_view>

namespace modelyne::check {

/// The reason the label is malformed, or nothing when it is well formed.
/// Checks in this order: a "[" with no later "]"; a "]" before any "["; a
/// "/" (outside the guard) followed by nothing but white space. An empty
/// label is well formed.
std::optional<std::string_view> transitionLabelFault(std::string_view label) noexcept;

struct TransitionLabel {
  std::string_view trigger;  ///< trimmed text before the guard or "/"
  std::string_view guard;    ///< trimmed text inside the first "[" .. "]"
  std::string_view effect;   ///< trimmed text after the "/" outside the guard
};

/// Splits a label, well formed or not, as far as it goes.
TransitionLabel splitTransitionLabel(std::string_view label) noexcept;

}  // namespace modelyne::check
