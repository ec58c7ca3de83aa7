#pragma once
/// The few file-system services the standard library lacks, for crash-safe
/// saving: flushing a file or folder to the disk, handing a file's owner to
/// its replacement, and telling whether a process still runs. The only
/// operating-system calls of io live behind these functions.

#include <filesystem>

namespace modelyne::io::platform {

/// Flushes a file's data, or a folder's entries, to the storage device.
/// False when that failed (a folder that cannot be flushed counts as done).
bool syncToDisk(const std::filesystem::path& path, bool folder);

/// Gives `to` the owner and group of `from` where the user may; a refusal is
/// not an error (an ordinary user keeps owning what they write).
void copyOwner(const std::filesystem::path& from, const std::filesystem::path& to);

/// This process's id.
unsigned long processId();

/// Whether a process with this id runs (or may run: when it cannot be told).
bool processMayRun(unsigned long pid);

}  // namespace modelyne::io::platform
