#include "io/model_file.h"

#include <algorithm>
#include <cstdio>
#include <system_error>

#include "io/data_integration.h"
#include "io/diagram_reader.h"
#include "io/diagram_writer.h"
#include "io/frame_block.h"
#include "io/project_file.h"
#include "io/quoted_text.h"

namespace modelyne::io {

namespace {

LogLine loadedCountLine(std::size_t count) {
  char buf[96];
  std::snprintf(buf, sizeof buf, "Loaded %zu data integration link(s).", count);
  return LogLine{kLogDiLoadedFmt, buf, {std::to_string(count)}};
}

std::string modelIdList(const core::Project& project) {
  std::string s;
  for (const core::Model& m : project.models) {
    if (!s.empty()) s += ", ";
    s += m.id;
    if (s.size() > kQuotedTextMax) break;
  }
  return shortenedText(s);
}

// Picks the model `options.modelId` names, or the active one; false with
// `r.error` set when no model has that id.
bool selectModel(OpenedModelFile& r, const OpenOptions& options) {
  r.selected = activeIndex(r.project);
  if (!options.modelId) return true;
  const auto& models = r.project.models;
  std::size_t found = models.size();
  std::size_t count = 0;
  for (std::size_t i = 0; i < models.size(); ++i) {
    if (models[i].id != *options.modelId) continue;
    if (count++ == 0) found = i;
  }
  if (count == 0) {
    r.error = Diagnostic{"no model " + quotedText(*options.modelId, '\'') + " (models: " + modelIdList(r.project) + ")",
                         0, "modelyneModel", options.fileName};
    return false;
  }
  if (count > 1)
    r.warnings.push_back(Diagnostic{std::to_string(count) + " models have the id " + quotedText(*options.modelId, '\'') +
                                        "; the first, " + quotedText(models[found].name) + ", is used",
                                    r.places[found].tagLine, "modelyneModel", options.fileName});
  r.selected = found;
  return true;
}

// Splits the text into models and reads the diagrams asked for; `sources`
// receives where each model's diagram lies in `text`.
OpenedModelFile openSplit(std::string_view text, const OpenOptions& options, std::vector<DiagramSource>& sources) {
  OpenedModelFile r;
  if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) {
    r.error = Diagnostic{"the file is empty, not a model file", 0, {}, options.fileName};
    return r;
  }
  ReadError err;
  // Most files are one bare diagram: it is read in one pass that also tells
  // whether the text holds "<modelyneProject" (a wrapper after all).
  {
    auto doc = std::make_unique<core::Document>();
    bool projectMark = false;
    const bool read = parseDiagramInto(text, *doc, &err, &r.warnings, TextPlace{options.fileName, 1}, &projectMark);
    if (!(read ? projectMark : isProjectWrapper(text))) {
      if (!read) {
        OpenedModelFile failed;
        failed.error = std::move(err);
        return failed;
      }
      r.project.models.push_back(modelOfBareDiagram(doc->frame()));
      r.documents.push_back(std::move(doc));
      r.places.push_back(ModelPlace{1, 1, 0, text.size()});
      sources.push_back(DiagramSource{text, 1, 1});
      if (!selectModel(r, options)) {
        r.project = {};
        r.documents.clear();
      }
      return r;
    }
    r.warnings.clear();
  }
  std::optional<LoadedProject> loaded = loadProject(text, &err, options.fileName, false);
  if (!loaded) {
    r.error = std::move(err);
    return r;
  }
  if (loaded->project.models.empty()) {
    r.error = Diagnostic{"the project holds no model", 1, "modelyneProject", options.fileName};
    return r;
  }
  r.wrapped = loaded->wrapped;
  r.project = std::move(loaded->project);
  r.warnings = std::move(loaded->warnings);
  sources = std::move(loaded->diagrams);
  const std::size_t count = r.project.models.size();
  r.project.active = static_cast<std::int32_t>(activeIndex(r.project));
  for (const DiagramSource& s : sources) {
    const std::size_t offset = s.text.empty() ? 0 : static_cast<std::size_t>(s.text.data() - text.data());
    r.places.push_back(ModelPlace{s.tagLine, s.line, offset, s.text.size()});
  }
  if (!selectModel(r, options)) {
    r.project = {};
    r.places.clear();
    return r;
  }

  r.documents.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    core::Model& model = r.project.models[i];
    const DiagramSource& source = sources[i];
    if (!options.allModels && i != r.selected) {
      parseDiagramFrame(source.text, model.frame);
      continue;
    }
    auto doc = std::make_unique<core::Document>();
    // A model without diagram text reads as an empty diagram with the default frame.
    if (!source.text.empty() &&
        !parseDiagramInto(source.text, *doc, &err, &r.warnings, TextPlace{options.fileName, source.line})) {
      OpenedModelFile failed;
      failed.error = std::move(err);
      return failed;
    }
    model.frame = doc->frame();
    r.documents[i] = std::move(doc);
  }
  return r;
}

// Moves the links of a legacy sidecar into the selected model and rewrites
// the file; the sidecar is removed only once the file holds them.
void migrateSidecar(const std::filesystem::path& path, const std::vector<DiagramSource>& sources, OpenedModelFile& r) {
  const std::string_view text = sources[r.selected].text;
  if (hasDataIntegrationBlock(text)) return;
  const std::filesystem::path sidecar = sidecarPathFor(path);
  std::error_code ec;
  if (!std::filesystem::is_regular_file(sidecar, ec)) return;
  const std::optional<std::string> sideText = readFile(sidecar);
  if (!sideText) return;
  std::vector<core::DataIntegrationLink> links = parseSidecarLinks(*sideText);
  if (links.empty()) return;

  r.documents[r.selected]->links() = links;
  std::string updated(text);
  insertDataIntegrationBlock(updated, links);
  bool saved = false;
  if (hasDataIntegrationBlock(updated)) {
    std::string fileText;
    if (r.wrapped) {
      core::Project project = r.project;
      for (std::size_t i = 0; i < project.models.size(); ++i)
        project.models[i].diagramXml = i == r.selected ? updated : std::string(sources[i].text);
      fileText = serializeProjectWrapper(project);
    } else {
      fileText = std::move(updated);
    }
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

OpenedModelFile openModelText(std::string_view text, const OpenOptions& options) {
  std::vector<DiagramSource> sources;
  OpenedModelFile r = openSplit(text, options, sources);
  if (!r.error) r.log.push_back(loadedCountLine(r.documents[r.selected]->links().size()));
  return r;
}

OpenedModelFile openModelFile(const std::filesystem::path& path, const OpenOptions& options) {
  OpenedModelFile r;
  std::string why;
  const std::optional<std::string> text = readFile(path, &why, options.maxBytes);
  if (!text) {
    r.error = Diagnostic{why, 0, {}, {}};  // the reason names the path itself
    return r;
  }
  OpenOptions named = options;
  if (named.fileName.empty()) named.fileName = path.string();
  std::vector<DiagramSource> sources;
  r = openSplit(*text, named, sources);
  if (r.error) return r;
  if (r.project.name.empty()) r.project.name = path.stem().string();
  if (options.migrateSidecar) migrateSidecar(path, sources, r);
  r.log.push_back(loadedCountLine(r.documents[r.selected]->links().size()));
  return r;
}

bool saveModelFile(const std::filesystem::path& path, core::Project& project, const core::Document& doc,
                   std::string* error) {
  if (project.models.empty()) return writeFileAtomic(path, serializeDocument(doc), error);
  project.active = static_cast<std::int32_t>(activeIndex(project));
  core::Model& model = project.models[static_cast<std::size_t>(project.active)];
  model.diagramXml = serializeDocument(doc);
  model.frame = doc.frame();
  return writeFileAtomic(path, serializeProject(project, doc), error);
}

bool saveDiagramFile(const std::filesystem::path& path, const core::Document& doc, std::string* error) {
  return writeFileAtomic(path, serializeDocument(doc), error);
}

}  // namespace modelyne::io
