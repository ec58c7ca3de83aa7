#include "export/number_format.h"

#include <charconv>
#include <cmath>
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

void appendNumber(std::string& out, double value) {
  char buf[kNumberBufferSize];
  out.append(buf, formatNumber(value, buf));
}

std::string formatNumber(double value) {
  char buf[kNumberBufferSize];
  return std::string(buf, formatNumber(value, buf));
}

}  // namespace modelyne::exporter
