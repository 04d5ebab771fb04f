// SPDX-License-Identifier: MIT
#include "platform/standin/device/device.h"

#include "platform/standin/device/process_birth.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace quillet::standin {

Device* Device::current_ = nullptr;

Device::Device(const DeviceOptions& options)
    : Device{options, makeNewPhone(options.root, options.newFiles,
                                   {options.machine.value_or(DeviceFacts{}.machine),
                                    options.host.value_or(HostVariant{})})} {}

Device::Device(const DeviceOptions& options, const FoundPhone& phone)
    : clock{options.clock},
      root{phone.path},
      isNew{phone.isNew},
      complaints{options.complain},
      journal{options.author, below(DeviceRoot::journalPath), complaints},
      trace{clock},
      hardware{below(DeviceRoot::hardwarePath), &complaints},
      notifications{below(DeviceRoot::notificationsPath)},
      tokens{notifications},
      observers{notifications},
      eventLoop{clock, notifications, observers},
      framework{options.openModule, observers} {
    beLike(options);
    mend();
    if (journal.isKept()) tellStart();
    current_ = this;
}

Device::~Device() {
    journal.add("ended");
    current_ = nullptr;
}

void Device::beLike(const DeviceOptions& options) {
    const DeviceFacts facts = readFacts(below(DeviceRoot::factsPath));
    machine = options.machine.value_or(facts.machine);
    host = options.host.value_or(facts.host);
}

void Device::tellStart() {
    const std::string hostText = textOf(host);
    const std::string birth = birthOf(getpid());
    if (isNew) journal.add("made");
    journal.add("started", Told{"command", journal.author().command}, Told{"model", machine},
                Told{"host", hostText}, Told{"birth", birth});
}

/// Makes again what the device has lost, when what it was can be told from the rest.
void Device::mend() {
    const NotificationTable::Entry* const word = notifications.find(DeviceRoot::ringerStateName);
    hardware.makeAgain(word != nullptr && word->state.load() != 1);
}

void Device::endWithoutOne() {
    std::fputs("the platform was called without a device\n", stderr);
    std::abort();
}

}  // namespace quillet::standin
