#include "io/platform_file.h"

#include <cerrno>

#if defined(__unix__) || defined(__APPLE__)
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#define MODELYNE_POSIX 1
#endif

namespace modelyne::io::platform {

#if MODELYNE_POSIX

bool syncToDisk(const std::filesystem::path& path, bool folder) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | (folder ? O_DIRECTORY : 0));
  if (fd < 0) return folder;
  int rc;
  do {
    rc = ::fsync(fd);
  } while (rc != 0 && errno == EINTR);
  // Some file systems cannot flush a folder; the rename is done either way.
  const bool ok = rc == 0 || (folder && (errno == EINVAL || errno == EBADF));
  ::close(fd);
  return ok;
}

void copyOwner(const std::filesystem::path& from, const std::filesystem::path& to) {
  struct stat st {};
  if (::stat(from.c_str(), &st) != 0) return;
  if (::chown(to.c_str(), st.st_uid, st.st_gid) != 0) {
    // Not allowed to give the file away: at least keep the group if possible.
    [[maybe_unused]] const int rc = ::chown(to.c_str(), static_cast<uid_t>(-1), st.st_gid);
  }
}

unsigned long processId() { return static_cast<unsigned long>(::getpid()); }

bool processMayRun(unsigned long pid) {
  if (pid == 0 || pid > 0x7FFFFFFFul) return false;
  return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH;
}

#else

bool syncToDisk(const std::filesystem::path&, bool) { return true; }
void copyOwner(const std::filesystem::path&, const std::filesystem::path&) {}
unsigned long processId() { return 0; }
bool processMayRun(unsigned long) { return true; }

#endif

}  // namespace modelyne::io::platform
