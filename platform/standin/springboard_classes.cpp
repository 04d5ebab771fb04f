// SPDX-License-Identifier: MIT
#include "platform/springboard_classes.h"

#include <string>
#include <utility>
#include <vector>

#include "platform/standin/device/device.h"

namespace quillet {

using standin::Answer;
using standin::Device;
using standin::Done;
using standin::HostInstance;
using standin::HostVariant;
using standin::Instance;
using standin::send;
using standin::Told;
using standin::unrecognizedSelector;

namespace {

constexpr char indicatorName[] = "SBRingerHUDController";
constexpr char mediaName[] = "SBMediaController";
constexpr char activateSelector[] = "activate:";
constexpr char muteSelector[] = "setRingerMuted:";
constexpr char sharedInstanceSelector[] = "sharedInstance";

/// A class of the host, nil when it has none by that name.
template <class Reference>
Reference lookUp(const char* name, bool isPresent, std::vector<std::string> selectors) {
    const auto cls = standin::adopt<Reference>(
        isPresent ? new HostInstance{name, HostInstance::Kind::cls, std::move(selectors)}
                  : nullptr);
    Device::current().trace.function("NSClassFromString", name, Answer{cls});
    return cls;
}

/// The one instance of a class, nil when it has none.
template <class Reference>
Reference instanceOf(const Instance& cls, bool isPresent, std::vector<std::string> selectors) {
    const auto instance = standin::adopt<Reference>(
        isPresent
            ? new HostInstance{cls.className(), HostInstance::Kind::instance, std::move(selectors)}
            : nullptr);
    Device::current().trace.message(cls, sharedInstanceSelector, Answer{instance});
    return instance;
}

}  // namespace

SBRingerHUDController SBRingerHUDController::classInHost() {
    const HostVariant::Indicator indicator = Device::current().host.indicator;
    std::vector<std::string> selectors = {sharedInstanceSelector};
    if (indicator == HostVariant::Indicator::class_) selectors.emplace_back(activateSelector);
    return lookUp<SBRingerHUDController>(indicatorName, indicator != HostVariant::Indicator::absent,
                                         std::move(selectors));
}

SBRingerHUDController SBRingerHUDController::sharedInstance() const {
    return send(*this, [](const Instance& cls) {
        const HostVariant::Indicator indicator = Device::current().host.indicator;
        std::vector<std::string> selectors;
        if (indicator == HostVariant::Indicator::instance) selectors.emplace_back(activateSelector);
        return instanceOf<SBRingerHUDController>(
            cls, indicator != HostVariant::Indicator::noInstance, std::move(selectors));
    });
}

void SBRingerHUDController::activate(int state) const {
    send(*this, [&](const Instance& receiver) {
        if (!receiver.respondsToSelector(activateSelector)) {
            if (!receiver.isClass()) return;
            unrecognizedSelector(receiver, activateSelector);
        }
        Device& device = Device::current();
        device.trace.message(receiver, activateSelector, state);
        device.journal.add("indicator", Told{"state", state});
    });
}

SBMediaController SBMediaController::classInHost() {
    const bool isPresent = Device::current().host.media != HostVariant::Media::absent;
    return lookUp<SBMediaController>(mediaName, isPresent, {sharedInstanceSelector});
}

SBMediaController SBMediaController::sharedInstance() const {
    return send(*this, [](const Instance& cls) {
        const HostVariant::Media media = Device::current().host.media;
        std::vector<std::string> selectors;
        if (media == HostVariant::Media::instance) selectors.emplace_back(muteSelector);
        return instanceOf<SBMediaController>(cls, media != HostVariant::Media::noInstance,
                                             std::move(selectors));
    });
}

void SBMediaController::setRingerMuted(BOOL muted) const {
    send(*this, [&](const Instance& receiver) {
        if (!receiver.respondsToSelector(muteSelector)) {
            unrecognizedSelector(receiver, muteSelector);
        }
        Device& device = Device::current();
        const bool isMuted = muted != NO;
        const bool isDone = device.hardware.setRingerMuted(isMuted);
        device.trace.message(receiver, muteSelector, isMuted, Done{isDone});
        if (isDone) device.journal.add("muted", Told{"muted", isMuted});
    });
}

}  // namespace quillet
