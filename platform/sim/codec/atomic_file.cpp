// Atomic writes and whole-file reads on the Linux disk, with POSIX calls so
// that every error is seen (a stream would fold most of them into one bit).
#include "sim/codec/atomic_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

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

// Reports the current errno against `path`; false, for the caller to return.
bool failed(std::string* error, const std::string& path) {
  if (error) *error = path + ": " + std::strerror(errno);
  return false;
}

// Reads to the end; false on an I/O error.
bool readAll(int fd, std::string& bytes) {
  char buf[65536];
  for (;;) {
    ssize_t n = ::read(fd, buf, sizeof buf);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return n == 0;
    bytes.append(buf, std::size_t(n));
  }
}

}  // namespace

bool writeFileAtomically(const std::string& path, std::string_view bytes, WriteFault fault,
                         std::string* error) {
  std::string temp =
      path + ".tmp." + std::to_string(::getpid()) + "." + std::to_string(gTempCounter++);
  int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return failed(error, path);
  bool ok = writeAll(fd, bytes) && ::fsync(fd) == 0;
  ok = ::close(fd) == 0 && ok;
  if (!ok) {
    failed(error, path);
    ::unlink(temp.c_str());
    return false;
  }
  // The process "dies" here: the complete temporary file stays behind and
  // the target is untouched, as after a real crash.
  if (fault == WriteFault::CrashBeforeRename) {
    if (error) *error = path + ": the process died before the rename";
    return false;
  }
  if (::rename(temp.c_str(), path.c_str()) != 0) {
    failed(error, path);
    ::unlink(temp.c_str());
    return false;
  }
  syncFolder(path);
  return true;
}

FileBytes readRegularFile(const std::string& path) {
  struct stat st {};
  if (::lstat(path.c_str(), &st) != 0)
    return {errno == ENOENT ? ReadStatus::Missing : ReadStatus::Unreadable, {}};
  if (!S_ISREG(st.st_mode)) return {ReadStatus::Unreadable, {}};
  int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
  if (fd < 0) return {errno == ENOENT ? ReadStatus::Missing : ReadStatus::Unreadable, {}};
  FileBytes out{ReadStatus::Unreadable, {}};
  if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
    out.bytes.reserve(std::size_t(st.st_size));
    if (readAll(fd, out.bytes)) out.status = ReadStatus::Read;
  }
  ::close(fd);
  if (out.status != ReadStatus::Read) out.bytes.clear();
  return out;
}

std::optional<std::string> readWholeFile(const std::string& path) {
  FileBytes file = readRegularFile(path);
  if (file.status != ReadStatus::Read) return std::nullopt;
  return std::move(file.bytes);
}

int renameWithoutReplacing(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) != 0)
    return errno;
  syncFolder(to);
  return 0;
}

}  // namespace sim
