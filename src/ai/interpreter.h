#pragma once
/// The offline text interpreter: turns a plain-language system description
/// into a DiagramPlan deterministically, from fixed word tables, without any
/// network.

#include <string_view>

#include "ai/plan.h"

namespace modelyne::ai {

/// Entities (named by their noun phrase, kind from the role noun at their
/// head) become nodes "n1", "n2", ... in order of first occurrence, laid out
/// on the grid; relation verbs become edges from subject to object. The
/// title is the first sentence (80 characters at most) and the notes count
/// entities and relationships. Never throws; empty text gives an empty plan.
DiagramPlan InterpretText(std::string_view text) noexcept;

}  // namespace modelyne::ai
