// System sounds on the simulated device: the vibrate sound makes the phone
// vibrate, any other is heard; both go to the record of what the person
// holding the device noticed.
#include "sys/audio.hpp"

#include "sim/device/notices.hpp"
#include "sim/process.hpp"

namespace sys {

void playSystemSound(unsigned soundID) {
  sim::Notices& n = sim::currentProcess().device().notices();
  if (soundID == kSystemSoundVibrate)
    n.vibrate();
  else
    n.sound();
}

}  // namespace sys
