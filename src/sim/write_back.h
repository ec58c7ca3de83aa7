#pragma once
/// Writes the values a propagation computed back into the document, as one
/// undoable step through the document operations.

#include <cstddef>

#include "bridge/bridge.h"
#include "sim/propagation.h"

namespace modelyne::core::sim::parametric {

/// Sets the "value" property of every value property bound to a computed,
/// finite value whose stored text differs, in one undo step (none when
/// nothing changes). Numbers are written in their shortest form that reads
/// back to the same double. Returns how many properties changed; throws
/// `bridge::BridgeError` as `bridge::setNodeProperties` does, before changing
/// anything.
std::size_t writeBackValues(bridge::DocumentHandle document, const PropagationResult& result);

}  // namespace modelyne::core::sim::parametric
