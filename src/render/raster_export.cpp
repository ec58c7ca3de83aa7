#include "render/raster_export.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QImageWriter>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "export/pdf_writer.h"
#include "io/atomic_file.h"
#include "render/painter.h"

namespace modelyne::render {

namespace {

/// Pixels along a side for a length in drawing units; at least one.
long long pixelsFor(double length, double scale) {
  const double px = std::ceil(static_cast<double>(length) * scale - 1e-6);
  if (!(px >= 1.0)) return 1;
  return px > 1e12 ? static_cast<long long>(1e12) : static_cast<long long>(px);
}

std::string encode(const QImage& image, const char* format, int quality) {
  if (image.isNull()) return {};
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QImageWriter writer(&buffer, format);
  if (quality >= 0) writer.setQuality(quality);
  if (!writer.write(image)) return {};
  return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

bool writeEncoded(const std::filesystem::path& path, const std::string& bytes, const char* what,
                  std::string* error) {
  if (bytes.empty()) {
    if (error) *error = std::string("could not encode the picture as ") + what;
    return false;
  }
  return io::writeFileAtomic(path, bytes, error);
}

bool rendered(const exporter::DrawingList& drawing, double scale, RenderedImage& out, std::string* error) {
  out = renderImage(drawing, scale);
  if (out.image.isNull()) {
    if (error) *error = "not enough memory for the picture";
    return false;
  }
  return true;
}

}  // namespace

RenderedImage renderImage(const exporter::DrawingList& d, double scale, RasterLimits limits) {
  RenderedImage result;
  if (!(scale > 0) || !std::isfinite(scale)) scale = 1.0;
  const double w = std::isfinite(d.bounds.width) && d.bounds.width > 0 ? d.bounds.width : 1.0;
  const double h = std::isfinite(d.bounds.height) && d.bounds.height > 0 ? d.bounds.height : 1.0;

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
    result.reduced = true;
    std::ostringstream note;
    note << "The picture was rendered at scale " << scale << " instead of " << requested << " to stay within "
         << limits.maxSide << " pixels a side and " << limits.maxPixels << " pixels in total.";
    result.note = note.str();
  }
  result.scale = scale;

  result.image = QImage(static_cast<int>(pw), static_cast<int>(ph), QImage::Format_RGB32);
  if (result.image.isNull()) return result;
  result.image.fill(Qt::white);
  QPainter painter(&result.image);
  painter.scale(scale, scale);
  painter.translate(-static_cast<double>(d.bounds.x), -static_cast<double>(d.bounds.y));
  paint(painter, d);
  painter.end();
  return result;
}

std::string encodePng(const QImage& image) { return encode(image, "png", -1); }

std::string encodeJpeg(const QImage& image, int quality) {
  return encode(image.convertToFormat(QImage::Format_RGB888), "jpeg", quality);
}

bool exportPng(const std::filesystem::path& path, const exporter::DrawingList& drawing, double scale,
               std::string* error, RenderedImage* out) {
  RenderedImage local;
  RenderedImage& r = out ? *out : local;
  return rendered(drawing, scale, r, error) && writeEncoded(path, encodePng(r.image), "PNG", error);
}

bool exportJpeg(const std::filesystem::path& path, const exporter::DrawingList& drawing, double scale,
                std::string* error, RenderedImage* out) {
  RenderedImage local;
  RenderedImage& r = out ? *out : local;
  return rendered(drawing, scale, r, error) && writeEncoded(path, encodeJpeg(r.image), "JPEG", error);
}

bool exportPdf(const std::filesystem::path& path, const exporter::DrawingList& drawing, double scale,
               std::string* error, RenderedImage* out) {
  RenderedImage local;
  RenderedImage& r = out ? *out : local;
  if (!rendered(drawing, scale, r, error)) return false;
  const std::string jpeg = encodeJpeg(r.image);
  if (jpeg.empty()) {
    if (error) *error = "could not encode the picture as JPEG";
    return false;
  }
  const auto pw = static_cast<std::uint32_t>(r.image.width());
  const auto ph = static_cast<std::uint32_t>(r.image.height());
  return exporter::exportPdf(path, jpeg, pw, ph, pw * 0.75, ph * 0.75, error);
}

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
