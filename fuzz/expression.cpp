// Fuzzes the expression language: any text either evaluates or fails with
// ParseError or the literal conversion's own error; the compiled form
// accepts exactly the same texts and gives the same value.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "sim/compiled_expression.h"
#include "sim/expression.h"

using modelyne::core::sim::parametric::CompiledExpression;
using modelyne::core::sim::parametric::EvaluateExpression;
using modelyne::core::sim::parametric::Evaluation;
using modelyne::core::sim::parametric::ParseError;
using modelyne::core::sim::parametric::VariableTable;

namespace {

enum class Outcome { value, parseError, invalidArgument, outOfRange };

template <class F>
Outcome attempt(F&& f, std::string& message) {
  try {
    f();
    return Outcome::value;
  } catch (const ParseError& e) {
    message = e.what();
    return Outcome::parseError;
  } catch (const std::invalid_argument&) {
    return Outcome::invalidArgument;
  } catch (const std::out_of_range&) {
    return Outcome::outOfRange;
  }
}

bool same(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const VariableTable table{{"a", 1.5}, {"b", -2.0}, {"x", 0.0}, {"_", 1e300}};
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  Evaluation direct;
  std::string directMessage;
  const Outcome d = attempt([&] { direct = EvaluateExpression(text, table); }, directMessage);

  Evaluation compiled;
  std::string compiledMessage;
  const Outcome c = attempt([&] { compiled = CompiledExpression::compile(text).evaluate(table); }, compiledMessage);

  if (d != c) std::abort();
  if (d == Outcome::parseError && directMessage != compiledMessage) std::abort();
  if (d == Outcome::value && (!same(direct.value, compiled.value) || direct.unresolved != compiled.unresolved))
    std::abort();
  return 0;
}
