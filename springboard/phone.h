// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "platform/standin/device/device_facts.h"
#include "platform/standin/device/new_phone.h"
#include "platform/standin/device/root.h"
#include "springboard/options.h"
#include "springboard/turn.h"

namespace quillet {

/// What a phone that this program makes holds beside what every phone has.
std::vector<standin::NewFile> newFiles();

/// What the options say that the phone is; the rest as by default.
standin::DeviceFacts factsOf(const Options& options);

/// The device that is meant, made if nothing is there, which is said on standard error. Throws
/// std::runtime_error when it cannot be used.
standin::DeviceRoot phoneOf(const Options& options);

/// Says on standard error that a phone was made.
void tellNewPhone(const Options& options, const std::filesystem::path& path);

/// This process's turn with the device, of which it says on standard error if it has to wait.
/// Throws std::system_error when there is none to be had.
Turn takeTurn(const Options& options, const std::filesystem::path& root);

/// Whether somebody has the turn now.
bool isTurnTaken(const std::filesystem::path& root);

/// Adds to the journal of the device at `root` what happened to it, as this command's work.
void tellJournal(const Options& options, const std::filesystem::path& root, const char* event);

}  // namespace quillet
