// The runtime toolkit reaching sideways into the settings.
#include "core/config.hpp"
