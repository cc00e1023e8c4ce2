// The system's colours on the simulated device. ui/colors.hpp names each by
// its light value, and the simulated UIKit keeps and draws that value as it
// is (the pictures are in light mode), so there is nothing to convert and
// nothing is defined here; on iOS the value becomes the dynamic UIColor.
#include "ui/colors.hpp"
