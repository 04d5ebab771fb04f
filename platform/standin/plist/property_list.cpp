// SPDX-License-Identifier: MIT
#include "platform/standin/plist/property_list.h"

#include <limits>
#include <utility>

#include "platform/standin/plist/tape.h"
#include "platform/standin/plist/value_on_tape.h"
#include "platform/standin/plist/writer_binary.h"
#include "platform/standin/plist/writer_xml.h"

namespace quillet::standin {
namespace {

std::optional<std::string> written(const Node& root, Form form, std::size_t limit) {
    return form == Form::xml ? writeXML(root, limit) : writeBinary(root, limit);
}

}  // namespace

Form formOf(std::string_view bytes) {
    return bytes.starts_with("bplist0") ? Form::binary : Form::xml;
}

std::optional<Value> readPropertyList(std::string bytes, Fault* fault) {
    return formOf(bytes) == Form::binary ? readBinaryPropertyList(std::move(bytes), fault)
                                         : readXMLPropertyList(std::move(bytes), fault);
}

std::string writePropertyList(const Value& value, Form form) {
    constexpr std::size_t endless = std::numeric_limits<std::size_t>::max();
    if (const Container* const container = containerIn(value)) {
        return *written(container->head(), form, endless);
    }
    Tape tape;
    append(tape, tape.nodes, value);
    return *written(tape.nodes.front(), form, endless);
}

std::optional<std::string> rewritePropertyList(const Value& value, Form form) {
    const Container* const container = containerIn(value);
    if (container == nullptr) return writePropertyList(value, form);
    const Tape& tape = *container->tape();
    const std::size_t limit = memoryLimit(tape.size());
    const std::size_t taken = tape.memory();
    return taken < limit ? written(container->head(), form, limit - taken) : std::nullopt;
}

}  // namespace quillet::standin
