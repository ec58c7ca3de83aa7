#pragma once
/// What a label or property may hold. The model file and the SVG are XML
/// 1.0, and the writers copy text unchanged, so text produced by the system
/// itself (generated plans, imported models) is cleaned where it enters:
/// control characters other than line feed and tab are dropped, and bytes
/// that are not UTF-8 become U+FFFD.
///
///   node.text = core::cleanText(label);
///
/// `decodeUtf8` is the one UTF-8 decoder behind this and the XML checks.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace modelyne::core {

/// One step of UTF-8 decoding at `text[at]`: the code point and the bytes it
/// took, or `valid == false` with `length == 1` for a byte that does not
/// start a well-formed sequence (shorter, overlong, a surrogate, past
/// U+10FFFF).
struct Utf8Step {
  std::uint32_t codePoint = 0;
  std::size_t length = 1;
  bool valid = false;
};
Utf8Step decodeUtf8(std::string_view text, std::size_t at) noexcept;

/// Unicode's control category (U+0000-U+001F, U+007F-U+009F) except line
/// feed and tab.
bool isUnwantedControl(std::uint32_t codePoint) noexcept;

/// `text` without unwanted control characters (a carriage return before a
/// line feed goes too; a lone one becomes a line feed), with every byte that
/// is not UTF-8 replaced by U+FFFD and XML's non-characters U+FFFE and
/// U+FFFF dropped. Returns `text` unchanged when there is nothing to clean.
std::string cleanText(std::string_view text);

}  // namespace modelyne::core
