#include "export/palette.h"

#include <array>

namespace modelyne::exporter {

namespace {

struct NamedColour {
  std::string_view name;
  std::uint32_t rgb;
};

constexpr std::array<NamedColour, 6> kNamedColours = {{
    {"blue", 0x5AA0FF},
    {"red", 0xF06E6E},
    {"green", 0x78C882},
    {"yellow", 0xFFDC5A},
    {"orange", 0xFFAA50},
    {"purple", 0xB482E6},
}};

}  // namespace

Colour nodeFill(std::string_view colourName) noexcept {
  for (const NamedColour& c : kNamedColours)
    if (c.name == colourName) return {c.rgb, false};
  return kDefaultFill;
}

std::string_view colourText(Colour c, char (&buf)[8]) noexcept {
  if (c.none) return "none";
  constexpr char kHex[] = "0123456789ABCDEF";
  buf[0] = '#';
  for (int i = 0; i < 6; ++i) buf[1 + i] = kHex[(c.rgb >> (20 - 4 * i)) & 0xF];
  buf[7] = '\0';
  return std::string_view(buf, 7);
}

}  // namespace modelyne::exporter
