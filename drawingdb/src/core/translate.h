// A record of one drawing as another drawing spells it: encoding, line ends or binary, and what the two versions differ
// in.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "drawingdb/src/file/groups.h"

namespace drawingdb {

/// The first version that holds such a record; `from` for a kind that is not known to be the same in all versions that
/// have it.
int heldSince(std::string_view kind, int from);

/// What a record is to name in its new drawing.
class RecordLinks {
  public:
    std::uint64_t handle = 0;  ///< of the record; 0: none
    std::uint64_t owner = 0;   ///< 0: none
    /// The new handle for one of the record; 0 when nothing stands for it.
    virtual std::uint64_t object(std::uint64_t handle) const = 0;
    /// What a name in the source's encoding becomes in the target's: null when it stays what it is, empty when it is
    /// left out.
    virtual const std::string* renamed(int code, std::string_view raw) const = 0;
    /// The new handle of a block that the source calls so; 0 when nothing stands for it.
    virtual std::uint64_t block(std::string_view raw) const = 0;
    /// What a block of the source is called in the target; empty when nothing stands for it.
    virtual std::string blockName(std::uint64_t old) const = 0;

  protected:
    ~RecordLinks() = default;
};

/// The blocks of arrowheads of a dimension style, three groups: before 2000 by their names, later by their handles.
constexpr int kArrowName = 5, kArrowPointer = 342;
constexpr bool isArrowName(int code) { return code >= kArrowName && code < kArrowName + 3; }
constexpr bool isArrowPointer(int code) { return code >= kArrowPointer && code < kArrowPointer + 3; }

/// What is peculiar in the records of a kind: asked for each group.
struct KindTraits {
    explicit KindTraits(std::string_view kind);
    bool attribute, dictionary, dimension, dimensionStyle, layer, linetype;
};

class RecordTranslator {
  public:
    RecordTranslator(const FileFormat& from, const FileFormat& to);
    ~RecordTranslator();

    /// The bytes last until the next call.
    std::string_view record(std::string_view bytes, const KindTraits& kind, bool isEntity, const RecordLinks& links);
    /// The extended data of a record alone.
    std::string extendedData(std::string_view bytes, const RecordLinks& links) const;
    std::string text(std::string_view raw) const;

  private:
    class Run;
    void value(GroupWriter& writer, const Group& group) const;
    void extended(GroupWriter& writer, const Group& group, const RecordLinks& links) const;
    bool isHeld(std::string_view kind, bool inEntityZone, const Group& group) const;

    const FileFormat& from_;
    const FileFormat& to_;
    bool sameText_;
    std::unique_ptr<Run> run_;  // with the memory of the records before
};

}  // namespace drawingdb
