// The map's shapes mapped onto a painter's rectangle; text keeps its size whatever the scale.
#include "contour/contour_paint.h"

#include <QFontMetricsF>
#include <QPaintDevice>
#include <QPolygonF>
#include <QBuffer>
#include <QFile>
#include <QSvgGenerator>
#include <algorithm>
#include <cmath>
#include <vector>

namespace merida {
namespace {

QColor ToQColor(Rgb c) { return QColor(c.r, c.g, c.b); }

double Area(const std::vector<QPointF>& p) {
  double twice = 0;
  for (std::size_t k = 0; k < p.size(); ++k) {
    const QPointF& a = p[k];
    const QPointF& b = p[(k + 1) % p.size()];
    twice += a.x() * b.y() - b.x() * a.y();
  }
  return twice / 2;
}

}  // namespace

int PaintMap(QPainter& painter, const MapScene& scene, const QRectF& target, const MapStyle& style) {
  painter.save();
  painter.fillRect(target, style.paper);
  painter.setRenderHint(QPainter::Antialiasing);
  const double kx = target.width() / (scene.right - scene.left);
  const double ky = target.height() / (scene.bottom - scene.top);
  auto map = [&](const MapPoint& p) {
    return QPointF(target.left() + (p.x - scene.left) * kx, target.top() + (p.y - scene.top) * ky);
  };
  // A pixel of a 96-dpi screen, whatever the device: a printer's lines are not hairlines.
  QPaintDevice* device = painter.device();
  const double pixel = device ? std::max(1.0, device->logicalDpiX() / 96.0) : 1.0;
  const double width = (style.print ? 2 : 1) * pixel;
  const QPen black(Qt::black, pixel);
  const QFontMetricsF metrics(painter.font(), device);

  // Lines over filled bands take a darker (or, on dark paper, lighter) shade of their colour, so
  // a line stays visible over the band of its own colour.
  const bool filled = scene.count(MapItem::kPolygon) > 0;
  const bool darkPaper = style.paper.lightnessF() < 0.5;
  auto lineColor = [&](QColor c) {
    if (filled) return darkPaper ? c.lighter(170) : c.darker(190);
    // Plain lines on dark paper: pure blue on dark grey would vanish.
    if (darkPaper && c.lightnessF() < 0.6) return QColor::fromHslF(c.hslHueF() < 0 ? 0 : c.hslHueF(), c.hslSaturationF(), 0.7);
    return c;
  };

  std::vector<QPointF> points;
  std::vector<QRectF> written;  // the texts so far: a text that would cover one is left out
  int leftOut = 0;
  for (const MapItem& item : scene.items) {
    const MapPoint* p = scene.pointsOf(item);
    points.clear();
    for (uint32_t k = 0; k < item.count; ++k) points.push_back(map(p[k]));
    const QColor color = item.ink ? style.ink : ToQColor(item.color);
    switch (item.kind) {
      case MapItem::kLine:
        painter.setPen(QPen(item.ink ? color : lineColor(color), width, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(points[0], points[1]);
        break;
      case MapItem::kPolyline:
        painter.setPen(QPen(item.ink ? color : lineColor(color), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(points.data(), static_cast<int>(points.size()));
        break;
      case MapItem::kPolygon:
        painter.setBrush(color);
        // Cells without an outline are edged in their own colour so that no seam shows. On a
        // dense grid black outlines would hide the fill: a cell of less than 8 x 8 pixels' area
        // is edged in its own colour, like the unoutlined ones.
        if (item.outline && std::abs(Area(points)) >= 64 * pixel * pixel) {
          painter.setPen(black);
        } else {
          painter.setPen(QPen(color, pixel));
        }
        painter.drawPolygon(points.data(), static_cast<int>(points.size()));
        break;
      case MapItem::kText: {
        const QString text = QString::fromStdString(item.text);
        const QSizeF size(metrics.horizontalAdvance(text), metrics.height());
        QPointF corner = points[0] - QPointF(size.width() * (item.alignX + 1) / 2, size.height() * (item.alignY + 1) / 2);
        const QRectF box(corner, size);
        const QRectF room = box.adjusted(-pixel, 0, pixel, 0);
        if (std::any_of(written.begin(), written.end(), [&](const QRectF& r) { return r.intersects(room); })) {
          ++leftOut;
          break;
        }
        written.push_back(room);
        if (item.boxed) painter.fillRect(room, style.paper);
        painter.setPen(color);
        painter.drawText(box, Qt::AlignCenter, text);
        break;
      }
    }
  }
  painter.restore();
  return leftOut;
}

QImage RenderMap(const MapScene& scene, QSize size, const MapStyle& style, double devicePixelRatio) {
  QImage image(size * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(devicePixelRatio);
  QPainter painter(&image);
  PaintMap(painter, scene, QRectF(QPointF(0, 0), QSizeF(size)), style);
  return image;
}

FileResult SaveMap(const MapScene& scene, const QString& path, QSize size, const MapStyle& style,
                   double devicePixelRatio) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  if (path.endsWith(QLatin1String(".svg"), Qt::CaseInsensitive)) {
    QSvgGenerator svg;
    svg.setOutputDevice(&buffer);
    svg.setSize(size);
    svg.setViewBox(QRect(QPoint(0, 0), size));
    svg.setResolution(96);
    QPainter painter;
    if (!painter.begin(&svg)) return {"the image could not be encoded"};
    PaintMap(painter, scene, QRectF(QPointF(0, 0), QSizeF(size)), style);
    painter.end();
  } else if (!RenderMap(scene, size, style, devicePixelRatio).save(&buffer, "PNG")) {
    return {"the image could not be encoded"};
  }
  return WriteFileAtomically(QFile::encodeName(path).toStdString(),
                             std::string_view(bytes.constData(), static_cast<size_t>(bytes.size())));
}

}  // namespace merida
