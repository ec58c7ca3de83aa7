#include "io/project_file.h"

#include <algorithm>
#include <unordered_set>

#include "io/diagram_writer.h"
#include "io/frame_block.h"
#include "io/number_format.h"
#include "io/quoted_text.h"
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

std::optional<LoadedProject> loadProject(std::string_view text, ReadError* error, std::string_view fileName,
                                         bool readFrames) {
  LoadedProject loaded;
  if (!isProjectWrapper(text)) {
    core::DiagramFrame frame;
    if (readFrames) parseDiagramFrame(text, frame);
    loaded.project.models.push_back(modelOfBareDiagram(frame));
    loaded.diagrams.push_back(DiagramSource{text, 1, 1});
    return loaded;
  }
  loaded.wrapped = true;
  detail::LineCounter lines(text);
  auto failAt = [&](std::string what, std::size_t offset, std::string element) {
    if (error) *error = ReadError{std::move(what), lines.lineAt(offset), std::move(element), std::string(fileName)};
    return std::nullopt;
  };
  auto warnAt = [&](std::string what, std::size_t line, std::string element) {
    loaded.warnings.push_back(Diagnostic{std::move(what), line, std::move(element), std::string(fileName)});
  };
  const std::size_t rootAt = detail::findText(text, kRoot);
  const std::string_view root = tagAt(text, rootAt);
  if (root.empty() || root.back() != '>')
    return failAt("unexpected end of text inside <modelyneProject>", rootAt, "modelyneProject");
  const std::size_t rootLine = lines.lineAt(rootAt);

  core::Project& project = loaded.project;
  project.name = detail::attributeOr(root, "name", "");
  std::string_view active;
  if (detail::findAttribute(root, "active", active)) {
    const NumberStatus st = parseInt(active, project.active);
    if (st != NumberStatus::ok)
      return failAt(numberStatusText(st, "stoi") + ": attribute 'active' of <modelyneProject> is " + quotedText(active),
                    rootAt, "modelyneProject");
  }

  std::unordered_set<std::string> ids;  // seen so far: a repeated id is reported where it repeats
  std::size_t pos = rootAt + root.size();
  for (;;) {
    const std::size_t open = detail::findText(text, kModel, pos);
    if (open == std::string_view::npos) break;
    const std::size_t close = detail::findText(text, kModelEnd, open);
    if (close == std::string_view::npos)
      return failAt("<modelyneModel> is not closed: the text ends early", open, "modelyneModel");
    const std::string_view block = text.substr(open, close - open);
    const std::string_view head = tagAt(block, 0);
    core::Model model;
    model.id = detail::attributeOr(head, "id", "");
    model.name = detail::attributeOr(head, "name", "");
    DiagramSource source;
    source.tagLine = lines.lineAt(open);
    source.line = source.tagLine;
    const std::size_t d = detail::findText(block, kDiagram, head.size());
    const std::size_t dEnd = block.rfind(kDiagramEnd);
    if (d != std::string_view::npos && dEnd != std::string_view::npos && dEnd > d) {
      source.text = block.substr(d, dEnd + kDiagramEnd.size() - d);
      source.line = lines.lineAt(open + d);
      if (readFrames) parseDiagramFrame(source.text, model.frame);
    }
    if (!model.id.empty() && !ids.insert(model.id).second)
      warnAt("model id " + quotedText(model.id, '\'') + " is already used by an earlier model", source.tagLine,
             "modelyneModel");
    project.models.push_back(std::move(model));
    loaded.diagrams.push_back(source);
    pos = close + kModelEnd.size();
  }
  if (detail::findText(text, kRootEnd, rootAt) == std::string_view::npos)
    return failAt("<modelyneProject> is not closed: the text ends early", rootAt, "modelyneProject");

  const auto count = static_cast<std::int64_t>(project.models.size());
  if (count > 0 && (project.active < 0 || project.active >= count)) {
    // The root comes before every model, so its warning goes first.
    loaded.warnings.insert(
        loaded.warnings.begin(),
        Diagnostic{"attribute 'active' of <modelyneProject> is " + std::to_string(project.active) +
                       ", but the project has " + std::to_string(count) + (count == 1 ? " model" : " models") +
                       (project.active < 0 ? "; the first" : "; the last") + " model is active instead",
                   rootLine, "modelyneProject", std::string(fileName)});
  }
  return loaded;
}

core::Model modelOfBareDiagram(const core::DiagramFrame& frame) {
  core::Model model;
  model.id = "model1";
  model.name = frame.name.empty() ? std::string("Model") : frame.name;
  model.frame = frame;
  return model;
}

std::size_t activeIndex(const core::Project& project) {
  if (project.models.empty() || project.active < 0) return 0;
  return std::min(static_cast<std::size_t>(project.active), project.models.size() - 1);
}

}  // namespace modelyne::io
