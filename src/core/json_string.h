#pragma once
/// JSON string literals for the JSON the system writes by hand (the tool's
/// reports, simulation traces): quotes, backslashes and control characters
/// escaped, UTF-8 copied as it is, each byte that is not UTF-8 as \ufffd so
/// that the whole document stays valid JSON.
///
///   core::appendJsonString(out, node.text);   // out += "\"...\""

#include <string>
#include <string_view>

namespace modelyne::core {

void appendJsonString(std::string& out, std::string_view s);
std::string jsonString(std::string_view s);

}  // namespace modelyne::core
