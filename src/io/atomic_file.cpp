#include "io/atomic_file.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <system_error>
#include <vector>

#include "io/platform_file.h"

namespace modelyne::io {

namespace {

void setError(std::string* error, const std::string& what) {
  if (error) *error = what;
}

std::string reason() {
  const int e = errno;
  return e ? std::string(std::strerror(e)) : std::string("I/O error");
}

// Temporary files are named NAME.tmp-PID-N beside the target.
constexpr std::string_view kTempMark = ".tmp-";

std::filesystem::path temporaryBeside(const std::filesystem::path& path) {
  static std::atomic<unsigned> counter{0};
  std::filesystem::path tmp = path;
  tmp += std::string(kTempMark) + std::to_string(platform::processId()) + "-" + std::to_string(counter++);
  return tmp;
}

// The process id in a temporary file name of ours for `target`, or nothing.
std::optional<unsigned long> temporaryOwner(const std::string& name, const std::string& target) {
  if (name.size() <= target.size() + kTempMark.size() || name.compare(0, target.size(), target) != 0 ||
      name.compare(target.size(), kTempMark.size(), kTempMark) != 0)
    return std::nullopt;
  const char* p = name.data() + target.size() + kTempMark.size();
  const char* end = name.data() + name.size();
  unsigned long pid = 0, n = 0;
  auto r = std::from_chars(p, end, pid);
  if (r.ec != std::errc() || r.ptr == end || *r.ptr != '-') return std::nullopt;
  r = std::from_chars(r.ptr + 1, end, n);
  if (r.ec != std::errc() || r.ptr != end) return std::nullopt;
  return pid;
}

// Removes temporary files of ours for `target` whose writer no longer runs
// (a save killed half-way); a save in progress elsewhere keeps its file.
void removeStaleTemporaries(const std::filesystem::path& target) {
  std::error_code ec;
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
  const std::string name = target.filename().string();
  std::vector<std::filesystem::path> stale;
  for (std::filesystem::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::optional<unsigned long> pid = temporaryOwner(it->path().filename().string(), name);
    if (pid && *pid != platform::processId() && !platform::processMayRun(*pid)) stale.push_back(it->path());
  }
  for (const auto& p : stale) std::filesystem::remove(p, ec);
}

// The file a path finally names: symbolic links followed (a link to a file
// that does not exist yet names that file).
std::filesystem::path finalTarget(std::filesystem::path path) {
  std::error_code ec;
  for (int hops = 0; hops < 40 && std::filesystem::is_symlink(path, ec); ++hops) {
    std::filesystem::path next = std::filesystem::read_symlink(path, ec);
    if (ec) break;
    path = next.is_absolute() ? next : path.parent_path() / next;
  }
  return path;
}

}  // namespace

bool writeFileAtomic(const std::filesystem::path& given, std::string_view bytes, std::string* error) {
  if (given.empty()) {
    setError(error, "Cannot save: no file name given");
    return false;
  }
  const std::filesystem::path path = finalTarget(given);
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) {
    setError(error, "Cannot save " + given.string() + ": it is a folder");
    return false;
  }
  removeStaleTemporaries(path);
  const std::filesystem::file_status old = std::filesystem::status(path, ec);
  const bool replacing = !ec && std::filesystem::is_regular_file(old);
  const std::filesystem::path tmp = temporaryBeside(path);
  auto fail = [&](const std::string& why) {
    std::error_code ignored;
    std::filesystem::remove(tmp, ignored);
    setError(error, "Cannot save " + given.string() + ": " + why);
    return false;
  };
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    if (!out) return fail("cannot create " + tmp.filename().string() + " (" + reason() + ")");
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.flush();
    if (!out) return fail("writing failed (" + reason() + ")");
    out.close();
    if (out.fail()) return fail("closing the temporary file failed");
  }
  if (replacing) {
    platform::copyOwner(path, tmp);
    std::filesystem::permissions(tmp, old.permissions(), std::filesystem::perm_options::replace, ec);
    if (ec) return fail("cannot keep the permissions (" + ec.message() + ")");
  }
  if (!platform::syncToDisk(tmp, false)) return fail("flushing to the disk failed (" + reason() + ")");
  std::filesystem::rename(tmp, path, ec);
  if (ec) return fail(ec.message());
  platform::syncToDisk(path.has_parent_path() ? path.parent_path() : std::filesystem::path("."), true);
  return true;
}

std::string sizeText(std::uint64_t bytes) {
  constexpr std::pair<std::uint64_t, const char*> kUnits[] = {{1ull << 30, " GiB"}, {1ull << 20, " MiB"}, {1ull << 10, " KiB"}};
  for (const auto& [unit, name] : kUnits)
    if (bytes >= unit && bytes % unit == 0) return std::to_string(bytes / unit) + name;
  return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
}

std::optional<std::string> readStream(std::FILE* stream, std::uint64_t maxBytes, bool* tooLarge) {
  if (tooLarge) *tooLarge = false;
  std::string text;
  char buffer[65536];
  std::size_t n = 0;
  while ((n = std::fread(buffer, 1, sizeof buffer, stream)) > 0) {
    if (text.size() + n > maxBytes) {
      if (tooLarge) *tooLarge = true;
      return std::nullopt;
    }
    text.append(buffer, n);
  }
  if (std::ferror(stream)) return std::nullopt;
  return text;
}

std::optional<std::string> readFile(const std::filesystem::path& path, std::string* error, std::uint64_t maxBytes,
                                    bool* tooLarge) {
  if (tooLarge) *tooLarge = false;
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) {
    setError(error, "Cannot open " + path.string() + ": it is a folder");
    return std::nullopt;
  }
  const std::string limitText = "Cannot read " + path.string() + ": it is larger than the input size limit of " + sizeText(maxBytes);
  const bool regular = std::filesystem::is_regular_file(path, ec);
  const std::uintmax_t size = regular ? std::filesystem::file_size(path, ec) : 0;
  if (regular && !ec && size > maxBytes) {
    if (tooLarge) *tooLarge = true;
    setError(error, limitText);
    return std::nullopt;
  }
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) {
    setError(error, "Cannot open " + path.string() + ": " + reason());
    return std::nullopt;
  }
  bool over = false;
  std::optional<std::string> bytes;
  if (regular && !ec && size > 0) {
    // Known size: one read into the final buffer.
    bytes.emplace();
    bytes->resize(static_cast<std::size_t>(size));
    const std::size_t got = std::fread(bytes->data(), 1, bytes->size(), f);
    if (got != bytes->size() || std::ferror(f)) bytes.reset();
  } else {
    // A pipe, a device or a file of unknown size: read what comes, up to the limit.
    bytes = readStream(f, maxBytes, &over);
  }
  std::fclose(f);
  if (over) {
    if (tooLarge) *tooLarge = true;
    setError(error, limitText);
    return std::nullopt;
  }
  if (!bytes) setError(error, "Cannot read " + path.string() + ": " + reason());
  return bytes;
}

}  // namespace modelyne::io
