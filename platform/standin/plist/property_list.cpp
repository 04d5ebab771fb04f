// SPDX-License-Identifier: MIT
#include "platform/standin/plist/property_list.h"

#include <utility>

namespace quillet::standin {

std::optional<Value> readPropertyList(std::string bytes, Fault* fault) {
    return bytes.starts_with("bplist0") ? readBinaryPropertyList(std::move(bytes), fault)
                                        : readXMLPropertyList(std::move(bytes), fault);
}

}  // namespace quillet::standin
