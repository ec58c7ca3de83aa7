#pragma once
/// Paints an exporter drawing list with QPainter, primitive by primitive, in
/// drawing units: the caller's transform decides scale and position, so the
/// same code serves the editor's canvas, PNG, JPEG and PDF output.
///
///   QPainter p(&image);
///   p.scale(2, 2);
///   p.translate(-list.bounds.x, -list.bounds.y);
///   render::paint(p, list);

#include "export/drawing.h"

class QPainter;
class QRectF;

namespace modelyne::render {

/// Paints every primitive of `drawing` in order (the white page first when
/// the list asks for it), with antialiasing, on any QPainter.
void paint(QPainter& painter, const exporter::DrawingList& drawing);

/// The same, skipping primitives that lie wholly outside `visible` (drawing
/// units), so painting a part of a picture costs what that part shows.
void paint(QPainter& painter, const exporter::DrawingList& drawing, const QRectF& visible);

}  // namespace modelyne::render
