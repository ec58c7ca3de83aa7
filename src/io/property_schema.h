#pragma once
/// Node property schemas: for every shape type, the properties the property
/// panel offers (in display order) with label, value kind, default, hint and
/// source, and the check a value must pass before it is stored.
///
///   const auto& schema = io::schemaFor(core::ShapeType::sysmlRequirementUsage);
///   const io::PropertyDef* def = io::findProperty(type, "reqId");
///   std::string why; if (!io::validateValue(*def, "REQ 1", why)) show(why);
///   auto props = io::defaultProperties(type);   // what a new palette node gets
///
/// Every schema ends with "documentation". The tables are built once and
/// read-only afterwards.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "core/catalogue.h"

namespace modelyne::io {

/// Value kinds, by their fixed integers.
enum class ValueKind : std::int32_t {
  text = 0,
  multiLineText = 1,
  boolean = 2,
  choice = 3,
  multiplicity = 4,
  integer = 5,
  identifier = 6,
  number = 7,
};

struct PropertyDef {
  std::string key;                   ///< persistent key, e.g. "reqId"
  std::string label;                 ///< shown beside the field
  ValueKind kind = ValueKind::text;
  std::vector<std::string> choices;  ///< kind choice only
  std::string defaultValue;          ///< put into a new node's property
  std::string hint;                  ///< placeholder or tooltip
  std::string source;                ///< standard or book it comes from

  /// One constructor per kind.
  static PropertyDef text(std::string key, std::string label, std::string source,
                          std::string defaultValue = {}, std::string hint = {});
  static PropertyDef multiLine(std::string key, std::string label, std::string source,
                               std::string hint = {});
  static PropertyDef boolean(std::string key, std::string label, std::string source,
                             bool defaultValue, std::string hint = {});
  static PropertyDef choice(std::string key, std::string label, std::string source,
                            std::vector<std::string> choices, std::string defaultValue,
                            std::string hint = {});
  static PropertyDef multiplicity(std::string key, std::string label, std::string source,
                                  std::string hint = {});
  static PropertyDef integer(std::string key, std::string label, std::string source,
                             std::string defaultValue = {}, std::string hint = {});
  static PropertyDef identifier(std::string key, std::string label, std::string source,
                                std::string hint = {});
  static PropertyDef number(std::string key, std::string label, std::string source,
                            std::string defaultValue = {}, std::string hint = {});
};

using Schema = std::vector<PropertyDef>;

/// The schema of a shape type; an unassigned value gets the trailer-only schema.
const Schema& schemaFor(core::ShapeType type);

/// The entry for `key` in the type's schema, or nullptr.
const PropertyDef* findProperty(core::ShapeType type, std::string_view key);

/// True when `value` may be stored under `def`; otherwise false and the
/// reason in `message` (e.g. "Expected true or false."). Empty is always valid.
bool validateValue(const PropertyDef& def, const std::string& value, std::string& message);

/// The properties of a new node of this type: every schema entry whose
/// default is non-empty.
std::map<std::string, std::string> defaultProperties(core::ShapeType type);

/// Display name of a value kind ("Text", "Multi-line text", ...).
std::string_view valueKindName(ValueKind kind) noexcept;

}  // namespace modelyne::io
