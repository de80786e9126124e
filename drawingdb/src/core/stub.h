// Stubs: what the database keeps of every record of a file, in memory all the time.
//
// A file is a row of records, each beginning at a group 0. Stub i is the i-th record of the file, so the row never
// changes; its bytes run from its own offset to that of stub i + 1. What stands before the first record and after the
// end-of-file record are stubs too, so that all stubs together are the whole file. New objects get stubs behind those
// of the file.
//
//   file:      | head | SECTION | ... | BLOCK | LINE | INSERT | ATTRIB | SEQEND | ENDBLK | ... | EOF | tail |
//   container:                          [------ children ---------------------->close]
//                                                      [-children->close]
//
// Sections, tables, blocks, references and old polylines are containers: their children lie between them and their
// closer. Appended children hang on a chain that the closer anchors (`next` the first, `close` the last of it); a
// container without a closer of its own gets a new SEQEND stub as its anchor, which its own `next` names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "base/memory.h"

class OdDbObject;

namespace drawingdb {

class Core;

/// Content word of a stub: 0 the bytes of the file, odd a Body in the arena (pointer + 1), otherwise the open object.
using Content = std::uintptr_t;

struct Stub {
    enum Flag : std::uint32_t {
        erased = 1,
        unborn = 2,            // its creation was undone
        paperSpace = 4,        // group 67 is set
        appended = 8,          // not of the file
        childrenChanged = 16,  // a reference whose attributes were appended or erased
        ownCloser = 32,        // stub `close` closes this container and nothing else
        cutShort = 64,         // the file ends in this record
        entities = 128,        // a section ENTITIES; of several, each goes on with the one before
    };

    std::uint64_t offset : 48;  // of the record in the file
    std::uint64_t type : 16;    // record type, an index of TypeTable
    std::uint64_t handle;
    Content content;
    std::uint32_t owner;  // container; 0 none
    std::uint32_t
        close;  // container of the file: its closer, or the record after its last child; an anchor: last of the chain
    std::uint32_t
        next;  // appended: next of the chain; an anchor: first of the chain; a section ENTITIES: the one that goes on
    std::uint32_t flags;

    bool has(Flag flag) const { return (flags & flag) != 0; }
    bool gone() const { return (flags & (erased | unborn)) != 0; }
    bool live() const { return content != 0 && (content & 1) == 0; }
    OdDbObject* object() const { return live() ? reinterpret_cast<OdDbObject*>(content) : nullptr; }
};
static_assert(sizeof(Stub) == 40);

/// All stubs of a database, at addresses that never change. A stub finds its database and index through the chunk it
/// lies in.
class StubTable {
    static constexpr std::size_t kChunkBytes = 65536;
    struct Head {
        Core* core;
        std::uint32_t base;
    };
    static constexpr std::size_t kPerChunk = (kChunkBytes - 40) / sizeof(Stub);
    /// A small drawing has few chunks; a large one takes many at once, in large pages.
    static constexpr std::size_t kFewChunks = 32, kManyChunks = 128;
    struct Free {
        void operator()(char* p) const { ::operator delete(p, std::align_val_t(kChunkBytes)); }
    };

  public:
    explicit StubTable(Core* core) : core_(core) {}

    std::uint32_t size() const { return size_; }
    Stub& operator[](std::uint32_t index) {
        return reinterpret_cast<Stub*>(chunks_[index / kPerChunk] + 40)[index % kPerChunk];
    }
    const Stub& operator[](std::uint32_t index) const { return const_cast<StubTable&>(*this)[index]; }
    /// A new stub, all zero.
    Stub& add() {
        if (size_ % kPerChunk == 0) addChunk();
        return *new (&(*this)[size_++]) Stub{};
    }
    static Core& coreOf(const Stub* stub) { return *headOf(stub)->core; }
    static std::uint32_t indexOf(const Stub* stub) {
        const Head* head = headOf(stub);
        return head->base + static_cast<std::uint32_t>(
                                stub - reinterpret_cast<const Stub*>(reinterpret_cast<const char*>(head) + 40));
    }

  private:
    static const Head* headOf(const Stub* stub) {
        return reinterpret_cast<const Head*>(reinterpret_cast<std::uintptr_t>(stub) & ~(kChunkBytes - 1));
    }
    void addChunk() {
        static_assert(sizeof(Head) <= 40);
        char* const chunk = chunks_.size() < kFewChunks ? singleChunk() : nextOfMany();
        new (chunk) Head{core_, size_};
        chunks_.push_back(chunk);
    }
    char* singleChunk() {
        single_.emplace_back(static_cast<char*>(::operator new(kChunkBytes, std::align_val_t(kChunkBytes))));
        return single_.back().get();
    }
    char* nextOfMany() {
        if (left_ == 0) {
            many_.push_back(base::allocateLarge((kManyChunks + 1) * kChunkBytes));
            const auto address = reinterpret_cast<std::uintptr_t>(many_.back().get());
            place_ = many_.back().get() + (kChunkBytes - address % kChunkBytes) % kChunkBytes;
            left_ = kManyChunks;
        }
        --left_;
        return std::exchange(place_, place_ + kChunkBytes);
    }

    Core* core_;
    std::vector<char*> chunks_;
    std::vector<std::unique_ptr<char, Free>> single_;
    std::vector<base::LargeMemory> many_;
    char* place_ = nullptr;  // of the next chunk in the last of the many
    std::size_t left_ = 0;
    std::uint32_t size_ = 0;
};

}  // namespace drawingdb
