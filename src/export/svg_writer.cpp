#include "export/svg_writer.h"

#include <algorithm>
#include <cstring>

#include "export/number_format.h"
#include "export/palette.h"

namespace modelyne::exporter {

namespace {

// ---- Raw output ----
// Each writer reserves the most its element can take, writes through a
// pointer and trims: no per-piece capacity checks on megabyte outputs.

constexpr std::size_t kNumberRoom = kNumberBufferSize;
constexpr std::size_t kFixedRoom = 320;  // tags, attribute names, colours, font list

/// Grows `out` by `room` bytes and returns where writing starts.
char* open(std::string& out, std::size_t room) {
  const std::size_t used = out.size();
  if (out.capacity() < used + room) out.reserve(std::max(out.capacity() * 2, used + room));
  out.resize(used + room);
  return out.data() + used;
}

void close(std::string& out, const char* end) { out.resize(static_cast<std::size_t>(end - out.data())); }

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

}  // namespace

void appendEscaped(std::string& out, std::string_view text) {
  char* p = open(out, text.size() * 6);
  close(out, escaped(p, text));
}

void writeRect(std::string& out, float x, float y, float w, float h, float rx, Colour fill, Colour stroke,
               bool dashed) {
  char* p = open(out, kFixedRoom + 5 * kNumberRoom);
  p = attr(put(p, "<rect"), " x=\"", x);
  p = attr(p, " y=\"", y);
  p = attr(p, " width=\"", w);
  p = attr(p, " height=\"", h);
  if (rx > 0) p = attr(p, " rx=\"", rx);
  p = colourAttr(p, " fill=\"", fill);
  p = colourAttr(p, " stroke=\"", stroke);
  p = dash(put(p, " stroke-width=\"1.5\""), dashed);
  close(out, put(p, "/>\n"));
}

void writeEllipse(std::string& out, float cx, float cy, float rx, float ry, Colour fill, Colour stroke,
                  float strokeWidth) {
  char* p = open(out, kFixedRoom + 5 * kNumberRoom);
  p = attr(put(p, "<ellipse"), " cx=\"", cx);
  p = attr(p, " cy=\"", cy);
  p = attr(p, " rx=\"", rx);
  p = attr(p, " ry=\"", ry);
  p = colourAttr(p, " fill=\"", fill);
  p = colourAttr(p, " stroke=\"", stroke);
  p = attr(p, " stroke-width=\"", strokeWidth);
  close(out, put(p, "/>\n"));
}

void writeLine(std::string& out, float x1, float y1, float x2, float y2, Colour stroke, float strokeWidth,
               bool dashed) {
  char* p = open(out, kFixedRoom + 5 * kNumberRoom);
  p = attr(put(p, "<line"), " x1=\"", x1);
  p = attr(p, " y1=\"", y1);
  p = attr(p, " x2=\"", x2);
  p = attr(p, " y2=\"", y2);
  p = colourAttr(p, " stroke=\"", stroke);
  p = dash(attr(p, " stroke-width=\"", strokeWidth), dashed);
  close(out, put(p, "/>\n"));
}

void writeCubic(std::string& out, const float (&v)[8], Colour stroke, float strokeWidth, bool dashed) {
  char* p = open(out, kFixedRoom + 9 * kNumberRoom);
  p = writeNumber(put(p, "<path d=\"M "), v[0]);
  p = writeNumber(put(p, " "), v[1]);
  p = put(p, " C ");
  for (int i = 2; i < 8; ++i) {
    if (i > 2) *p++ = ' ';
    p = writeNumber(p, v[i]);
  }
  p = colourAttr(put(p, "\" fill=\"none\""), " stroke=\"", stroke);
  p = dash(attr(p, " stroke-width=\"", strokeWidth), dashed);
  close(out, put(p, "/>\n"));
}

void writePoints(std::string& out, bool closed, const Point* pts, std::size_t n, Colour fill, Colour stroke,
                 bool dashed) {
  char* p = open(out, kFixedRoom + n * (2 * kNumberRoom + 2));
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
  close(out, put(p, "/>\n"));
}

void writeText(std::string& out, float x, float y, float size, Colour fill, TextAnchor anchor,
               std::string_view text) {
  char* p = open(out, kFixedRoom + 3 * kNumberRoom + text.size() * 6);
  p = attr(put(p, "<text"), " x=\"", x);
  p = attr(p, " y=\"", y);
  p = put(p, " font-family=\"");
  p = put(p, kSvgFontFamily);
  p = attr(put(p, "\""), " font-size=\"", size);
  p = colourAttr(p, " fill=\"", fill);
  p = put(p, anchor == TextAnchor::middle ? " text-anchor=\"middle\">" : " text-anchor=\"start\">");
  p = escaped(p, text);
  close(out, put(p, "</text>\n"));
}

std::string svgDocument(const DrawingList& d) {
  std::string out;
  out.reserve(512 + d.items.size() * 110 + d.text.size() * 2);
  char* p = open(out, kFixedRoom + 8 * kNumberRoom);
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
  close(out, p);
  for (const Primitive& e : d.items) {
    switch (e.kind) {
      case PrimitiveKind::rect:
        writeRect(out, e.v[0], e.v[1], e.v[2], e.v[3], e.v[4], e.fill, e.stroke, e.dashed);
        break;
      case PrimitiveKind::ellipse:
        writeEllipse(out, e.v[0], e.v[1], e.v[2], e.v[3], e.fill, e.stroke, e.strokeWidth);
        break;
      case PrimitiveKind::line:
        writeLine(out, e.v[0], e.v[1], e.v[2], e.v[3], e.stroke, e.strokeWidth, e.dashed);
        break;
      case PrimitiveKind::cubic:
        writeCubic(out, e.v, e.stroke, e.strokeWidth, e.dashed);
        break;
      case PrimitiveKind::polygon:
      case PrimitiveKind::polyline:
        writePoints(out, e.kind == PrimitiveKind::polygon, d.pointsOf(e), e.count, e.fill, e.stroke, e.dashed);
        break;
      case PrimitiveKind::text:
        writeText(out, e.v[0], e.v[1], e.v[2], e.fill, e.anchor, d.textOf(e));
        break;
    }
  }
  out += "</svg>\n";
  return out;
}

}  // namespace modelyne::exporter
