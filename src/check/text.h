#pragma once
/// Small text helpers of the rules: property lookup, blank tests and the
/// keyword normalisation used to compare stereotypes and operators.

#include <string>
#include <string_view>

#include "core/model.h"

namespace modelyne::check {

/// The node's property value, or "" when the key is absent.
std::string_view property(const core::Node& node, const std::string& key);

/// The text without leading and trailing ASCII white space.
std::string_view trimmed(std::string_view text) noexcept;

/// Empty or only white space. The rules treat a blank property as unset: a
/// requirement text of three spaces states nothing.
inline bool isBlank(std::string_view text) noexcept { return trimmed(text).empty(); }

/// ASCII letters and digits of the text, lower-cased; everything else
/// (spaces, "-", "_", guillemets, "<<" ">>") dropped. So "«Value Type»",
/// "value_type" and "ValueType" all read "valuetype".
std::string keyword(std::string_view text);

/// ASCII case-insensitive equality.
bool equalsIgnoreCase(std::string_view a, std::string_view b) noexcept;

}  // namespace modelyne::check
