#include "cli/raster_output.h"

#include <cctype>
#include <cstdlib>
#include <filesystem>

#include "cli/output.h"

#ifdef MODELYNE_HAVE_RENDER
#include "render/export_diagram.h"
#else
#include "export/svg_export.h"
#endif

namespace modelyne::cli {

#ifdef MODELYNE_HAVE_RENDER

ExportSettings defaultExportSettings() {
  const render::ExportOptions o;
  return {o.margin, o.background, o.scale};
}

bool isRasterOutput(const std::string& out) {
  const render::ExportFormat* format = render::formatOf(out);
  if (!format) throw CliError("cannot tell the format of '" + out + "' (use " + render::formatList() + ")");
  return format->raster;
}

void writeExport(const std::string& out, const core::Document& doc, const ExportSettings& settings) {
  if (isRasterOutput(out)) {
    // A command-line tool never opens a window: render offscreen even where
    // a display or another platform is configured.
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    // Standard error carries this tool's own messages; Qt's start-up remarks
    // (such as a missing XDG_RUNTIME_DIR) are noise here unless asked for.
    ::setenv("QT_LOGGING_RULES", "default.warning=false", 0);
  }
  const render::ExportResult r = render::exportDiagram(out, doc, {settings.margin, settings.background, settings.scale});
  if (!r.ok) throw CliError(asClause(r.error.empty() ? "cannot write " + out : r.error));
  if (!r.notes.reducedScale.empty()) diagnostic("modelyne: note: " + r.notes.reducedScale);
}

#else

ExportSettings defaultExportSettings() { return {}; }

bool isRasterOutput(const std::string& out) {
  std::string ext = std::filesystem::path(out).extension().string();
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (ext == ".svg") return false;
  throw CliError("this modelyne was built without the raster renderer; export to .svg instead");
}

void writeExport(const std::string& out, const core::Document& doc, const ExportSettings& settings) {
  isRasterOutput(out);
  writeResult(out, exporter::svgText(doc.nodes(), doc.edges(), {settings.margin, settings.background}, &doc.frame()));
}

#endif

}  // namespace modelyne::cli
