// A daily window: the minutes [start, end) of every day during which the
// secrets are shown (mode 0) or hidden (mode 1). A start after the end
// crosses midnight. Stored typed; the file and the validation rules see the
// dictionary form {"start", "end", "mode"}.
#pragma once

#include <string>
#include <vector>

#include "base/value.hpp"

namespace core {

struct DailyWindow {
  long start = 0;
  long end = 0;
  long mode = 0;  // 0 show, 1 hide
  bool operator==(const DailyWindow&) const = default;
  base::Value toValue() const;
};

using DailyWindows = std::vector<DailyWindow>;

base::Value windowsValue(const DailyWindows& windows);

// Whether `windows` (a valid list) show the secrets at `minute` of the day:
// the first window holding the minute decides; outside every window they are
// hidden.
bool windowsShowAt(const DailyWindows& windows, long minute);

inline constexpr long kMaxDailyWindows = 3;

// The user-facing messages of the window rules.
inline constexpr const char* kMsgKeepOne = "至少保留一个时段";
inline constexpr const char* kMsgAtMost = "最多添加 %ld 个时段";
inline constexpr const char* kMsgBadFormat = "时段格式无效";
inline constexpr const char* kMsgSameEnds = "开始与结束不能相同";
inline constexpr const char* kMsgPickMode = "请选择显示或隐藏";
inline constexpr const char* kMsgOverlap =
    "时段不能重叠。若要午间隐藏，请拆成多段，例如：08:00–13:00 显示、13:00–15:00 隐藏、15:00–22:00 "
    "显示（相邻端点可以相同）。";
inline constexpr const char* kMsgNoSuchWindow = "时段不存在";

}  // namespace core
