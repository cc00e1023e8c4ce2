// Objects the system made that are still alive though no one owns them: what
// Instruments' leak check would find. An object is owned when something the
// host or the simulated frameworks made, or a framework singleton, reaches it
// through what owns in UIKit and Foundation: a window its root, a view its
// subviews and recognizers, a controller its view, bar, children and what it
// presents, a table its cells, a container its elements, an object its
// ivars and associated objects. What the system holds in its own state (an
// rt::Strong in a C++ record) is invisible here and would be listed.
#pragma once

#include <string>
#include <vector>

#include "rt/types.hpp"

namespace sim {

// Sorted by class name, then by the order they were made.
std::vector<rt::Id> leakedObjects();
// One line each: "CLASS #SERIAL retain=N made in FUNCTION".
std::vector<std::string> describeLeaks();

}  // namespace sim
