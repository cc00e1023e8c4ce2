// SpringBoard on the simulated device: the system process that presents
// every notification, an app's own requests and the remote notifications the
// system receives for an app that is suspended or not running. It runs in a
// process of its own, with its own runtime and classes:
//
//   SpringBoard : UIApplication   -_accessibilityFrontMostApplication → SBApplication or nil
//   SBApplication                  -bundleIdentifier
//   NCNotificationDispatcher       -postNotificationWithRequest: presents a request
//   NCNotificationRequest          -sectionIdentifier -notificationIdentifier -threadIdentifier
//                                  -content -sound -context ({"userInfo": …}) -mutableCopy
//   NCMutableNotificationRequest   the setters of those
//   NCNotificationContent          -title -message
//   NCNotificationSound
//
// A build may lack any class or method (`host lacks`); a request that finds no
// dispatcher to take it is presented as it came, as the system's older path
// would. Kinder than a phone: one SpringBoard for the life of the device (no
// respring), and it presents at once, on the caller's thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "sim/device/presentation.hpp"
#include "sim/process.hpp"

namespace springboard {

inline constexpr const char* kBundleIdentifier = "com.apple.springboard";

// Which classes and methods this SpringBoard lacks: (class, "") for a class.
using Lacks = std::function<bool(const std::string& cls, const std::string& sel)>;

// The classes SpringBoard defines (what a build may lack).
const std::vector<std::string>& classNames();

// Starts SpringBoard in `process` (a new process of kind SpringBoard): its
// classes, the methods in `raising` made to raise, then `libraryEntry` when
// the library is loaded into it.
void boot(sim::Process& process, const Lacks& lacks, const std::function<void()>& libraryEntry,
          const std::vector<std::pair<std::string, std::string>>& raising = {});

// Whether SpringBoard defines `sel` on `cls` itself (known once one has booted).
bool defines(const std::string& cls, const std::string& sel);
// Makes SpringBoard's own implementation of that method raise from now on.
void makeRaising(sim::Process& process, const std::string& cls, const std::string& sel);

// Hands `n` to SpringBoard's dispatcher in `process`, as the system does.
void present(sim::Process& process, const sim::SystemNotification& n);

}  // namespace springboard
