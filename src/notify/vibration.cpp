// One vibration for a "vibrate only" announcement: the host's own vibration
// helper when this build has it, otherwise the system's vibration sound.
#include "notify/predicates.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/audio.hpp"

namespace notify {

void vibrate() {
  rt::Class helper = rt::getClass("AudioHelper");
  if (helper && rt::respondsTo(rt::toId(helper), rt::sel("playVibration"))) {
    rt::send<void>(helper, "playVibration");
    return;
  }
  sys::playSystemSound(sys::kSystemSoundVibrate);
}

}  // namespace notify
