#include "io/atomic_file.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <system_error>

namespace modelyne::io {

namespace {

void setError(std::string* error, const std::string& what) {
  if (error) *error = what;
}

std::string reason() {
  const int e = errno;
  return e ? std::string(std::strerror(e)) : std::string("I/O error");
}

// A name beside the target that no other save in this process or another
// one is likely to pick at the same time.
std::filesystem::path temporaryBeside(const std::filesystem::path& path) {
  static std::atomic<unsigned> counter{0};
  const auto stamp = static_cast<unsigned long long>(
      std::chrono::steady_clock::now().time_since_epoch().count());
  std::filesystem::path tmp = path;
  tmp += ".tmp-" + std::to_string(stamp % 1000000007ULL) + "-" + std::to_string(counter++);
  return tmp;
}

}  // namespace

bool writeFileAtomic(const std::filesystem::path& path, std::string_view bytes, std::string* error) {
  if (path.empty()) {
    setError(error, "Cannot save: no file name given");
    return false;
  }
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) {
    setError(error, "Cannot save " + path.string() + ": it is a folder");
    return false;
  }
  const std::filesystem::path tmp = temporaryBeside(path);
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    if (!out) {
      setError(error, "Cannot save " + path.string() + ": cannot create " + tmp.filename().string() +
                          " (" + reason() + ")");
      return false;
    }
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.flush();
    if (!out) {
      const std::string why = reason();
      out.close();
      std::filesystem::remove(tmp, ec);
      setError(error, "Cannot save " + path.string() + ": writing failed (" + why + ")");
      return false;
    }
    out.close();
    if (out.fail()) {
      std::filesystem::remove(tmp, ec);
      setError(error, "Cannot save " + path.string() + ": closing the temporary file failed");
      return false;
    }
  }
  std::filesystem::rename(tmp, path, ec);
  if (ec) {
    std::error_code ignored;
    std::filesystem::remove(tmp, ignored);
    setError(error, "Cannot save " + path.string() + ": " + ec.message());
    return false;
  }
  return true;
}

std::optional<std::string> readFile(const std::filesystem::path& path, std::string* error) {
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) {
    setError(error, "Cannot open " + path.string() + ": it is a folder");
    return std::nullopt;
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    setError(error, "Cannot open " + path.string() + ": " + reason());
    return std::nullopt;
  }
  in.seekg(0, std::ios::end);
  const std::streamoff size = in.tellg();
  std::string bytes;
  if (size > 0) {
    in.seekg(0, std::ios::beg);
    bytes.resize(static_cast<std::size_t>(size));
    in.read(bytes.data(), size);
    if (in.gcount() != size) {
      setError(error, "Cannot read " + path.string() + ": " + reason());
      return std::nullopt;
    }
  } else {
    // Size unknown (a pipe or special file): read what comes.
    in.clear();
    in.seekg(0, std::ios::beg);
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  return bytes;
}

}  // namespace modelyne::io
