// Whole-file reads and atomic writes: a temporary file beside the target,
// flushed to disk, then renamed over it, so a crash leaves either the old file
// or the complete new one.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sim {

enum class WriteFault { None, CrashBeforeRename };

// With CrashBeforeRename the temporary file is written and left behind, and
// the target is not touched, as if the process died there. False on any
// failure; the target is then unchanged.
bool writeFileAtomically(const std::string& path, std::string_view bytes,
                         WriteFault fault = WriteFault::None);
std::optional<std::string> readWholeFile(const std::string& path);

}  // namespace sim
