#include "sys/process_state.hpp"

#include "sys/process.hpp"

namespace sys {

std::size_t ProcessState::nextSlot() {
  static std::atomic<std::size_t> next{0};
  return next++;
}

std::shared_ptr<void> makeProcessState() { return std::make_shared<ProcessState>(); }

}  // namespace sys
