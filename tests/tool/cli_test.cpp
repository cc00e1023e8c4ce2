// The simulator's command line: exit statuses, FILE:LINE errors, the summary
// line and the lifecycle commands.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include <unistd.h>

#include "runner.hpp"
#include "sys/files.hpp"

namespace {

class Cli : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = std::filesystem::temp_directory_path() /
          ("quenby-cli-" + std::to_string(::getpid()) + "-" +
           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(dir);
  }
  void TearDown() override { std::filesystem::remove_all(dir); }

  std::string script(const std::string& name, const std::string& text) {
    std::string path = (dir / name).string();
    std::ofstream(path) << text;
    return path;
  }
  int run(const std::vector<std::string>& files, qbsim::SimOptions options = {}) {
    out.str("");
    return qbsim::runFiles(files, options, out);
  }

  std::filesystem::path dir;
  std::ostringstream out;
};

TEST_F(Cli, APassingScriptExitsZeroWithTheSummary) {
  std::string f = script("ok.qbs",
                         "# a comment\n"
                         "clock 07:59   # trailing comment\n"
                         "launch\n"
                         "wait 0.5\n"
                         "background\n"
                         "foreground\n"
                         "quit\n"
                         "launch\n"
                         "expect no-log \"never written\"\n");
  EXPECT_EQ(run({f}), 0) << out.str();
  EXPECT_NE(out.str().find("PASS " + f), std::string::npos);
  EXPECT_NE(out.str().find("\n1 passed, 0 failed\n"), std::string::npos) << out.str();
}

TEST_F(Cli, AFailingExpectationExitsOneNamingFileAndLine) {
  std::string f = script("fail.qbs", "launch\n\nexpect log \"[QB] nothing like this\"\nquit\n");
  EXPECT_EQ(run({f}), 1);
  EXPECT_NE(out.str().find(f + ":3: expect log \"[QB] nothing like this\": got "),
            std::string::npos)
      << out.str();
  EXPECT_NE(out.str().find("0 passed, 1 failed"), std::string::npos);
}

TEST_F(Cli, ScriptErrorsExitTwoWithOneLine) {
  struct Case {
    const char* text;
    const char* message;
  } cases[] = {
      {"frobnicate\n", ":1: unknown command 'frobnicate'"},
      {"launch\nlaunch\n", ":2: launch: the app is already running"},
      {"background\n", ":1: background: the app is not running"},
      {"launch\nforeground\n", ":2: foreground: the app is already in the foreground"},
      {"clock 25:00\n", ":1: bad time '25:00'"},
      {"clock 7\n", ":1: bad time '7'"},
      {"wait soon\n", ":1: bad duration 'soon'"},
      {"wait -1\n", ":1: bad duration '-1'"},
      {"wait 0x10\n", ":1: bad duration '0x10'"},
      {"wait 1e3\n", ":1: bad duration '1e3'"},
      {"wait 1.2.3\n", ":1: bad duration '1.2.3'"},
      {"wait .\n", ":1: bad duration '.'"},
      {"expect log \"unterminated\n", ":1: missing closing quote"},
      {"show nothing\n", ":1: unknown show 'nothing'"},
      {"quit\n", ":1: quit: the app is not running"},
      {"expect file\n", ":1: usage: expect file KEY VALUE"},
      {"friend alice nickname=A\n", ":1: bad option 'nickname=A'"},
      {"room team\n", ":1: room: a group chat's username ends in @chatroom"},
      {"launch\nhost lacks CContactMgr\n", ":2: host lacks: the app is already running"},
      {"host breaks CContactMgr x\n",
       ":1: usage: host lacks CLASS [SELECTOR] | host raises CLASS SELECTOR"},
      {"setting shakeHide maybe\n", ":1: setting shakeHide: expected true or false, got 'maybe'"},
      {"setting secretNotifyMode 3\n", ":1: setting secretNotifyMode: expected 0 to 2, got '3'"},
      {"setting nosuch 1\n", ":1: setting: unknown key 'nosuch'"},
      {"expect hidden\n", ":1: expect hidden: the app is not running"},
      {"host variant fts-mutable\n", ":1: host variant: unknown variant 'fts-mutable'"},
      {"launch\ndevice restore\n", ":2: device restore: no backup was taken on this device"},
      {"launch\nhost variant fts-immutable\n", ":2: host variant: the app is already running"},
      {"launch\nopen search\n", ":2: usage: open search TEXT"},
      {"launch\nopen moments now\n", ":2: usage: open moments"},
      {"launch\nexpect search alice\n", ":2: expect search: the search screen has not been opened"},
      {"launch\nshow forward\n", ":2: show forward: the forward screen has not been opened"},
      {"expect contacts\n", ":1: expect contacts: the app is not running"},
      {"friend a\nlaunch\nexpect contacts a\n",
       ":3: expect contacts: the contacts screen has not been opened (open contacts)"},
      {"moment\n", ":1: usage: moment USER [TEXT]"},
      {"launch\nexpect screen nowhere\n", ":2: expect screen: no screen 'nowhere' (main, chat,"},
      {"host lacks NoSuchHostClass\n", ":1: host lacks: the host has no class 'NoSuchHostClass'"},
      {"host lacks WCFacade countOfTimelineDataItm\n",
       ":1: host lacks: the host's WCFacade defines no method 'countOfTimelineDataItm' of its own"},
      {"host raises SpringBoard totallyBogus:\n",
       ":1: host raises: SpringBoard's SpringBoard defines no method 'totallyBogus:' of its own"},
      {"host raises NoSuchHostClass viewDidLoad\n",
       ":1: host raises: the host has no class 'NoSuchHostClass'"},
      {"launch\nhost raises CContactMgr getContactByNam:\n",
       ":2: host raises: the host's CContactMgr defines no method 'getContactByNam:' of its own"},
      // Inherited from UIKit: making it raise there would break every screen.
      {"host raises ContactsViewController viewDidAppear:\n",
       ":1: host raises: the host's ContactsViewController defines no method 'viewDidAppear:'"},
      {"launch\nopen settings\n",
       ":2: open: no screen 'settings' (usage: open main|contacts|moments|about|forward | open "
       "chat USER | open search TEXT)"},
      {"setting dailyWindows 08:00-13:00 show 12:00-14:00 hide\n",
       ":1: setting dailyWindows: two windows overlap (the panel says \"时段不能重叠。"},
      {"setting dailyWindows 08:00-08:00 show\n",
       ":1: setting dailyWindows: a window starts and ends at the same time (the panel says "
       "\"开始与结束不能相同\")"},
      {"setting dailyWindows 08:00-25:00 show\n",
       ":1: setting dailyWindows: write windows as HH:MM-HH:MM show|hide"},
      {"lanch\n", ":1: unknown command 'lanch' (did you mean 'launch'?)"},
      {"show scren\n", ":1: unknown show 'scren' (did you mean 'show screen'?)"},
      // Only one mark is skipped: a second is part of the word.
      {"\xEF\xBB\xBF\xEF\xBB\xBF"
       "friend a\n",
       ":1: unknown command '\xEF\xBB\xBF"
       "friend'"},
  };
  for (const Case& c : cases) {
    std::string f = script("err.qbs", c.text);
    EXPECT_EQ(run({f}), 2) << c.text;
    EXPECT_NE(out.str().find(f + c.message), std::string::npos) << c.text << " → " << out.str();
  }
}

TEST_F(Cli, SeveralFilesRunOnNewDevicesAndTheWorstStatusWins) {
  std::string ok = script("a.qbs", "launch\n");
  std::string bad = script("b.qbs", "launch\nexpect log \"no such line zz\"\n");
  std::string err = script("c.qbs", "nope\n");
  EXPECT_EQ(run({ok, bad, ok}), 1);
  EXPECT_NE(out.str().find("2 passed, 1 failed"), std::string::npos);
  EXPECT_EQ(run({bad, err}), 2);
  EXPECT_EQ(run({(dir / "missing.qbs").string()}), 2);
}

TEST_F(Cli, ShowScreenNamesTheScreenOnTopAndPrintsWhatItShows) {
  std::string f = script("screen.qbs",
                         "friend alice\nfriend bob\nsession alice\nsecret bob\nlaunch\n"
                         "wait 2\nshow screen\nopen chat alice\nshow screen\nopen main\n"
                         "shake\nshow screen\ntype 12\nshow screen\n");
  EXPECT_EQ(run({f}), 0) << out.str();
  std::string o = out.str();
  EXPECT_NE(o.find("screen main\nalice\n"), std::string::npos) << o;
  EXPECT_NE(o.find("screen chat\nchat with alice\n"), std::string::npos) << o;
  // The password dialog: its title, its field (hidden once typed into), its buttons.
  std::size_t dialog = o.find("screen alert\ntitle: ");
  ASSERT_NE(dialog, std::string::npos) << o;
  EXPECT_NE(o.find("buttons: [取消]  [确定]", dialog), std::string::npos) << o;
  EXPECT_NE(o.find("field: **\n", dialog), std::string::npos) << o;
}

TEST_F(Cli, AByteOrderMarkAtTheStartIsSkipped) {
  std::string f = script("bom.qbs",
                         "\xEF\xBB\xBF"
                         "friend alice\nlaunch\nsession alice\n"
                         "expect main alice\n");
  EXPECT_EQ(run({f}), 0) << out.str();
}

TEST_F(Cli, AFolderRunsItsScriptsInNameOrderEachFromItsOwnContainer) {
  std::filesystem::create_directories(dir / "suite" / "b.container" / "Documents" / "Quenby");
  std::ofstream(dir / "suite" / "b.container" / "Documents" / "Quenby" / "config.plist")
      << "not a property list";
  script("suite/b.qbs", "launch\nexpect log \"kept aside\"\n");
  script("suite/a.qbs", "launch\nexpect no-log \"kept aside\"\n");
  script("suite/notes.txt", "not a script\n");
  std::string suite = (dir / "suite").string();
  EXPECT_EQ(run({suite}), 0) << out.str();
  std::string o = out.str();
  EXPECT_LT(o.find("PASS " + suite + "/a.qbs"), o.find("PASS " + suite + "/b.qbs")) << o;
  EXPECT_NE(o.find("\n2 passed, 0 failed\n"), std::string::npos) << o;
  // The checked-in container is copied, never changed.
  EXPECT_TRUE(std::filesystem::exists(dir / "suite" / "b.container" / "Documents" / "Quenby" /
                                      "config.plist"));
  std::filesystem::create_directories(dir / "empty");
  EXPECT_EQ(run({(dir / "empty").string()}), 2);
  EXPECT_NE(out.str().find((dir / "empty").string() + ": no .qbs files in the folder"),
            std::string::npos)
      << out.str();
}

TEST_F(Cli, ExpectFileReadsTheSettingsFileInTheContainer) {
  std::string container = (dir / "container").string();
  std::filesystem::create_directories(container + "/Documents/Quenby");
  base::Dictionary d;
  d.emplace_back("password", base::Value("7351"));
  d.emplace_back("shakeHide", base::Value(false));
  d.emplace_back("secretNotifyMode", base::Value(1));
  d.emplace_back("secrets", base::Value(base::Array{base::Value("bob"), base::Value("alice")}));
  d.emplace_back("tags", base::Value(base::Array{base::Value("x"), base::Value("y")}));
  ASSERT_TRUE(sys::writePropertyList(container + "/Documents/Quenby/config.plist", base::Value(d),
                                     sys::PlistFormat::Binary));
  qbsim::SimOptions options;
  options.container = container;
  std::string good = script("good.qbs",
                            "expect file password 7351\n"
                            "expect file shakeHide false\n"
                            "expect file secretNotifyMode 1\n"
                            "expect file secrets [alice bob]\n"
                            "expect file tags [x y]\n");
  EXPECT_EQ(run({good}, options), 0) << out.str();
  for (const char* line : {"expect file shakeHide true\n", "expect file secretNotifyMode 2\n",
                           "expect file secrets [alice]\n", "expect file tags [y x]\n",
                           "expect file password 1234\n", "expect file missingKey 1\n"}) {
    std::string f = script("bad.qbs", line);
    EXPECT_EQ(run({f}, options), 1) << line << out.str();
  }
  std::string noFile = script("nofile.qbs", "expect file password 7351\n");
  EXPECT_EQ(run({noFile}), 1);
  EXPECT_NE(out.str().find("got no settings file"), std::string::npos);
}

TEST_F(Cli, TheReplReportsErrorsAndGoesOn) {
  std::istringstream in("launch\nnope\nwait 1\nexpect log \"no such line zz\"\n");
  std::ostringstream o;
  // Both are reported; from a pipe the session ends with the worse of them.
  EXPECT_EQ(qbsim::runRepl(in, false, {}, o), 2);
  EXPECT_NE(o.str().find("repl:2: unknown command 'nope'"), std::string::npos) << o.str();
  EXPECT_NE(o.str().find("repl:4: expect log \"no such line zz\": got"), std::string::npos)
      << o.str();
}

TEST_F(Cli, AReplSessionWithOnlyTyposPassesAtATerminal) {
  const std::string lines = "\xEF\xBB\xBFlanch\nlaunch\nexpect hiden\nexpect hidden\n";
  std::istringstream piped(lines);
  std::ostringstream p;
  EXPECT_EQ(qbsim::runRepl(piped, false, {}, p), 2) << "from a pipe, as a script";
  std::istringstream in(lines);
  std::ostringstream o;
  EXPECT_EQ(qbsim::runRepl(in, true, {}, o), 0) << o.str();
  EXPECT_NE(o.str().find("repl:1: unknown command 'lanch' (did you mean 'launch'?)"),
            std::string::npos)
      << o.str();
  EXPECT_NE(o.str().find("repl:3: unknown expect 'hiden' (did you mean 'expect hidden'?)"),
            std::string::npos)
      << o.str();
}

TEST_F(Cli, TheDemoRunsToTheEnd) {
  std::ostringstream o;
  EXPECT_EQ(qbsim::runDemo({}, o), 0) << o.str();
  EXPECT_NE(o.str().find("The demo ran to the end."), std::string::npos);
  // Chapters with titles, and at most one log line a step: the rest is --trace's.
  std::istringstream lines(o.str());
  std::string line;
  int chapters = 0, steps = 0, logLines = 0, logLinesThisStep = 0;
  while (std::getline(lines, line)) {
    if (!line.empty() && line[0] >= '1' && line[0] <= '9') ++chapters;
    if (line.rfind("  ", 0) == 0 && line.size() > 2 && line[2] >= '1' && line[2] <= '9')
      ++steps, logLinesThisStep = 0;
    if (line.find("[QB]") != std::string::npos) {
      EXPECT_EQ(line.rfind("   log ", 0), 0u) << line;
      ++logLines;
      EXPECT_LE(++logLinesThisStep, 1) << line;
    }
  }
  EXPECT_GE(chapters, 4);
  EXPECT_GE(steps, 2 * chapters);
  EXPECT_GE(logLines, 3);
  qbsim::SimOptions trace;
  trace.trace = true;
  std::ostringstream traced;
  EXPECT_EQ(qbsim::runDemo(trace, traced), 0);
  EXPECT_NE(traced.str().find("[QB] softReload main"), std::string::npos);
}

}  // namespace
