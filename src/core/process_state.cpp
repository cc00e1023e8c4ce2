#include "core/process_state.hpp"

#include "sys/process.hpp"

namespace core {

std::size_t ProcessState::nextSlot() {
  static std::atomic<std::size_t> next{0};
  return next++;
}

ProcessState& processState() {
  void* p = sys::processState([]() -> std::shared_ptr<void> { return std::make_shared<ProcessState>(); });
  return *static_cast<ProcessState*>(p);
}

}  // namespace core
