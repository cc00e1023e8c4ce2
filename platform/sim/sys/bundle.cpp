// The main bundle on the simulated device: the host app's Info.plist strings,
// which the host app sets when its classes are defined.
#include "sim/process.hpp"
#include "sys/bundle.hpp"

namespace sys {

std::string mainBundleString(std::string_view key) {
  const auto& info = sim::currentProcess().platform().bundleInfo;
  auto it = info.find(std::string(key));
  return it == info.end() ? "" : it->second;
}

}  // namespace sys
