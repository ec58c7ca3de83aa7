#include "io/number_format.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <system_error>

namespace modelyne::io {

namespace {

bool isCSpace(char c) noexcept {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool isHexDigit(char c) noexcept {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

}  // namespace

void appendFloat(std::string& out, float value) {
  // Whole numbers below a million print as plain integers under "%g"; most
  // geometry is such, and this path avoids the general formatter.
  if (value > -1e6f && value < 1e6f && value == static_cast<float>(static_cast<std::int32_t>(value)) &&
      !(value == 0.0f && std::signbit(value))) {
    char buf[12];
    const auto res = std::to_chars(buf, buf + sizeof buf, static_cast<std::int32_t>(value));
    out.append(buf, res.ptr);
    return;
  }
  // to_chars with a precision formats as printf("%.6g") would, which is what
  // a default-configured ostream does for a float.
  char buf[32];
  const auto res = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::general, 6);
  out.append(buf, res.ptr);
}

std::string formatFloat(float value) {
  std::string s;
  appendFloat(s, value);
  return s;
}

NumberStatus parseFloat(std::string_view text, float& out) noexcept {
  const char* p = text.data();
  const char* end = p + text.size();
  while (p != end && isCSpace(*p)) ++p;
  bool negative = false;
  if (p != end && (*p == '+' || *p == '-')) {
    negative = *p == '-';
    ++p;
  }
  if (p == end || *p == '+' || *p == '-') return NumberStatus::invalid;
  // Short runs of digits (most geometry) are exact as integers: up to seven
  // digits stay below 2^24, where every integer is a float.
  {
    const char* q = p;
    std::int32_t whole = 0;
    while (q != end && q - p < 8 && *q >= '0' && *q <= '9') whole = whole * 10 + (*q++ - '0');
    const bool more = q != end && ((*q >= '0' && *q <= '9') || *q == '.' || *q == 'e' || *q == 'E' || *q == 'x' ||
                                   *q == 'X' || *q == 'p' || *q == 'P');
    if (q != p && q - p <= 7 && !more) {
      out = negative ? -static_cast<float>(whole) : static_cast<float>(whole);
      return NumberStatus::ok;
    }
  }
  float value = 0.0f;
  std::from_chars_result res{};
  // from_chars takes neither a sign nor the "0x" of a hexadecimal float.
  if (end - p > 2 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X') &&
      (isHexDigit(p[2]) || (p[2] == '.' && end - p > 3 && isHexDigit(p[3])))) {
    res = std::from_chars(p + 2, end, value, std::chars_format::hex);
  } else {
    res = std::from_chars(p, end, value, std::chars_format::general);
  }
  if (res.ec == std::errc::invalid_argument) return NumberStatus::invalid;
  if (res.ec == std::errc::result_out_of_range) return NumberStatus::outOfRange;
  out = negative ? -value : value;
  return NumberStatus::ok;
}

NumberStatus parseInt(std::string_view text, std::int32_t& out) noexcept {
  const char* p = text.data();
  const char* end = p + text.size();
  while (p != end && isCSpace(*p)) ++p;
  bool negative = false;
  if (p != end && (*p == '+' || *p == '-')) {
    negative = *p == '-';
    ++p;
  }
  if (p == end || *p < '0' || *p > '9') return NumberStatus::invalid;
  // Accumulate every digit (as strtol does) so that a long run reports out of range.
  std::int64_t magnitude = 0;
  bool overflow = false;
  for (; p != end && *p >= '0' && *p <= '9'; ++p) {
    if (!overflow) {
      magnitude = magnitude * 10 + (*p - '0');
      if (magnitude > std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1) overflow = true;
    }
  }
  const std::int64_t v = negative ? -magnitude : magnitude;
  if (overflow || v > std::numeric_limits<std::int32_t>::max() || v < std::numeric_limits<std::int32_t>::min())
    return NumberStatus::outOfRange;
  out = static_cast<std::int32_t>(v);
  return NumberStatus::ok;
}

std::string numberStatusText(NumberStatus status, std::string_view fn) {
  switch (status) {
    case NumberStatus::invalid: return "invalid " + std::string(fn) + " argument";
    case NumberStatus::outOfRange: return std::string(fn) + " argument out of range";
    case NumberStatus::ok: break;
  }
  return {};
}

}  // namespace modelyne::io
