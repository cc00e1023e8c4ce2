#include "swarm_world.hpp"

#include <cmath>
#include <filesystem>
#include <fstream>

#include "commands.hpp"
#include "core/gate_file.hpp"
#include "hiding/outside_hooks.hpp"
#include "sim/hostapp/surfaces.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace qbsim::swarm {
namespace {

SimOptions options(std::uint64_t seed, std::ostream* live) {
  SimOptions o;
  o.seed = seed;
  o.trace = live != nullptr;
  return o;
}

std::optional<std::string> readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

long tableReloads(rt::Id screen) {
  rt::Id table = screen ? rt::probeKey(screen, "m_tableView") : nullptr;
  return table ? sim::viewState(table)->reloads : 0;
}

}  // namespace

World::World(std::uint64_t seed, std::ostream* live)
    : session_(options(seed, live), live ? *live : discard_) {}

bool World::active() {
  return session_.process() && session_.process()->appState() == sim::AppState::Active;
}

std::string World::screen() {
  sim::Process* p = session_.process();
  if (!p) return "(not running)";
  if (p->platform().biometricReply) return "biometric";
  rt::Id top = sim::topController();
  if (!top) return "(none)";
  if (rt::isKindOf(top, "UIAlertController")) return "alert";
  std::string_view cls = rt::className(top);
  if (cls == "QBPanelController") return "panel";
  if (cls == "QBContactPickController") return "picker";
  return std::string(cls);
}

bool World::panelSheetUp() {
  if (!session_.process()) return false;
  for (rt::Id c = sim::topController(); c;) {
    const sim::ControllerState& st = *sim::controllerState(c);
    for (rt::Id vc : st.viewControllers)
      if (rt::className(vc) == "QBPanelController") return true;
    if (rt::className(c) == "QBPanelController") return true;
    c = st.parent ? st.parent : st.presenting;
  }
  return false;
}

bool World::panelOrPromptUp() {
  std::string top = screen();
  return top == "alert" || top == "biometric" || panelSheetUp();
}

bool World::panelOnTop() {
  rt::Id top = session_.process() ? sim::topController() : nullptr;
  return top && rt::className(top) == "QBPanelController";
}

std::optional<World::ShownRow> World::panelRow(long section, long row) {
  sim::Process* p = session_.process();
  if (!p || !panelOnTop()) return std::nullopt;
  rt::Id top = sim::topController();
  std::optional<ShownRow> shown;
  p->runGuarded([&] {
    std::vector<sim::ShownSection> sections = sim::showTable(sim::tableOf(top));
    if (section < long(sections.size()) && row < long(sections[std::size_t(section)].rows.size())) {
      const sim::ShownRow& r = sections[std::size_t(section)].rows[std::size_t(row)];
      shown = ShownRow{r.detail, r.state};
    }
  });
  return shown;
}

World::Before World::before() {
  return {screen(), panelSheetUp(), session_.device().notices().all().size(),
          session_.device().log().size()};
}

World::Ran World::run(const std::string& line) {
  Ran r;
  try {
    Command c;
    c.words = splitWords(line);
    c.text = line;
    execute(session_, c);
  } catch (const ScriptError& e) {
    r.applied = false;
    r.skipped = e.message;
  } catch (const ExpectFailure& f) {
    r.crash = f.message;
  }
  return r;
}

Observation World::observe(const Before& before, bool left) {
  Observation o;
  sim::Device& device = session_.device();
  sim::Process* p = session_.process();
  o.running = p != nullptr;
  o.asleep = !p || p->suspended();
  o.now = device.elapsed();
  o.minuteOfDay = long(device.localSecondOfDay() / 60) % 1440;
  o.file = readFile(session_.settingsPath());
  std::filesystem::path settings(session_.settingsPath());
  std::error_code ec;
  // The library's own record of what it cleaned outside the app lives there
  // too, and the gating's file for the hours before the first unlock.
  std::filesystem::path outside = std::filesystem::path(hiding::kOutsideFile).filename();
  for (const auto& e : std::filesystem::directory_iterator(settings.parent_path(), ec))
    if (e.path() != settings && e.path().filename() != outside &&
        e.path().filename() != core::kGateFileName)
      o.besideFile[e.path().filename().string()] = readFile(e.path().string()).value_or("");
  auto all = device.notices().all();
  double secondOfDay = device.localSecondOfDay();
  for (std::size_t k = before.notices; k < all.size(); ++k) {
    o.announcements.push_back(all[k]);
    // Within one step, never a day ago: the wall clock only wraps at midnight.
    double ago = std::fmod(secondOfDay - all[k].secondOfDay + 86400, 86400);
    o.announcedAt.push_back(o.now - ago);
  }
  sim::SystemRecords& records = device.records();
  hostapp::HostApp& host = session_.host();
  for (const auto& n : records.delivered()) o.lockscreen.push_back({n.identifier, n.from});
  for (const auto& id : records.suggestions()) o.suggestions.push_back(host.chatForIdentifier(id));
  for (const auto& i : records.items())
    o.indexed.push_back(host.chatForIdentifier(i.uniqueIdentifier));
  const auto& log = device.log();
  for (std::size_t k = before.log; k < log.size(); ++k) o.keptLog.push_back(log[k].kept);
  if (left && p) {
    const auto& shot = host.lastSnapshot();
    if (shot.taken && (shot.screen == "main" || shot.screen == "contacts"))
      o.snapshot = Observation::Picture{shot.screen, shot.rows};
  }
  if (!p) return o;
  o.active = p->appState() == sim::AppState::Active;
  o.screen = screen();
  o.mainRows = host.mainListShown();
  o.mainReloads = tableReloads(host.mainFrame());
  o.contactsRows = hostapp::contactsShown(host);
  o.contactsReloads = tableReloads(host.contactsScreen());
  o.search = hostapp::searchShown();
  o.moments = hostapp::momentsShown();
  o.forward = hostapp::forwardRowShown();
  return o;
}

void World::writeSettingsFile(const std::string& bytes) {
  std::filesystem::create_directories(std::filesystem::path(session_.settingsPath()).parent_path());
  std::ofstream(session_.settingsPath(), std::ios::binary) << bytes;
}

std::vector<std::string> World::friendsMatching(const std::string& text) {
  std::vector<std::string> out;
  for (const auto& f : session_.host().model.friends)
    if (f.username.find(text) != std::string::npos) out.push_back(f.username);
  return out;
}

std::vector<std::string> World::momentAuthors() {
  std::vector<std::string> out;
  for (const auto& m : session_.host().model.moments) out.push_back(m.username);
  return out;
}

std::vector<std::string> World::recentChats() { return session_.host().model.recentChats; }

}  // namespace qbsim::swarm
