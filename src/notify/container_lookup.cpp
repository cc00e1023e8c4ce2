#include "notify/container_lookup.hpp"

#include "core/gate_file.hpp"
#include "sys/files.hpp"

namespace notify {

std::string containerBundleIdentifier(const std::string& container) {
  std::optional<base::Value> metadata =
      sys::readPropertyList(container + "/" + sys::kContainerMetadataFile);
  const base::Value* id = metadata ? metadata->find(sys::kContainerMetadataIdentifier) : nullptr;
  const std::string* s = id ? id->asString() : nullptr;
  return s ? *s : "";
}

std::vector<HostContainer> findHostContainers(const std::string& root) {
  std::vector<HostContainer> found;
  for (const std::string& name : sys::directoryEntries(root)) {
    std::string container = root + "/" + name;
    // The gate first: one look per container, and most hold none.
    if (!sys::fileExists(core::gateFilePathIn(container))) continue;
    std::string bundle = containerBundleIdentifier(container);
    if (!bundle.empty()) found.push_back({container, std::move(bundle)});
  }
  return found;
}

}  // namespace notify
