// On iOS the process is the app's own: one slot, made on first use and never
// freed, so that nothing of the library's state is torn down while the host
// may still call into it during exit.
#include "sys/process.hpp"

#include <mutex>

namespace sys {

void* processStateSlot(std::shared_ptr<void> (*make)()) {
  static std::mutex* mutex = new std::mutex;
  static std::shared_ptr<void>* slot = new std::shared_ptr<void>;
  std::lock_guard lock(*mutex);
  if (!*slot) *slot = make();
  return slot->get();
}

}  // namespace sys
