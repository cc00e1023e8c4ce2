// The library's process-wide state. Each class keeps its own small struct
// (stored originals, throttle times, once-only flags); all of them hang off
// one ProcessState that the process creates once, so a new process, on the
// phone or in the simulation, starts from scratch.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "sys/process.hpp"

namespace sys {

class ProcessState {
 public:
  // The state struct of type T, default-constructed on first use; it lives as
  // long as the process.
  // Every hook reads its state on every call: once made, a slot is read
  // without the lock, inline.
  template <typename T>
  [[gnu::always_inline]] T& get() {
    std::size_t slot = slotOf<T>();
    if (slot < kPublished)
      if (void* made = published_[slot].load(std::memory_order_acquire))
        return *static_cast<T*>(made);
    return make<T>(slot);
  }

 private:
  static constexpr std::size_t kPublished = 64;
  static std::size_t nextSlot();
  template <typename T>
  [[gnu::noinline]] T& make(std::size_t slot) {
    std::lock_guard lock(mutex_);
    if (slots_.size() <= slot) slots_.resize(slot + 1);
    if (!slots_[slot]) slots_[slot] = std::make_shared<T>();
    if (slot < kPublished) published_[slot].store(slots_[slot].get(), std::memory_order_release);
    return *static_cast<T*>(slots_[slot].get());
  }
  template <typename T>
  [[gnu::always_inline]] static std::size_t slotOf() {
    static const std::size_t slot = nextSlot();
    return slot;
  }

  std::mutex mutex_;
  std::vector<std::shared_ptr<void>> slots_;  // owns every slot
  std::atomic<void*> published_[kPublished] = {};
};

std::shared_ptr<void> makeProcessState();

// Inline: every hooked call reads its state through it.
inline ProcessState& processState() {
  return *static_cast<ProcessState*>(processStateSlot(makeProcessState));
}

template <typename T>
[[gnu::always_inline]] inline T& state() {
  return processState().get<T>();
}

}  // namespace sys
