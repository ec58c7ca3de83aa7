#include "export/svg_writer.h"

#include <algorithm>
#include <cstring>

#include "export/number_format.h"
#include "export/palette.h"

namespace modelyne::exporter {

namespace {

// ---- Raw output ----
// Each writer asks for the most its element can take, writes through a
// pointer and records where it ended: no per-piece capacity checks on
// megabyte outputs.

constexpr std::size_t kNumberRoom = kNumberBufferSize;
constexpr std::size_t kFixedRoom = 320;  // tags, attribute names, colours, font list

/// Appends to a string through a pointer. The string is grown (and zeroed)
/// in doubling steps ahead of the written length and trimmed once at the end.
class Sink {
 public:
  explicit Sink(std::string& out) : out_(out), length_(out.size()) {}
  /// Continues after `length` bytes already written to `out`, which may run ahead as room.
  Sink(std::string& out, std::size_t length) : out_(out), length_(length) {}
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;
  ~Sink() {
    if (trim_) out_.resize(length_);
  }
  /// Leaves the room in place for a later sink; returns the bytes written.
  std::size_t keep() {
    trim_ = false;
    return length_;
  }

  /// Room for `room` bytes; returns where writing starts.
  char* open(std::size_t room) {
    if (out_.size() < length_ + room) out_.resize(std::max(out_.size() * 2, length_ + room));
    return out_.data() + length_;
  }
  void close(const char* end) { length_ = static_cast<std::size_t>(end - out_.data()); }

 private:
  std::string& out_;
  std::size_t length_;
  bool trim_ = true;
};

char* put(char* p, std::string_view s) {
  std::memcpy(p, s.data(), s.size());
  return p + s.size();
}

char* attr(char* p, std::string_view nameEq, float value) {
  p = put(p, nameEq);
  p = writeNumber(p, value);
  *p++ = '"';
  return p;
}

char* colourAttr(char* p, std::string_view nameEq, Colour c) {
  char buf[8];
  p = put(p, nameEq);
  p = put(p, colourText(c, buf));
  *p++ = '"';
  return p;
}

char* dash(char* p, bool dashed) { return dashed ? put(p, " stroke-dasharray=\"5,3\"") : p; }

char* escaped(char* p, std::string_view text) {
  for (char c : text) {
    switch (c) {
      case '&': p = put(p, "&amp;"); break;
      case '<': p = put(p, "&lt;"); break;
      case '>': p = put(p, "&gt;"); break;
      case '"': p = put(p, "&quot;"); break;
      case '\'': p = put(p, "&apos;"); break;
      default: *p++ = c; break;
    }
  }
  return p;
}

void writeRectTo(Sink& out, float x, float y, float w, float h, float rx, Colour fill, Colour stroke,
               bool dashed) {
  char* p = out.open(kFixedRoom + 5 * kNumberRoom);
  p = attr(put(p, "<rect"), " x=\"", x);
  p = attr(p, " y=\"", y);
  p = attr(p, " width=\"", w);
  p = attr(p, " height=\"", h);
  if (rx > 0) p = attr(p, " rx=\"", rx);
  p = colourAttr(p, " fill=\"", fill);
  p = colourAttr(p, " stroke=\"", stroke);
  p = dash(put(p, " stroke-width=\"1.5\""), dashed);
  out.close(put(p, "/>\n"));
}

void writeEllipseTo(Sink& out, float cx, float cy, float rx, float ry, Colour fill, Colour stroke,
                  float strokeWidth) {
  char* p = out.open(kFixedRoom + 5 * kNumberRoom);
  p = attr(put(p, "<ellipse"), " cx=\"", cx);
  p = attr(p, " cy=\"", cy);
  p = attr(p, " rx=\"", rx);
  p = attr(p, " ry=\"", ry);
  p = colourAttr(p, " fill=\"", fill);
  p = colourAttr(p, " stroke=\"", stroke);
  p = attr(p, " stroke-width=\"", strokeWidth);
  out.close(put(p, "/>\n"));
}

void writeLineTo(Sink& out, float x1, float y1, float x2, float y2, Colour stroke, float strokeWidth,
               bool dashed) {
  char* p = out.open(kFixedRoom + 5 * kNumberRoom);
  p = attr(put(p, "<line"), " x1=\"", x1);
  p = attr(p, " y1=\"", y1);
  p = attr(p, " x2=\"", x2);
  p = attr(p, " y2=\"", y2);
  p = colourAttr(p, " stroke=\"", stroke);
  p = dash(attr(p, " stroke-width=\"", strokeWidth), dashed);
  out.close(put(p, "/>\n"));
}

void writeCubicTo(Sink& out, const float (&v)[8], Colour stroke, float strokeWidth, bool dashed) {
  char* p = out.open(kFixedRoom + 9 * kNumberRoom);
  p = writeNumber(put(p, "<path d=\"M "), v[0]);
  p = writeNumber(put(p, " "), v[1]);
  p = put(p, " C ");
  for (int i = 2; i < 8; ++i) {
    if (i > 2) *p++ = ' ';
    p = writeNumber(p, v[i]);
  }
  p = colourAttr(put(p, "\" fill=\"none\""), " stroke=\"", stroke);
  p = dash(attr(p, " stroke-width=\"", strokeWidth), dashed);
  out.close(put(p, "/>\n"));
}

void writePointsTo(Sink& out, bool closed, const Point* pts, std::size_t n, Colour fill, Colour stroke,
                 bool dashed) {
  char* p = out.open(kFixedRoom + n * (2 * kNumberRoom + 2));
  p = put(p, closed ? "<polygon points=\"" : "<polyline points=\"");
  for (std::size_t i = 0; i < n; ++i) {
    if (i > 0) *p++ = ' ';
    p = writeNumber(p, pts[i].x);
    *p++ = ',';
    p = writeNumber(p, pts[i].y);
  }
  *p++ = '"';
  p = colourAttr(p, " fill=\"", fill);
  p = colourAttr(p, " stroke=\"", stroke);
  p = dash(put(p, " stroke-width=\"1.5\""), dashed);
  out.close(put(p, "/>\n"));
}

void writeTextTo(Sink& out, float x, float y, float size, Colour fill, TextAnchor anchor,
               std::string_view text) {
  char* p = out.open(kFixedRoom + 3 * kNumberRoom + text.size() * 6);
  p = attr(put(p, "<text"), " x=\"", x);
  p = attr(p, " y=\"", y);
  p = put(p, " font-family=\"");
  p = put(p, kSvgFontFamily);
  p = attr(put(p, "\""), " font-size=\"", size);
  p = colourAttr(p, " fill=\"", fill);
  p = put(p, anchor == TextAnchor::middle ? " text-anchor=\"middle\">" : " text-anchor=\"start\">");
  p = escaped(p, text);
  out.close(put(p, "</text>\n"));
}

}  // namespace

void appendEscaped(std::string& out, std::string_view text) {
  Sink sink(out);
  sink.close(escaped(sink.open(text.size() * 6), text));
}

void writeRect(std::string& out, float x, float y, float w, float h, float rx, Colour fill, Colour stroke,
               bool dashed) {
  Sink sink(out);
  writeRectTo(sink, x, y, w, h, rx, fill, stroke, dashed);
}

void writeEllipse(std::string& out, float cx, float cy, float rx, float ry, Colour fill, Colour stroke,
                  float strokeWidth) {
  Sink sink(out);
  writeEllipseTo(sink, cx, cy, rx, ry, fill, stroke, strokeWidth);
}

void writeLine(std::string& out, float x1, float y1, float x2, float y2, Colour stroke, float strokeWidth,
               bool dashed) {
  Sink sink(out);
  writeLineTo(sink, x1, y1, x2, y2, stroke, strokeWidth, dashed);
}

void writeCubic(std::string& out, const float (&v)[8], Colour stroke, float strokeWidth, bool dashed) {
  Sink sink(out);
  writeCubicTo(sink, v, stroke, strokeWidth, dashed);
}

void writePoints(std::string& out, bool closed, const Point* pts, std::size_t n, Colour fill, Colour stroke,
                 bool dashed) {
  Sink sink(out);
  writePointsTo(sink, closed, pts, n, fill, stroke, dashed);
}

void writeText(std::string& out, float x, float y, float size, Colour fill, TextAnchor anchor,
               std::string_view text) {
  Sink sink(out);
  writeTextTo(sink, x, y, size, fill, anchor, text);
}

namespace {

void writeHeader(Sink& out, const DrawingList& d) {
  char* p = out.open(kFixedRoom + 8 * kNumberRoom);
  p = put(p, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"");
  p = attr(p, " width=\"", d.bounds.width);
  p = attr(p, " height=\"", d.bounds.height);
  p = writeNumber(put(p, " viewBox=\""), d.bounds.x);
  p = writeNumber(put(p, " "), d.bounds.y);
  p = writeNumber(put(p, " "), d.bounds.width);
  p = writeNumber(put(p, " "), d.bounds.height);
  p = put(p, "\">\n");
  if (d.background) {
    p = attr(put(p, "<rect"), " x=\"", d.bounds.x);
    p = attr(p, " y=\"", d.bounds.y);
    p = attr(p, " width=\"", d.bounds.width);
    p = attr(p, " height=\"", d.bounds.height);
    p = put(p, " fill=\"#FFFFFF\"/>\n");
  }
  out.close(p);
}

void writeElements(Sink& out, const DrawingList& d) {
  for (const Primitive& e : d.items) {
    switch (e.kind) {
      case PrimitiveKind::rect:
        writeRectTo(out, e.v[0], e.v[1], e.v[2], e.v[3], e.v[4], e.fill, e.stroke, e.dashed);
        break;
      case PrimitiveKind::ellipse:
        writeEllipseTo(out, e.v[0], e.v[1], e.v[2], e.v[3], e.fill, e.stroke, e.strokeWidth);
        break;
      case PrimitiveKind::line:
        writeLineTo(out, e.v[0], e.v[1], e.v[2], e.v[3], e.stroke, e.strokeWidth, e.dashed);
        break;
      case PrimitiveKind::cubic:
        writeCubicTo(out, e.v, e.stroke, e.strokeWidth, e.dashed);
        break;
      case PrimitiveKind::polygon:
      case PrimitiveKind::polyline:
        writePointsTo(out, e.kind == PrimitiveKind::polygon, d.pointsOf(e), e.count, e.fill, e.stroke, e.dashed);
        break;
      case PrimitiveKind::text:
        writeTextTo(out, e.v[0], e.v[1], e.v[2], e.fill, e.anchor, d.textOf(e));
        break;
    }
  }
}

}  // namespace

SvgDocumentWriter::SvgDocumentWriter(std::size_t expectedBytes) { out_.resize(expectedBytes); }

void SvgDocumentWriter::add(const DrawingList& piece) {
  Sink out(out_, length_);
  if (!started_) {
    writeHeader(out, piece);
    started_ = true;
  }
  writeElements(out, piece);
  length_ = out.keep();
}

std::string SvgDocumentWriter::finish() {
  if (!started_) add(DrawingList{});
  {
    Sink out(out_, length_);
    out.close(put(out.open(8), "</svg>\n"));
  }
  std::string done = std::move(out_);
  out_.clear();
  length_ = 0;
  started_ = false;
  return done;
}

std::string svgDocument(const DrawingList& d) {
  SvgDocumentWriter writer(1024 + d.items.size() * 110 + d.text.size() * 2);
  writer.add(d);
  return writer.finish();
}

}  // namespace modelyne::exporter
