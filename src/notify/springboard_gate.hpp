// What SpringBoard knows of the host apps' gate files, kept between
// notification requests: where the hosts' containers are, looked up at the
// first request and again when none was found (at most once a minute) or when
// one vanished, and each gate as last read, read again whenever its stamp
// changes. The stamp is looked at when the app says it wrote the gate (a
// Darwin notification), and otherwise no more than twice a second: a stat(2)
// of the gate's path costs more than the whole decision may. One caller at a
// time.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/gate_file.hpp"
#include "sys/files.hpp"

namespace notify {

inline constexpr double kContainerRescanInterval_s = 60;
inline constexpr double kGateRecheckInterval_s = 0.5;

class SpringBoardGate {
 public:
  struct Host {
    std::string container;
    std::string bundleIdentifier;
    std::string gatePath;
    std::optional<sys::FileStamp> stamp;     // of the gate as last read
    std::optional<double> checkedAt;         // media time of the last look at the stamp
    std::optional<core::GateRecord> record;  // nullopt: missing, unreadable or damaged
    bool reportedUnusable = false;
    // Answers by username for this version of the gate.
    std::unordered_map<std::string, bool> answers;
    bool isSecret(std::string_view username);
  };

  // The host whose bundle is `bundleIdentifier`, its gate read and usable;
  // null when that bundle is no host's or its gate cannot be used (then
  // everything passes).
  Host* gateFor(std::string_view bundleIdentifier);

 private:
  void scan(double now);
  Host* find(std::string_view bundleIdentifier);
  // Reads the gate again when its stamp changed; false when it is gone.
  bool refresh(Host& host, double now);

  std::vector<Host> hosts_;
  bool scanned_ = false;
  double lastScan_ = 0;
  bool reportedNone_ = false;
  std::optional<int> changeWatch_;  // the gate-changed notification's token
};

}  // namespace notify
