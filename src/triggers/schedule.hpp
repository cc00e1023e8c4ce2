// QBSchedule: in schedule mode, the daily windows decide visibility. Inside
// a show window the secrets are revealed (no authentication), otherwise they
// are hidden; re-evaluated every 30 s, when the app becomes active or returns
// to the foreground, and once shortly after start-up.
#pragma once

namespace triggers {

struct QBSchedule {
  static bool shouldBeVisibleNow();
  // Brings the visibility in line with the schedule.
  static void applyNow();
  // The timer and the observers, once per process.
  static void install();
  static void onTick();
};

inline constexpr double kScheduleInterval_s = 30.0;
inline constexpr double kScheduleFirstApply_s = 1.2;

}  // namespace triggers
