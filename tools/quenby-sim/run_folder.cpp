#include "run_folder.hpp"

#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <filesystem>
#include <mutex>
#include <thread>

namespace qbsim {
namespace {

std::mutex folderMutex;
std::string folder;
// The terminal as the run found it: a REPL killed mid-line must not leave it
// in the line editor's mode.
bool terminalSaved = false;
termios terminal;

sigset_t endingSignals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  sigaddset(&set, SIGHUP);
  return set;
}

void removeFolder() {
  std::lock_guard<std::mutex> lock(folderMutex);
  std::error_code ec;
  if (!folder.empty()) std::filesystem::remove_all(folder, ec);
  folder.clear();
}

}  // namespace

std::string startRunFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quenby-sim-XXXXXX").string();
  if (!mkdtemp(pattern.data())) return "";
  {
    std::lock_guard<std::mutex> lock(folderMutex);
    folder = pattern;
  }
  setenv("TMPDIR", pattern.c_str(), 1);
  terminalSaved = isatty(0) && tcgetattr(0, &terminal) == 0;
  sigset_t set = endingSignals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  // A waiting thread rather than a handler: removing a folder tree is no
  // work for a signal handler.
  std::thread([set] {
    int signal = 0;
    sigwait(&set, &signal);
    removeFolder();
    if (terminalSaved) tcsetattr(0, TCSANOW, &terminal);
    ::signal(signal, SIG_DFL);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, signal);
    pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
    raise(signal);  // die of it, so the caller sees the signal
    _exit(128 + signal);
  }).detach();
  return pattern;
}

void endRunFolder() { removeFolder(); }

}  // namespace qbsim
