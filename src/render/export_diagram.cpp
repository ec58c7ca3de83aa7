#include "render/export_diagram.h"

#include <array>
#include <cctype>

#include "export/diagram_drawing.h"
#include "export/svg_export.h"
#include "io/atomic_file.h"
#include "render/raster_export.h"

namespace modelyne::render {

namespace {

exporter::DrawingList rasterDrawing(const core::Document& doc, const ExportOptions& options) {
  return exporter::buildDrawing(doc.nodes(), doc.edges(), {options.margin, true, &doc.frame()});
}

using RasterEncoder = std::string (*)(const exporter::DrawingList&, double, RasterPlan*, RasterLimits);

template <RasterEncoder encode>
std::string writeRaster(const core::Document& doc, const ExportOptions& options, ExportNotes& notes) {
  if (!ensureGuiApplication()) return {};
  RasterPlan plan;
  std::string bytes = encode(rasterDrawing(doc, options), options.scale, &plan, RasterLimits{});
  notes.reducedScale = plan.note;
  return bytes;
}

std::string writeSvg(const core::Document& doc, const ExportOptions& options, ExportNotes&) {
  return exporter::svgText(doc.nodes(), doc.edges(), {options.margin, options.background}, &doc.frame());
}

constexpr std::array<ExportFormat, 5> kFormats{{
    {".svg", "SVG", false, writeSvg},
    {".pdf", "PDF", true, writeRaster<pdfBytes>},
    {".png", "PNG", true, writeRaster<pngBytes>},
    {".jpg", "JPEG", true, writeRaster<jpegBytes>},
    {".jpeg", "JPEG", true, writeRaster<jpegBytes>},
}};

}  // namespace

std::span<const ExportFormat> exportFormats() { return kFormats; }

const ExportFormat* formatOf(const std::filesystem::path& path) {
  std::string ext = path.extension().string();
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const ExportFormat& f : kFormats)
    if (ext == f.extension) return &f;
  return nullptr;
}

std::string formatList() {
  std::string s;
  for (std::size_t i = 0; i < kFormats.size(); ++i) {
    if (i > 0) s += i + 1 == kFormats.size() ? " or " : ", ";
    s += kFormats[i].extension;
  }
  return s;
}

std::string exportBytes(const ExportFormat& format, const core::Document& doc, const ExportOptions& options,
                        ExportNotes* notes) {
  ExportNotes local;
  return format.write(doc, options, notes ? *notes : local);
}

ExportResult exportDiagram(const std::filesystem::path& path, const core::Document& doc,
                           const ExportOptions& options) {
  ExportResult result;
  result.format = formatOf(path);
  if (!result.format) {
    result.error = "cannot tell the format of '" + path.string() + "' (use " + formatList() + ")";
    return result;
  }
  const std::string bytes = exportBytes(*result.format, doc, options, &result.notes);
  if (bytes.empty()) {
    result.error = "could not draw the picture as " + std::string(result.format->name);
    return result;
  }
  result.ok = io::writeFileAtomic(path, bytes, &result.error);
  return result;
}

}  // namespace modelyne::render
