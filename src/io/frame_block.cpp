#include "io/frame_block.h"

#include "io/xml_escape.h"
#include "io/xml_scan.h"

namespace modelyne::io {

namespace {
constexpr std::string_view kFrameTag = "<DiagramFrame";
constexpr std::string_view kClose = "</diagram>";
}  // namespace

std::string diagramFrameLine(const core::DiagramFrame& f) {
  std::string s = "  <DiagramFrame kind=\"";
  s.append(core::diagramKindKey(f.kind));
  s.append("\" elementType=\"");
  appendEscaped(s, f.elementType);
  s.append("\" elementName=\"");
  appendEscaped(s, f.elementName);
  s.append("\" name=\"");
  appendEscaped(s, f.name);
  s.append("\" show=\"");
  s.append(f.show ? "true" : "false");
  s.append("\"/>\n");
  return s;
}

bool parseDiagramFrame(std::string_view xml, core::DiagramFrame& frame) {
  const std::size_t at = detail::findText(xml, kFrameTag);
  if (at == std::string_view::npos) return false;
  const std::size_t gt = xml.find('>', at);
  const std::string_view tag = xml.substr(at, gt == std::string_view::npos ? std::string_view::npos : gt - at + 1);

  const std::string kind = detail::attributeOr(tag, "kind", "");
  if (!kind.empty())
    if (auto k = core::diagramKindFromKey(kind)) frame.kind = *k;
  std::string v = detail::attributeOr(tag, "elementType", "");
  if (!v.empty()) frame.elementType = std::move(v);
  v = detail::attributeOr(tag, "elementName", "");
  if (!v.empty()) frame.elementName = std::move(v);
  frame.name = detail::attributeOr(tag, "name", "");
  std::string_view show;
  if (detail::findAttribute(tag, "show", show) && !show.empty())
    frame.show = !(show == "false" || show == "0");
  return true;
}

void insertDiagramFrame(std::string& xml, const core::DiagramFrame& frame) {
  const std::size_t at = detail::findText(xml, kFrameTag);
  if (at != std::string::npos) {
    const std::size_t gt = xml.find('>', at);
    std::size_t begin = at;
    std::size_t end = gt == std::string::npos ? xml.size() : gt + 1;
    detail::widenToLines(xml, begin, end);
    xml.erase(begin, end - begin);
  }
  const std::size_t close = xml.rfind(kClose);
  if (close == std::string::npos) return;
  xml.insert(close, diagramFrameLine(frame));
}

}  // namespace modelyne::io
