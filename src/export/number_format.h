#pragma once
/// The number format of exported drawings: two decimals, then trailing zeros
/// and a bare point dropped ("12.50" -> "12.5", "3.00" -> "3", "-0.001" -> "-0").

#include <string>
#include <string_view>

namespace modelyne::exporter {

/// Room for the text of any finite or non-finite double in the format.
inline constexpr std::size_t kNumberBufferSize = 48;

/// Writes the formatted value into `buf` and returns its length.
std::size_t formatNumber(double value, char (&buf)[kNumberBufferSize]) noexcept;

/// Writes the formatted value of a float at `out` (at most
/// kNumberBufferSize - 1 bytes) and returns the end. Exact and fast: a float
/// times 100 is exact in a double, so one rounding to the nearest integer
/// (ties to even) gives what "%.2f" prints.
char* writeNumber(char* out, float value) noexcept;

/// Appends the formatted value to `out`.
void appendNumber(std::string& out, double value);

/// The formatted value as a string.
std::string formatNumber(double value);

}  // namespace modelyne::exporter
