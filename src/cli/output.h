#pragma once
/// Input and output of the command-line tool: reading a FILE argument ("-"
/// is standard input), writing a result to standard output or to OUT
/// (written beside and renamed, so a failed command leaves an existing OUT as
/// it was), diagnostics on standard error, the exit codes and the one error
/// type that ends a command.

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace modelyne::cli {

inline constexpr int kExitOk = 0;
/// A negative answer that is not an error: findings, unresolved names,
/// nothing found, no convergence.
inline constexpr int kExitNegative = 1;
/// Bad usage, unreadable or malformed input, failed output.
inline constexpr int kExitError = 2;

/// Ends the command; printed as "modelyne: error: " + what(), exit code 2.
class CliError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// "FILE:LINE: WHAT", or "FILE: WHAT" when the line is 0.
std::string located(std::string_view file, unsigned line, std::string_view what);

/// A message of another subsystem as the tail of an error line: its first
/// letter lower-cased when it starts an ordinary word ("Cannot open" ->
/// "cannot open"; "XML" stays).
std::string asClause(std::string_view message);

/// The name standard input goes by in messages.
inline constexpr std::string_view kStdinName = "<stdin>";

struct InputText {
  std::string name;  ///< the path as given, or "<stdin>"
  std::string text;
};

/// The whole of FILE, or of standard input for "-". Standard input can be
/// consumed once per run; a second "-" is a CliError. Input above the limit
/// (`setInputLimit`) is a CliError too.
InputText readInput(std::string_view arg);

/// The option that raises the input size limit, and the limit itself
/// (default 1 GiB).
inline constexpr std::string_view kMaxInputSizeOption = "--max-input-size";
void setInputLimit(std::uint64_t bytes);

/// A size given as a number of bytes, optionally followed by K, M or G
/// (KiB, MiB, GiB); CliError naming `option` when it is not one.
std::uint64_t parseSize(std::string_view option, std::string_view text);

/// Whether standard input is an interactive terminal rather than a pipe or
/// file: an optional input left out then means the user forgot it.
bool stdinIsTerminal();

/// Writes `bytes` to standard output when `out` is absent or "-", else
/// replaces the file `out` in one step. Throws CliError on failure.
void writeResult(const std::optional<std::string>& out, std::string_view bytes);

/// Writes `line` and a line feed to standard error (log lines, notes), with
/// control characters and bytes that are not UTF-8 written as "\x07", so
/// that text from a file cannot drive the terminal.
void diagnostic(std::string_view line);

/// Several lines at once (one write for thousands of warnings).
void diagnostics(const std::vector<std::string>& lines);

/// Lines joined by '\n' (a report), each made safe and printed as its own
/// line; a trailing line feed adds no empty line.
void diagnosticLines(std::string_view text);

/// `text` with control characters (C0, DEL, C1) and bytes that are not part
/// of valid UTF-8 written as "\xHH"; everything else as it is.
std::string terminalSafe(std::string_view text);

}  // namespace modelyne::cli
