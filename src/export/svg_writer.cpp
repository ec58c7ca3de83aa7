#include "export/svg_writer.h"

#include "export/number_format.h"
#include "export/palette.h"

namespace modelyne::exporter {

namespace {

void attr(std::string& out, std::string_view name, float value) {
  out += ' ';
  out += name;
  out += "=\"";
  appendNumber(out, value);
  out += '"';
}

void colourAttr(std::string& out, std::string_view name, Colour c) {
  char buf[8];
  out += ' ';
  out += name;
  out += "=\"";
  out += colourText(c, buf);
  out += '"';
}

void dash(std::string& out, bool dashed) {
  if (dashed) out += " stroke-dasharray=\"5,3\"";
}

}  // namespace

void appendEscaped(std::string& out, std::string_view text) {
  std::size_t plain = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::string_view entity;
    switch (text[i]) {
      case '&': entity = "&amp;"; break;
      case '<': entity = "&lt;"; break;
      case '>': entity = "&gt;"; break;
      case '"': entity = "&quot;"; break;
      case '\'': entity = "&apos;"; break;
      default: continue;
    }
    out.append(text.data() + plain, i - plain);
    out += entity;
    plain = i + 1;
  }
  out.append(text.data() + plain, text.size() - plain);
}

void writeRect(std::string& out, float x, float y, float w, float h, float rx, Colour fill, Colour stroke,
               bool dashed) {
  out += "<rect";
  attr(out, "x", x);
  attr(out, "y", y);
  attr(out, "width", w);
  attr(out, "height", h);
  if (rx > 0) attr(out, "rx", rx);
  colourAttr(out, "fill", fill);
  colourAttr(out, "stroke", stroke);
  out += " stroke-width=\"1.5\"";
  dash(out, dashed);
  out += "/>\n";
}

void writeEllipse(std::string& out, float cx, float cy, float rx, float ry, Colour fill, Colour stroke,
                  float strokeWidth) {
  out += "<ellipse";
  attr(out, "cx", cx);
  attr(out, "cy", cy);
  attr(out, "rx", rx);
  attr(out, "ry", ry);
  colourAttr(out, "fill", fill);
  colourAttr(out, "stroke", stroke);
  attr(out, "stroke-width", strokeWidth);
  out += "/>\n";
}

void writeLine(std::string& out, float x1, float y1, float x2, float y2, Colour stroke, float strokeWidth,
               bool dashed) {
  out += "<line";
  attr(out, "x1", x1);
  attr(out, "y1", y1);
  attr(out, "x2", x2);
  attr(out, "y2", y2);
  colourAttr(out, "stroke", stroke);
  attr(out, "stroke-width", strokeWidth);
  dash(out, dashed);
  out += "/>\n";
}

void writeCubic(std::string& out, const float (&v)[8], Colour stroke, float strokeWidth, bool dashed) {
  out += "<path d=\"M ";
  appendNumber(out, v[0]);
  out += ' ';
  appendNumber(out, v[1]);
  out += " C ";
  for (int i = 2; i < 8; ++i) {
    if (i > 2) out += ' ';
    appendNumber(out, v[i]);
  }
  out += "\" fill=\"none\"";
  colourAttr(out, "stroke", stroke);
  attr(out, "stroke-width", strokeWidth);
  dash(out, dashed);
  out += "/>\n";
}

void writePoints(std::string& out, bool closed, const Point* pts, std::size_t n, Colour fill, Colour stroke,
                 bool dashed) {
  out += closed ? "<polygon points=\"" : "<polyline points=\"";
  for (std::size_t i = 0; i < n; ++i) {
    if (i > 0) out += ' ';
    appendNumber(out, pts[i].x);
    out += ',';
    appendNumber(out, pts[i].y);
  }
  out += '"';
  colourAttr(out, "fill", fill);
  colourAttr(out, "stroke", stroke);
  out += " stroke-width=\"1.5\"";
  dash(out, dashed);
  out += "/>\n";
}

void writeText(std::string& out, float x, float y, float size, Colour fill, TextAnchor anchor,
               std::string_view text) {
  out += "<text";
  attr(out, "x", x);
  attr(out, "y", y);
  out += " font-family=\"";
  out += kSvgFontFamily;
  out += '"';
  attr(out, "font-size", size);
  colourAttr(out, "fill", fill);
  out += anchor == TextAnchor::middle ? " text-anchor=\"middle\">" : " text-anchor=\"start\">";
  appendEscaped(out, text);
  out += "</text>\n";
}

std::string svgDocument(const DrawingList& d) {
  std::string out;
  out.reserve(256 + d.items.size() * 120);
  out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  out += "<svg xmlns=\"http://www.w3.org/2000/svg\"";
  attr(out, "width", d.bounds.width);
  attr(out, "height", d.bounds.height);
  out += " viewBox=\"";
  appendNumber(out, d.bounds.x);
  out += ' ';
  appendNumber(out, d.bounds.y);
  out += ' ';
  appendNumber(out, d.bounds.width);
  out += ' ';
  appendNumber(out, d.bounds.height);
  out += "\">\n";
  if (d.background) {
    out += "<rect";
    attr(out, "x", d.bounds.x);
    attr(out, "y", d.bounds.y);
    attr(out, "width", d.bounds.width);
    attr(out, "height", d.bounds.height);
    out += " fill=\"#FFFFFF\"/>\n";
  }
  for (const Primitive& p : d.items) {
    switch (p.kind) {
      case PrimitiveKind::rect:
        writeRect(out, p.v[0], p.v[1], p.v[2], p.v[3], p.v[4], p.fill, p.stroke, p.dashed);
        break;
      case PrimitiveKind::ellipse:
        writeEllipse(out, p.v[0], p.v[1], p.v[2], p.v[3], p.fill, p.stroke, p.strokeWidth);
        break;
      case PrimitiveKind::line:
        writeLine(out, p.v[0], p.v[1], p.v[2], p.v[3], p.stroke, p.strokeWidth, p.dashed);
        break;
      case PrimitiveKind::cubic:
        writeCubic(out, p.v, p.stroke, p.strokeWidth, p.dashed);
        break;
      case PrimitiveKind::polygon:
      case PrimitiveKind::polyline:
        writePoints(out, p.kind == PrimitiveKind::polygon, d.pointsOf(p), p.count, p.fill, p.stroke, p.dashed);
        break;
      case PrimitiveKind::text:
        writeText(out, p.v[0], p.v[1], p.v[2], p.fill, p.anchor, p.text);
        break;
    }
  }
  out += "</svg>\n";
  return out;
}

}  // namespace modelyne::exporter
