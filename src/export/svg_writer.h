#pragma once
/// SVG text of a drawing: the element writers (one complete element and a
/// line feed each, the only places that produce markup) and the serialiser
/// that turns a `DrawingList` into a self-contained SVG 1.1 document.

#include <string>
#include <string_view>

#include "export/drawing.h"

namespace modelyne::exporter {

/// The font list written on every text element.
inline constexpr std::string_view kSvgFontFamily = "Meiryo, 'Yu Gothic UI', 'Segoe UI', sans-serif";

/// Appends `text` with & < > " ' replaced by their five entities; every other byte as is.
void appendEscaped(std::string& out, std::string_view text);

/// Element writers.
void writeRect(std::string& out, float x, float y, float w, float h, float rx, Colour fill, Colour stroke,
               bool dashed);
void writeEllipse(std::string& out, float cx, float cy, float rx, float ry, Colour fill, Colour stroke,
                  float strokeWidth);
void writeLine(std::string& out, float x1, float y1, float x2, float y2, Colour stroke, float strokeWidth,
               bool dashed);
void writeCubic(std::string& out, const float (&v)[8], Colour stroke, float strokeWidth, bool dashed);
void writePoints(std::string& out, bool closed, const Point* pts, std::size_t n, Colour fill, Colour stroke,
                 bool dashed);
void writeText(std::string& out, float x, float y, float size, Colour fill, TextAnchor anchor,
               std::string_view text);

/// The whole SVG document of a drawing.
std::string svgDocument(const DrawingList& drawing);

/// Writes one SVG document from a drawing handed over in pieces: the
/// header from the first piece's bounds, every piece's elements in turn,
/// and the closing tag when finished.
class SvgDocumentWriter {
 public:
  /// `expectedBytes` sizes the buffer once up front.
  explicit SvgDocumentWriter(std::size_t expectedBytes = 0);
  void add(const DrawingList& piece);
  /// The finished document; the writer is empty afterwards.
  std::string finish();

 private:
  std::string out_;
  std::size_t length_ = 0;  ///< bytes written; out_ runs ahead of it as room
  bool started_ = false;
};

}  // namespace modelyne::exporter
