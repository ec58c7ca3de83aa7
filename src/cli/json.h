#pragma once
/// The little JSON the tool writes: strings and arrays of strings.

#include <span>
#include <string>
#include <string_view>

#include "core/json_string.h"

namespace modelyne::cli {

using core::jsonString;

/// An array of strings, one element per line, ending in a line feed;
/// "[]\n" when empty.
std::string jsonStringArray(std::span<const std::string> items);

}  // namespace modelyne::cli
