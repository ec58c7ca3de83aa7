#include "cli/output.h"

#include <cctype>
#include <charconv>
#include <cstdio>
#include <system_error>

#include <unistd.h>

#include "core/text_chars.h"
#include "io/atomic_file.h"
#include "io/quoted_text.h"

namespace modelyne::cli {

namespace {

bool stdinConsumed = false;
std::uint64_t inputLimit = io::kDefaultMaxInputBytes;

std::string limitHint() {
  return "larger than the input size limit of " + io::sizeText(inputLimit) + " (" + std::string(kMaxInputSizeOption) +
         " raises it)";
}

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
  bool tooLarge = false;
  if (arg == "-") {
    if (stdinConsumed) throw CliError("standard input can be read only once");
    stdinConsumed = true;
    auto text = io::readStream(stdin, inputLimit, &tooLarge);
    if (tooLarge) throw CliError("standard input is " + limitHint());
    if (!text) throw CliError("cannot read standard input");
    return {std::string(kStdinName), std::move(*text)};
  }
  std::string error;
  auto text = io::readFile(std::string(arg), &error, inputLimit, &tooLarge);
  if (tooLarge) throw CliError(std::string(arg) + ": " + limitHint());
  if (!text) throw CliError(asClause(error));
  return {std::string(arg), std::move(*text)};
}

void setInputLimit(std::uint64_t bytes) { inputLimit = bytes; }

std::uint64_t parseSize(std::string_view option, std::string_view text) {
  std::uint64_t value = 0;
  const auto r = std::from_chars(text.data(), text.data() + text.size(), value);
  std::string_view unit = r.ec == std::errc() ? text.substr(static_cast<std::size_t>(r.ptr - text.data())) : "?";
  int shift = 0;
  if (!unit.empty()) {
    shift = unit[0] == 'K' ? 10 : unit[0] == 'M' ? 20 : unit[0] == 'G' ? 30 : -1;
    unit.remove_prefix(1);
    if (unit == "iB") unit = {};
  }
  if (shift < 0 || !unit.empty() || value == 0 || (shift > 0 && value > (UINT64_MAX >> shift)))
    throw CliError("invalid " + std::string(option) + " '" + io::shortenedText(text) +
                   "' (expected a number of bytes above 0, optionally with K, M or G)");
  return value << shift;
}

std::string terminalSafe(std::string_view text) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const core::Utf8Step step = core::decodeUtf8(text, i);
    // Every control character is shown escaped, C1 controls too (some
    // terminals obey them), and so is each byte that is not UTF-8.
    const bool control = step.codePoint < 0x20 || (step.codePoint >= 0x7F && step.codePoint <= 0x9F);
    if (!step.valid || control) {
      for (std::size_t k = 0; k < step.length; ++k) {
        const auto b = static_cast<unsigned char>(text[i + k]);
        out += "\\x";
        out += kHex[b >> 4];
        out += kHex[b & 0xF];
      }
    } else {
      out.append(text.substr(i, step.length));
    }
    i += step.length;
  }
  return out;
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

void diagnostics(const std::vector<std::string>& lines) {
  std::string s;
  for (const std::string& line : lines) {
    s += terminalSafe(line);
    s += '\n';
  }
  std::fwrite(s.data(), 1, s.size(), stderr);
  std::fflush(stderr);
}

void diagnostic(std::string_view line) {
  std::string s = terminalSafe(line);
  s += '\n';
  std::fwrite(s.data(), 1, s.size(), stderr);
  std::fflush(stderr);
}

void diagnosticLines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const auto end = text.find('\n');
    lines.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  diagnostics(lines);
}

}  // namespace modelyne::cli
