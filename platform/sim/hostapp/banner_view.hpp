// The host's in-app banner as a view: a card at the top of the key window
// with who wrote and what, gone after its timeout.
#pragma once

#include <string>

namespace hostapp {

void showBannerView(const std::string& from, const std::string& text, double seconds);

}  // namespace hostapp
