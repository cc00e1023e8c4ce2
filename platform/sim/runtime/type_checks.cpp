#include "sim/runtime/type_checks.hpp"

#include "rt/encoding.hpp"

namespace sim {

void TypeChecks::noteImplementation(rt::IMP imp, const std::string& normalized) {
  if (!imp || normalized.empty()) return;
  std::lock_guard lock(mutex_);
  auto& list = impTypes_[imp];
  for (const auto& t : list)
    if (t == normalized) return;
  list.push_back(normalized);
  generation_.store(nextGeneration(), std::memory_order_release);
}

std::uint64_t TypeChecks::nextGeneration() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

bool TypeChecks::implementationAccepts(rt::IMP imp, const std::string& normalized) const {
  std::lock_guard lock(mutex_);
  auto it = impTypes_.find(imp);
  if (it == impTypes_.end()) return true;  // installed without types: nothing to check against
  for (const auto& t : it->second)
    if (rt::sameCallTypes(normalized, t)) return true;
  return false;
}

bool TypeChecks::knowsImplementation(rt::IMP imp) const {
  std::lock_guard lock(mutex_);
  return impTypes_.count(imp) != 0;
}

void TypeChecks::recordViolation(std::string what) {
  std::lock_guard lock(mutex_);
  violations_.push_back(std::move(what));
}

std::vector<std::string> TypeChecks::violations() const {
  std::lock_guard lock(mutex_);
  return violations_;
}

void TypeChecks::makeRaising(rt::IMP imp, std::string what) {
  if (!imp) return;
  std::lock_guard lock(mutex_);
  raising_[imp] = std::move(what);
  anyRaising_ = true;
}

const std::string* TypeChecks::raisingLookup(rt::IMP imp) const {
  std::lock_guard lock(mutex_);
  auto it = raising_.find(imp);
  return it == raising_.end() ? nullptr : &it->second;  // entries are never removed
}

}  // namespace sim
