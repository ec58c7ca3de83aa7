// Fuzzes the Markdown-to-CSV conversion of the explainer with arbitrary text.
// Besides not crashing, the output must read back as CSV: the header, then
// records of exactly two fields, each ending in CRLF, no quote left open.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "explain/explain.h"

namespace {

// Reads one field starting at `i`; returns false when the text is not valid CSV there.
bool readField(std::string_view csv, std::size_t& i) {
  if (i < csv.size() && csv[i] == '"') {
    for (++i; i < csv.size(); ++i) {
      if (csv[i] != '"') continue;
      if (i + 1 < csv.size() && csv[i + 1] == '"') {
        ++i;
        continue;
      }
      ++i;
      return true;
    }
    return false;  // quote never closed
  }
  while (i < csv.size() && csv[i] != ',' && csv[i] != '\r' && csv[i] != '\n') {
    if (csv[i] == '"') return false;  // a bare quote would have needed quoting
    ++i;
  }
  return true;
}

bool wellFormed(std::string_view csv) {
  if (!csv.starts_with("Section,Detail\r\n")) return false;
  std::size_t i = 0;
  while (i < csv.size()) {
    if (!readField(csv, i) || i >= csv.size() || csv[i] != ',') return false;
    ++i;
    if (!readField(csv, i) || csv.substr(i, 2) != "\r\n") return false;
    i += 2;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view markdown(reinterpret_cast<const char*>(data), size);
  if (!wellFormed(modelyne::explain::markdownToCsv(markdown))) std::abort();
  return 0;
}
