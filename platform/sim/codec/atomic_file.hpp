// Whole-file reads and atomic writes: a temporary file beside the target,
// flushed to disk, then renamed over it, so a crash leaves either the old file
// or the complete new one. Moves never replace what is already there.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sim {

enum class WriteFault { None, CrashBeforeRename };

// With CrashBeforeRename the temporary file is written and left behind, and
// the target is not touched, as if the process died there. False on any
// failure, with `error` naming the path and the cause; the target is then
// unchanged and no temporary file is left.
bool writeFileAtomically(const std::string& path, std::string_view bytes,
                         WriteFault fault = WriteFault::None, std::string* error = nullptr);

enum class ReadStatus { Missing, Read, Unreadable };
struct FileBytes {
  ReadStatus status = ReadStatus::Missing;
  std::string bytes;  // when Read
};
// Reads only a regular file, never through a symbolic link: anything else at
// the path is Unreadable at once. The type is checked before opening and
// again on the descriptor, which is opened non-blocking, so a FIFO or device
// swapped in between can neither block the read nor feed it without end.
FileBytes readRegularFile(const std::string& path);
// The bytes of a regular file, or nullopt.
std::optional<std::string> readWholeFile(const std::string& path);

// rename(2) that fails with EEXIST instead of replacing an item at `to`.
// Returns 0 or the errno of the failure.
int renameWithoutReplacing(const std::string& from, const std::string& to);

}  // namespace sim
