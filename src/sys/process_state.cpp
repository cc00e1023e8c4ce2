#include "sys/process_state.hpp"

#include "sys/process.hpp"

namespace sys {

std::size_t ProcessState::nextSlot() {
  static std::atomic<std::size_t> next{0};
  return next++;
}

ProcessState& processState() {
  void* p =
      processStateSlot([]() -> std::shared_ptr<void> { return std::make_shared<ProcessState>(); });
  return *static_cast<ProcessState*>(p);
}

}  // namespace sys
