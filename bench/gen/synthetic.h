#pragma once
/// Synthetic diagrams for benchmarks and scale tests: N nodes of varied
/// shape types on a grid and about 1.5 N edges of varied edge types, with
/// text, colours, properties and anchor offsets, from a fixed seed (the
/// same seed always gives the same diagram).

#include <cstdint>
#include <string>

#include "core/document.h"

namespace modelyne::bench {

/// Fills an empty document (primitives only, no history).
void syntheticDocument(core::Document& doc, std::size_t nodes, std::uint64_t seed = 42);

/// The same diagram as model-file text (diagram XML with a frame line).
std::string syntheticDiagramXml(std::size_t nodes, std::uint64_t seed = 42);

}  // namespace modelyne::bench
