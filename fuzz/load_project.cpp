// Reads arbitrary bytes as a model file (project wrapper or bare diagram):
// the wrapper reader and the whole open path must never crash or hang, an
// accepted wrapper must write and read back to the same project, and an
// opened file has a document for every model.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/document.h"
#include "io/model_file.h"
#include "io/project_file.h"

using namespace modelyne;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  io::ReadError err;
  if (auto loaded = io::loadProject(text, &err)) {
    if (loaded->diagrams.size() != loaded->project.models.size()) __builtin_trap();
    if (loaded->wrapped && loaded->project.models.size() >= 2) {
      core::Project project = loaded->project;
      for (std::size_t i = 0; i < project.models.size(); ++i)
        project.models[i].diagramXml = std::string(loaded->diagrams[i].text);
      core::Document open;
      const std::string written = io::serializeProject(project, open);
      auto back = io::loadProject(written, &err);
      if (!back || back->project.models.size() != project.models.size()) __builtin_trap();
      // A model without diagram text is written as an empty diagram.
      for (std::size_t i = 0; i < project.models.size(); ++i) {
        const std::string& was = project.models[i].diagramXml;
        if (back->diagrams[i].text != (was.empty() ? "<diagram></diagram>" : was)) __builtin_trap();
        if (back->project.models[i].id != project.models[i].id || back->project.models[i].name != project.models[i].name)
          __builtin_trap();
      }
    }
  }
  const io::OpenedModelFile opened = io::openModelText(text);
  if (!opened.error) {
    if (opened.project.models.empty() || opened.documents.size() != opened.project.models.size()) __builtin_trap();
    for (const auto& doc : opened.documents)
      if (!doc) __builtin_trap();
  }
  return 0;
}
