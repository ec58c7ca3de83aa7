#include "cli/model_input.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "cli/output.h"
#include "io/project_file.h"

namespace modelyne::cli {

namespace {

std::string kindKeyList() {
  std::string s;
  for (core::DiagramKind k : core::allDiagramKinds()) {
    if (!s.empty()) s += ", ";
    s += core::diagramKindKey(k);
  }
  return s;
}

unsigned lineAt(std::string_view text, std::size_t offset) {
  offset = std::min(offset, text.size());
  return 1 + static_cast<unsigned>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
}

// Where model `index`'s diagram text starts in the file, so that a fault's
// line inside the embedded text can be reported as a line of the file.
std::size_t diagramOffset(const ModelFile& file, std::size_t index) {
  const std::string& xml = file.project.models[index].diagramXml;
  std::size_t from = 0;
  if (file.wrapped) {
    for (std::size_t i = 0; i <= index; ++i) {
      const std::size_t at = file.text.find("<modelyneModel", from);
      if (at == std::string::npos) return 0;
      from = at + 1;
    }
  }
  const std::size_t at = xml.empty() ? std::string::npos : file.text.find(xml, from > 0 ? from - 1 : 0);
  return at == std::string::npos ? 0 : at;
}

// The reader's warnings begin "line N: "; as FILE:LINE they read like the
// errors, with N counted in the file rather than in the embedded diagram.
std::string relocated(std::string_view fileName, unsigned base, std::string_view warning) {
  constexpr std::string_view kPrefix = "line ";
  unsigned line = 0;
  if (warning.starts_with(kPrefix)) {
    const char* first = warning.data() + kPrefix.size();
    const char* last = warning.data() + warning.size();
    const auto r = std::from_chars(first, last, line);
    if (r.ec == std::errc() && std::string_view(r.ptr, static_cast<std::size_t>(last - r.ptr)).starts_with(": "))
      return located(fileName, base + line, std::string_view(r.ptr + 2, static_cast<std::size_t>(last - r.ptr - 2)));
  }
  return located(fileName, 0, warning);
}

std::string modelIdList(const core::Project& project) {
  std::string s;
  for (const core::Model& m : project.models) {
    if (!s.empty()) s += ", ";
    s += m.id;
  }
  return s;
}

}  // namespace

ModelFile openModel(std::string_view arg) {
  InputText input = readInput(arg);
  ModelFile file;
  file.name = std::move(input.name);
  file.text = std::move(input.text);
  file.wrapped = io::isProjectWrapper(file.text);
  if (file.wrapped) {
    io::ReadError error;
    auto project = io::loadProject(file.text, &error);
    if (!project) throw CliError(located(file.name, static_cast<unsigned>(error.line), error.what));
    if (project->models.empty()) throw CliError(located(file.name, 0, "the project holds no model"));
    file.project = std::move(*project);
  } else {
    if (file.text.find_first_not_of(" \t\r\n") == std::string::npos)
      throw CliError(located(file.name, 0, "the file is empty, not a model file"));
    file.project = io::projectFromDiagram(file.text);
  }
  return file;
}

std::size_t selectModel(const ModelFile& file, const std::optional<std::string>& modelId) {
  const auto& models = file.project.models;
  if (modelId) {
    for (std::size_t i = 0; i < models.size(); ++i)
      if (models[i].id == *modelId) return i;
    throw CliError(located(file.name, 0,
                           "no model '" + *modelId + "' (models: " + modelIdList(file.project) + ")"));
  }
  const auto active = static_cast<std::int64_t>(file.project.active);
  return static_cast<std::size_t>(std::clamp<std::int64_t>(active, 0, static_cast<std::int64_t>(models.size()) - 1));
}

io::DiagramContent readModelDiagram(const ModelFile& file, std::size_t index) {
  const core::Model& model = file.project.models[index];
  if (model.diagramXml.empty()) {
    // A wrapper may hold a model without a diagram: it reads as an empty one
    // that keeps the frame the project gave it.
    io::DiagramContent empty;
    empty.frame = model.frame;
    return empty;
  }
  io::ReadError error;
  auto content = io::readDiagram(model.diagramXml, &error);
  if (!content) {
    const unsigned base = lineAt(file.text, diagramOffset(file, index)) - 1;
    const unsigned line = error.line > 0 ? base + static_cast<unsigned>(error.line) : 0;
    throw CliError(located(file.name, line, error.what));
  }
  if (!content->warnings.empty()) {
    const unsigned base = lineAt(file.text, diagramOffset(file, index)) - 1;
    for (const std::string& warning : content->warnings) diagnostic("modelyne: warning: " + relocated(file.name, base, warning));
  }
  return std::move(*content);
}

unsigned diagramFirstLine(const ModelFile& file, std::size_t index) {
  return lineAt(file.text, diagramOffset(file, index));
}

core::DiagramKind kindFromKey(std::string_view key) {
  if (auto kind = core::diagramKindFromKey(key)) return *kind;
  throw CliError("unknown diagram kind '" + std::string(key) + "' (kinds: " + kindKeyList() + ")");
}

LoadedModel loadModel(const Args& args, std::string_view fileArg) {
  // Check the kind key before reading, so a typo fails fast and alike for
  // every file.
  std::optional<core::DiagramKind> kindOverride;
  if (auto key = args.value(kKindOption.name)) kindOverride = kindFromKey(*key);

  LoadedModel loaded;
  loaded.file = openModel(fileArg);
  loaded.index = selectModel(loaded.file, args.value(kModelOption.name));
  io::DiagramContent content = readModelDiagram(loaded.file, loaded.index);
  loaded.doc = std::make_unique<core::Document>();
  io::applyDiagram(std::move(content), *loaded.doc);
  if (kindOverride) loaded.doc->frame().kind = *kindOverride;
  return loaded;
}

}  // namespace modelyne::cli
