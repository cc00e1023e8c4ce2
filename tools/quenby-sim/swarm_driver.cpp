#include "swarm_driver.hpp"

#include <cstdio>

#include "base/value.hpp"
#include "commands.hpp"
#include "sim/codec/plist_codec.hpp"
#include "swarm_faults.hpp"

namespace qbsim::swarm {
namespace {

const char* const kUsers[] = {"alice", "bob", "carol", "dave", "erin", "team@chatroom"};
const char* const kSwitchKeys[] = {"shakeHide", "shakeShow", "longPressUnlock", "passwordFallback"};

bool isHeld(const std::string& screen) {
  return screen == "alert" || screen == "biometric" || screen == "panel" || screen == "picker";
}

}  // namespace

std::string seconds(double d) {
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

SeedRun Day::run(int steps) {
  setUp();
  for (int i = 0; i < steps && run_.passed; ++i) {
    step_ = i + 1;
    userStep();
  }
  run_.steps = step_;
  return std::move(run_);
}

// --- Before launch: the host build, the device, the settings file.
void Day::setUp() {
  for (const char* line : {"friend alice", "friend bob nick=Bob", "friend carol remark=C",
                           "friend dave alias=dd", "friend erin", "room team@chatroom title=Team"})
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
    world_.writeSettingsFile(*initial);
    note("settings file damaged (" + std::to_string(initial->size()) + " bytes)");
  } else if (file < 4) {
    initial = legacyFile();
    world_.writeSettingsFile(*initial);
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

std::string Day::damagedFile() {
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
std::string Day::legacyFile() {
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

// One or two windows that never overlap, at least two minutes long.
std::string Day::windowsLine() {
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

// --- The user's day: one action from the table, as lines for the world.
void Day::userStep() {
  std::string who = oneOf(kUsers);
  switch (nextAction(Situation{world_.panelOrPromptUp()}, picker())) {
    case Action::Message:
      exec("message " + who);
      break;
    case Action::Call:
      exec(std::string("call ") + (chance(50) ? "video " : "voice ") + who);
      break;
    case Action::MomentOrSession:
      exec(chance(50) ? "moment " + who : "session " + who);
      break;
    case Action::Open:
      open(who);
      break;
    case Action::Shake:
      exec("shake");
      break;
    case Action::LongPress:
      exec("longpress");
      break;
    case Action::WayIn:
      if (chance(40))
        openPanel();
      else
        aboutTaps();
      break;
    case Action::Type:
      exec("type " +
           std::string(chance(50) ? model_.password : oneOf({"1234", "7350", "24689", "x"})));
      break;
    case Action::Press:
      exec(chance(70) ? "press 确定" : "press 取消");
      break;
    case Action::Biometric:
      exec(chance(60) ? "biometric pass" : "biometric fail");
      break;
    case Action::PanelRow:
      if (chance(60))
        panelStep();
      else
        exec(chance(60) ? "panel done" : "panel dismiss");
      break;
    case Action::Secret:
      edit(std::string(chance(60) ? "secret " : "unsecret ") + oneOf(kSecretCandidates));
      break;
    case Action::Setting:
      setting();
      break;
    case Action::LeaveOrReturn:
      exec(world_.active() ? "background" : "foreground");
      break;
    case Action::Restart:
      exec(world_.running() ? (chance(20) ? "quit" : "open main") : "launch");
      break;
    case Action::ShortWait:
      exec("wait " + seconds(double(pick(100)) / 100.0));
      break;
    case Action::ThresholdWait: {
      std::span<const double> t = thresholds();
      double at = t[pick(t.size())];
      exec("wait " + seconds(at + double(int(pick(5)) - 2) * 0.01));
      break;
    }
    case Action::Send:
      exec("send " + who);
      break;
  }
}

void Day::open(const std::string& who) {
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

// One setting, as the panel would change it without its screen: only while
// neither the panel nor a prompt is up (the action table sees to that).
void Day::setting() {
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

// A change of the secret list or a setting: on success the model learns it.
void Day::edit(const std::string& line) {
  Settings next = model_;
  std::vector<std::string> w = splitWords(line);
  bool saves = true;
  if (w[0] == "secret")
    next.secrets.insert(w[1]);
  else if (w[0] == "unsecret")
    next.secrets.erase(w[1]);
  else
    saves = learnSetting(next, w[1], w[2], pendingWindows_);
  exec(line, [&] {
    if (!saves) return;
    model_ = next;
    if (checker_) checker_->saved(model_, world_.elapsed());
  });
}

void Day::record(const std::string& line) {
  char head[48];
  std::snprintf(head, sizeof head, "%4d %10.3f  ", step_, world_.elapsed());
  std::string full = head + line + "\n";
  run_.transcript += full;
  if (live_) *live_ << full << std::flush;
  recent_.push_back(full);
  if (recent_.size() > 20) recent_.pop_front();
}

// Runs one line; true when it applied. Then the checker judges.
bool Day::exec(const std::string& line, const std::function<void()>& applied) {
  if (!run_.passed) return false;
  World::Before before = world_.before();
  World::Ran ran = world_.run(line);
  if (ran.applied && !ran.crash) {
    if (applied) applied();
    tell(line, before);
  }
  if (!world_.running() && checker_ && !ran.crash) checker_->quit();
  Observation o = world_.observe(before, ran.applied && line == "background");
  o.crash = ran.crash;
  record(line + (ran.applied ? "" : "  (skipped: " + ran.skipped + ")"));
  if (!checker_) return ran.applied;
  if (auto b = checker_->check(o)) {
    b->what += " (screen " + o.screen + ")";
    fail(*b);
  }
  return ran.applied && !ran.crash;
}

// What the step tells the checker's model, besides the settings saved.
void Day::tell(const std::string& line, const World::Before& before) {
  if (!checker_) return;
  std::vector<std::string> w = splitWords(line);
  double now = world_.elapsed();
  const std::string& cmd = w[0];
  if (cmd == "launch")
    checker_->launched(now);
  else if (cmd == "quit")
    checker_->quit();
  else if (cmd == "background")
    checker_->background(now, isHeld(before.screen), before.panelSheetUp);
  else if (cmd == "foreground")
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
  else if (cmd == "open" && w[1] == "search")
    checker_->opened(Checker::Search, world_.friendsMatching(w[2]));
  else if (cmd == "open" && w[1] == "moments")
    checker_->opened(Checker::Moments, world_.momentAuthors());
  else if (cmd == "open" && w[1] == "forward")
    checker_->opened(Checker::Forward, world_.recentChats());
}

void Day::fail(const Breach& b) {
  run_.passed = false;
  std::ostringstream f;
  f << "swarm: seed " << world_.seed() << " failed at step " << step_ << ": invariant "
    << b.invariant << ": " << b.what << "\nlast steps:\n";
  for (const auto& line : recent_) f << line;
  f << "replay: quenby-sim swarm --seed " << world_.seed() << " --trace\n";
  run_.failure = f.str();
}

SeedRun runSeed(std::uint64_t seed, int steps, std::ostream* live) {
  Day day(seed, live);
  return day.run(steps);
}

}  // namespace qbsim::swarm
