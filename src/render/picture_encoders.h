#pragma once
/// Streaming PNG and JPEG encoders over rows of 32-bit pixels (QImage's
/// RGB32 layout), so a picture can be encoded band by band as it is painted.
/// PNG uses zlib level 1 and no row filter: diagrams are large flat areas,
/// where searching every filter at a higher level costs most of the export
/// time and gains nothing.
///
///   PngStream png(width, height);
///   png.write(band, rows);   // as often as needed, top to bottom
///   std::string bytes = png.finish();

#include <QImage>

#include <memory>
#include <string>

namespace modelyne::render {

/// JPEG quality of exported pictures (and of the picture inside a PDF).
inline constexpr int kJpegQuality = 92;

/// PNG, 8-bit RGB, of `width` x `height`.
class PngStream {
 public:
  PngStream(int width, int height);
  ~PngStream();
  PngStream(const PngStream&) = delete;
  PngStream& operator=(const PngStream&) = delete;

  /// Encodes the first `rows` rows of `band` (Format_RGB32, `width` wide).
  /// Returns false once encoding has failed.
  bool write(const QImage& band, int rows);
  /// The file's bytes; empty when encoding failed or rows are missing.
  std::string finish();

  struct State;  ///< the library's encoder, known only to the implementation

 private:
  std::unique_ptr<State> state_;
};

/// Baseline JPEG, 8-bit RGB, of `width` x `height` at `quality` (0..100).
class JpegStream {
 public:
  JpegStream(int width, int height, int quality = kJpegQuality);
  ~JpegStream();
  JpegStream(const JpegStream&) = delete;
  JpegStream& operator=(const JpegStream&) = delete;

  bool write(const QImage& band, int rows);
  std::string finish();

  struct State;  ///< the library's encoder, known only to the implementation

 private:
  std::unique_ptr<State> state_;
};

}  // namespace modelyne::render
