// Painting the Contour Map drawing: the window, the printer and merida-cli all call these.
#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRectF>
#include <QSize>
#include <QString>

#include "contour/contour_scene.h"
#include "engine/atomic_file.h"

namespace merida {

struct MapStyle {
  QColor paper = Qt::white;  // the background
  QColor ink = Qt::black;    // axes, ticks and labels
  bool print = false;        // lines twice as heavy, as paper needs
};

// Paints the scene stretched over `target`; pen widths follow the device's resolution. A text
// that would cover one already written is left out; returns how many were.
int PaintMap(QPainter& painter, const MapScene& scene, const QRectF& target, const MapStyle& style);

// The drawing as an image of `size` logical pixels at `devicePixelRatio`.
QImage RenderMap(const MapScene& scene, QSize size, const MapStyle& style, double devicePixelRatio = 1);

// Writes a PNG, or an SVG when the name ends in ".svg", atomically.
FileResult SaveMap(const MapScene& scene, const QString& path, QSize size, const MapStyle& style,
             double devicePixelRatio = 1);

}  // namespace merida
