#pragma once
/// Text the model file and the SVG cannot carry as XML: control characters
/// other than tab, line feed and carriage return, and bytes that are not
/// UTF-8. The writers copy text as it is; `export` and `format` still write,
/// warn once per element and end with exit code 1.

#include <cstddef>

#include "cli/model_input.h"
#include "core/document.h"

namespace modelyne::cli {

/// Prints "modelyne: warning: FILE:LINE: node 'a' text holds U+0007, which
/// XML 1.0 does not allow" for each node and edge of model `index` (loaded
/// into `doc`) with such text, and for the frame; returns how many.
std::size_t warnAboutUnwritableText(const ModelFile& file, std::size_t index, const core::Document& doc);

}  // namespace modelyne::cli
