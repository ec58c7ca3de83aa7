#include "io/data_integration.h"

#include "io/xml_escape.h"
#include "io/xml_scan.h"

namespace modelyne::io {

namespace {

constexpr std::string_view kOpen = "<DataIntegration";
constexpr std::string_view kEnd = "</DataIntegration>";
constexpr std::string_view kLink = "<Link";
constexpr std::string_view kClose = "</diagram>";

// "<Link" followed by a name-ending character (so "<LinkSet" is not a link).
bool isLinkTagAt(std::string_view text, std::size_t at) {
  const std::size_t after = at + kLink.size();
  if (after >= text.size()) return false;
  const char c = text[after];
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '/' || c == '>';
}

std::vector<core::DataIntegrationLink> linksIn(std::string_view text) {
  std::vector<core::DataIntegrationLink> links;
  std::size_t pos = 0;
  while ((pos = text.find(kLink, pos)) != std::string_view::npos) {
    if (!isLinkTagAt(text, pos)) {
      pos += kLink.size();
      continue;
    }
    const std::size_t gt = text.find('>', pos);
    if (gt == std::string_view::npos) break;  // cut-off tag: not a link
    const std::string_view tag = text.substr(pos, gt - pos + 1);
    core::DataIntegrationLink link;
    link.id = detail::attributeOr(tag, "id", "");
    link.type = detail::attributeOr(tag, "type", "");
    link.path = detail::attributeOr(tag, "path", "");
    link.label = detail::attributeOr(tag, "label", "");
    links.push_back(std::move(link));
    pos = gt + 1;
  }
  return links;
}

}  // namespace

bool hasDataIntegrationBlock(std::string_view xml) { return detail::findText(xml, kOpen) != std::string_view::npos; }

std::vector<core::DataIntegrationLink> parseDataIntegration(std::string_view xml) {
  const std::size_t open = detail::findText(xml, kOpen);
  if (open == std::string_view::npos) return {};
  const std::size_t end = detail::findText(xml, kEnd, open);
  return linksIn(xml.substr(open, end == std::string_view::npos ? std::string_view::npos : end - open));
}

std::vector<core::DataIntegrationLink> parseSidecarLinks(std::string_view text) { return linksIn(text); }

std::string dataIntegrationBlock(std::span<const core::DataIntegrationLink> links) {
  if (links.empty()) return {};
  std::string s = "  <DataIntegration version=\"1\">\n";
  for (const core::DataIntegrationLink& l : links) {
    s.append("    <Link id=\"");
    appendEscaped(s, l.id);
    s.append("\" type=\"");
    appendEscaped(s, l.type);
    s.append("\" path=\"");
    appendEscaped(s, l.path);
    s.append("\" label=\"");
    appendEscaped(s, l.label);
    s.append("\"/>\n");
  }
  s.append("  </DataIntegration>\n");
  return s;
}

void insertDataIntegrationBlock(std::string& xml, std::span<const core::DataIntegrationLink> links) {
  const std::size_t open = detail::findText(xml, kOpen);
  if (open != std::string::npos) {
    std::size_t begin = open;
    std::size_t end;
    const std::size_t close = detail::findText(xml, kEnd, open);
    if (close != std::string::npos) {
      end = close + kEnd.size();
    } else {
      // No closing tag: take out the opening tag only.
      const std::size_t gt = xml.find('>', open);
      end = gt == std::string::npos ? xml.size() : gt + 1;
    }
    detail::widenToLines(xml, begin, end);
    xml.erase(begin, end - begin);
  }
  if (links.empty()) return;
  const std::size_t closeDiagram = xml.rfind(kClose);
  if (closeDiagram == std::string::npos) return;
  xml.insert(closeDiagram, dataIntegrationBlock(links));
}

std::filesystem::path sidecarPathFor(const std::filesystem::path& modelPath) {
  std::string s = modelPath.string();
  constexpr std::string_view kXml = ".xml";
  auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; };
  bool endsXml = s.size() >= kXml.size();
  for (std::size_t i = 0; endsXml && i < kXml.size(); ++i)
    endsXml = lower(s[s.size() - kXml.size() + i]) == kXml[i];
  if (endsXml) s.resize(s.size() - kXml.size());
  s += ".mllinks.xml";
  return std::filesystem::path(s);
}

}  // namespace modelyne::io
