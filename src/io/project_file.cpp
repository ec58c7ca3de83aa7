#include "io/project_file.h"

#include "io/diagram_writer.h"
#include "io/frame_block.h"
#include "io/number_format.h"
#include "io/xml_escape.h"
#include "io/xml_scan.h"

namespace modelyne::io {

namespace {

constexpr std::string_view kRoot = "<modelyneProject";
constexpr std::string_view kRootEnd = "</modelyneProject>";
constexpr std::string_view kModel = "<modelyneModel";
constexpr std::string_view kModelEnd = "</modelyneModel>";
constexpr std::string_view kDiagram = "<diagram";
constexpr std::string_view kDiagramEnd = "</diagram>";

// The tag starting at `at`, up to and including its ">" (or the rest of the text).
std::string_view tagAt(std::string_view text, std::size_t at) {
  const std::size_t gt = text.find('>', at);
  return text.substr(at, gt == std::string_view::npos ? std::string_view::npos : gt - at + 1);
}

}  // namespace

bool isProjectWrapper(std::string_view text) { return detail::findText(text, kRoot) != std::string_view::npos; }

std::string serializeProjectWrapper(const core::Project& project) {
  std::string out = "<modelyneProject version=\"1\" name=\"";
  appendEscaped(out, project.name);
  out.append("\" active=\"");
  out.append(std::to_string(project.active < 0 ? 0 : project.active));
  out.append("\">\n");
  for (const core::Model& m : project.models) {
    out.append("<modelyneModel id=\"");
    appendEscaped(out, m.id);
    out.append("\" name=\"");
    appendEscaped(out, m.name);
    out.append("\">\n");
    if (!m.diagramXml.empty()) {
      out.append(m.diagramXml);
      out.push_back('\n');
    } else {
      out.append("<diagram></diagram>\n");
    }
    out.append("</modelyneModel>\n");
  }
  out.append("</modelyneProject>\n");
  return out;
}

std::string serializeProject(const core::Project& project, const core::Document& open) {
  if (project.models.size() <= 1) {
    if (!project.models.empty() && !project.models.front().diagramXml.empty()) return project.models.front().diagramXml;
    return serializeDocument(open);
  }
  return serializeProjectWrapper(project);
}

std::optional<core::Project> loadProject(std::string_view text, ReadError* error) {
  auto failAt = [&](std::string what, std::size_t offset, std::string element) {
    if (error) *error = ReadError{std::move(what), detail::lineAt(text, offset), std::move(element)};
    return std::nullopt;
  };
  const std::size_t rootAt = detail::findText(text, kRoot);
  if (rootAt == std::string_view::npos) return failAt("no <modelyneProject> element", 0, "modelyneProject");
  const std::string_view root = tagAt(text, rootAt);
  if (root.empty() || root.back() != '>')
    return failAt("unexpected end of text inside <modelyneProject>", rootAt, "modelyneProject");

  core::Project project;
  project.name = detail::attributeOr(root, "name", "");
  std::string_view active;
  if (detail::findAttribute(root, "active", active)) {
    const NumberStatus st = parseInt(active, project.active);
    if (st != NumberStatus::ok)
      return failAt(numberStatusText(st, "stoi") + ": attribute 'active' of <modelyneProject> at line " +
                        std::to_string(detail::lineAt(text, rootAt)) + " is \"" + std::string(active.substr(0, 40)) + "\"",
                    rootAt, "modelyneProject");
  }

  std::size_t pos = rootAt + root.size();
  for (;;) {
    const std::size_t open = detail::findText(text, kModel, pos);
    if (open == std::string_view::npos) break;
    const std::size_t close = detail::findText(text, kModelEnd, open);
    if (close == std::string_view::npos)
      return failAt("<modelyneModel> opened at line " + std::to_string(detail::lineAt(text, open)) +
                        " is not closed: the text ends early",
                    open, "modelyneModel");
    const std::string_view block = text.substr(open, close - open);
    const std::string_view head = tagAt(block, 0);
    core::Model model;
    model.id = detail::attributeOr(head, "id", "");
    model.name = detail::attributeOr(head, "name", "");
    const std::size_t d = detail::findText(block, kDiagram, head.size());
    const std::size_t dEnd = block.rfind(kDiagramEnd);
    if (d != std::string_view::npos && dEnd != std::string_view::npos && dEnd > d)
      model.diagramXml = std::string(block.substr(d, dEnd + kDiagramEnd.size() - d));
    parseDiagramFrame(model.diagramXml, model.frame);
    project.models.push_back(std::move(model));
    pos = close + kModelEnd.size();
  }
  if (detail::findText(text, kRootEnd, rootAt) == std::string_view::npos)
    return failAt("<modelyneProject> opened at line " + std::to_string(detail::lineAt(text, rootAt)) +
                      " is not closed: the text ends early",
                  rootAt, "modelyneProject");
  return project;
}

core::Project projectFromDiagram(std::string_view diagramXml) {
  core::Project project;
  core::Model model;
  model.id = "model1";
  model.diagramXml = std::string(diagramXml);
  parseDiagramFrame(model.diagramXml, model.frame);
  model.name = model.frame.name.empty() ? std::string("Model") : model.frame.name;
  project.models.push_back(std::move(model));
  return project;
}

}  // namespace modelyne::io
