#pragma once
/// Default sizes of new nodes per shape type, so that a node placed from the
/// palette looks right at once (a bar is long and thin, an event is a small
/// circle, a pool is wide). The table is data in shape_defaults.cpp.

#include <QSizeF>

#include "core/catalogue.h"

namespace modelyne::shell {

/// Width and height, in diagram units, of a new node of the type.
QSizeF defaultNodeSize(core::ShapeType type) noexcept;

}  // namespace modelyne::shell
