// The swarm's driver: a seed picks the host build, the device, the settings
// file at start, then the user's steps, all drawn from the device's one
// seeded source. Each step is a scenario command run the way `run` runs it;
// one that cannot apply now (no dialog to type into) is recorded as skipped.
// After each step the host's screens, the notices and the settings file go
// to the checker.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "base/value.hpp"
#include "commands.hpp"
#include "core/gate_file.hpp"
#include "hiding/outside_hooks.hpp"
#include "sim/hostapp/surfaces.hpp"
#include "panel/panel_rows.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "sim/codec/plist_codec.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "swarm.hpp"
#include "swarm_checker.hpp"
#include "swarm_faults.hpp"

namespace qbsim::swarm {
namespace {

const char* const kUsers[] = {"alice", "bob", "carol", "dave", "erin", "team@chatroom"};
const char* const kSecretCandidates[] = {"bob", "carol", "dave", "team@chatroom"};
// Every threshold of the system a wait straddles.
const double kThresholds[] = {0.45, 0.7, 0.75, 0.8, 1.0, 1.3, 2.0, 30.0};
// The panel's section of daily windows, in schedule mode.
const long kWindows = panel::rowFor("dailyWindows")->section;
const char* const kSwitchKeys[] = {"shakeHide", "shakeShow", "longPressUnlock", "passwordFallback"};

std::string fmt(double d) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", d);
  std::string s = buf;
  while (s.back() == '0') s.pop_back();
  if (s.back() == '.') s.pop_back();
  return s;
}

std::string clock(long minute) {
  char buf[8];
  std::snprintf(buf, sizeof buf, "%02ld:%02ld", minute / 60 % 24, minute % 60);
  return buf;
}

std::optional<std::string> readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

std::string screenName(Session& s) {
  sim::Process* p = s.process();
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

// Whether the panel's sheet is on screen, under whatever it presents: what a
// person sees of the app's presented screens, not the library's state.
bool panelSheetUp(Session& s) {
  if (!s.process()) return false;
  for (rt::Id c = sim::topController(); c;) {
    const sim::ControllerState& st = *sim::controllerState(c);
    for (rt::Id vc : st.viewControllers)
      if (rt::className(vc) == "QBPanelController") return true;
    if (rt::className(c) == "QBPanelController") return true;
    c = st.parent ? st.parent : st.presenting;
  }
  return false;
}

// Whether two windows share a minute; a window whose ends are equal holds none.
bool clash(const Window& a, const Window& b) {
  auto in = [](const Window& x, long m) {
    if (x.start == x.end) return false;
    return x.start < x.end ? x.start <= m && m < x.end : m >= x.start || m < x.end;
  };
  for (long m = 0; m < 1440; ++m)
    if (in(a, m) && in(b, m)) return true;
  return false;
}

// What the panel accepts: one to three windows, each with two different ends,
// none sharing a minute with another.
bool acceptable(const std::vector<Window>& w) {
  if (w.empty() || w.size() > 3) return false;
  for (std::size_t i = 0; i < w.size(); ++i) {
    if (w[i].start == w[i].end) return false;
    for (std::size_t j = 0; j < i; ++j)
      if (clash(w[i], w[j])) return false;
  }
  return true;
}

// As the panel lists them, and as the file keeps them: by start.
std::vector<Window> byStart(std::vector<Window> w) {
  std::stable_sort(w.begin(), w.end(),
                   [](const Window& a, const Window& b) { return a.start < b.start; });
  return w;
}

long tableReloads(rt::Id screen) {
  rt::Id table = screen ? rt::probeKey(screen, "m_tableView") : nullptr;
  return table ? sim::viewState(table)->reloads : 0;
}

class Day {
 public:
  Day(std::uint64_t seed, std::ostream* live)
      : live_(live),
        session_(options(seed, live), live ? *live : discard_),
        rng_(session_.device().random()) {}

  SeedRun run(int steps) {
    setUp();
    for (int i = 0; i < steps && run_.passed; ++i) {
      step_ = i + 1;
      userStep();
    }
    run_.steps = step_;
    return std::move(run_);
  }

 private:
  static SimOptions options(std::uint64_t seed, std::ostream* live) {
    SimOptions o;
    o.seed = seed;
    o.trace = live != nullptr;
    return o;
  }

  std::uint64_t pick(std::uint64_t n) { return rng_() % n; }
  bool chance(int percent) { return int(pick(100)) < percent; }
  template <typename T, std::size_t N>
  const T& oneOf(const T (&a)[N]) {
    return a[pick(N)];
  }

  // --- Before launch: the host build, the device, the settings file.
  void setUp() {
    for (const char* line :
         {"friend alice", "friend bob nick=Bob", "friend carol remark=C", "friend dave alias=dd",
          "friend erin", "room team@chatroom title=Team"})
      exec(line);
    exec(std::string("device biometrics ") + oneOf({"faceid", "touchid", "none"}));
    exec(std::string("device motion ") + oneOf({"full", "accelerometer", "none"}));
    const auto& faults = hostFaults();
    int n = chance(30) ? 0 : 1 + int(pick(3));
    for (int k = 0; k < n; ++k) {
      const HostFault& f = faults[pick(faults.size())];
      if (run_.faults.insert(f.command).second) {
        exec(f.command);
        exempt_ |= f.exempts;
        if (std::string_view(f.command).starts_with("host lacks")) gone_ |= f.exempts;
      }
    }
    exec("clock " + clock(long(pick(24 * 60))));
    int file = int(pick(10));
    std::optional<std::string> initial;
    bool saved = false;
    if (file < 2) {
      initial = damagedFile();
      writeSettingsFile(*initial);
      note("settings file damaged (" + std::to_string(initial->size()) + " bytes)");
    } else if (file < 4) {
      initial = legacyFile();
      writeSettingsFile(*initial);
      note("settings file legacy");
    } else {
      saved = true;
    }
    checker_.emplace(model_, initial, saved, exempt_, gone_);
    if (saved) {
      for (int k = 0, m = 1 + int(pick(3)); k < m; ++k)
        edit("secret " + std::string(oneOf(kSecretCandidates)));
      edit(windowsLine());
      if (chance(30)) edit("setting visibilityControl 1");
      edit("setting secretNotifyMode " + std::to_string(pick(3)));
      edit(std::string("setting voipVoiceNotify ") + (chance(50) ? "true" : "false"));
      edit(std::string("setting voipVideoNotify ") + (chance(50) ? "true" : "false"));
      edit("setting revealAuthMode " + std::to_string(pick(2)));
    }
    exec("launch");
    for (const char* u : kUsers)
      if (chance(70)) exec(std::string("session ") + u);
    for (int k = 0; k < 3; ++k) exec(std::string("moment ") + oneOf(kUsers));
  }

  std::string damagedFile() {
    switch (pick(4)) {
      case 0:
        return "";
      case 1:
        return "<?xml version=\"1.0\"?><plist><dict><key>secrets</key><array><string>bob";
      case 2:
        return "bplist00\xd1\x01\x02garbage";
      default: {
        std::string s;
        for (int i = 0, n = 1 + int(pick(64)); i < n; ++i) s += char(pick(256));
        return s;
      }
    }
  }

  // An older build's file: one auth mode, a single show/hide pair, the shared
  // shake switch. Its secrets and password are the model's.
  std::string legacyFile() {
    base::Dictionary d;
    base::Array secrets;
    model_.secrets = {"bob"};
    if (chance(50)) model_.secrets.insert("team@chatroom");
    for (const auto& u : model_.secrets) secrets.emplace_back(u);
    d.emplace_back("secrets", base::Value(std::move(secrets)));
    d.emplace_back("authMode", base::Value(long(pick(2))));
    d.emplace_back("dailyShowMinute", base::Value(long(480)));
    d.emplace_back("dailyHideMinute", base::Value(long(1320)));
    bool toggle = chance(50);
    d.emplace_back("shakeToggle", base::Value(toggle));
    model_.switches["shakeShow"] = model_.switches["shakeHide"] = toggle;
    if (chance(50)) {
      model_.password = "2468";
      d.emplace_back("password", base::Value(std::string("2468")));
    }
    return sim::encodePlist(base::Value(std::move(d)), sys::PlistFormat::Xml);
  }

  void writeSettingsFile(const std::string& bytes) {
    std::filesystem::create_directories(
        std::filesystem::path(session_.settingsPath()).parent_path());
    std::ofstream(session_.settingsPath(), std::ios::binary) << bytes;
  }

  // One or two windows that never overlap, at least two minutes long.
  std::string windowsLine() {
    long a = long(pick(24 * 60)), len = 2 + long(pick(180));
    std::vector<Window> w{{a, (a + len) % 1440, chance(30)}};
    std::string line = "setting dailyWindows " + clock(w[0].start) + "-" + clock(w[0].end) +
                       (w[0].hide ? " hide" : " show");
    if (chance(50)) {
      long b = (w[0].end + 1 + long(pick(300))) % 1440, blen = 2 + long(pick(120));
      Window second{b, (b + blen) % 1440, chance(50)};
      if (!clash(w[0], second)) {
        w.push_back(second);
        line +=
            " " + clock(second.start) + "-" + clock(second.end) + (second.hide ? " hide" : " show");
      }
    }
    pendingWindows_ = w;
    return line;
  }

  // --- The user's day.
  void userStep() {
    std::string who = oneOf(kUsers);
    switch (pick(26)) {
      case 0:
      case 1:
      case 2:
        exec("message " + who);
        break;
      case 3:
        exec(std::string("call ") + (chance(50) ? "video " : "voice ") + who);
        break;
      case 4:
        exec(chance(50) ? "moment " + who : "session " + who);
        break;
      case 5:
        open(who);
        break;
      case 6:
      case 7:
        exec("shake");
        break;
      case 8:
        exec("longpress");
        break;
      case 9:
        if (chance(40))
          openPanel();
        else
          aboutTaps();
        break;
      case 10:
      case 11:
        exec("type " +
             std::string(chance(50) ? model_.password : oneOf({"1234", "7350", "24689", "x"})));
        break;
      case 12:
        exec(chance(70) ? "press 确定" : "press 取消");
        break;
      case 13:
        exec(chance(60) ? "biometric pass" : "biometric fail");
        break;
      case 14:
        if (chance(60))
          panelRow();
        else
          exec(chance(60) ? "panel done" : "panel dismiss");
        break;
      case 15:
        edit(std::string(chance(60) ? "secret " : "unsecret ") + oneOf(kSecretCandidates));
        break;
      case 16:
        setting();
        break;
      case 17:
        exec(session_.process() && session_.process()->appState() == sim::AppState::Active
                 ? "background"
                 : "foreground");
        break;
      case 18:
        exec(session_.process() ? (chance(20) ? "quit" : "open main") : "launch");
        break;
      case 19:
        exec("wait " + fmt(double(pick(100)) / 100.0));
        break;
      case 24:
      case 25:
        exec("send " + who);
        break;
      default: {
        double t = oneOf(kThresholds) + double(int(pick(5)) - 2) * 0.01;
        exec("wait " + fmt(t));
      }
    }
  }

  void open(const std::string& who) {
    switch (pick(6)) {
      case 0:
        exec("open main");
        break;
      case 1:
        exec("open contacts");
        break;
      case 2:
        exec("open search " + who.substr(0, 2));
        break;
      case 3:
        exec("open moments");
        break;
      case 4:
        exec("open forward");
        break;
      default:
        exec("open chat " + who);
        break;
    }
  }

  // Taps on the About page, quick enough (or not) to count as the entry.
  void aboutTaps() {
    if (screenName(session_) != "SettingAboutMMViewController") {
      exec("open about");
      exec("wait " + fmt(chance(50) ? 0.45 : 0.7));
    }
    const char* tap = oneOf({"tap version", "tap nav", "tap nav 120", "tap page", "tap page 300"});
    for (int k = 0, n = 3 + int(pick(4)); k < n; ++k) {
      exec(tap);
      if (chance(20)) exec("wait " + fmt(chance(50) ? 1.3 : 1.25));
    }
  }

  // The way in to the panel, done right: five quick taps, then the check.
  void openPanel() {
    exec("open about");
    exec("wait 0.7");
    for (int k = 0; k < 5; ++k) exec("tap version");
    exec("wait 0.5");
    exec("type " + model_.password);
    exec("press 确定");
    exec("biometric pass");
    exec("wait 1");
  }

  void setting() {
    switch (pick(8)) {
      case 0:
        edit(std::string("setting visibilityControl ") + (chance(50) ? "1" : "0"));
        break;
      case 1:
        edit("setting secretNotifyMode " + std::to_string(pick(3)));
        break;
      case 2:
        edit(std::string("setting voipVoiceNotify ") + (chance(50) ? "true" : "false"));
        break;
      case 3:
        edit(std::string("setting voipVideoNotify ") + (chance(50) ? "true" : "false"));
        break;
      case 4:
        edit(windowsLine());
        break;
      case 5:
        edit(std::string("setting password ") + oneOf({"7351", "2468", "abc", "98765"}));
        break;
      case 6:
        edit(std::string("setting ") + oneOf(kSwitchKeys) + (chance(50) ? " true" : " false"));
        break;
      default:
        edit(std::string(chance(50) ? "setting revealAuthMode " : "setting panelAuthMode ") +
             std::to_string(pick(2)));
    }
  }

  // A row of the control panel (skipped unless it is on screen): the model
  // learns what the row saves, as it does for `setting`.
  void panelRow() {
    int kind = int(pick(11));
    // The rarer rows are worth the way in when the panel is not open.
    if (kind >= 8 && !panelOnTop() && chance(50)) openPanel();
    switch (kind) {
      case 8:
        return passwordRow();
      case 9:
        return windowEditor();
      case 10:
        return swipeDelete();
      case 7: {
        std::string who = oneOf(kSecretCandidates);
        exec("panel tap " + std::to_string(panel::kSecrets) + " 0");
        Settings next = model_;
        next.secrets.insert(who);
        exec("picker pick " + who, [&] { savedNow(next); });
        return;
      }
      default:
        return settingRow();
    }
  }

  // A check or a switch row of the panel's table, and the value the table says it saves.
  void settingRow() {
    std::vector<const panel::PanelRow*> rows;
    for (const panel::PanelRow& r : panel::panelRows())
      if (r.kind == panel::RowKind::Choice || r.kind == panel::RowKind::Switch) rows.push_back(&r);
    const panel::PanelRow& r = *rows[pick(rows.size())];
    std::string at = std::to_string(r.section) + " " + std::to_string(r.row);
    bool on = chance(50);
    bool isSwitch = r.kind == panel::RowKind::Switch;
    Settings next = model_;
    learn(next, r.key, isSwitch ? (on ? "true" : "false") : std::to_string(r.value));
    // A switch moved to where it already is sends nothing, so nothing is saved.
    bool switchUnmoved = isSwitch && next.voice == model_.voice && next.video == model_.video &&
                         next.switches == model_.switches;
    exec(isSwitch ? "panel switch " + at + (on ? " on" : " off") : "panel tap " + at, [&] {
      if (!switchUnmoved) savedNow(next);
    });
  }

  // Runs the lines in order while each applies; true when all did.
  bool sequence(std::initializer_list<std::string> lines) {
    for (const std::string& line : lines)
      if (!exec(line)) return false;
    return true;
  }

  void savedNow(const Settings& next) {
    model_ = next;
    checker_->saved(model_, session_.device().elapsed());
  }

  // The panel's password row: a dialog for the new one; a short one is dropped.
  void passwordRow() {
    std::string pw = oneOf({"7351", "2468", "abc", "98765", "1357"});
    const panel::PanelRow* row = panel::rowFor("password");
    if (!sequence({"panel tap " + std::to_string(row->section) + " " + std::to_string(row->row),
                   "wait 0.5", "type " + pw}))
      return;
    bool confirm = chance(85);
    exec(confirm ? "press 确定" : "press 取消", [&] {
      if (!confirm || pw.size() < 4) return;
      Settings next = model_;
      next.password = pw;
      savedNow(next);
    });
  }

  // The daily-window editor, in schedule mode: change a window or add one,
  // through its three dialogs (start, end, show or hide).
  void windowEditor() {
    if (model_.manual || !model_.windowsKnown) return;
    std::vector<Window> rows = byStart(model_.windows);
    long n = long(rows.size());
    long row = long(pick(std::uint64_t(n < 3 ? n + 1 : n)));
    long start = long(pick(24 * 60));
    long end = chance(10) ? start : (start + 1 + long(pick(240))) % 1440;
    bool hide = chance(40);
    if (!sequence({"panel tap " + std::to_string(kWindows) + " " + std::to_string(row), "wait 0.5",
                   "time " + clock(start), "press 确定", "wait 0.5", "time " + clock(end),
                   "press 确定", "wait 0.5"}))
      return;
    std::vector<Window> after = rows;
    if (row < n)
      after[std::size_t(row)] = Window{start, end, hide};
    else
      after.push_back(Window{start, end, hide});
    bool ok = acceptable(after);
    bool cancel = chance(10);
    bool pressed = exec(cancel ? "press 取消"
                        : hide ? "press 隐藏"
                               : "press 显示",
                        [&] {
                          if (cancel || !ok) return;
                          Settings next = model_;
                          next.windows = byStart(after);
                          savedNow(next);
                        });
    if (pressed && !cancel && !ok) exec("press 好");  // the tip that says why
  }

  // Swipe-delete: a secret's row (the row shows whose it is), or a window in
  // schedule mode (the last one cannot go).
  void swipeDelete() {
    if (chance(50) && !model_.manual && model_.windowsKnown) {
      std::vector<Window> rows = byStart(model_.windows);
      long row = long(pick(rows.size() + 1));
      exec("panel delete " + std::to_string(kWindows) + " " + std::to_string(row), [&] {
        Settings next = model_;
        rows.erase(rows.begin() + row);
        next.windows = rows;
        savedNow(next);
      });
      return;
    }
    long row = 1 + long(pick(model_.secrets.size() + 1));
    std::string who = panelRowDetail(panel::kSecrets, row);
    exec("panel delete " + std::to_string(panel::kSecrets) + " " + std::to_string(row), [&] {
      Settings next = model_;
      next.secrets.erase(who);
      savedNow(next);
    });
  }

  bool panelOnTop() {
    rt::Id top = session_.process() ? sim::topController() : nullptr;
    return top && rt::className(top) == "QBPanelController";
  }

  // The small print under a panel row's title, as shown (empty when the
  // panel or the row is not there).
  std::string panelRowDetail(long section, long row) {
    sim::Process* p = session_.process();
    if (!p || !panelOnTop()) return "";
    rt::Id top = sim::topController();
    std::string detail;
    p->runGuarded([&] {
      std::vector<sim::ShownSection> sections = sim::showTable(sim::tableOf(top));
      if (section < long(sections.size()) && row < long(sections[std::size_t(section)].rows.size()))
        detail = sections[std::size_t(section)].rows[std::size_t(row)].detail;
    });
    return detail;
  }

  // What `setting KEY VALUE`, or the panel's row for KEY, saves; false when
  // it saves nothing (a short password is dropped, file untouched).
  bool learn(Settings& next, const std::string& key, const std::string& value) {
    if (key == "password" && value.size() < 4) return false;
    if (key == "visibilityControl")
      next.manual = value == "0";
    else if (key == "secretNotifyMode")
      next.notifyMode = std::stol(value);
    else if (key == "voipVoiceNotify")
      next.voice = value == "true";
    else if (key == "voipVideoNotify")
      next.video = value == "true";
    else if (key == "password")
      next.password = value;
    else if (key == "dailyWindows")
      next.windows = pendingWindows_, next.windowsKnown = true;
    else if (key == "revealAuthMode" || key == "panelAuthMode")
      next.modes[key] = std::stol(value);
    else
      next.switches[key] = value == "true";
    return true;
  }

  // A change of the secret list or a setting: on success the model learns it.
  void edit(const std::string& line) {
    Settings next = model_;
    std::vector<std::string> w = splitWords(line);
    bool saves = true;
    if (w[0] == "secret")
      next.secrets.insert(w[1]);
    else if (w[0] == "unsecret")
      next.secrets.erase(w[1]);
    else
      saves = learn(next, w[1], w[2]);
    exec(line, [&] {
      if (!saves) return;
      model_ = next;
      if (checker_) checker_->saved(model_, session_.device().elapsed());
    });
  }

  void note(const std::string& text) { record("# " + text); }

  void record(const std::string& line) {
    char head[48];
    std::snprintf(head, sizeof head, "%4d %10.3f  ", step_, session_.device().elapsed());
    std::string full = head + line + "\n";
    run_.transcript += full;
    if (live_) *live_ << full << std::flush;
    recent_.push_back(full);
    if (recent_.size() > 20) recent_.pop_front();
  }

  // Runs one command; true when it applied. Then the checker judges.
  bool exec(const std::string& line, const std::function<void()>& applied = {}) {
    if (!run_.passed) return false;
    std::string held = screenName(session_);
    panelWasUp_ = panelSheetUp(session_);
    std::size_t noticesBefore = session_.device().notices().all().size();
    std::size_t logBefore = session_.device().log().size();
    Observation o;
    bool ok = true;
    std::string outcome;
    try {
      Command c;
      c.words = splitWords(line);
      c.text = line;
      execute(session_, c);
    } catch (const ScriptError& e) {
      ok = false;
      outcome = "  (skipped: " + e.message + ")";
    } catch (const ExpectFailure& f) {
      o.crash = f.message;
    }
    if (ok && !o.crash) {
      if (applied) applied();
      learn(line, held);
    }
    if (session_.process() == nullptr && checker_ && !o.crash) checker_->quit();
    observe(o, noticesBefore, line);
    const auto& log = session_.device().log();
    for (std::size_t k = logBefore; k < log.size(); ++k) o.keptLog.push_back(log[k].kept);
    if (ok && line == "background" && session_.process()) {
      const auto& shot = session_.host().lastSnapshot();
      if (shot.taken && (shot.screen == "main" || shot.screen == "contacts"))
        o.snapshot = Observation::Picture{shot.screen, shot.rows};
    }
    record(line + outcome);
    if (!checker_) return ok;
    if (auto b = checker_->check(o)) {
      b->what += " (screen " + o.screen + ")";
      fail(*b);
    }
    return ok && !o.crash;
  }

  // What the step tells the model, besides the settings `edit` knows.
  void learn(const std::string& line, const std::string& heldBefore) {
    if (!checker_) return;
    std::vector<std::string> w = splitWords(line);
    double now = session_.device().elapsed();
    const std::string& cmd = w[0];
    if (cmd == "launch")
      checker_->launched(now);
    else if (cmd == "quit")
      checker_->quit();
    else if (cmd == "background") {
      bool held = heldBefore == "alert" || heldBefore == "biometric" || heldBefore == "panel" ||
                  heldBefore == "picker";
      checker_->background(now, held, panelWasUp_);
    } else if (cmd == "foreground")
      checker_->foreground(now);
    else if (cmd == "type")
      typed_ = w[1];
    else if (cmd == "press") {
      if (w[1] == "确定" && typed_ == model_.password) checker_->credential(now);
      typed_.reset();
    } else if (cmd == "biometric" && w[1] == "pass")
      checker_->credential(now);
    else if (cmd == "panel" && (w[1] == "done" || w[1] == "dismiss"))
      checker_->panelClosed();
    else if (cmd == "open" && w[1] == "search") {
      std::vector<std::string> data;
      for (const auto& f : session_.host().model.friends)
        if (f.username.find(w[2]) != std::string::npos) data.push_back(f.username);
      checker_->opened(Checker::Search, data);
    } else if (cmd == "open" && w[1] == "moments") {
      std::vector<std::string> data;
      for (const auto& m : session_.host().model.moments) data.push_back(m.username);
      checker_->opened(Checker::Moments, data);
    } else if (cmd == "open" && w[1] == "forward") {
      checker_->opened(Checker::Forward, session_.host().model.recentChats);
    }
  }

  void observe(Observation& o, std::size_t noticesBefore, const std::string&) {
    sim::Process* p = session_.process();
    o.running = p != nullptr;
    o.now = session_.device().elapsed();
    o.minuteOfDay = long(session_.device().localSecondOfDay() / 60) % 1440;
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
    auto all = session_.device().notices().all();
    double secondOfDay = session_.device().localSecondOfDay();
    for (std::size_t k = noticesBefore; k < all.size(); ++k) {
      o.announcements.push_back(all[k]);
      // Within one step, never a day ago: the wall clock only wraps at midnight.
      double ago = std::fmod(secondOfDay - all[k].secondOfDay + 86400, 86400);
      o.announcedAt.push_back(o.now - ago);
    }
    sim::SystemRecords& records = session_.device().records();
    hostapp::HostApp& app = session_.host();
    for (const auto& n : records.delivered()) o.lockscreen.push_back({n.identifier, n.from});
    for (const auto& id : records.suggestions()) o.suggestions.push_back(app.chatForIdentifier(id));
    for (const auto& i : records.items())
      o.indexed.push_back(app.chatForIdentifier(i.uniqueIdentifier));
    if (!p) return;
    o.active = p->appState() == sim::AppState::Active;
    o.screen = screenName(session_);
    hostapp::HostApp& host = session_.host();
    o.mainRows = host.mainListShown();
    o.mainReloads = tableReloads(host.mainFrame());
    o.contactsRows = hostapp::contactsShown(host);
    o.contactsReloads = tableReloads(host.contactsScreen());
    o.search = hostapp::searchShown();
    o.moments = hostapp::momentsShown();
    o.forward = hostapp::forwardRowShown();
  }

  void fail(const Breach& b) {
    run_.passed = false;
    std::ostringstream f;
    f << "swarm: seed " << session_.device().seed() << " failed at step " << step_ << ": invariant "
      << b.invariant << ": " << b.what << "\nlast steps:\n";
    for (const auto& line : recent_) f << line;
    f << "replay: quenby-sim swarm --seed " << session_.device().seed() << " --trace\n";
    run_.failure = f.str();
  }

  std::ostream* live_;
  std::ostringstream discard_;
  Session session_;
  std::mt19937_64& rng_;
  SeedRun run_;
  Settings model_;
  std::optional<Checker> checker_;
  unsigned exempt_ = 0, gone_ = 0;
  bool panelWasUp_ = false;
  std::vector<Window> pendingWindows_;
  std::optional<std::string> typed_;
  std::deque<std::string> recent_;
  int step_ = 0;
};

}  // namespace

SeedRun runSeed(std::uint64_t seed, int steps, std::ostream* live) {
  Day day(seed, live);
  return day.run(steps);
}

int runSwarm(const SwarmOptions& options, std::ostream& out) {
  auto started = std::chrono::steady_clock::now();
  long steps = 0;
  std::set<std::string> faults;
  // Every seed asked for runs: a failure early on must not hide the ones after it.
  std::vector<std::uint64_t> failed;
  for (std::uint64_t k = 0; k < options.count; ++k) {
    std::uint64_t seed = options.first + k;
    SeedRun r = runSeed(seed, options.steps, options.trace ? &out : nullptr);
    steps += r.steps;
    faults.insert(r.faults.begin(), r.faults.end());
    if (!r.passed) {
      out << r.failure;
      failed.push_back(seed);
    }
  }
  double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  out << steps << " steps, " << faults.size() << " of " << hostFaults().size()
      << " host faults exercised";
  if (options.count > 1) out << ", wall time " << fmt(wall) << " s";
  out << "\n";
  if (!failed.empty()) {
    out << "failing seeds:";
    for (std::uint64_t seed : failed) out << " " << seed;
    out << "\n";
  }
  out << options.count - failed.size() << " passed, " << failed.size() << " failed\n";
  return failed.empty() ? 0 : 1;
}

}  // namespace qbsim::swarm
