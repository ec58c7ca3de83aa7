#pragma once
/// Whole-file reads and crash-safe writes for every file the system saves.
///
///   std::string err;
///   if (!io::writeFileAtomic(path, bytes, &err)) report(err);
///   if (auto text = io::readFile(path, &err)) use(*text); else report(err);
///
/// `writeFileAtomic` writes a temporary file in the target's folder, checks
/// that every byte reached it, then renames it over the target: a failed save
/// leaves the old file as it was. Errors name the path and the reason.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace modelyne::io {

/// Replaces the file at `path` with `bytes` in one step (temporary file
/// beside it, then rename). On failure returns false, removes the temporary
/// file, leaves `path` untouched and, when `error` is given, says why.
bool writeFileAtomic(const std::filesystem::path& path, std::string_view bytes,
                     std::string* error = nullptr);

/// The whole file as bytes, or nothing (with the reason in `error`).
std::optional<std::string> readFile(const std::filesystem::path& path, std::string* error = nullptr);

}  // namespace modelyne::io
