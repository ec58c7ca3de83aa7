#include "export/number_format.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

namespace modelyne::exporter {

std::size_t formatNumber(double value, char (&buf)[kNumberBufferSize]) noexcept {
  // Drawings hold 32-bit floats; a double beyond their range would not fit the buffer.
  constexpr double kLimit = std::numeric_limits<float>::max();
  if (value > kLimit) value = kLimit;
  if (value < -kLimit) value = -kLimit;
  // to_chars prints exactly what "%.2f" prints, without the locale and far faster.
  auto res = std::to_chars(buf, buf + kNumberBufferSize, value, std::chars_format::fixed, 2);
  std::size_t len = res.ec == std::errc{} ? static_cast<std::size_t>(res.ptr - buf) : 0;
  const bool hasPoint = std::string_view(buf, len).find('.') != std::string_view::npos;
  if (hasPoint) {
    while (len > 0 && buf[len - 1] == '0') --len;
    if (len > 0 && buf[len - 1] == '.') --len;
  }
  if (len == 0) {
    buf[0] = '0';
    len = 1;
  }
  return len;
}

char* writeNumber(char* out, float value) noexcept {
  const double hundredths = static_cast<double>(value) * 100.0;
  if (!(std::fabs(hundredths) < 9.0e15)) {  // huge or not finite: the general path
    char buf[kNumberBufferSize];
    const std::size_t n = formatNumber(static_cast<double>(value), buf);
    std::memcpy(out, buf, n);
    return out + n;
  }
  const double rounded = std::nearbyint(hundredths);
  const auto magnitude = static_cast<unsigned long long>(std::fabs(rounded));
  if (std::signbit(value)) *out++ = '-';  // "%.2f" keeps the sign of a value that rounds to zero
  out = std::to_chars(out, out + 24, magnitude / 100).ptr;
  const auto cents = static_cast<unsigned>(magnitude % 100);
  if (cents != 0) {
    *out++ = '.';
    *out++ = static_cast<char>('0' + cents / 10);
    if (cents % 10 != 0) *out++ = static_cast<char>('0' + cents % 10);
  }
  return out;
}

void appendNumber(std::string& out, double value) {
  char buf[kNumberBufferSize];
  out.append(buf, formatNumber(value, buf));
}

std::string formatNumber(double value) {
  char buf[kNumberBufferSize];
  return std::string(buf, formatNumber(value, buf));
}

}  // namespace modelyne::exporter
