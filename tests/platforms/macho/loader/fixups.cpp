// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/fixups.h"

#include <cstring>

#include "platform/standin/runtime/module.h"

namespace quillet::macho {

namespace {

// table     = step…
// step      = operation (the byte's high half) immediate (its low half) further arguments
// unsigned  = groups of seven bits, the lowest first; signed likewise
// text      = characters, zero byte
//
// A table is a program that moves from slot to slot; "slots" are as wide as an address.

/// The operation that a step's byte says.
template <class Operation>
Operation operationIn(std::uint8_t byte) {
    return static_cast<Operation>(byte >> 4);
}

std::uint8_t immediateIn(std::uint8_t byte) { return byte & 0xF; }

/// The slot that a program is at.
class Cursor {
public:
    explicit Cursor(const Image& image) : image_{image} {}

    void moveTo(std::size_t segment, std::uint64_t offset) {
        segment_ = segment;
        offset_ = offset;
    }
    /// A move back is one by a very large number.
    void advance(std::uint64_t bytes) { offset_ += bytes; }

    /// Has `change` make a new value from the slot's, and steps over it.
    template <class Change>
    void update(Change change) {
        std::byte* const slot = image_.slot(segment_, offset_);
        std::uintptr_t value = 0;
        std::memcpy(&value, slot, sizeof value);
        value = change(value);
        std::memcpy(slot, &value, sizeof value);
        advance(sizeof value);
    }

    /// Does `step` `times` times. No table does more than there are slots.
    template <class Step>
    void repeat(std::uint64_t times, Step step) {
        if (times > 0xFFFF) malformed("an address set too many times");
        for (std::uint64_t i = 0; i < times; ++i) step();
    }

private:
    const Image& image_;
    std::size_t segment_ = 0;
    std::uint64_t offset_ = 0;
};

constexpr std::uint8_t pointerType = 1;
/// A flag of setSymbol: the module can do without the symbol.
constexpr std::uint8_t weakSymbol = 1;

enum class RebaseOperation : std::uint8_t {
    end = 0,
    setType = 1,              // immediate: the type
    moveTo = 2,               // immediate: the segment; unsigned: the offset in it
    advance = 3,              // unsigned: bytes
    advanceSlots = 4,         // immediate: slots
    rebaseTimes = 5,          // immediate: how many slots
    rebaseManyTimes = 6,      // unsigned: how many slots
    rebaseAndAdvance = 7,     // unsigned: bytes to skip
    rebaseTimesSkipping = 8,  // unsigned: how many slots; unsigned: bytes to skip after each
};

/// Of addresses in the module, which the linker wrote as if it were loaded at 0.
class Rebases {
public:
    explicit Rebases(const Image& image) : image_{image}, cursor_{image} {}

    void run(Bytes program) {
        Reader reader{program};
        while (!reader.atEnd()) {
            const auto byte = reader.take<std::uint8_t>();
            const auto operation = operationIn<RebaseOperation>(byte);
            if (operation == RebaseOperation::end) return;
            step(operation, immediateIn(byte), reader);
        }
    }

private:
    void step(RebaseOperation operation, std::uint8_t immediate, Reader& reader) {
        switch (operation) {
            case RebaseOperation::setType:
                return checkType(immediate);
            case RebaseOperation::moveTo:
                return cursor_.moveTo(immediate, reader.takeUnsigned());
            case RebaseOperation::advance:
                return cursor_.advance(reader.takeUnsigned());
            case RebaseOperation::advanceSlots:
                return cursor_.advance(immediate * sizeof(void*));
            case RebaseOperation::rebaseTimes:
                return rebase(immediate, 0);
            case RebaseOperation::rebaseManyTimes:
                return rebase(reader.takeUnsigned(), 0);
            case RebaseOperation::rebaseAndAdvance:
                return rebase(1, reader.takeUnsigned());
            case RebaseOperation::rebaseTimesSkipping: {
                const std::uint64_t times = reader.takeUnsigned();
                return rebase(times, reader.takeUnsigned());
            }
            default:
                malformed("a rebase operation " + std::to_string(static_cast<int>(operation)));
        }
    }

    static void checkType(std::uint8_t type) {
        if (type != pointerType) malformed("a rebase of type " + std::to_string(type));
    }

    void rebase(std::uint64_t times, std::uint64_t skip) {
        cursor_.repeat(times, [&] {
            cursor_.update([&](std::uintptr_t address) {
                return reinterpret_cast<std::uintptr_t>(image_.place(address));
            });
            cursor_.advance(skip);
        });
    }

    const Image& image_;
    Cursor cursor_;
};

enum class BindOperation : std::uint8_t {
    end = 0,
    setLibrary = 1,         // immediate: the library's place among those that the module loads
    setLibraryFar = 2,      // unsigned: the same
    setLibrarySpecial = 3,  // immediate: a place that is none of these libraries
    setSymbol = 4,          // immediate: flags; text: the symbol
    setType = 5,            // immediate: the type
    setAddend = 6,          // signed: what is added to the symbol's address
    moveTo = 7,             // immediate: the segment; unsigned: the offset in it
    advance = 8,            // unsigned: bytes
    bind = 9,
    bindAndAdvance = 10,       // unsigned: bytes to skip
    bindAndAdvanceSlots = 11,  // immediate: slots to skip
    bindTimesSkipping = 12,    // unsigned: how many slots; unsigned: bytes to skip after each
};

/// Of imports. A lazy table is one of short programs, one behind the other, which all end.
class Binds {
public:
    Binds(const Image& image, const std::vector<Library>& libraries, Resolve resolve)
        : cursor_{image}, libraries_{libraries}, resolve_{resolve} {}

    void run(Bytes program, bool isLazy) {
        Reader reader{program};
        while (!reader.atEnd()) {
            const auto byte = reader.take<std::uint8_t>();
            const auto operation = operationIn<BindOperation>(byte);
            if (operation != BindOperation::end) {
                step(operation, immediateIn(byte), reader);
            } else if (!isLazy) {
                return;
            }
        }
    }

private:
    void step(BindOperation operation, std::uint8_t immediate, Reader& reader) {
        switch (operation) {
            case BindOperation::setLibrary:
                return setLibrary(immediate);
            case BindOperation::setLibraryFar:
                return setLibrary(reader.takeUnsigned());
            case BindOperation::setSymbol:
                return setSymbol(reader.takeText(), (immediate & weakSymbol) != 0);
            case BindOperation::setType:
                return checkType(immediate);
            case BindOperation::setAddend:
                addend_ = reader.takeSigned();
                return;
            case BindOperation::moveTo:
                return cursor_.moveTo(immediate, reader.takeUnsigned());
            case BindOperation::advance:
                return cursor_.advance(reader.takeUnsigned());
            case BindOperation::bind:
                return bind(1, 0);
            case BindOperation::bindAndAdvance:
                return bind(1, reader.takeUnsigned());
            case BindOperation::bindAndAdvanceSlots:
                return bind(1, immediate * sizeof(void*));
            case BindOperation::bindTimesSkipping: {
                const std::uint64_t times = reader.takeUnsigned();
                return bind(times, reader.takeUnsigned());
            }
            default:
                // Libraries in special places too: this project's modules name each one.
                malformed("a bind operation " + std::to_string(static_cast<int>(operation)));
        }
    }

    /// Libraries are counted from 1.
    void setLibrary(std::uint64_t place) {
        if (place == 0 || place > libraries_.size()) {
            malformed("an import from library " + std::to_string(place));
        }
        library_ = &libraries_[static_cast<std::size_t>(place - 1)];
    }

    static void checkType(std::uint8_t type) {
        if (type != pointerType) malformed("a bind of type " + std::to_string(type));
    }

    void setSymbol(std::string_view symbol, bool isWeak) {
        symbol_ = symbol;
        isWeak_ = isWeak;
    }

    /// The library may have been set before the symbol or after it.
    std::uintptr_t address() const {
        if (library_ == nullptr) malformed("an import from no library");
        const void* const found = resolve_(library_->path, symbol_);
        if (found == nullptr) {
            if (isWeak_) return 0;
            throw standin::BundleError("unknown import: " + symbol_ + " from " + library_->path);
        }
        return reinterpret_cast<std::uintptr_t>(found) + static_cast<std::uintptr_t>(addend_);
    }

    void bind(std::uint64_t times, std::uint64_t skip) {
        const std::uintptr_t value = address();
        cursor_.repeat(times, [&] {
            cursor_.update([&](std::uintptr_t) { return value; });
            cursor_.advance(skip);
        });
    }

    Cursor cursor_;
    const std::vector<Library>& libraries_;
    Resolve resolve_;
    const Library* library_ = nullptr;
    std::string symbol_;
    bool isWeak_ = false;
    std::int64_t addend_ = 0;
};

}  // namespace

void setAddresses(const Image& image, const Layout& layout, Resolve resolve) {
    Rebases{image}.run(layout.rebases);
    Binds{image, layout.libraries, resolve}.run(layout.binds, false);
    Binds{image, layout.libraries, resolve}.run(layout.lazyBinds, true);
}

}  // namespace quillet::macho
