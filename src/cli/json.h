#pragma once
/// The little JSON the tool writes: strings and arrays of strings.

#include <span>
#include <string>
#include <string_view>

namespace modelyne::cli {

/// A JSON string literal: quotes, backslashes and control characters
/// escaped, UTF-8 copied, bytes that are not UTF-8 as U+FFFD.
std::string jsonString(std::string_view s);

/// An array of strings, one element per line, ending in a line feed;
/// "[]\n" when empty.
std::string jsonStringArray(std::span<const std::string> items);

}  // namespace modelyne::cli
