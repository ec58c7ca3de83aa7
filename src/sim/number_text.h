#pragma once
/// The text of a computed value wherever the simulation shows or stores one:
/// the shortest decimal text that reads back to the same double ("0.1",
/// "1500", "1e+300", "-0", "inf", "nan").

#include <string>

namespace modelyne::core::sim {

/// Shortest round-trip text of `value`.
std::string shortestNumberText(double value);

}  // namespace modelyne::core::sim
