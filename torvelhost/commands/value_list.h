// A list of attribute values: the table that VALUESOUT writes and VALUESIN takes.
//
//     #HANDLE,#BLOCK,#DRAWING,NO,SIZE,SIZE(2)
//     #1F,DOOR,plan.dxf,D1,90,210
//
// A line is a reference, a column behind the first three a tag, or the n-th attribute of one tag in a reference. Tags
// are told apart without case, as they are first met. A tag that could be taken for another column ("SIZE(2)",
// "#BLOCK") has its occurrence behind it at the first too: "SIZE(2)(1)". Texts are UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/text.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/readers.h"

namespace host::commands {

constexpr std::string_view kHandleHead = "#HANDLE";
constexpr std::string_view kBlockHead = "#BLOCK";
constexpr std::string_view kDrawingHead = "#DRAWING";

/// How far a command is in one piece of work.
class Steps {
  public:
    explicit Steps(std::uint64_t total) : total_(total) {}
    /// So many are done; may be called for every object of a drawing. Throws when the user wants to stop.
    void stepTo(std::uint64_t done);

  private:
    std::uint64_t total_;
    unsigned calls_ = 0;
};

/// "1 reference", "2 references".
std::wstring counted(std::size_t count, const wchar_t* what);

/// The columns of tags.
class TagColumns {
  public:
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    struct Head {
        std::string tag;
        std::size_t occurrence;  ///< from 1
    };
    static Head read(std::string_view head);
    static std::string write(const Head& head);

    /// The column with that head; kNone until it is set.
    std::size_t& at(const Head& head) {
        return entryOf(head.tag).columns.try_emplace(head.occurrence, kNone).first->second;
    }

    /// The attributes of another reference follow.
    void beginReference() { ++reference_; }
    struct Place {
        const std::string& tag;  ///< as it was first met
        std::size_t occurrence;
        std::size_t& column;  ///< kNone until it is set
    };
    /// Of the reference's next attribute with that tag.
    Place next(std::string_view tag);

  private:
    struct Entry {
        std::string tag;
        std::map<std::size_t, std::size_t> columns;  // by occurrence
        std::size_t met = 0;                         // in the reference that was met last
        std::size_t reference = 0;
    };
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };

    Entry& entryOf(std::string_view tag);

    std::map<std::wstring, Entry, base::LessNoCase> entries_;
    std::unordered_map<std::string, Entry*, Hash, std::equal_to<>> bySpelling_;
    std::size_t reference_ = 0;
};

/// What the list says of a reference; no object is opened for it where the record says enough.
class ListedReference {
  public:
    ListedReference();

    void read(OdDbObjectId reference);
    /// A form of a dynamic block goes by the name of that block.
    const std::string& blockName();

    /// Calls each(attribute, tag, value) for every attribute that is not constant. The value is what a reader sees: of
    /// several lines without formatting codes, lines ending in line feeds.
    template <class Each>
    void eachAttribute(Each each) {
        for (const OdDbObjectId id : reference_.attributes())
            if (attribute_.read(id) && !attribute_.isConstant()) each(id, attribute_.narrowTag(), value());
    }
    /// Of the attribute that each() is called for.
    bool isMultiLine() const { return attribute_.isMultiLine(); }

  private:
    std::string_view value();

    OdDbBlockReferenceReader reference_;
    OdDbAttributeReader attribute_;
    std::unordered_map<OdDbObjectId, std::string> blockNames_;
    std::string missingBlockName_;
    std::string plain_;
};

}  // namespace host::commands
