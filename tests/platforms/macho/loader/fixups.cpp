// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/fixups.h"

#include <cstring>

#include "platform/standin/runtime/module.h"

namespace quillet::macho {

namespace {

// A table of addresses is a program: each byte is an operation in its high half and a small
// argument, the immediate, in its low half; some operations take further arguments.

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
        std::uint64_t value = 0;
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

/// Of addresses in the module, which the linker wrote as if it were loaded at 0.
class Rebases {
public:
    explicit Rebases(const Image& image) : image_{image}, cursor_{image} {}

    void run(Bytes program) {
        Reader reader{program};
        while (!reader.atEnd()) {
            const auto byte = reader.take<std::uint8_t>();
            const std::uint8_t immediate = byte & 0xF;
            if (byte >> 4 == 0) return;
            step(byte >> 4, immediate, reader);
        }
    }

private:
    void step(int operation, std::uint8_t immediate, Reader& reader) {
        switch (operation) {
            case 1:
                return checkType(immediate);
            case 2:
                return cursor_.moveTo(immediate, reader.takeUnsigned());
            case 3:
                return cursor_.advance(reader.takeUnsigned());
            case 4:
                return cursor_.advance(immediate * sizeof(void*));
            case 5:
                return rebase(immediate, 0);
            case 6:
                return rebase(reader.takeUnsigned(), 0);
            case 7:
                return rebase(1, reader.takeUnsigned());
            case 8: {
                const std::uint64_t times = reader.takeUnsigned();
                return rebase(times, reader.takeUnsigned());
            }
            default:
                malformed("a rebase operation " + std::to_string(operation));
        }
    }

    static void checkType(std::uint8_t type) {
        if (type != pointerType) malformed("a rebase of type " + std::to_string(type));
    }

    void rebase(std::uint64_t times, std::uint64_t skip) {
        cursor_.repeat(times, [&] {
            cursor_.update([&](std::uint64_t address) {
                return reinterpret_cast<std::uint64_t>(image_.place(address));
            });
            cursor_.advance(skip);
        });
    }

    const Image& image_;
    Cursor cursor_;
};

/// Of imports. A lazy table is one of short programs, one behind the other, which all end.
class Binds {
public:
    Binds(const Image& image, Resolve resolve) : cursor_{image}, resolve_{resolve} {}

    void run(Bytes program, bool isLazy) {
        Reader reader{program};
        while (!reader.atEnd()) {
            const auto byte = reader.take<std::uint8_t>();
            if (byte >> 4 != 0) {
                step(byte >> 4, byte & 0xF, reader);
            } else if (!isLazy) {
                return;
            }
        }
    }

private:
    void step(int operation, std::uint8_t immediate, Reader& reader) {
        switch (operation) {
            case 1:
                return;  // the library, in the immediate
            case 2:
                reader.takeUnsigned();
                return;  // the library
            case 3:
                return;  // the library, a special one
            case 4:
                return setSymbol(reader.takeText(), (immediate & 1) != 0);
            case 5:
                return checkType(immediate);
            case 6:
                addend_ = reader.takeSigned();
                return;
            case 7:
                return cursor_.moveTo(immediate, reader.takeUnsigned());
            case 8:
                return cursor_.advance(reader.takeUnsigned());
            case 9:
                return bind(1, 0);
            case 10:
                return bind(1, reader.takeUnsigned());
            case 11:
                return bind(1, immediate * sizeof(void*));
            case 12: {
                const std::uint64_t times = reader.takeUnsigned();
                return bind(times, reader.takeUnsigned());
            }
            default:
                malformed("a bind operation " + std::to_string(operation));
        }
    }

    static void checkType(std::uint8_t type) {
        if (type != pointerType) malformed("a bind of type " + std::to_string(type));
    }

    void setSymbol(std::string_view symbol, bool isWeak) {
        const void* const found = resolve_(std::string{symbol});
        if (found == nullptr && !isWeak) {
            throw standin::BundleError("unknown import: " + std::string{symbol});
        }
        address_ = reinterpret_cast<std::uint64_t>(found);
    }

    void bind(std::uint64_t times, std::uint64_t skip) {
        cursor_.repeat(times, [&] {
            cursor_.update([&](std::uint64_t) {
                return address_ == 0 ? 0 : address_ + static_cast<std::uint64_t>(addend_);
            });
            cursor_.advance(skip);
        });
    }

    Cursor cursor_;
    Resolve resolve_;
    std::uint64_t address_ = 0;
    std::int64_t addend_ = 0;
};

}  // namespace

void setAddresses(const Image& image, const Layout& layout, Resolve resolve) {
    Rebases{image}.run(layout.rebases);
    Binds{image, resolve}.run(layout.binds, false);
    Binds{image, resolve}.run(layout.lazyBinds, true);
}

}  // namespace quillet::macho
