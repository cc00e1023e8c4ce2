// The host's About page (Me → Settings → About): its controller class, the
// labels it builds late (0.3 s after viewDidLoad, as the real page does), and
// the app's version in the main bundle.
#pragma once

#include "sim/hostapp/host_app.hpp"
#include "rt/types.hpp"

namespace hostapp {

inline constexpr const char* kHostVersion = "8.0.50";
inline constexpr const char* kHostDisplayName = "微信";
inline constexpr double kAboutLabelsDelay = 0.3;

void defineAboutClasses(HostApp& app);
// Pushes the About page on the chats tab and shows it; returns it (nil when
// this build has no About page).
rt::Id openAbout(HostApp& app);
// The page's version label, or nil while the page has not built it yet.
rt::Id aboutVersionLabel(rt::Id page);

}  // namespace hostapp
