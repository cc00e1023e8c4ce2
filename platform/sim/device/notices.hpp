// What a person holding the device saw, heard and felt, one record per
// announcement: an incoming message or call. The host's paths open a record;
// banners, sounds, vibrations and the call screen are added to the record
// open at the time (the latest). Safe from any thread: the host announces
// some notifications off the main thread.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace sim {

struct Announcement {
  std::string from;
  std::string kind;  // "message", "voice call", "video call"
  std::string text;
  std::string banner;  // "" none, "in-app", "system"
  bool sound = false;
  int vibrations = 0;
  bool ringing = false;  // a call screen is showing
  bool ended = false;    // the call screen was ended before anyone answered
  double secondOfDay = 0;
  bool isCall() const { return kind != "message"; }
};

class Notices {
 public:
  // Opens the record the following effects belong to.
  void begin(std::string from, std::string kind, std::string text, double secondOfDay);
  void banner(const std::string& where);
  void sound();
  void vibrate();
  // The call screen of the open record's call comes up, ringing.
  void ring();
  // Ends the latest ringing call (of `from`, when given). False when none rings.
  bool endCall(const std::string& from = "");
  bool ringing(const std::string& from) const;
  // Whether any call's screen is ringing.
  bool anyRinging() const;

  // Who the open record is from ("" when none is open).
  std::string openFrom() const;
  std::optional<Announcement> latest(const std::string& from) const;
  std::optional<Announcement> latestCall(const std::string& from) const;
  std::vector<Announcement> all() const;
  void clear();

 private:
  Announcement& open();  // the open record; one from nobody when none was opened

  mutable std::mutex mutex_;
  std::vector<Announcement> list_;
};

}  // namespace sim
