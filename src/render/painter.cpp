#include "render/painter.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <map>

namespace modelyne::render {

namespace {

using exporter::Colour;
using exporter::Primitive;
using exporter::PrimitiveKind;

QColor toQColor(Colour c) {
  return QColor(static_cast<int>((c.rgb >> 16) & 0xFF), static_cast<int>((c.rgb >> 8) & 0xFF),
                static_cast<int>(c.rgb & 0xFF));
}

QPen penOf(const Primitive& p) {
  if (p.stroke.none) return Qt::NoPen;
  QPen pen(toQColor(p.stroke));
  pen.setWidthF(p.strokeWidth);
  pen.setJoinStyle(Qt::MiterJoin);
  pen.setCapStyle(Qt::FlatCap);
  if (p.dashed && p.strokeWidth > 0) {
    // Qt measures dashes in pen widths; the drawing's 5,3 pattern is in drawing units.
    pen.setDashPattern({5.0 / p.strokeWidth, 3.0 / p.strokeWidth});
  }
  return pen;
}

QBrush brushOf(const Primitive& p) {
  return p.fill.none ? QBrush(Qt::NoBrush) : QBrush(toQColor(p.fill));
}

/// Fonts by pixel size, built once per paint call.
class FontCache {
 public:
  const std::pair<QFont, QFontMetricsF>& get(float size) {
    auto it = fonts_.find(size);
    if (it != fonts_.end()) return it->second;
    QFont font;
    font.setFamilies({QStringLiteral("Meiryo"), QStringLiteral("Yu Gothic UI"), QStringLiteral("Segoe UI"),
                      QStringLiteral("DejaVu Sans"), QStringLiteral("Noto Sans CJK JP"), QStringLiteral("sans-serif")});
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(size))));
    return fonts_.emplace(size, std::make_pair(font, QFontMetricsF(font))).first->second;
  }

 private:
  std::map<float, std::pair<QFont, QFontMetricsF>> fonts_;
};

void paintText(QPainter& painter, const Primitive& p, std::string_view utf8, FontCache& fonts) {
  if (utf8.empty() || !(p.v[2] > 0)) return;
  const auto& [font, metrics] = fonts.get(p.v[2]);
  const QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
  qreal x = p.v[0];
  if (p.anchor == exporter::TextAnchor::middle) x -= metrics.horizontalAdvance(text) / 2;
  painter.setFont(font);
  painter.setPen(toQColor(p.fill));
  painter.drawText(QPointF(x, p.v[1]), text);
}

/// Whether the primitive may show inside `visible`: the box of its geometry,
/// grown by the stroke, meets it. A text is tested on its line's height
/// only, since its width is known once shaped.
bool mayShow(const exporter::DrawingList& d, const Primitive& p, const QRectF& visible) {
  float x0 = 0, y0 = 0, x1 = 0, y1 = 0;
  auto take = [&](float x, float y) {
    x0 = std::min(x0, x); x1 = std::max(x1, x);
    y0 = std::min(y0, y); y1 = std::max(y1, y);
  };
  switch (p.kind) {
    case PrimitiveKind::text: {
      const double size = p.v[2];
      return p.v[1] + size >= visible.top() && p.v[1] - 1.5 * size <= visible.bottom();
    }
    case PrimitiveKind::rect:
      x0 = x1 = p.v[0];
      y0 = y1 = p.v[1];
      take(p.v[0] + p.v[2], p.v[1] + p.v[3]);
      break;
    case PrimitiveKind::ellipse:
      x0 = x1 = p.v[0] - p.v[2];
      y0 = y1 = p.v[1] - p.v[3];
      take(p.v[0] + p.v[2], p.v[1] + p.v[3]);
      break;
    case PrimitiveKind::line:
    case PrimitiveKind::cubic: {
      // A cubic lies inside the box of its control points.
      x0 = x1 = p.v[0];
      y0 = y1 = p.v[1];
      const int n = p.kind == PrimitiveKind::line ? 2 : 4;
      for (int i = 1; i < n; ++i) take(p.v[2 * i], p.v[2 * i + 1]);
      break;
    }
    case PrimitiveKind::polygon:
    case PrimitiveKind::polyline: {
      if (p.count == 0) return false;
      const exporter::Point* pts = d.pointsOf(p);
      x0 = x1 = pts[0].x;
      y0 = y1 = pts[0].y;
      for (std::uint32_t i = 1; i < p.count; ++i) take(pts[i].x, pts[i].y);
      break;
    }
  }
  const double grow = p.strokeWidth + 1.0;  // the stroke and a unit of antialiasing
  return x0 - grow <= visible.right() && x1 + grow >= visible.left() && y0 - grow <= visible.bottom() &&
         y1 + grow >= visible.top();
}

void paintItems(QPainter& painter, const exporter::DrawingList& d, const QRectF* visible) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, true);
  painter.setRenderHint(QPainter::TextAntialiasing, true);
  if (d.background)
    painter.fillRect(QRectF(d.bounds.x, d.bounds.y, d.bounds.width, d.bounds.height), Qt::white);
  FontCache fonts;
  QPolygonF poly;
  for (const Primitive& p : d.items) {
    if (visible && !mayShow(d, p, *visible)) continue;
    if (p.kind == PrimitiveKind::text) {
      paintText(painter, p, d.textOf(p), fonts);
      continue;
    }
    painter.setPen(penOf(p));
    painter.setBrush(brushOf(p));
    switch (p.kind) {
      case PrimitiveKind::rect: {
        const QRectF r(p.v[0], p.v[1], p.v[2], p.v[3]);
        if (p.v[4] > 0)
          painter.drawRoundedRect(r, p.v[4], p.v[4]);
        else
          painter.drawRect(r);
        break;
      }
      case PrimitiveKind::ellipse:
        painter.drawEllipse(QPointF(p.v[0], p.v[1]), p.v[2], p.v[3]);
        break;
      case PrimitiveKind::line:
        painter.drawLine(QPointF(p.v[0], p.v[1]), QPointF(p.v[2], p.v[3]));
        break;
      case PrimitiveKind::cubic: {
        QPainterPath path(QPointF(p.v[0], p.v[1]));
        path.cubicTo(QPointF(p.v[2], p.v[3]), QPointF(p.v[4], p.v[5]), QPointF(p.v[6], p.v[7]));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(path);
        break;
      }
      case PrimitiveKind::polygon:
      case PrimitiveKind::polyline: {
        poly.clear();
        const exporter::Point* pts = d.pointsOf(p);
        for (std::uint32_t i = 0; i < p.count; ++i) poly.append(QPointF(pts[i].x, pts[i].y));
        if (p.kind == PrimitiveKind::polygon)
          painter.drawPolygon(poly);
        else
          painter.drawPolyline(poly);
        break;
      }
      case PrimitiveKind::text:
        break;
    }
  }
  painter.restore();
}

}  // namespace

void paint(QPainter& painter, const exporter::DrawingList& d) { paintItems(painter, d, nullptr); }

void paint(QPainter& painter, const exporter::DrawingList& d, const QRectF& visible) {
  paintItems(painter, d, &visible);
}

}  // namespace modelyne::render
