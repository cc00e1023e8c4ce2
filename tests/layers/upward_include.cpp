// The hiding layer reaching up to the panel.
#include "panel/panel_controller.hpp"
