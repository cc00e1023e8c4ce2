// The host's in-app banner as a view: a card at the top of the key window
// with who wrote and what, gone after its timeout.
#pragma once

#include <string>

#include "rt/geometry.hpp"
#include "rt/types.hpp"
#include "ui/views.hpp"

namespace hostapp {

// A label the host draws on the window itself; `style` names it for tests.
rt::Id hostLabel(const std::string& text, rt::CGRect frame, const ui::LabelStyle& look,
                 const char* style);

void showBannerView(const std::string& from, const std::string& text, double seconds);

}  // namespace hostapp
