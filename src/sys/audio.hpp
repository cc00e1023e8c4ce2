// System sounds. On iOS: AudioToolbox's AudioServicesPlaySystemSound; the
// sound 4095 (kSystemSoundID_Vibrate) vibrates the device instead of playing.
#pragma once

namespace sys {

inline constexpr unsigned kSystemSoundVibrate = 4095;

// AudioServicesPlaySystemSound(soundID). Returns at once; any thread.
void playSystemSound(unsigned soundID);

}  // namespace sys
