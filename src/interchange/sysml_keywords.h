#pragma once
/// The keyword table of the SysML v2 reader and writer: for each kind
/// phrase ("part def", "use case", "succession flow", ...) what it declares,
/// which node or edge type it becomes, where a body-less member of that kind
/// goes in its owner's compartments, and which diagram its body gets. The
/// table is data (sysml_keywords.cpp); reader and writer both look it up, so
/// what is read is written back with the same words.
///
///   const KindInfo* k = findKind(words);   // longest phrase at the start of `words`
///   if (k && k->role == Role::usage) node.type = k->shape;
///   isReservedWord("part")                 // names that must be quoted when written

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/catalogue.h"
#include "core/diagram_kind.h"

namespace modelyne::interchange {

/// What a statement declares.
enum class Role : std::uint8_t {
  package,       ///< a namespace: its members get models of their own
  definition,    ///< "part def", KerML classifiers: always a node
  usage,         ///< "part", "action", ...: a node, or a compartment line when body-less
  relationship,  ///< "connect", "flow", "satisfy", ...: an edge
  import,        ///< an edge of the package diagram
  alias,
  doc,           ///< documentation of its owner
  comment,       ///< a note
  metadata,      ///< annotations ("@X", "metadata X"): not drawn
  stateAction,   ///< "entry", "do", "exit" of a state: a property
  control,       ///< structured control ("if", "while", "loop", "for"): not drawn
  textual,       ///< "rep", "language": textual representations, not drawn
};

/// Where a body-less member goes in its owner's node.
enum class Compartment : std::uint8_t {
  none,          ///< never a compartment line
  values,        ///< "values", default word "attribute"
  parts,         ///< "parts", default word "part"
  references,    ///< "references", default word "ref"
  ports,         ///< "ports", default word "port"
  constraints,   ///< "constraints", default word "constraint"
  literals,      ///< "literals", default word "enum"
  parameters,    ///< "parameters" or, for a port definition, "flowProperties"
  members,       ///< anything else: "sysmlMembers"
};

/// Which of its package's models a definition or usage declared in a package joins.
enum class Home : std::uint8_t { bdd, req, uc };

/// How a relationship's ends are written.
enum class EndSyntax : std::uint8_t {
  connectTo,     ///< [phrase rest] connect A to B
  bindEquals,    ///< [phrase rest] bind A = B
  fromTo,        ///< phrase rest from A to B
  firstThen,     ///< first A rest then B
  transition,    ///< transition name first A rest then B
  satisfyBy,     ///< satisfy rest B by A
  ownerTo,       ///< phrase rest B, A being the owner (verify, include)
  allocateTo,    ///< [phrase rest] allocate A to B
  import,
};

struct KindInfo {
  std::string_view phrase;
  Role role;
  core::ShapeType shape = core::ShapeType::rect;      ///< definitions and usages
  core::DiagramKind ownKind = core::DiagramKind::ibd;  ///< the model its body gets
  Home home = Home::bdd;
  Compartment compartment = Compartment::none;
  bool nodeInOwnModel = false;  ///< a member of an owner with its own model becomes a node there
  core::EdgeType edge = core::EdgeType::straightArrow;  ///< relationships
  EndSyntax ends = EndSyntax::fromTo;
};

/// The longest phrase that the words at the start of `words` spell, or nullptr.
/// `matched` receives how many words it used.
const KindInfo* findKind(std::span<const std::string_view> words, std::size_t& matched);
/// The entry of an exact phrase, or nullptr.
const KindInfo* kindByPhrase(std::string_view phrase);

/// The phrase a node of this shape type is written with when it carries no
/// keyword of its own ("part def" for sysmlPartDef), or empty when the type
/// has no SysML v2 form.
std::string_view defaultPhraseOf(core::ShapeType type);
/// The phrase an edge of this type is written with by default.
std::string_view defaultPhraseOf(core::EdgeType type);

/// Words that modify a declaration before its kind phrase ("abstract", "in", ...).
bool isPrefixWord(std::string_view word);
/// Words of the language: a name spelled like one must be quoted.
bool isReservedWord(std::string_view word);
/// Reserved words that may begin an expression ("if", "not", "true", ...).
bool isExpressionWord(std::string_view word);

/// Persistent key and default word of a compartment.
std::string_view compartmentKey(Compartment c);
std::string_view compartmentWord(Compartment c);

}  // namespace modelyne::interchange
