// On iOS the process is the app's own: one slot, made on first use and never
// freed, so that nothing of the library's state is torn down while the host
// may still call into it during exit.
#include "sys/process.hpp"

#include <atomic>
#include <mutex>

namespace sys {

void* processStateSlot(std::shared_ptr<void> (*make)()) {
  // Read on every hooked call: once made, without the lock.
  static std::atomic<void*> made{nullptr};
  if (void* p = made.load(std::memory_order_acquire)) return p;
  static std::mutex* mutex = new std::mutex;
  static std::shared_ptr<void>* slot = new std::shared_ptr<void>;
  std::lock_guard lock(*mutex);
  if (!*slot) *slot = make();
  made.store(slot->get(), std::memory_order_release);
  return slot->get();
}

}  // namespace sys
