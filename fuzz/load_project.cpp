// Reads arbitrary bytes as a model file (project wrapper or bare diagram):
// the wrapper reader and the whole open path must never crash or hang, and
// an accepted wrapper must write and read back to the same project.
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
  if (auto project = io::loadProject(text, &err)) {
    if (project->models.size() >= 2) {
      core::Document open;
      const std::string written = io::serializeProject(*project, open);
      auto back = io::loadProject(written, &err);
      if (!back || back->models.size() != project->models.size()) __builtin_trap();
      // A model without diagram text is written as an empty diagram.
      for (std::size_t i = 0; i < back->models.size(); ++i) {
        const std::string& was = project->models[i].diagramXml;
        if (back->models[i].diagramXml != (was.empty() ? "<diagram></diagram>" : was)) __builtin_trap();
        if (back->models[i].id != project->models[i].id || back->models[i].name != project->models[i].name)
          __builtin_trap();
      }
    }
  }
  const io::OpenedModelFile opened = io::openModelText(text);
  if (!opened.error && opened.project.models.empty()) __builtin_trap();
  return 0;
}
