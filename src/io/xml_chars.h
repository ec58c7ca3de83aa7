#pragma once
/// Which texts XML 1.0 can carry. The writers copy text unchanged, so a
/// label with a control character (other than tab, line feed and carriage
/// return) or bytes that are not UTF-8 makes a file other XML tools refuse;
/// callers use this to warn before writing.
///
///   if (auto fault = io::firstXmlTextFault(node.text))
///     warn("node text holds " + io::describeXmlTextFault(*fault));

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace modelyne::io {

struct XmlTextFault {
  enum class Kind : std::uint8_t {
    character,  ///< a well-formed character XML 1.0 excludes; `value` is its code point
    byte,       ///< a byte that does not belong to valid UTF-8; `value` is the byte
  };
  Kind kind = Kind::character;
  std::uint32_t value = 0;
  std::size_t offset = 0;  ///< byte offset in the text
};

/// The first fault of `text`, or nothing when XML 1.0 takes it as it is.
std::optional<XmlTextFault> firstXmlTextFault(std::string_view text);

/// "U+0007, which XML 1.0 does not allow" or "the byte 0xFF, which is not UTF-8".
std::string describeXmlTextFault(const XmlTextFault& fault);

}  // namespace modelyne::io
