// picture FILE.png, and the numbered pictures --pictures DIR leaves after
// every show of a screen.
#include <cstdio>
#include <filesystem>
#include <set>

#include "commands.hpp"
#include "sim/picture/screen_picture.hpp"

namespace qbsim {
namespace {

sim::picture::Picture drawNow(Session& s) {
  sim::picture::Picture picture;
  if (sim::Process* p = s.process())
    p->runGuarded([&] { picture = sim::picture::drawScreen(); });
  else
    picture = sim::picture::drawScreen();
  return picture;
}

void write(Session& s, const std::string& path) {
  if (!sim::picture::writePicture(drawNow(s), path))
    throw ScriptError{"picture: cannot write " + path};
}

}  // namespace

void addPictureCommands(CommandTable& t) {
  t["picture"] = {"picture FILE.png", [](Session& s, const Command& c) {
                    requireWords(c, 2, 2, "picture FILE.png");
                    write(s, c.words[1]);
                  }};
}

void pictureAfterShow(Session& s, const std::string& shown) {
  static const std::set<std::string> screens = {"main",    "contacts", "search", "moments",
                                                "forward", "panel",    "picker", "screen"};
  if (s.picturesDir().empty() || !screens.count(shown)) return;
  std::error_code ec;
  std::filesystem::create_directories(s.picturesDir(), ec);
  char name[64];
  int n = s.nextPictureNumber();
  std::snprintf(name, sizeof name, "%03d-%s.png", n, shown.c_str());
  write(s, (std::filesystem::path(s.picturesDir()) / name).string());
}

}  // namespace qbsim
