// The lock-screen guard: in SpringBoard, the only process that sees a
// notification while the host app is suspended or not running. It hooks the
// dispatcher SpringBoard hands every incoming notification request to and,
// for a request of a host's bundle that names a secret while the secrets are
// hidden (as the host's gate file says), drops it (notify mode 0) or presents
// it without its sound, with one vibration (mode 1). While the host is in
// the foreground everything passes: the app's own paths decide. Any failure
// lets the request through as it came.
#pragma once

namespace notify {

inline constexpr const char* kSpringBoardBundle = "com.apple.springboard";
inline constexpr const char* kDispatcherClass = "NCNotificationDispatcher";
inline constexpr const char* kPostRequestSelector = "postNotificationWithRequest:";

struct QBSpringBoardGuard {
  // Hooks the dispatcher, once per process; a SpringBoard without it is left
  // unchanged, with one log line.
  static void install();
};

}  // namespace notify
