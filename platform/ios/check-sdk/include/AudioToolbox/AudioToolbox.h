// Check-build stand-in: AudioToolbox's system sounds.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef UInt32 SystemSoundID;

extern "C" void AudioServicesPlaySystemSound(SystemSoundID inSystemSoundID);
