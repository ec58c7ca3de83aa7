#include "sim/compiled_expression.h"

#include <algorithm>
#include <cmath>

#include "sim/detail/parser.h"

namespace modelyne::core::sim::parametric {

namespace {

// ---- Instruction set

// Binary operations.
constexpr std::uint32_t kAdd = 0, kSub = 1, kMul = 2, kDiv = 3, kPow = 4, kOperationCount = 5;

// Forms of a binary operation by where its operands live: both on the
// stack; the right one a constant or a variable; the left one a constant or
// a variable with the right one on the stack; or neither on the stack (two
// variables, or a variable and a constant), the result pushed. Fusing the
// loads of operands into the operation halves the instructions executed.
constexpr std::uint32_t kStackStack = 0, kStackConst = 1, kStackVar = 2, kConstStack = 3,
                        kVarStack = 4, kVarVar = 5, kVarConst = 6, kConstVar = 7, kFormCount = 8;

constexpr std::uint32_t kPushConst = kOperationCount * kFormCount;
constexpr std::uint32_t kPushVar = kPushConst + 1;
constexpr std::uint32_t kNegate = kPushConst + 2;
// "^2": the top of the stack squared, or a variable squared and pushed.
constexpr std::uint32_t kSquare = kPushConst + 3;
constexpr std::uint32_t kSquareVar = kPushConst + 4;

constexpr std::uint32_t opcode(std::uint32_t op, std::uint32_t form) noexcept {
  return op * kFormCount + form;
}

inline double apply(std::uint32_t op, double a, double b) noexcept {
  switch (op) {
    case kAdd: return a + b;
    case kSub: return a - b;
    case kMul: return a * b;
    case kDiv: return detail::divide(a, b);
    default: return detail::power(a, b);
  }
}

}  // namespace

// ---- Compilation

// Operands are kept pending (a constant or a variable not yet loaded) as
// long as possible, so that constants fold and loads fuse into operations.
class Compiler {
 public:
  struct Value {
    enum Kind { kConstant, kVariable, kStacked } kind;
    double number = 0.0;
    std::uint32_t index = 0;
  };

  explicit Compiler(CompiledExpression& out) noexcept : out_(out) {}

  Value number(double v) const noexcept { return {Value::kConstant, v, 0}; }
  Value name(std::string_view name, std::size_t) {
    const auto it = std::find(out_.names_.begin(), out_.names_.end(), name);
    const auto slot = static_cast<std::uint32_t>(it - out_.names_.begin());
    if (it == out_.names_.end()) out_.names_.emplace_back(name);
    return {Value::kVariable, 0.0, slot};
  }
  Value add(Value a, Value b) { return binary(kAdd, a, b); }
  Value subtract(Value a, Value b) { return binary(kSub, a, b); }
  Value multiply(Value a, Value b) { return binary(kMul, a, b); }
  Value divide(Value a, Value b) { return binary(kDiv, a, b); }
  Value power(Value a, Value b) {
    if (b.kind == Value::kConstant && b.number == 2.0 && a.kind != Value::kConstant) {
      if (a.kind == Value::kVariable) {
        emit(kSquareVar, a.index, 1);
      } else {
        emit(kSquare, 0, 0);  // a is on the stack
      }
      return stacked();
    }
    return binary(kPow, a, b);
  }
  Value negate(Value a) {
    if (a.kind == Value::kConstant) return {Value::kConstant, -a.number, 0};
    load(a);
    emit(kNegate, 0, 0);
    return stacked();
  }

  void finish(Value v) { load(v); }

 private:
  static Value stacked() noexcept { return {Value::kStacked, 0.0, 0}; }

  Value binary(std::uint32_t op, Value a, Value b) {
    if (a.kind == Value::kConstant && b.kind == Value::kConstant)
      return {Value::kConstant, apply(op, a.number, b.number), 0};
    if (a.kind != Value::kStacked && b.kind != Value::kStacked) {
      if (b.kind == Value::kVariable) {
        if (a.kind == Value::kVariable) emit(opcode(op, kVarVar), a.index, 1, b.index);
        else emit(opcode(op, kConstVar), constant(a.number), 1, b.index);
      } else {
        emit(opcode(op, kVarConst), a.index, 1, constant(b.number));
      }
      return stacked();
    }
    if (a.kind != Value::kStacked && b.kind == Value::kStacked) {
      // The right operand is already on the stack: take the left one inline.
      if (a.kind == Value::kConstant) emit(opcode(op, kConstStack), constant(a.number), 0);
      else emit(opcode(op, kVarStack), a.index, 0);
      return stacked();
    }
    load(a);
    switch (b.kind) {
      case Value::kConstant: emit(opcode(op, kStackConst), constant(b.number), 0); break;
      case Value::kVariable: emit(opcode(op, kStackVar), b.index, 0); break;
      case Value::kStacked: emit(opcode(op, kStackStack), 0, -1); break;
    }
    return stacked();
  }

  void load(const Value& v) {
    if (v.kind == Value::kConstant) emit(kPushConst, constant(v.number), 1);
    else if (v.kind == Value::kVariable) emit(kPushVar, v.index, 1);
  }

  std::uint32_t constant(double v) {
    out_.constants_.push_back(v);
    return static_cast<std::uint32_t>(out_.constants_.size() - 1);
  }

  void emit(std::uint32_t op, std::uint32_t arg, int stackEffect, std::uint32_t arg2 = 0) {
    out_.code_.push_back({op, arg, arg2});
    depth_ += stackEffect;
    out_.maxStack_ = std::max(out_.maxStack_, static_cast<std::uint32_t>(depth_));
  }

  CompiledExpression& out_;
  int depth_ = 0;
};

CompiledExpression CompiledExpression::compile(std::string_view text) {
  CompiledExpression result;
  Compiler compiler(result);
  detail::Parser<Compiler> parser(text, compiler);
  compiler.finish(parser.parse());
  return result;
}

int CompiledExpression::slotOf(std::string_view name) const noexcept {
  const auto it = std::find(names_.begin(), names_.end(), name);
  return it == names_.end() ? -1 : static_cast<int>(it - names_.begin());
}

// ---- Evaluation

namespace {

template <std::uint32_t Op>
inline double applyOp(double a, double b) noexcept {
  if constexpr (Op == kAdd) return a + b;
  else if constexpr (Op == kSub) return a - b;
  else if constexpr (Op == kMul) return a * b;
  else if constexpr (Op == kDiv) return detail::divide(a, b);
  else return detail::power(a, b);
}

// One flat switch over every opcode: the hot loop of repeated evaluation.
double execute(const std::vector<CompiledExpression::Instruction>& code, const double* constants,
               const double* slots, double* stack) noexcept {
  double* sp = stack;  // one past the top
  for (const auto& in : code) {
    switch (in.op) {
#define MODELYNE_SIM_FORMS(OP)                                                                   \
  case opcode(OP, kStackStack):                                                                 \
    --sp;                                                                                       \
    sp[-1] = applyOp<OP>(sp[-1], sp[0]);                                                        \
    break;                                                                                      \
  case opcode(OP, kStackConst): sp[-1] = applyOp<OP>(sp[-1], constants[in.arg]); break;         \
  case opcode(OP, kStackVar): sp[-1] = applyOp<OP>(sp[-1], slots[in.arg]); break;               \
  case opcode(OP, kConstStack): sp[-1] = applyOp<OP>(constants[in.arg], sp[-1]); break;         \
  case opcode(OP, kVarStack): sp[-1] = applyOp<OP>(slots[in.arg], sp[-1]); break;                 \
  case opcode(OP, kVarVar): *sp++ = applyOp<OP>(slots[in.arg], slots[in.arg2]); break;           \
  case opcode(OP, kVarConst): *sp++ = applyOp<OP>(slots[in.arg], constants[in.arg2]); break;      \
  case opcode(OP, kConstVar): *sp++ = applyOp<OP>(constants[in.arg], slots[in.arg2]); break;
      MODELYNE_SIM_FORMS(kAdd)
      MODELYNE_SIM_FORMS(kSub)
      MODELYNE_SIM_FORMS(kMul)
      MODELYNE_SIM_FORMS(kDiv)
      MODELYNE_SIM_FORMS(kPow)
#undef MODELYNE_SIM_FORMS
      case kPushConst: *sp++ = constants[in.arg]; break;
      case kPushVar: *sp++ = slots[in.arg]; break;
      case kSquare: sp[-1] = detail::square(sp[-1]); break;
      case kSquareVar: *sp++ = detail::square(slots[in.arg]); break;
      default: sp[-1] = -sp[-1]; break;  // kNegate
    }
  }
  return stack[0];
}

}  // namespace

double CompiledExpression::evaluate(std::span<const double> slots) const noexcept {
  constexpr std::uint32_t kInlineStack = 64;
  if (maxStack_ <= kInlineStack) {
    double stack[kInlineStack];
    return execute(code_, constants_.data(), slots.data(), stack);
  }
  std::vector<double> stack(maxStack_);
  return execute(code_, constants_.data(), slots.data(), stack.data());
}

bool CompiledExpression::bind(const VariableTable& values, std::vector<double>& slots) const {
  slots.assign(names_.size(), 0.0);
  bool missing = false;
  for (std::size_t i = 0; i < names_.size(); ++i) {
    const auto it = values.find(names_[i]);
    if (it == values.end()) missing = true;
    else slots[i] = it->second;
  }
  return missing;
}

Evaluation CompiledExpression::evaluate(const VariableTable& values) const {
  std::vector<double> slots;
  const bool missing = bind(values, slots);
  return {evaluate(slots), missing};
}

}  // namespace modelyne::core::sim::parametric
