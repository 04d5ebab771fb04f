// SPDX-License-Identifier: MIT
#include "platform/audio_toolbox.h"

#include "platform/standin/device/device.h"

namespace quillet {

void AudioServicesPlaySystemSound(SystemSoundID sound) {
    standin::Device& device = standin::Device::current();
    device.trace.function("AudioServicesPlaySystemSound", sound);
    device.journal.add("buzz", standin::Told{"sound", sound});
}

}  // namespace quillet
