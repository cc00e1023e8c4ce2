// How SpringBoard finds the host app: not by its bundle identifier, which is
// chosen only when the library is packaged, but by the gate file the library
// writes into the host's Documents folder. A data container holding it is a
// host's; the container manager's metadata file beside it names the bundle.
#pragma once

#include <string>
#include <vector>

namespace notify {

struct HostContainer {
  std::string path;              // the data container
  std::string bundleIdentifier;  // from its metadata
};

// Every data container under `root` that holds the gate file and whose
// metadata names a bundle. A container without readable metadata is skipped:
// nothing could tie its notifications to it.
std::vector<HostContainer> findHostContainers(const std::string& root);

// The bundle identifier a data container's metadata names; "" when it has none.
std::string containerBundleIdentifier(const std::string& container);

}  // namespace notify
