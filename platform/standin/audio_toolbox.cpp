// SPDX-License-Identifier: MIT
#include "platform/audio_toolbox.h"

#include "platform/standin/device/device.h"

namespace quillet {

void AudioServicesPlaySystemSound(SystemSoundID sound) {
    standin::Device::current().trace.function("AudioServicesPlaySystemSound", sound);
}

}  // namespace quillet
