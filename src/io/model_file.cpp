#include "io/model_file.h"

#include <algorithm>
#include <cstdio>
#include <system_error>

#include "io/atomic_file.h"
#include "io/data_integration.h"
#include "io/diagram_writer.h"
#include "io/frame_block.h"
#include "io/project_file.h"
#include "io/xml_scan.h"

namespace modelyne::io {

namespace {

LogLine loadedCountLine(std::size_t count) {
  char buf[96];
  std::snprintf(buf, sizeof buf, "Loaded %zu data integration link(s).", count);
  return LogLine{kLogDiLoadedFmt, buf, {std::to_string(count)}};
}

// Line of `offset` inside the model's diagram text, as a line of the whole file.
std::size_t fileLine(std::string_view file, std::string_view diagram, std::size_t lineInDiagram) {
  if (diagram.empty() || lineInDiagram == 0) return lineInDiagram;
  const auto* begin = file.data();
  const auto* at = diagram.data();
  if (at < begin || at > begin + file.size()) return lineInDiagram;
  return detail::lineAt(file, static_cast<std::size_t>(at - begin)) + lineInDiagram - 1;
}

// Reads a wrapper or a bare diagram and checks every model's diagram, so a
// damaged model is reported when the file is opened, not when it is shown.
OpenedModelFile openText(std::string_view text) {
  OpenedModelFile r;
  ReadError err;
  if (isProjectWrapper(text)) {
    r.wrapped = true;
    auto project = loadProject(text, &err);
    if (!project) {
      r.error = std::move(err);
      return r;
    }
    if (project->models.empty()) {
      r.error = ReadError{"the project holds no model", 1, "modelyneProject"};
      return r;
    }
    r.project = std::move(*project);
  } else {
    r.project = projectFromDiagram(text);
  }
  const int count = static_cast<int>(r.project.models.size());
  r.project.active = std::clamp(r.project.active, 0, count - 1);

  // In a wrapper the models' texts are copies; find each one in the file to
  // report file lines.
  std::size_t searchFrom = 0;
  for (int i = 0; i < count; ++i) {
    const core::Model& m = r.project.models[static_cast<std::size_t>(i)];
    std::string_view inFile;
    if (!r.wrapped) {
      inFile = text;
    } else if (!m.diagramXml.empty()) {
      const std::size_t at = text.find(m.diagramXml, searchFrom);
      if (at != std::string_view::npos) {
        inFile = text.substr(at, m.diagramXml.size());
        searchFrom = at + m.diagramXml.size();
      }
    }
    std::optional<DiagramContent> content;
    if (m.diagramXml.empty()) {
      content = DiagramContent{};  // a model without a diagram reads as an empty one
      content->frame = m.frame;
    } else {
      content = i == r.project.active ? readDiagram(m.diagramXml, &err) : parseDiagram(m.diagramXml, &err);
    }
    if (!content) {
      err.line = fileLine(text, inFile, err.line);
      if (r.wrapped) err.what = "model '" + (m.name.empty() ? m.id : m.name) + "': " + err.what;
      r.error = std::move(err);
      r.project = {};
      return r;
    }
    if (i == r.project.active) r.active = std::move(*content);
  }
  for (const std::string& w : r.active.warnings) r.log.push_back(LogLine{kLogLoadSkipped, w, {}});
  return r;
}

// Moves the links of a legacy sidecar into the active model and rewrites the
// file; the sidecar is removed only once the file holds them.
void migrateSidecar(const std::filesystem::path& path, OpenedModelFile& r) {
  core::Model& model = r.project.models[static_cast<std::size_t>(r.project.active)];
  if (hasDataIntegrationBlock(model.diagramXml)) return;
  const std::filesystem::path sidecar = sidecarPathFor(path);
  std::error_code ec;
  if (!std::filesystem::is_regular_file(sidecar, ec)) return;
  const std::optional<std::string> sideText = readFile(sidecar);
  if (!sideText) return;
  std::vector<core::DataIntegrationLink> links = parseSidecarLinks(*sideText);
  if (links.empty()) return;

  r.active.links = links;
  std::string updated = model.diagramXml;
  insertDataIntegrationBlock(updated, links);
  bool saved = false;
  if (hasDataIntegrationBlock(updated)) {
    model.diagramXml = std::move(updated);
    const std::string fileText = r.wrapped ? serializeProjectWrapper(r.project) : model.diagramXml;
    saved = writeFileAtomic(path, fileText);
  }
  if (saved) {
    r.log.push_back(LogLine{kLogDiMigrated, "Migrated data integration sidecar into project file.", {}});
    std::filesystem::remove(sidecar, ec);
  } else {
    r.log.push_back(LogLine{kLogDiSaveFailed, "Failed to update data integration block in project file.", {}});
  }
}

}  // namespace

OpenedModelFile openModelText(std::string_view text) {
  OpenedModelFile r = openText(text);
  if (!r.error) r.log.push_back(loadedCountLine(r.active.links.size()));
  return r;
}

OpenedModelFile openModelFile(const std::filesystem::path& path) {
  OpenedModelFile r;
  std::string why;
  const std::optional<std::string> text = readFile(path, &why);
  if (!text) {
    r.error = ReadError{why, 0, {}};
    return r;
  }
  r = openText(*text);
  if (r.error) return r;
  if (r.project.name.empty()) r.project.name = path.stem().string();
  migrateSidecar(path, r);
  r.log.push_back(loadedCountLine(r.active.links.size()));
  return r;
}

bool saveModelFile(const std::filesystem::path& path, core::Project& project, const core::Document& doc,
                   std::string* error) {
  if (project.models.empty()) return writeFileAtomic(path, serializeDocument(doc), error);
  const int count = static_cast<int>(project.models.size());
  project.active = std::clamp(project.active, 0, count - 1);
  core::Model& model = project.models[static_cast<std::size_t>(project.active)];
  model.diagramXml = serializeDocument(doc);
  model.frame = doc.frame();
  return writeFileAtomic(path, serializeProject(project, doc), error);
}

bool saveDiagramFile(const std::filesystem::path& path, const core::Document& doc, std::string* error) {
  return writeFileAtomic(path, serializeDocument(doc), error);
}

}  // namespace modelyne::io
