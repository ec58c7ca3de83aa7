#pragma once
/// What the header of one statement says: its prefix words, kind phrase,
/// short name and name, and the relations of a declaration (typing `:`,
/// specialization `:>`, redefinition `:>>`, references `::>`, multiplicity,
/// value); whatever follows them is kept as normalized text in `rest`.
/// Also the text helpers that reader and writer share: token text
/// normalization, name quoting and qualified-name splitting.
///
///   Header h = readHeader(tree.header(statement), errors);
///   if (h.kind && h.kind->role == Role::usage) ... h.name, h.typedBy ...
///   joinTokens(tokens)           // "x : Real[1] = 5 [kg]"
///   quoteName("my part")         // "'my part'"

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/report.h"
#include "interchange/sysml_keywords.h"
#include "interchange/sysml_lexer.h"

namespace modelyne::interchange {

struct Header {
  std::vector<std::string> prefixes;  ///< words before the kind phrase, and "#Name" annotations
  const KindInfo* kind = nullptr;     ///< null: no kind phrase (a feature or an expression)
  std::string shortName;              ///< between < and >, unquoted
  std::string name;                   ///< unquoted; a feature chain as written
  std::uint32_t nameLine = 0;
  std::vector<std::string> typedBy;   ///< written form, "~" kept for conjugation
  std::vector<std::string> specializes;
  std::vector<std::string> redefines;
  std::vector<std::string> references;
  std::string multiplicity;           ///< "[1..*]", with "ordered"/"nonunique" after it
  std::string value;                  ///< "= expr", ":= expr" or "default expr"
  std::string rest;                   ///< anything else, normalized
  std::size_t restBegin = 0;          ///< index in the header of the first token of `rest`
};

/// Reads a header. Faults (a relation without its name) are added to `errors`
/// and the header is still returned with what could be read.
Header readHeader(std::span<const Token> header, std::vector<SyntaxError>& errors);

/// Token texts joined with single spaces, except where the notation writes
/// none ("a.b", "f(x)", "Real[1]", "~T", "x, y"). Stable: the joined text read
/// again joins to itself.
std::string joinTokens(std::span<const Token> tokens);

/// A name as it must be written: unchanged when it is a plain identifier that
/// is not a reserved word, else in single quotes with ' and \ escaped.
std::string quoteName(std::string_view name);
/// Whether `text` is a plain identifier (letters, digits, '_', not starting
/// with a digit) or a chain of such or quoted names joined by '.' or '::'.
bool isWrittenName(std::string_view text);
/// The segments of a qualified name written with "::" (quotes kept).
std::vector<std::string> splitQualified(std::string_view qualified);

}  // namespace modelyne::interchange
