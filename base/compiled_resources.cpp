#include "base/compiled_resources.h"

#include <optional>

#include "base/text.h"

namespace base {
namespace {

// Reads numbers one after the other; behind the end everything is zero and `failed` is set.
class Reader {
  public:
    explicit Reader(ResourceBytes bytes) : bytes_(bytes) {}

    std::size_t position() const { return position_; }
    bool failed() const { return failed_; }

    std::uint16_t takeU16() {
        if (bytes_.size() - position_ < 2) {
            failed_ = true;
            return 0;
        }
        const unsigned value =
            std::to_integer<unsigned>(bytes_[position_]) | std::to_integer<unsigned>(bytes_[position_ + 1]) << 8;
        position_ += 2;
        return static_cast<std::uint16_t>(value);
    }

    std::uint32_t takeU32() {
        const std::uint32_t low = takeU16();
        return low | static_cast<std::uint32_t>(takeU16()) << 16;
    }

    // The bytes from the next multiple of four on.
    ResourceBytes takeAligned(std::size_t size) {
        const std::size_t start = (position_ + 3) / 4 * 4;
        if (start > bytes_.size() || bytes_.size() - start < size) {
            failed_ = true;
            return {};
        }
        position_ = start + size;
        return bytes_.subspan(start, size);
    }

  private:
    ResourceBytes bytes_;
    std::size_t position_ = 0;
    bool failed_ = false;
};

ResourceName takeName(Reader& reader) {
    const std::uint16_t first = reader.takeU16();
    if (first == 0xFFFF) return ResourceName(reader.takeU16());
    std::wstring text;
    for (std::uint16_t unit = first; unit != 0 && !reader.failed(); unit = reader.takeU16())
        text += static_cast<wchar_t>(unit);
    return ResourceName(std::wstring_view(text));
}

}  // namespace

bool operator==(const ResourceName& a, const ResourceName& b) {
    return a.isNumber_ == b.isNumber_ && (a.isNumber_ ? a.number_ == b.number_ : equalsNoCase(a.text_, b.text_));
}

ResourceBytes findCompiledResource(ResourceBytes file, const ResourceName& type, const ResourceName& name) {
    while (file.size() >= 8) {
        Reader reader(file);
        const std::uint32_t dataSize = reader.takeU32();
        const std::uint32_t headerSize = reader.takeU32();
        const bool matches = takeName(reader) == type && takeName(reader) == name;
        if (reader.failed() || headerSize < 16 || headerSize > file.size()) break;
        Reader data(file.subspan(headerSize));
        const ResourceBytes found = data.takeAligned(dataSize);
        if (data.failed()) break;
        if (matches) return found;
        const std::size_t next = (headerSize + std::size_t{dataSize} + 3) / 4 * 4;
        if (next >= file.size()) break;
        file = file.subspan(next);
    }
    return {};
}

std::wstring stringInTable(ResourceBytes table, unsigned place) {
    Reader reader(table);
    for (unsigned i = 0; !reader.failed(); ++i) {
        const std::size_t size = std::size_t{reader.takeU16()} * 2;
        const std::size_t start = reader.position();
        if (reader.failed() || table.size() - start < size) break;
        if (i == place) return fromUtf16Bytes(table.subspan(start, size));
        for (std::size_t skipped = 0; skipped < size; skipped += 2) reader.takeU16();
    }
    return {};
}

std::wstring fromUtf16Bytes(ResourceBytes bytes) {
    Reader reader(bytes);
    std::wstring units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) units += static_cast<wchar_t>(reader.takeU16());
    // Walking the characters joins surrogate pairs where wchar_t holds whole characters.
    std::wstring text;
    for (std::size_t i = 0; i < units.size();) appendCharacter(text, nextCharacter(units, i));
    return text;
}

}  // namespace base
