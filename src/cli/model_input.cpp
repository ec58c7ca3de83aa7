#include "cli/model_input.h"

#include "io/quoted_text.h"

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

}  // namespace

std::string located(const io::Diagnostic& d, std::string_view fallbackFile) {
  return located(d.file.empty() ? fallbackFile : std::string_view(d.file), static_cast<unsigned>(d.line), d.what);
}

std::string_view ModelFile::diagramText(std::size_t index) const {
  const io::ModelPlace& p = places.at(index);
  return std::string_view(text).substr(p.offset, p.size);
}

unsigned diagramFirstLine(const ModelFile& file, std::size_t index) {
  return static_cast<unsigned>(file.places.at(index).diagramLine);
}

ModelFile openModel(InputText input, const std::optional<std::string>& modelId, bool allModels) {
  io::OpenOptions options;
  options.fileName = input.name;
  options.modelId = modelId;
  options.allModels = allModels;
  io::OpenedModelFile opened = io::openModelText(input.text, options);
  std::vector<std::string> warnings;
  for (const io::Diagnostic& w : opened.warnings) warnings.push_back("modelyne: warning: " + located(w, input.name));
  diagnostics(warnings);
  if (opened.error) throw CliError(located(*opened.error, input.name));
  ModelFile file;
  file.name = std::move(input.name);
  file.text = std::move(input.text);
  file.project = std::move(opened.project);
  file.wrapped = opened.wrapped;
  file.selected = opened.selected;
  file.documents = std::move(opened.documents);
  file.places = std::move(opened.places);
  for (std::size_t i = 0; i < file.documents.size(); ++i)
    if (!file.documents[i]) file.project.models[i].diagramXml = std::string(file.diagramText(i));
  return file;
}

ModelFile openModel(std::string_view arg, const std::optional<std::string>& modelId, bool allModels) {
  return openModel(readInput(arg), modelId, allModels);
}

core::DiagramKind kindFromKey(std::string_view key) {
  if (auto kind = core::diagramKindFromKey(key)) return *kind;
  throw CliError("unknown diagram kind " + io::quotedText(key, '\'') + " (kinds: " + kindKeyList() + ")");
}

LoadedModel loadModel(const Args& args, std::string_view fileArg) {
  // Check the kind key before reading, so a typo fails fast and alike for
  // every file.
  std::optional<core::DiagramKind> kindOverride;
  if (auto key = args.value(kKindOption.name)) kindOverride = kindFromKey(*key);

  LoadedModel loaded;
  loaded.file = openModel(fileArg, args.value(kModelOption.name), false);
  loaded.index = loaded.file.selected;
  loaded.doc = std::move(loaded.file.documents.at(loaded.index));
  if (kindOverride) loaded.doc->frame().kind = *kindOverride;
  return loaded;
}

}  // namespace modelyne::cli
