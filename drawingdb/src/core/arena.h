// Memory for the bytes of changed records: only grows, freed with the database. Bytes once written never change, so
// undo keeps pointers to them instead of copies.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "base/memory.h"
#include "drawingdb/src/core/stub.h"

namespace drawingdb {

/// The bytes of one record.
struct Body {
    std::uint32_t length;
    std::uint16_t type;
    std::uint16_t unused;

    const char* bytes() const { return reinterpret_cast<const char*>(this + 1); }
    std::string_view view() const { return {bytes(), length}; }
};

class Arena {
  public:
    /// A copy of the bytes, padded with eight zeros.
    const Body* add(std::string_view bytes, std::uint16_t type) {
        const std::size_t need = (sizeof(Body) + bytes.size() + 8 + 7) & ~std::size_t{7};
        if (need > left_) grow(need);
        // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): it lies in the arena, which owns its memory.
        auto* body = new (place_) Body{static_cast<std::uint32_t>(bytes.size()), type, 0};
        std::memcpy(place_ + sizeof(Body), bytes.data(), bytes.size());
        std::memset(place_ + sizeof(Body) + bytes.size(), 0, 8);
        place_ += need;
        left_ -= need;
        return body;
    }
    static Content contentOf(const Body* body) { return reinterpret_cast<Content>(body) | 1; }
    static const Body* bodyOf(Content content) { return reinterpret_cast<const Body*>(content & ~Content{1}); }

  private:
    void grow(std::size_t need) {
        // Each block is as large as all before it, so that a small change takes little.
        const std::size_t size = std::max(need, std::clamp(total_, kSmallest, kLargest));
        total_ += size;
        blocks_.push_back(base::allocateLarge(size));
        place_ = blocks_.back().get();
        left_ = size;
    }
    static constexpr std::size_t kSmallest = std::size_t{1} << 18, kLargest = std::size_t{1} << 25;
    std::vector<base::LargeMemory> blocks_;
    std::size_t total_ = 0;
    char* place_ = nullptr;
    std::size_t left_ = 0;
};

}  // namespace drawingdb
