#pragma once
/// The five XML escapes of the model file, both ways.
///
///   std::string out; io::appendEscaped(out, "a<b");   // out == "a&lt;b"
///   io::appendDecoded(s, "x &amp; y &#65;");           // s == "x & y &#65;"
///
/// Writing escapes exactly `"` `&` `'` `<` `>`; every other byte (control
/// characters, newlines, UTF-8 sequences) is copied unchanged. Reading decodes
/// only those five named entities; any other `&...` sequence, numeric
/// references included, is kept as written.

#include <string>
#include <string_view>

namespace modelyne::io {

/// Appends `text` to `out` with the five escapes applied.
void appendEscaped(std::string& out, std::string_view text);
/// `text` with the five escapes applied.
std::string escapeXml(std::string_view text);

/// Appends `raw` to `out` with the five named entities decoded.
void appendDecoded(std::string& out, std::string_view raw);
/// Replaces `out` by `raw` decoded (reuses `out`'s storage).
void assignDecoded(std::string& out, std::string_view raw);
/// `raw` with the five named entities decoded.
std::string decodeXml(std::string_view raw);

}  // namespace modelyne::io
