#pragma once
/// A compiled form of a parametric expression: parsed once into a flat
/// postfix program over variable slots, then evaluated many times with
/// changing values. It gives the same results as `EvaluateExpression` bit
/// for bit (same operations in the same order, the zero-divisor rule, the
/// sign before "^", the unresolved flag; a NaN result is a NaN in both, its
/// sign bit and payload unspecified) and throws the same errors from
/// `compile`.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sim/expression.h"

namespace modelyne::core::sim::parametric {

class CompiledExpression {
 public:
  /// Parses `text` with exactly the rules of `EvaluateExpression`; throws
  /// `ParseError` (or the literal conversion's exception) as it would.
  static CompiledExpression compile(std::string_view text);

  /// The distinct names the expression reads, in order of first use; slot i
  /// of `evaluate` holds the value of `variables()[i]`.
  const std::vector<std::string>& variables() const noexcept { return names_; }
  /// Slot of a name, or -1 when the expression does not read it.
  int slotOf(std::string_view name) const noexcept;

  /// Evaluates with one value per slot; `slots.size()` must be at least
  /// `variables().size()`.
  double evaluate(std::span<const double> slots) const noexcept;
  /// Evaluates against a table: missing names read as 0.0 and raise the
  /// unresolved flag, as in `EvaluateExpression`.
  Evaluation evaluate(const VariableTable& values) const;
  /// Fills `slots` from a table (missing names give 0.0); returns whether a
  /// name was missing.
  bool bind(const VariableTable& values, std::vector<double>& slots) const;

  /// Number of instructions of the program (after constant folding).
  std::size_t size() const noexcept { return code_.size(); }

  /// One instruction: `op` with up to two operand indices (slot or constant).
  struct Instruction {
    std::uint32_t op;
    std::uint32_t arg;
    std::uint32_t arg2;
  };

 private:
  friend class Compiler;
  std::vector<Instruction> code_;
  std::vector<double> constants_;
  std::vector<std::string> names_;
  std::uint32_t maxStack_ = 0;
};

}  // namespace modelyne::core::sim::parametric
