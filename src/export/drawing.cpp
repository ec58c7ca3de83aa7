#include "export/drawing.h"

#include <cmath>

namespace modelyne::exporter {

namespace {

bool finite(std::initializer_list<float> values) {
  for (float v : values)
    if (!std::isfinite(v)) return false;
  return true;
}

}  // namespace

void DrawingBuilder::rect(float x, float y, float w, float h, float rx, Colour fill, bool dashed,
                          Colour stroke) {
  if (!finite({x, y, w, h, rx})) return;
  Primitive& p = list_.items.emplace_back();
  p.kind = PrimitiveKind::rect;
  p.fill = fill;
  p.stroke = stroke;
  p.dashed = dashed;
  p.v[0] = x; p.v[1] = y; p.v[2] = w; p.v[3] = h; p.v[4] = rx;
}

void DrawingBuilder::ellipse(float cx, float cy, float rx, float ry, Colour fill, float strokeWidth,
                             Colour stroke) {
  if (!finite({cx, cy, rx, ry})) return;
  Primitive& p = list_.items.emplace_back();
  p.kind = PrimitiveKind::ellipse;
  p.fill = fill;
  p.stroke = stroke;
  p.strokeWidth = strokeWidth;
  p.v[0] = cx; p.v[1] = cy; p.v[2] = rx; p.v[3] = ry;
}

void DrawingBuilder::line(float x1, float y1, float x2, float y2, float strokeWidth, bool dashed,
                          Colour stroke) {
  if (!finite({x1, y1, x2, y2})) return;
  Primitive& p = list_.items.emplace_back();
  p.kind = PrimitiveKind::line;
  p.stroke = stroke;
  p.strokeWidth = strokeWidth;
  p.dashed = dashed;
  p.v[0] = x1; p.v[1] = y1; p.v[2] = x2; p.v[3] = y2;
}

void DrawingBuilder::cubic(Point p0, Point c1, Point c2, Point p1, float strokeWidth, bool dashed) {
  if (!finite({p0.x, p0.y, c1.x, c1.y, c2.x, c2.y, p1.x, p1.y})) return;
  Primitive& p = list_.items.emplace_back();
  p.kind = PrimitiveKind::cubic;
  p.strokeWidth = strokeWidth;
  p.dashed = dashed;
  const float v[8] = {p0.x, p0.y, c1.x, c1.y, c2.x, c2.y, p1.x, p1.y};
  for (int i = 0; i < 8; ++i) p.v[i] = v[i];
}

void DrawingBuilder::points(PrimitiveKind kind, const Point* pts, std::size_t n, Colour fill,
                            bool dashed, Colour stroke) {
  for (std::size_t i = 0; i < n; ++i)
    if (!finite({pts[i].x, pts[i].y})) return;
  Primitive& p = list_.items.emplace_back();
  p.kind = kind;
  p.fill = fill;
  p.stroke = stroke;
  p.dashed = dashed;
  p.first = static_cast<std::uint32_t>(list_.points.size());
  p.count = static_cast<std::uint32_t>(n);
  list_.points.insert(list_.points.end(), pts, pts + n);
}

void DrawingBuilder::polygon(std::initializer_list<Point> pts, Colour fill, bool dashed, Colour stroke) {
  points(PrimitiveKind::polygon, pts.begin(), pts.size(), fill, dashed, stroke);
}

void DrawingBuilder::polyline(const Point* pts, std::size_t n, bool dashed, Colour stroke) {
  points(PrimitiveKind::polyline, pts, n, kNoPaint, dashed, stroke);
}

void DrawingBuilder::polyline(std::initializer_list<Point> pts, bool dashed, Colour stroke) {
  points(PrimitiveKind::polyline, pts.begin(), pts.size(), kNoPaint, dashed, stroke);
}

void DrawingBuilder::text(float x, float y, float size, TextAnchor anchor, std::string_view text,
                          Colour fill) {
  if (!finite({x, y, size})) return;
  Primitive& p = list_.items.emplace_back();
  p.kind = PrimitiveKind::text;
  p.anchor = anchor;
  p.fill = fill;
  p.stroke = kNoPaint;
  p.v[0] = x; p.v[1] = y; p.v[2] = size;
  std::string capped;
  const std::string_view shown = shownLabel(text, capped);
  p.first = static_cast<std::uint32_t>(list_.text.size());
  p.count = static_cast<std::uint32_t>(shown.size());
  list_.text.append(shown);
}

std::string_view shownLabel(std::string_view text, std::string& storage) {
  if (text.size() <= kMaxLabelBytes) return text;
  std::size_t end = kMaxLabelBytes;
  // Back up over UTF-8 continuation bytes (10xxxxxx) so no character is
  // split; a character has at most three of them.
  for (int i = 0; i < 3 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80; ++i) --end;
  storage.assign(text.substr(0, end));
  storage += "\u2026";
  return storage;
}

}  // namespace modelyne::exporter
