#include "cli/json.h"

namespace modelyne::cli {

std::string jsonStringArray(std::span<const std::string> items) {
  if (items.empty()) return "[]\n";
  std::string out = "[\n";
  for (std::size_t i = 0; i < items.size(); ++i) {
    out += "  " + jsonString(items[i]);
    out += i + 1 < items.size() ? ",\n" : "\n";
  }
  out += "]\n";
  return out;
}

}  // namespace modelyne::cli
