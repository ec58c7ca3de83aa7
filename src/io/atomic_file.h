#pragma once
/// Whole-file reads with a size limit and crash-safe writes for every file
/// the system saves.
///
///   std::string err;
///   if (!io::writeFileAtomic(path, bytes, &err)) report(err);
///   if (auto text = io::readFile(path, &err)) use(*text); else report(err);
///
/// `writeFileAtomic` writes a temporary file in the target's folder, flushes
/// it to the disk, gives it the target's permissions (and owner and group
/// where allowed), renames it over the target and flushes the folder: a
/// failed or interrupted save leaves the old file or the new one, never a
/// mix. A symbolic link is written through: its target is replaced, the link
/// stays. Temporary files that a killed save left beside the same target are
/// removed. Errors name the path and the reason.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace modelyne::io {

/// The input size limit unless a caller allows more: 1 GiB.
inline constexpr std::uint64_t kDefaultMaxInputBytes = std::uint64_t{1} << 30;

/// Replaces the file at `path` with `bytes` in one step. On failure returns
/// false, removes the temporary file, leaves `path` untouched and, when
/// `error` is given, says why.
bool writeFileAtomic(const std::filesystem::path& path, std::string_view bytes,
                     std::string* error = nullptr);

/// The whole file as bytes, or nothing (with the reason in `error`). A file,
/// pipe or device yielding more than `maxBytes` is refused after reading at
/// most that much; `tooLarge` then says so.
std::optional<std::string> readFile(const std::filesystem::path& path, std::string* error = nullptr,
                                    std::uint64_t maxBytes = kDefaultMaxInputBytes, bool* tooLarge = nullptr);

/// Reads a stream (standard input) whole, with the same limit.
std::optional<std::string> readStream(std::FILE* stream, std::uint64_t maxBytes, bool* tooLarge = nullptr);

/// "1 GiB", "64 KiB", "1000 bytes": a size as the limit messages give it.
std::string sizeText(std::uint64_t bytes);

}  // namespace modelyne::io
