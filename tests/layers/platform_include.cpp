// The system reaching past its facades into the simulated platform.
#include "sim/process.hpp"
