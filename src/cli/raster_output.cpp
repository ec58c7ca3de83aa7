#include "cli/raster_output.h"

#include <cstdlib>

#include "cli/output.h"

#ifdef MODELYNE_HAVE_RENDER
#include "export/diagram_drawing.h"
#include "render/raster_export.h"
#endif

namespace modelyne::cli {

#ifdef MODELYNE_HAVE_RENDER

void writeRaster(const std::string& out, const core::Document& doc, RasterFormat format, float margin,
                 double scale) {
  // A command-line tool never opens a window: render offscreen even where a
  // display or another platform is configured.
  ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
  // Standard error carries this tool's own messages; Qt's start-up remarks
  // (such as a missing XDG_RUNTIME_DIR) are noise here unless asked for.
  ::setenv("QT_LOGGING_RULES", "default.warning=false", 0);
  if (!render::ensureGuiApplication()) throw CliError("cannot start the raster renderer");

  const exporter::DrawingList drawing =
      exporter::buildDrawing(doc.nodes(), doc.edges(), {margin, true, &doc.frame()});
  std::string error;
  render::RenderedImage rendered;
  bool ok = false;
  switch (format) {
    case RasterFormat::png: ok = render::exportPng(out, drawing, scale, &error, &rendered); break;
    case RasterFormat::jpeg: ok = render::exportJpeg(out, drawing, scale, &error, &rendered); break;
    case RasterFormat::pdf: ok = render::exportPdf(out, drawing, scale, &error, &rendered); break;
  }
  if (!ok) throw CliError(asClause(error.empty() ? "cannot write " + out : error));
  if (rendered.reduced) diagnostic("modelyne: note: " + rendered.note);
}

#else

void writeRaster(const std::string&, const core::Document&, RasterFormat, float, double) {
  throw CliError("this modelyne was built without the raster renderer; export to .svg instead");
}

#endif

}  // namespace modelyne::cli
