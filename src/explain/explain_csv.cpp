// Markdown explanation to two-column CSV: one record per line of content,
// first column the title marker or the section heading.
#include "explain/explain.h"

namespace modelyne::explain {

namespace {

void appendField(std::string& out, std::string_view field) {
  if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
    out += field;
    return;
  }
  out += '"';
  for (const char c : field) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

void appendRecord(std::string& out, std::string_view section, std::string_view detail) {
  appendField(out, section);
  out += ',';
  appendField(out, detail);
  out += "\r\n";
}

bool isBlank(char c) { return c == ' ' || c == '\t'; }

// The text of a content line without its indentation and list bullet; the
// numbers of ordered lists stay, they carry the order.
std::string_view detailOf(std::string_view line) {
  std::size_t i = 0;
  while (i < line.size() && isBlank(line[i])) ++i;
  line.remove_prefix(i);
  if (line.size() >= 2 && line[0] == '-' && line[1] == ' ') line.remove_prefix(2);
  return line;
}

}  // namespace

std::string markdownToCsv(std::string_view markdown) {
  std::string out = "Section,Detail\r\n";
  std::string_view section;
  while (!markdown.empty()) {
    const std::size_t end = markdown.find('\n');
    std::string_view line = markdown.substr(0, end);
    markdown.remove_prefix(end == std::string_view::npos ? markdown.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);

    if (line.starts_with("# ")) {
      appendRecord(out, "Title", line.substr(2));
    } else if (line.starts_with("## ")) {
      section = line.substr(3);
    } else {
      const std::string_view detail = detailOf(line);
      if (!detail.empty()) appendRecord(out, section, detail);
    }
  }
  return out;
}

}  // namespace modelyne::explain
