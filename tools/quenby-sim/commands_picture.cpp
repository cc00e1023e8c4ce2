// picture [lockscreen|sharesheet] FILE.png, and the numbered pictures
// --pictures DIR leaves after every show of a screen.
#include <cstdio>
#include <filesystem>
#include <set>

#include "commands.hpp"
#include "pictures.hpp"
#include "sim/hostapp/about_page.hpp"
#include "sim/picture/screen_picture.hpp"
#include "sim/picture/system_pictures.hpp"

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

sim::picture::Picture drawLockScreen(Session& s) {
  std::vector<sim::picture::LockScreenNotice> notices;
  for (const sim::DeliveredNotification& n : s.device().records().delivered())
    notices.push_back({hostapp::kHostDisplayName, n.title, n.body});
  return sim::picture::drawLockScreen(notices, s.device().absoluteTime());
}

sim::picture::Picture drawShareSheet(Session& s) {
  std::vector<sim::picture::SharePerson> people;
  for (const std::string& id : s.device().records().suggestions()) {
    std::string chat = s.host().chatForIdentifier(id);
    people.push_back({chat, s.host().displayName(chat)});
  }
  return sim::picture::drawShareSheet(people, hostapp::kHostDisplayName);
}

void write(const sim::picture::Picture& picture, const std::string& path) {
  if (!sim::picture::writePicture(picture, path))
    throw ScriptError{"picture: cannot write " + path};
}

}  // namespace

void addPictureCommands(CommandTable& t) {
  static const char* usage = "picture [lockscreen|sharesheet] FILE.png";
  t["picture"] = {usage, [](Session& s, const Command& c) {
                    requireWords(c, 2, 3, usage);
                    if (c.words.size() == 2) return write(drawNow(s), c.words[1]);
                    write(drawSystemSurface(s, c.words[1]), c.words[2]);
                  }};
}

sim::picture::Picture drawSystemSurface(Session& s, const std::string& surface) {
  if (surface == "lockscreen") return drawLockScreen(s);
  if (surface == "sharesheet") return drawShareSheet(s);
  throw ScriptError{"picture: unknown surface '" + surface + "' (lockscreen or sharesheet)"};
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
  write(drawNow(s), (std::filesystem::path(s.picturesDir()) / name).string());
}

}  // namespace qbsim
