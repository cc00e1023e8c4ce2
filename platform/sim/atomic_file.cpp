#include "sim/atomic_file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>

namespace sim {
namespace {

std::atomic<unsigned> gTempCounter{0};

bool writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t n = ::write(fd, bytes.data(), bytes.size());
    if (n < 0) return false;
    bytes.remove_prefix(std::size_t(n));
  }
  return true;
}

}  // namespace

bool writeFileAtomically(const std::string& path, std::string_view bytes, WriteFault fault) {
  std::string temp = path + ".tmp." + std::to_string(::getpid()) + "." + std::to_string(gTempCounter++);
  int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  bool ok = writeAll(fd, bytes) && ::fsync(fd) == 0;
  ok = ::close(fd) == 0 && ok;
  if (!ok) {
    ::unlink(temp.c_str());
    return false;
  }
  if (fault == WriteFault::CrashBeforeRename) return false;
  if (::rename(temp.c_str(), path.c_str()) != 0) {
    ::unlink(temp.c_str());
    return false;
  }
  return true;
}

std::optional<std::string> readWholeFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream s;
  s << in.rdbuf();
  if (in.bad()) return std::nullopt;
  return s.str();
}

}  // namespace sim
