#pragma once
/// ReadError: why a model file or diagram text could not be read, and where.
/// `what` starts with the fixed text of the fault ("invalid stof argument",
/// "unterminated comment", ...) and goes on in words; `line` is 1-based
/// (0 when unknown); `element` names the element being read, if any.
///
///   io::ReadError e; ... std::cerr << path << ':' << e.line << ": " << e.what;

#include <cstddef>
#include <string>

namespace modelyne::io {

struct ReadError {
  std::string what;     ///< e.g. "invalid stof argument: attribute 'x' of <geom> at line 12 is \"abc\""
  std::size_t line = 0; ///< 1-based line of the fault, 0 when unknown
  std::string element;  ///< name of the element being read ("geom"), may be empty
};

}  // namespace modelyne::io
