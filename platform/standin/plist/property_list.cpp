// SPDX-License-Identifier: MIT
#include "platform/standin/plist/property_list.h"

namespace quillet::standin {

std::optional<Value> readPropertyList(std::string_view bytes) {
    return bytes.starts_with("bplist00") ? readBinaryPropertyList(bytes)
                                         : readXMLPropertyList(bytes);
}

}  // namespace quillet::standin
