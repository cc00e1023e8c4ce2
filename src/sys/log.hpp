// The system log. Lines keep their Objective-C format strings and are filled
// in by the base formatter; the platform's sink receives each finished line.
// A username is written `privately`: on a phone the persistent log keeps it
// redacted (readable only with a debugging profile installed), while the
// simulated device's log, which no one else reads, keeps the whole line.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "base/format.hpp"

namespace sys {

// On iOS: os_log_with_type(OS_LOG_DEFAULT, OS_LOG_TYPE_DEFAULT, "%{public}s", line).
void logLine(std::string_view line);
// One line in segments, public and private in turn (the first public): the
// line is their concatenation. On iOS: os_log_with_type with "%{public}s" for
// the public and "%{private}s" for the private segments.
void logSegments(const std::vector<std::string>& segments);

// An argument the system log must not keep in the clear: a contact's username.
struct Private {
  std::string text;
};
inline Private privately(std::string_view text) { return Private{std::string(text)}; }

namespace detail {
// Marks a private argument's place in the formatted line; the text itself
// cannot hold the mark.
inline constexpr char kPrivateMark = '\x1f';
template <typename T>
const T& marked(const T& arg) {
  return arg;
}
inline std::string marked(const Private& arg) {
  std::string text;
  for (char c : arg.text)
    if (c != kPrivateMark) text += c;
  return kPrivateMark + text + kPrivateMark;
}
inline std::vector<std::string> segmentsOf(const std::string& markedLine) {
  std::vector<std::string> segments(1);
  for (char c : markedLine) {
    if (c == kPrivateMark)
      segments.emplace_back();
    else
      segments.back() += c;
  }
  return segments;
}
}  // namespace detail

template <typename... Args>
void log(std::string_view fmt, const Args&... args) {
  if constexpr ((std::is_same_v<Args, Private> || ...))
    logSegments(detail::segmentsOf(base::format(fmt, detail::marked(args)...)));
  else
    logLine(base::format(fmt, args...));
}

}  // namespace sys
