#include "interchange/report.h"

#include <string_view>

namespace modelyne::interchange {

namespace {

// ---- UTF-8 ----

/// Length of the well-formed UTF-8 sequence at `s[i]`, or 0.
std::size_t utf8Length(std::string_view s, std::size_t i) {
  const auto c = static_cast<unsigned char>(s[i]);
  std::size_t n = 0;
  std::uint32_t cp = 0;
  if (c < 0x80) return 1;
  if ((c & 0xE0) == 0xC0) n = 2, cp = c & 0x1F;
  else if ((c & 0xF0) == 0xE0) n = 3, cp = c & 0x0F;
  else if ((c & 0xF8) == 0xF0) n = 4, cp = c & 0x07;
  else return 0;
  if (i + n > s.size()) return 0;
  for (std::size_t k = 1; k < n; ++k) {
    const auto d = static_cast<unsigned char>(s[i + k]);
    if ((d & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (d & 0x3F);
  }
  const bool overlong = (n == 2 && cp < 0x80) || (n == 3 && cp < 0x800) || (n == 4 && cp < 0x10000);
  if (overlong || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return n;
}

std::string located(const std::string& file, std::uint32_t line) {
  return line ? file + ":" + std::to_string(line) : file;
}

}  // namespace

void InterchangeReport::account(Disposition d) noexcept {
  switch (d) {
    case Disposition::node: ++nodes; break;
    case Disposition::edge: ++edges; break;
    case Disposition::property: ++properties; break;
    case Disposition::lost: ++lost; break;
  }
}

void InterchangeReport::lose(LossEntry entry) {
  if (!entry.drawn) ++lost;
  losses.push_back(std::move(entry));
}

std::string summaryLine(const InterchangeReport& r) {
  return "Read " + std::to_string(r.total()) + " " + r.unit + ": " + std::to_string(r.nodes) + " as nodes, " +
         std::to_string(r.edges) + " as edges, " + std::to_string(r.properties) + " as properties, " +
         std::to_string(r.lost) + " not drawn.";
}

std::string lossLines(const InterchangeReport& r) {
  std::string out;
  for (const LossEntry& l : r.losses) {
    out += located(r.file, l.line) + ": " + l.kind;
    if (!l.name.empty()) out += " " + l.name;
    out += ": " + l.reason + "\n";
  }
  return out;
}

std::string errorLines(const InterchangeReport& r) {
  std::string out;
  for (const SyntaxError& e : r.errors)
    out += located(r.file, e.line) + ":" + std::to_string(e.column) + ": " + e.message + "\n";
  return out;
}

std::string jsonQuoted(std::string_view s) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string out = "\"";
  for (std::size_t i = 0; i < s.size();) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\t') {
      out += "\\t";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c < 0x20) {
      out += "\\u00";
      out += kHex[c >> 4];
      out += kHex[c & 15];
    } else if (c >= 0x80) {
      const std::size_t n = utf8Length(s, i);
      if (n == 0) {
        out += "\xEF\xBF\xBD";
        ++i;
        continue;
      }
      out.append(s.substr(i, n));
      i += n;
      continue;
    } else {
      out += static_cast<char>(c);
    }
    ++i;
  }
  return out + "\"";
}

std::string reportJson(const InterchangeReport& r) {
  std::string out = "{" + jsonQuoted(r.unit) + ": " + std::to_string(r.total()) +
                    ", \"nodes\": " + std::to_string(r.nodes) + ", \"edges\": " + std::to_string(r.edges) +
                    ", \"properties\": " + std::to_string(r.properties) + ", \"lost\": [";
  for (std::size_t i = 0; i < r.losses.size(); ++i) {
    const LossEntry& l = r.losses[i];
    out += (i ? ", " : "") + std::string("{\"line\": ") + std::to_string(l.line) + ", \"kind\": " + jsonQuoted(l.kind) +
           ", \"name\": " + jsonQuoted(l.name) + ", \"reason\": " + jsonQuoted(l.reason) + "}";
  }
  out += "], \"errors\": [";
  for (std::size_t i = 0; i < r.errors.size(); ++i) {
    const SyntaxError& e = r.errors[i];
    out += (i ? ", " : "") + std::string("{\"line\": ") + std::to_string(e.line) +
           ", \"column\": " + std::to_string(e.column) + ", \"message\": " + jsonQuoted(e.message) + "}";
  }
  out += "], \"models\": [";
  for (std::size_t i = 0; i < r.models.size(); ++i) {
    const ModelSummary& m = r.models[i];
    out += (i ? ", " : "") + std::string("{\"id\": ") + jsonQuoted(m.id) + ", \"kind\": " +
           jsonQuoted(core::diagramKindKey(m.kind)) + ", \"nodes\": " + std::to_string(m.nodes) +
           ", \"edges\": " + std::to_string(m.edges) + "}";
  }
  return out + "]}\n";
}

}  // namespace modelyne::interchange
