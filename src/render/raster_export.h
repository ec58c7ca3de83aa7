#pragma once
/// Raster pictures of a drawing list: antialiased on a white page at a
/// chosen scale. Encoded pictures (PNG, JPEG, and PDF around the JPEG) are
/// painted in bands of bounded size and encoded as they are painted, so
/// memory does not grow with the picture. Picture size is capped (a side and
/// a total pixel count); a drawing too large for the cap is rendered at a
/// smaller scale, and the plan says so.
///
///   render::ensureGuiApplication();
///   auto list = exporter::buildDrawing(doc.nodes(), doc.edges(), {});
///   render::RasterPlan plan;
///   std::string png = render::pngBytes(list, 2.0, &plan);

#include <QImage>

#include <string>

#include "export/drawing.h"

class QGuiApplication;

namespace modelyne::render {

/// Limits of a rendered picture.
struct RasterLimits {
  int maxSide = 16384;                  ///< pixels along either side
  long long maxPixels = 64LL << 20;     ///< pixels in total (64 Mi: 256 MiB as 32-bit pixels)
};

/// The picture's size and the scale that gives it.
struct RasterPlan {
  int width = 1;
  int height = 1;
  double scale = 1.0;         ///< the scale actually used
  bool reduced = false;       ///< true when the requested scale exceeded the limits
  std::string note;           ///< why the scale was reduced, for the user; empty otherwise
};

/// The plan for the drawing's page at `scale` pixels per drawing unit (a
/// scale that is not a positive finite number counts as 1).
RasterPlan planRaster(const exporter::Bounds& page, double scale, RasterLimits limits = {});

struct RenderedImage {
  QImage image;               ///< white page; null only when memory ran out
  double scale = 1.0;         ///< the scale actually used
  bool reduced = false;       ///< true when the requested scale exceeded the limits
  std::string note;           ///< why the scale was reduced, for the user; empty otherwise
};

/// The whole picture in memory at once (for showing it; files use the
/// encoders below).
RenderedImage renderImage(const exporter::DrawingList& drawing, double scale, RasterLimits limits = {});

/// Encoded pictures, painted band by band. Empty on failure (no memory for
/// a band, or an encoder error). `plan`, when given, receives the plan used.
std::string pngBytes(const exporter::DrawingList& drawing, double scale, RasterPlan* plan = nullptr,
                     RasterLimits limits = {});
std::string jpegBytes(const exporter::DrawingList& drawing, double scale, RasterPlan* plan = nullptr,
                      RasterLimits limits = {});
/// One-page PDF around the JPEG picture; the page is the pixel size x 0.75 points.
std::string pdfBytes(const exporter::DrawingList& drawing, double scale, RasterPlan* plan = nullptr,
                     RasterLimits limits = {});

/// PNG or JPEG bytes of an image in memory, with the same encoders; empty on failure.
std::string encodePng(const QImage& image);
std::string encodeJpeg(const QImage& image);

/// The running QGuiApplication (needed for fonts), creating one on the
/// "offscreen" platform when none exists and QT_QPA_PLATFORM is unset.
/// Returns nullptr when a non-GUI application object already exists.
QGuiApplication* ensureGuiApplication();

}  // namespace modelyne::render
