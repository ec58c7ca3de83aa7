#pragma once
/// Quoting what a user or a file gave inside a message: at most 80
/// characters, then "…", so that one message stays one readable line.
///
///   "value is " + io::quotedText(value)          // "value is \"abc\""
///   "no model " + io::quotedText(id, '\'')       // "no model 'm1'"

#include <cstddef>
#include <string>
#include <string_view>

namespace modelyne::io {

/// Characters of user text shown in a message.
inline constexpr std::size_t kQuotedTextMax = 80;

/// `text` cut after kQuotedTextMax characters (UTF-8 sequences are kept
/// whole; a stray byte counts as one), a cut text ending in "…".
std::string shortenedText(std::string_view text);

/// shortenedText between two `quote` characters.
std::string quotedText(std::string_view text, char quote = '"');

}  // namespace modelyne::io
