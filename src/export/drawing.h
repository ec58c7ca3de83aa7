#pragma once
/// The drawing of a diagram as an ordered list of primitives (rectangle,
/// ellipse, line, cubic curve, polygon, polyline, text), each with its fill,
/// stroke, width, dash and font size. Built once from a diagram
/// (diagram_drawing.h) and then serialised to SVG or painted on a raster,
/// so every output shows the same picture.

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace modelyne::exporter {

struct Point {
  float x = 0.0f;
  float y = 0.0f;
};

/// An sRGB colour (0xRRGGBB), or no paint at all.
struct Colour {
  std::uint32_t rgb = 0;
  bool none = false;
  friend bool operator==(const Colour&, const Colour&) = default;
};

inline constexpr Colour kNoPaint{0, true};
inline constexpr Colour kStrokeColour{0x3C4050, false};   ///< outlines, connectors, filled marks
inline constexpr Colour kTextColour{0x1E222C, false};     ///< all text
inline constexpr Colour kDefaultFill{0xF5F6FA, false};    ///< nodes without a known colour name
inline constexpr Colour kWhite{0xFFFFFF, false};          ///< page, hollow marks

enum class PrimitiveKind : std::uint8_t { rect, ellipse, line, cubic, polygon, polyline, text };
enum class TextAnchor : std::uint8_t { start, middle };

/// One drawing element. Geometry lives in `v`:
/// rect x, y, w, h, rx; ellipse cx, cy, rx, ry; line x1, y1, x2, y2;
/// cubic x0, y0, c1x, c1y, c2x, c2y, x1, y1; text x (anchor), y (baseline), font size.
/// Polygons and polylines use `count` points of `DrawingList::points` from
/// `first`; a text uses `count` bytes of `DrawingList::text` from `first`.
struct Primitive {
  PrimitiveKind kind = PrimitiveKind::rect;
  bool dashed = false;                 ///< dash pattern 5,3
  TextAnchor anchor = TextAnchor::middle;
  Colour fill = kNoPaint;
  Colour stroke = kStrokeColour;
  float strokeWidth = 1.5f;
  float v[8] = {};
  std::uint32_t first = 0;
  std::uint32_t count = 0;
};

/// The page: one drawing unit is one SVG unit.
struct Bounds {
  float x = 0.0f;
  float y = 0.0f;
  float width = 0.0f;
  float height = 0.0f;
};

struct DrawingList {
  Bounds bounds;
  bool background = false;             ///< white page under everything
  std::vector<Primitive> items;        ///< in painting order
  std::vector<Point> points;           ///< shared point storage of polygons and polylines
  std::string text;                    ///< shared UTF-8 storage of the texts, unescaped

  const Point* pointsOf(const Primitive& p) const noexcept { return points.data() + p.first; }
  std::string_view textOf(const Primitive& p) const noexcept { return std::string_view(text).substr(p.first, p.count); }
};

/// The most bytes of one label that are drawn. Longer text is cut at a
/// character boundary and ends in an ellipsis, so drawing time follows the
/// picture rather than text too long for anyone to read.
inline constexpr std::size_t kMaxLabelBytes = 8192;

/// `text` as drawn: itself when within kMaxLabelBytes, else its first
/// characters and "\u2026" (kept in `storage`).
std::string_view shownLabel(std::string_view text, std::string& storage);

/// Appends primitives to a list. Primitives whose geometry is not finite are
/// dropped: nothing sensible can be drawn for them.
class DrawingBuilder {
 public:
  explicit DrawingBuilder(DrawingList& list) : list_(list) {}

  void rect(float x, float y, float w, float h, float rx, Colour fill, bool dashed = false,
            Colour stroke = kStrokeColour);
  void ellipse(float cx, float cy, float rx, float ry, Colour fill, float strokeWidth = 1.5f,
               Colour stroke = kStrokeColour);
  void line(float x1, float y1, float x2, float y2, float strokeWidth = 1.5f, bool dashed = false,
            Colour stroke = kStrokeColour);
  void cubic(Point p0, Point c1, Point c2, Point p1, float strokeWidth = 1.5f, bool dashed = false);
  void polygon(std::initializer_list<Point> pts, Colour fill, bool dashed = false,
               Colour stroke = kStrokeColour);
  void polyline(const Point* pts, std::size_t n, bool dashed = false, Colour stroke = kStrokeColour);
  void polyline(std::initializer_list<Point> pts, bool dashed = false, Colour stroke = kStrokeColour);
  /// One line of text, capped as `shownLabel` says.
  void text(float x, float y, float size, TextAnchor anchor, std::string_view text,
            Colour fill = kTextColour);

 private:
  void points(PrimitiveKind kind, const Point* pts, std::size_t n, Colour fill, bool dashed,
              Colour stroke);
  DrawingList& list_;
};

}  // namespace modelyne::exporter
