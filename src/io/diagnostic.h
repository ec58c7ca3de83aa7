#pragma once
/// Diagnostic: a warning or error of reading a model file, with its place in
/// fields: the file (as named to the user), the 1-based line in that file and
/// the element being read. `what` says what is wrong and never where; whoever
/// prints it adds the place once ("FILE:LINE: WHAT").
///
///   io::ReadError e;  ...  print(e.file + ":" + std::to_string(e.line) + ": " + e.what);

#include <cstddef>
#include <string>

namespace modelyne::io {

struct Diagnostic {
  std::string what;      ///< "invalid stof argument: attribute 'x' of <geom> in node 'n' is \"abc\""
  std::size_t line = 0;  ///< 1-based line of the file, 0 when unknown
  std::string element;   ///< the element being read ("geom"), may be empty
  std::string file;      ///< the file as named to the user; empty for text from memory

  friend bool operator==(const Diagnostic&, const Diagnostic&) = default;
};

/// A diagnostic that ends the read.
using ReadError = Diagnostic;

}  // namespace modelyne::io
