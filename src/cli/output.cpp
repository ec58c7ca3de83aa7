#include "cli/output.h"

#include <cctype>
#include <cstdio>

#include <unistd.h>

#include "io/atomic_file.h"

namespace modelyne::cli {

namespace {

bool stdinConsumed = false;

void writeAll(std::FILE* stream, std::string_view bytes, std::string_view streamName) {
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), stream) != bytes.size())
    throw CliError("cannot write to " + std::string(streamName));
  if (std::fflush(stream) != 0) throw CliError("cannot write to " + std::string(streamName));
}

}  // namespace

std::string located(std::string_view file, unsigned line, std::string_view what) {
  std::string s(file);
  if (line > 0) s += ":" + std::to_string(line);
  s += ": ";
  s += what;
  return s;
}

std::string asClause(std::string_view message) {
  std::string s(message);
  if (s.size() >= 2 && std::isupper(static_cast<unsigned char>(s[0])) &&
      std::islower(static_cast<unsigned char>(s[1])))
    s[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(s[0])));
  return s;
}

InputText readInput(std::string_view arg) {
  if (arg == "-") {
    if (stdinConsumed) throw CliError("standard input can be read only once");
    stdinConsumed = true;
    std::string text;
    char buffer[65536];
    std::size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, stdin)) > 0) text.append(buffer, n);
    if (std::ferror(stdin)) throw CliError("cannot read standard input");
    return {std::string(kStdinName), std::move(text)};
  }
  std::string error;
  auto text = io::readFile(std::string(arg), &error);
  if (!text) throw CliError(asClause(error));
  return {std::string(arg), std::move(*text)};
}

bool stdinIsTerminal() { return ::isatty(STDIN_FILENO) == 1; }

void writeResult(const std::optional<std::string>& out, std::string_view bytes) {
  if (!out || *out == "-") {
    writeAll(stdout, bytes, "standard output");
    return;
  }
  std::string error;
  if (!io::writeFileAtomic(*out, bytes, &error)) throw CliError(asClause(error));
}

void diagnostic(std::string_view line) {
  std::string s(line);
  s += '\n';
  std::fwrite(s.data(), 1, s.size(), stderr);
  std::fflush(stderr);
}

}  // namespace modelyne::cli
