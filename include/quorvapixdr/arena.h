// An arena: owns the texts, lists and optional values of an object that a program builds and encodes.
//
//     quorva::Arena arena;
//     NotifyBinding binding = {arena.text("fleet.example"), 0x20000321, 1, 7};
//     JobIdSeq jobs = arena.list<JobIdSeq>({{4, 1207}, {4, 1208}});
//
// 1. What an arena returns is valid until the arena is destroyed; a moved arena takes it along. Nothing else releases
//    it, so drop the object after its use: a release pass over it (`XdrDeallocate`) would release the memory again.
// 2. Do not decode into an object that holds memory of an arena: the decode mixes it with memory of its own.
// 3. An arena is not synchronised. Use one for each thread.
#pragma once

#include <quorvapixdr/primitives.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace quorva {

class Arena {
public:
    template <class Sequence>
    using Element = std::remove_pointer_t<decltype(Sequence::elements)>;

    // A zero-terminated copy of `text`. Throws std::invalid_argument for a text with a zero byte, which would end it.
    char* text(std::string_view text)
    {
        if (text.find('\0') != text.npos) throw std::invalid_argument("a zero byte would end the text");
        auto* const copied = static_cast<char*>(allocate(text.size() + 1));
        text.copy(copied, text.size());
        copied[text.size()] = '\0';
        return copied;
    }

    // A copy of the elements, as a `Sequence`: the type of a variable-length array, of the interface or a `Counted<T>`.
    // The elements keep their own pointers. Throws std::length_error for more elements than a count of 16 bits holds.
    template <class Sequence>
    Sequence list(std::span<const Element<Sequence>> elements)
    {
        static_assert(std::is_trivially_copyable_v<Element<Sequence>>);
        if (elements.size() > UINT16_MAX)
            throw std::length_error("a list has at most 65535 elements, not " + std::to_string(elements.size()));
        if (elements.empty()) return {0, nullptr};
        void* const copied = allocate(elements.size_bytes());
        std::memcpy(copied, elements.data(), elements.size_bytes());
        return {static_cast<std::uint16_t>(elements.size()), static_cast<Element<Sequence>*>(copied)};
    }
    template <class Sequence>
    Sequence list(std::initializer_list<Element<Sequence>> elements)
    {
        return list<Sequence>(std::span(elements.begin(), elements.size()));
    }

    // The same for a member that is declared as an array: counted<JobId>({..}) and bytes(..) are a `Counted`.
    template <class T>
    Counted<T> counted(std::span<const T> elements)
    {
        return list<Counted<T>>(elements);
    }
    template <class T>
    Counted<T> counted(std::initializer_list<T> elements)
    {
        return list<Counted<T>>(elements);
    }
    Counted<unsigned char> bytes(std::span<const unsigned char> bytes) { return list<Counted<unsigned char>>(bytes); }
    Counted<unsigned char> bytes(std::string_view text)
    {
        return bytes(std::span(reinterpret_cast<const unsigned char*>(text.data()), text.size()));
    }

    // An object for an optional member: zeroed, or a copy of `value`.
    template <class T>
    T* make()
    {
        static_assert(std::is_trivially_copyable_v<T>);
        return static_cast<T*>(std::memset(allocate(sizeof(T)), 0, sizeof(T)));
    }
    template <class T>
    T* make(const T& value)
    {
        static_assert(std::is_trivially_copyable_v<T>);
        return static_cast<T*>(std::memcpy(allocate(sizeof(T)), &value, sizeof(T)));
    }

private:
    // Uninitialised memory, aligned for any type of the interface.
    void* allocate(std::size_t size)
    {
        blocks.push_back(std::make_unique_for_overwrite<std::byte[]>(size));
        return blocks.back().get();
    }

    std::vector<std::unique_ptr<std::byte[]>> blocks;
};

}  // namespace quorva
