// Atomic writes and whole-file reads on the Linux disk, with POSIX calls so
// that every error is seen (a stream would fold most of them into one bit).
#include "sim/atomic_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>

namespace sim {
namespace {

// Temporary names must not collide between threads of this process, nor with
// another process writing the same file.
std::atomic<unsigned> gTempCounter{0};

bool writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t n = ::write(fd, bytes.data(), bytes.size());
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    bytes.remove_prefix(std::size_t(n));
  }
  return true;
}

std::string folderOf(const std::string& path) {
  std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// The rename lives in the folder's entry list; without this a power cut may
// forget it even though the data itself is on disk. Best effort.
void syncFolder(const std::string& path) {
  int fd = ::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

}  // namespace

bool writeFileAtomically(const std::string& path, std::string_view bytes, WriteFault fault) {
  std::string temp =
      path + ".tmp." + std::to_string(::getpid()) + "." + std::to_string(gTempCounter++);
  int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  bool ok = writeAll(fd, bytes) && ::fsync(fd) == 0;
  ok = ::close(fd) == 0 && ok;
  if (!ok) {
    ::unlink(temp.c_str());
    return false;
  }
  // The process "dies" here: the complete temporary file stays behind and
  // the target is untouched, as after a real crash.
  if (fault == WriteFault::CrashBeforeRename) return false;
  if (::rename(temp.c_str(), path.c_str()) != 0) {
    ::unlink(temp.c_str());
    return false;
  }
  syncFolder(path);
  return true;
}

std::optional<std::string> readWholeFile(const std::string& path) {
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  struct stat st {};
  std::optional<std::string> out;
  if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
    std::string bytes;
    bytes.reserve(std::size_t(st.st_size));
    char buf[65536];
    for (;;) {
      ssize_t n = ::read(fd, buf, sizeof buf);
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) break;
      if (n == 0) {
        out = std::move(bytes);
        break;
      }
      bytes.append(buf, std::size_t(n));
    }
  }
  ::close(fd);
  return out;
}

}  // namespace sim
