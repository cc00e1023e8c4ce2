// The system's incoming-call screen, as it stands over the app while a call
// rings: put on the key window when CallKit hears of the call, taken away
// when the call ends.
#pragma once

#include <string>

namespace hostapp {

void showCallScreen(const std::string& caller, bool video);
void hideCallScreen();

}  // namespace hostapp
