#include "sim/number_text.h"

#include <charconv>

namespace modelyne::core::sim {

std::string shortestNumberText(double value) {
  char buffer[32];  // the longest shortest form ("-2.2250738585072014e-308") is 24
  const auto r = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, r.ptr);
}

}  // namespace modelyne::core::sim
