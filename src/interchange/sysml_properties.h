#pragma once
/// Where the parts of a declaration live on a node: each detail (typing,
/// specialization, multiplicity, ...) goes to the first key of its list that
/// the node type's property schema offers, else to a key of its own
/// ("sysmlType", ...) that is kept and written like any other property.
/// Reader and writer use the same table, so a detail read is written back
/// from the same key.
///
/// Keys every imported node may carry besides its schema's:
///   "qualifiedName"  the element's qualified name; the same element drawn in
///                    several diagrams has the same one
///   "sysmlKeyword"   the words it was declared with when they differ from
///                    the node type's own ("item def" on a sysmlPartDef)
///   "referenceOnly"  "true": the node stands for an element declared
///                    elsewhere (or outside the file); it declares nothing
///   "sysmlMembers"   body-less members without a compartment of their own,
///                    one declaration per line

#include <string>
#include <string_view>

#include "core/catalogue.h"
#include "core/model.h"

namespace modelyne::interchange {

inline constexpr std::string_view kQualifiedNameKey = "qualifiedName";
inline constexpr std::string_view kKeywordKey = "sysmlKeyword";
inline constexpr std::string_view kReferenceKey = "referenceOnly";
inline constexpr std::string_view kDocumentationKey = "documentation";

enum class Detail {
  typing,        ///< `: T`
  specializes,   ///< `:>` on a definition
  subsets,       ///< `:>` on a usage
  redefines,     ///< `:>>`
  references,    ///< `::>`
  multiplicity,  ///< `[1..*]`
  value,         ///< `= expr`, `:= expr`, `default expr`
  shortName,     ///< `<'1'>`
  clause,        ///< the rest of the header (`accept ... via ...`, `about ...`)
  expression,    ///< a result expression in the body
  documentation, ///< `doc`
};

/// The key a detail of a node of this type is stored under.
std::string_view detailKey(core::ShapeType type, Detail detail);

/// The value of a property, or empty text when absent.
std::string propertyOf(const core::Node& node, std::string_view key);

/// Whether the type's schema offers the key.
bool schemaHas(core::ShapeType type, std::string_view key);

}  // namespace modelyne::interchange
