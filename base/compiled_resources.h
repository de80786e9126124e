// A reader of compiled resources (.res files).
//
// A file is a sequence of entries, each beginning at a multiple of 4 bytes, all numbers little-endian:
//
//   u32 size of the data        u32 size of this header
//   type                        0xFFFF and a u16, or UTF-16 units up to a zero
//   name                        likewise
//   (to a multiple of 4)
//   u32 data version  u16 memory flags  u16 language  u32 version  u32 characteristics
//   the data                    (to a multiple of 4)
//
// The first entry is empty and only marks the format. A string table entry holds sixteen strings, each a u16 count of
// UTF-16 units and the units; the string `id` stands in the entry named id / 16 + 1, at the place id % 16.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace base {

/// The type or the name of a resource: a number, or a text whose case does not matter.
class ResourceName {
  public:
    ResourceName(std::uint16_t number) : number_(number) {}
    ResourceName(std::wstring_view text) : text_(text), isNumber_(false) {}
    ResourceName(const wchar_t* text) : text_(text), isNumber_(false) {}

    bool isNumber() const { return isNumber_; }
    std::uint16_t number() const { return number_; }
    const std::wstring& text() const { return text_; }

    friend bool operator==(const ResourceName& a, const ResourceName& b);

  private:
    std::uint16_t number_ = 0;
    std::wstring text_;
    bool isNumber_ = true;
};

constexpr std::uint16_t kIconResource = 3;
constexpr std::uint16_t kMenuResource = 4;
constexpr std::uint16_t kDialogResource = 5;
constexpr std::uint16_t kStringTableResource = 6;
constexpr std::uint16_t kRawDataResource = 10;
constexpr std::uint16_t kIconGroupResource = 14;

using ResourceBytes = std::span<const std::byte>;

/// The data of the first entry of that type and name; empty when there is none. Stops at an entry that does not fit
/// into the file.
ResourceBytes findCompiledResource(ResourceBytes file, const ResourceName& type, const ResourceName& name);

/// The string at a place (0 to 15) of a string table entry; empty when it is not there.
std::wstring stringInTable(ResourceBytes table, unsigned place);

/// UTF-16 units as wide text; reads no further than the bytes go.
std::wstring fromUtf16Bytes(ResourceBytes bytes);

}  // namespace base
