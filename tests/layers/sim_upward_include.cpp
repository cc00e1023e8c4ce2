// The simulated runtime may not include the frameworks built on it.
#include "sim/frameworks/uikit/uikit.hpp"
