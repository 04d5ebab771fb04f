// SPDX-License-Identifier: MIT
#include "platform/standin/device/complaints.h"

#include "platform/standin/files/file.h"
#include "platform/standin/runtime/dictionary_file.h"

namespace quillet::standin {

std::optional<Dictionary> readDictionary(const std::filesystem::path& path,
                                         Complaints& complaints) {
    auto dictionary = readDictionary(path);
    if (!dictionary && mayExist(path)) {
        complaints.mention(path, "counts as no file: " + whyNoDictionary(path));
    }
    return dictionary;
}

}  // namespace quillet::standin
