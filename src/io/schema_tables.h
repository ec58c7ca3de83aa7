#pragma once
// Internal: the registry that maps every shape type to its schema, built
// once from the tables in schema_tables.cpp. Use io/property_schema.h.

#include <array>
#include <cstdint>
#include <vector>

#include "io/property_schema.h"

namespace modelyne::io::detail {

class SchemaRegistry {
 public:
  SchemaRegistry();
  /// The schema of the type; unassigned values get the trailer-only schema.
  const Schema& schemaOf(core::ShapeType type) const noexcept;

 private:
  std::vector<Schema> schemas_;            // index 0: trailer only
  std::array<std::uint16_t, 400> slot_{};  // shape value -> index into schemas_
};

const SchemaRegistry& schemaRegistry();

}  // namespace modelyne::io::detail
