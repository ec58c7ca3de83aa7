#pragma once
/// The fixed, theme-independent colours of exported drawings: node fill by
/// colour name ("blue" ... "purple", anything else the default fill) and the
/// hexadecimal form written to files.

#include <string_view>

#include "export/drawing.h"

namespace modelyne::exporter {

/// Exact, case-sensitive lookup of a node's colour name; unknown or empty
/// names give the default fill "#F5F6FA".
Colour nodeFill(std::string_view colourName) noexcept;

/// "#RRGGBB" in upper-case hexadecimal, or "none"; written into `buf`.
std::string_view colourText(Colour c, char (&buf)[8]) noexcept;

}  // namespace modelyne::exporter
