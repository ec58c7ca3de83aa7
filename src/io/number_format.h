#pragma once
/// Numbers of the model file: written as a default text stream writes a
/// float (general notation, six significant digits, no trailing zeros:
/// 120, 12.25, 1.23457e+06, inf, -inf, nan), read like the standard
/// string-to-float and string-to-int conversions (leading white space
/// skipped, the longest numeric prefix taken).
///
///   std::string s; io::appendFloat(s, 12.25f);          // "12.25"
///   float v; if (io::parseFloat("1e3", v) == io::NumberStatus::ok) ...
///   io::numberStatusText(io::NumberStatus::invalid, "stof")  // "invalid stof argument"

#include <cstdint>
#include <string>
#include <string_view>

namespace modelyne::io {

enum class NumberStatus { ok, invalid, outOfRange };

/// Appends the text a default `std::ostream` writes for `value`.
void appendFloat(std::string& out, float value);
/// The text a default `std::ostream` writes for `value`.
std::string formatFloat(float value);

/// Parses like std::stof: leading white space, optional sign, decimal or
/// hexadecimal digits, "inf", "nan"; the longest numeric prefix counts.
NumberStatus parseFloat(std::string_view text, float& out) noexcept;
/// Parses like std::stoi (base 10) into a 32-bit signed integer.
NumberStatus parseInt(std::string_view text, std::int32_t& out) noexcept;

/// "invalid stof argument" / "stof argument out of range" (with `fn` = "stof"
/// or "stoi"); empty for ok.
std::string numberStatusText(NumberStatus status, std::string_view fn);

}  // namespace modelyne::io
