#pragma once
/// Raster output of a drawing list: an antialiased picture on a white page at
/// a chosen scale, written as PNG or JPEG, or wrapped as a one-page PDF.
/// Picture size is capped (a side and a total pixel count); a drawing too
/// large for the cap is rendered at a smaller scale, and the result says so.
///
///   render::ensureGuiApplication();
///   auto list = exporter::buildDrawing(doc.nodes(), doc.edges(), {});
///   std::string err;
///   if (!render::exportPng("d.png", list, 2.0, &err)) report(err);

#include <QImage>

#include <filesystem>
#include <string>

#include "export/drawing.h"

class QGuiApplication;

namespace modelyne::render {

/// Limits of a rendered picture.
struct RasterLimits {
  int maxSide = 16384;                  ///< pixels along either side
  long long maxPixels = 64LL << 20;     ///< pixels in total (64 Mi: 256 MiB as 32-bit pixels)
};

struct RenderedImage {
  QImage image;               ///< white page; null only when memory ran out
  double scale = 1.0;         ///< the scale actually used
  bool reduced = false;       ///< true when the requested scale exceeded the limits
  std::string note;           ///< why the scale was reduced, for the user; empty otherwise
};

/// Renders the drawing's page at `scale` pixels per drawing unit (a scale
/// that is not a positive finite number counts as 1).
RenderedImage renderImage(const exporter::DrawingList& drawing, double scale, RasterLimits limits = {});

/// PNG or JPEG (quality 0..100) bytes of an image; empty on failure.
std::string encodePng(const QImage& image);
std::string encodeJpeg(const QImage& image, int quality = 92);

/// Render and write in one piece (temporary file, then rename). On failure
/// return false and, when `error` is given, say why. `rendered` receives the
/// render result (to report a reduced scale).
bool exportPng(const std::filesystem::path& path, const exporter::DrawingList& drawing, double scale,
               std::string* error = nullptr, RenderedImage* rendered = nullptr);
bool exportJpeg(const std::filesystem::path& path, const exporter::DrawingList& drawing, double scale,
                std::string* error = nullptr, RenderedImage* rendered = nullptr);
/// One-page PDF around the JPEG picture; the page is the pixel size x 0.75 points.
bool exportPdf(const std::filesystem::path& path, const exporter::DrawingList& drawing, double scale,
               std::string* error = nullptr, RenderedImage* rendered = nullptr);

/// The running QGuiApplication (needed for fonts), creating one on the
/// "offscreen" platform when none exists and QT_QPA_PLATFORM is unset.
/// Returns nullptr when a non-GUI application object already exists.
QGuiApplication* ensureGuiApplication();

}  // namespace modelyne::render
