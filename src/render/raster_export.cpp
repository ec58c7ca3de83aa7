#include "render/raster_export.h"

#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "export/pdf_writer.h"
#include "render/painter.h"
#include "render/picture_encoders.h"

namespace modelyne::render {

namespace {

// Pixels painted at a time: a band of 4 Mi pixels is 16 MiB, whatever the
// picture's size. A band is at least kMinBandRows high, so that a very wide
// picture still goes in a few hundred bands rather than row by row.
constexpr long long kBandPixels = 4LL << 20;
constexpr int kMinBandRows = 16;

/// Pixels along a side for a length in drawing units; at least one.
long long pixelsFor(double length, double scale) {
  const double px = std::ceil(static_cast<double>(length) * scale - 1e-6);
  if (!(px >= 1.0)) return 1;
  return px > 1e12 ? static_cast<long long>(1e12) : static_cast<long long>(px);
}

/// Paints rows [firstRow, firstRow + band.height()) of the planned picture
/// into `band`, visiting only what shows there.
void paintBand(QImage& band, const exporter::DrawingList& d, const RasterPlan& plan, int firstRow) {
  band.fill(Qt::white);
  QPainter painter(&band);
  painter.translate(0, -firstRow);
  painter.scale(plan.scale, plan.scale);
  painter.translate(-static_cast<double>(d.bounds.x), -static_cast<double>(d.bounds.y));
  const QRectF visible(d.bounds.x, d.bounds.y + firstRow / plan.scale, band.width() / plan.scale,
                       band.height() / plan.scale);
  paint(painter, d, visible);
}

/// Paints the picture band by band, top to bottom, handing each band and
/// its row count to `stream` (PngStream or JpegStream); their bytes, or
/// empty on failure.
template <typename Stream>
std::string encodeInBands(const exporter::DrawingList& d, double scale, RasterPlan* planOut, RasterLimits limits,
                          Stream&& stream) {
  const RasterPlan plan = planRaster(d.bounds, scale, limits);
  if (planOut) *planOut = plan;
  const int rows = static_cast<int>(std::clamp<long long>(kBandPixels / plan.width, kMinBandRows, plan.height));
  QImage band(plan.width, rows, QImage::Format_RGB32);
  if (band.isNull()) return {};
  for (int y = 0; y < plan.height; y += rows) {
    paintBand(band, d, plan, y);
    if (!stream.write(band, std::min(rows, plan.height - y))) return {};
  }
  return stream.finish();
}

template <typename Stream>
std::string encodeImage(const QImage& image, Stream&& stream) {
  if (image.isNull()) return {};
  const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
  if (!stream.write(rgb, rgb.height())) return {};
  return stream.finish();
}

}  // namespace

RasterPlan planRaster(const exporter::Bounds& page, double scale, RasterLimits limits) {
  RasterPlan plan;
  if (!(scale > 0) || !std::isfinite(scale)) scale = 1.0;
  const double w = std::isfinite(page.width) && page.width > 0 ? page.width : 1.0;
  const double h = std::isfinite(page.height) && page.height > 0 ? page.height : 1.0;

  const double requested = scale;
  long long pw = pixelsFor(w, scale);
  long long ph = pixelsFor(h, scale);
  if (pw > limits.maxSide || ph > limits.maxSide || pw * ph > limits.maxPixels) {
    scale = std::min({scale, limits.maxSide / w, limits.maxSide / h,
                      std::sqrt(static_cast<double>(limits.maxPixels) / (w * h))});
    pw = std::min<long long>(pixelsFor(w, scale), limits.maxSide);
    ph = std::min<long long>(pixelsFor(h, scale), limits.maxSide);
    while (pw * ph > limits.maxPixels) {  // rounding up may overshoot by a row or column
      if (pw >= ph) --pw; else --ph;
    }
    plan.reduced = true;
    std::ostringstream note;
    note << "The picture was rendered at scale " << scale << " instead of " << requested << " to stay within "
         << limits.maxSide << " pixels a side and " << limits.maxPixels << " pixels in total.";
    plan.note = note.str();
  }
  plan.scale = scale;
  plan.width = static_cast<int>(pw);
  plan.height = static_cast<int>(ph);
  return plan;
}

RenderedImage renderImage(const exporter::DrawingList& d, double scale, RasterLimits limits) {
  const RasterPlan plan = planRaster(d.bounds, scale, limits);
  RenderedImage result;
  result.scale = plan.scale;
  result.reduced = plan.reduced;
  result.note = plan.note;
  result.image = QImage(plan.width, plan.height, QImage::Format_RGB32);
  if (!result.image.isNull()) paintBand(result.image, d, plan, 0);
  return result;
}

std::string pngBytes(const exporter::DrawingList& d, double scale, RasterPlan* plan, RasterLimits limits) {
  const RasterPlan sized = planRaster(d.bounds, scale, limits);
  return encodeInBands(d, scale, plan, limits, PngStream(sized.width, sized.height));
}

std::string jpegBytes(const exporter::DrawingList& d, double scale, RasterPlan* plan, RasterLimits limits) {
  const RasterPlan sized = planRaster(d.bounds, scale, limits);
  return encodeInBands(d, scale, plan, limits, JpegStream(sized.width, sized.height));
}

std::string pdfBytes(const exporter::DrawingList& d, double scale, RasterPlan* planOut, RasterLimits limits) {
  RasterPlan plan;
  const std::string jpeg = jpegBytes(d, scale, &plan, limits);
  if (planOut) *planOut = plan;
  if (jpeg.empty()) return {};
  const auto pw = static_cast<std::uint32_t>(plan.width);
  const auto ph = static_cast<std::uint32_t>(plan.height);
  // 96 pixels an inch on a page of 72 points an inch.
  return exporter::pdfDocument(jpeg, pw, ph, pw * 0.75, ph * 0.75);
}

std::string encodePng(const QImage& image) { return encodeImage(image, PngStream(image.width(), image.height())); }

std::string encodeJpeg(const QImage& image) { return encodeImage(image, JpegStream(image.width(), image.height())); }

QGuiApplication* ensureGuiApplication() {
  if (QCoreApplication* existing = QCoreApplication::instance())
    return qobject_cast<QGuiApplication*>(existing);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "modelyne";
  static char* argv[] = {name, nullptr};
  // Lives until the process ends: tools and tests render until they exit.
  static QGuiApplication* app = new QGuiApplication(argc, argv);
  return app;
}

}  // namespace modelyne::render
