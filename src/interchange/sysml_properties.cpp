#include "interchange/sysml_properties.h"

#include <array>

#include "io/property_schema.h"

namespace modelyne::interchange {

namespace {

struct DetailKeys {
  Detail detail;
  std::array<std::string_view, 3> preferred;  ///< schema keys, first offered wins
  std::string_view fallback;
};

// Requirements keep their short name as the requirement id and their
// documentation as the requirement text.
constexpr std::array kDetailKeys{
    DetailKeys{Detail::typing, {"definition", "type", "classifier"}, "sysmlType"},
    DetailKeys{Detail::specializes, {"specializes"}, "sysmlSpecializes"},
    DetailKeys{Detail::subsets, {"subsets"}, "sysmlSubsets"},
    DetailKeys{Detail::redefines, {"redefines"}, "sysmlRedefines"},
    DetailKeys{Detail::references, {}, "sysmlReferences"},
    DetailKeys{Detail::multiplicity, {"multiplicity"}, "sysmlMultiplicity"},
    DetailKeys{Detail::value, {}, "sysmlValue"},
    DetailKeys{Detail::shortName, {"reqId"}, "sysmlShortName"},
    DetailKeys{Detail::clause, {}, "sysmlClause"},
    DetailKeys{Detail::expression, {"equation"}, "sysmlExpression"},
    DetailKeys{Detail::documentation, {"requirementText", "documentation"}, "documentation"},
};

}  // namespace

bool schemaHas(core::ShapeType type, std::string_view key) { return io::findProperty(type, key) != nullptr; }

std::string_view detailKey(core::ShapeType type, Detail detail) {
  for (const DetailKeys& d : kDetailKeys) {
    if (d.detail != detail) continue;
    for (std::string_view k : d.preferred)
      if (!k.empty() && schemaHas(type, k)) return k;
    return d.fallback;
  }
  return {};
}

std::string propertyOf(const core::Node& node, std::string_view key) {
  const auto it = node.properties.find(std::string(key));
  return it == node.properties.end() ? std::string() : it->second;
}

}  // namespace modelyne::interchange
