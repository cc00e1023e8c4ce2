// System sounds on iOS: AudioToolbox plays (or, for the vibrate sound,
// vibrates) without blocking the caller.
#include "sys/audio.hpp"

#include <AudioToolbox/AudioToolbox.h>

namespace sys {

void playSystemSound(unsigned soundID) { AudioServicesPlaySystemSound(SystemSoundID(soundID)); }

}  // namespace sys
