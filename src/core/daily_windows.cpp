// The daily-window rules: minute arithmetic with midnight crossing, the
// validation messages in their fixed order, and the editing operations that
// keep the stored list valid, sorted and saved.
#include <algorithm>

#include "base/format.hpp"
#include "core/config.hpp"

namespace core {
namespace {

// "start" / "end" / "mode" of a window dictionary as integerValue reads them:
// a missing key, or a value that does not answer, reads as 0.
long field(const base::Value& window, const char* key) {
  const base::Value* v = window.find(key);
  return v ? v->integerValue().value_or(0) : 0;
}

bool isValidMode(long mode) { return static_cast<unsigned long>(mode) <= 1; }

void fail(std::string* errorMessage, std::string message) {
  if (errorMessage) *errorMessage = std::move(message);
}

}  // namespace

base::Value DailyWindow::toValue() const {
  return base::Value(base::Dictionary{
      {"start", base::Value(start)}, {"end", base::Value(end)}, {"mode", base::Value(mode)}});
}

base::Value windowsValue(const DailyWindows& windows) {
  base::Array a;
  for (const DailyWindow& w : windows) a.push_back(w.toValue());
  return base::Value(std::move(a));
}

DailyWindow QBConfig::QBWindow(long start, long end, long mode) {
  return DailyWindow{clampMinute(start), clampMinute(end), isValidMode(mode) ? mode : 0};
}

long QBConfig::clampMinute(long minute) { return std::clamp(minute, 0L, 1439L); }

long QBConfig::modeFromWindow(const base::Value& window) {
  return window.isDictionary() && field(window, "mode") == 1 ? 1 : 0;
}

std::string QBConfig::stringFromWindowMode(long mode) { return mode == 1 ? "隐藏" : "显示"; }

bool QBConfig::isMinuteInWindow(long minute, long start, long end) {
  minute = clampMinute(minute), start = clampMinute(start), end = clampMinute(end);
  if (start == end) return false;
  if (start < end) return start <= minute && minute < end;
  return minute >= start || minute < end;
}

bool QBConfig::windowsOverlap(long start1, long end1, long start2, long end2) {
  // The membership rule as at most two half-open spans of the day each (a
  // window across midnight is two): overlapping windows share a minute of
  // some pair of spans. Loading runs this for every pair of stored windows.
  struct Span {
    long from, to;
  };
  auto spans = [](long start, long end, Span out[2]) {
    start = clampMinute(start), end = clampMinute(end);
    if (start == end) return 0;
    if (start < end) return out[0] = {start, end}, 1;
    out[0] = {start, 1440};
    out[1] = {0, end};
    return 2;
  };
  Span a[2], b[2];
  int na = spans(start1, end1, a), nb = spans(start2, end2, b);
  for (int i = 0; i < na; ++i)
    for (int j = 0; j < nb; ++j)
      if (a[i].from < b[j].to && b[j].from < a[i].to) return true;
  return false;
}

std::string QBConfig::stringFromMinute(long m) {
  m = clampMinute(m);
  return base::format("%02ld:%02ld", m / 60, m % 60);
}

std::string QBConfig::stringFromWindow(const base::Value& window) {
  if (!window.isDictionary()) return "--:-- – --:-- · 显示";
  long start = field(window, "start"), end = field(window, "end");
  return base::format("%@ – %@%@ · %@", stringFromMinute(start), stringFromMinute(end),
                      std::string(start > end ? "（跨午夜）" : ""),
                      stringFromWindowMode(modeFromWindow(window)));
}

DailyWindows QBConfig::defaultDailyWindows() { return {QBWindow(480, 1320, 0)}; }

std::optional<DailyWindows> QBConfig::sanitizeWindowsArray(const base::Value& value) {
  const base::Array* a = value.asArray();
  if (!a) return std::nullopt;
  DailyWindows out;
  for (const base::Value& e : *a) {
    if (!e.isDictionary()) continue;
    const base::Value* s = e.find("start");
    const base::Value* n = e.find("end");
    if (!s || !n || !s->integerValue() || !n->integerValue()) continue;
    const base::Value* m = e.find("mode");
    long mode = m && m->integerValue().value_or(0) == 1 ? 1 : 0;
    out.push_back(QBWindow(*s->integerValue(), *n->integerValue(), mode));
    if (long(out.size()) == kMaxDailyWindows) break;
  }
  if (out.empty()) return std::nullopt;
  return out;
}

bool QBConfig::validateDailyWindows(const base::Value& value, std::string* errorMessage) {
  const base::Array* a = value.asArray();
  if (!a || a->empty()) return fail(errorMessage, kMsgKeepOne), false;
  if (long(a->size()) > kMaxDailyWindows)
    return fail(errorMessage, base::format(kMsgAtMost, kMaxDailyWindows)), false;
  DailyWindows accepted;
  for (const base::Value& e : *a) {
    if (!e.isDictionary()) return fail(errorMessage, kMsgBadFormat), false;
    long start = clampMinute(field(e, "start")), end = clampMinute(field(e, "end"));
    if (start == end) return fail(errorMessage, kMsgSameEnds), false;
    long mode = field(e, "mode");
    if (!isValidMode(mode)) return fail(errorMessage, kMsgPickMode), false;
    for (const DailyWindow& w : accepted)
      if (windowsOverlap(start, end, w.start, w.end)) return fail(errorMessage, kMsgOverlap), false;
    accepted.push_back(QBWindow(start, end, mode));
  }
  return true;
}

DailyWindows QBConfig::normalizedDailyWindows() const {
  DailyWindows stored = dailyWindows();
  if (!validateDailyWindows(windowsValue(stored), nullptr)) return defaultDailyWindows();
  std::stable_sort(stored.begin(), stored.end(),
                   [](const DailyWindow& a, const DailyWindow& b) { return a.start < b.start; });
  return stored;
}

bool windowsShowAt(const DailyWindows& windows, long minute) {
  for (const DailyWindow& w : windows)
    if (QBConfig::isMinuteInWindow(minute, w.start, w.end)) return w.mode == 0;
  return false;  // outside every window the secrets stay hidden
}

bool QBConfig::scheduleShowsAt(long minute) const {
  return windowsShowAt(normalizedDailyWindows(), minute);
}

bool QBConfig::setDailyWindows(const base::Value& windows, std::string* errorMessage) {
  if (!validateDailyWindows(windows, errorMessage)) return false;
  DailyWindows rebuilt;
  for (const base::Value& e : *windows.asArray())
    rebuilt.push_back(QBWindow(field(e, "start"), field(e, "end"), modeFromWindow(e)));
  std::stable_sort(rebuilt.begin(), rebuilt.end(),
                   [](const DailyWindow& a, const DailyWindow& b) { return a.start < b.start; });
  setDailyWindowsField(std::move(rebuilt));
  save();
  return true;
}

bool QBConfig::updateDailyWindowAtIndex(long index, long start, long end, long mode,
                                        std::string* errorMessage) {
  DailyWindows list = normalizedDailyWindows();
  if (index < 0 || index >= long(list.size())) return fail(errorMessage, kMsgNoSuchWindow), false;
  list[std::size_t(index)] = QBWindow(start, end, mode);
  return setDailyWindows(windowsValue(list), errorMessage);
}

bool QBConfig::addDailyWindowWithStart(long start, long end, long mode, std::string* errorMessage) {
  DailyWindows list = normalizedDailyWindows();
  if (long(list.size()) >= kMaxDailyWindows)
    return fail(errorMessage, base::format(kMsgAtMost, kMaxDailyWindows)), false;
  list.push_back(QBWindow(start, end, mode));
  return setDailyWindows(windowsValue(list), errorMessage);
}

bool QBConfig::removeDailyWindowAtIndex(long index, std::string* errorMessage) {
  DailyWindows list = normalizedDailyWindows();
  if (index < 0 || index >= long(list.size())) return fail(errorMessage, kMsgNoSuchWindow), false;
  if (list.size() == 1) return fail(errorMessage, kMsgKeepOne), false;
  list.erase(list.begin() + index);
  return setDailyWindows(windowsValue(list), errorMessage);
}

}  // namespace core
