// What a line typed at a prompt can be. Nothing here asks a drawing or the user; it is all about the text.
//
//   Enter             an empty line
//   ^C                cancel
//   3,4  3,4,5        a point; @ in front makes it relative to the last one; 2<45 is polar, in degrees
//   #1F               an object by its handle; #1F/#2A an object inside it; #1F 3,4 picked at that point
//   #1F/.             that object itself, whatever lies inside it there
//   #?12              the twelfth object of its space, or of what it lies in: for one without a handle of its own
//   none              a pick that meets nothing
//   W 0,0 9,9         a window of a selection set; C a crossing one
//   block DOOR*       what fits a pattern: references of a block; layer, kind; tag NO=1? by an attribute's value
//   "text"            the text between the quotes, whatever it is
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/ge.h"
#include "drawingdb/object_id.h"

namespace host {

struct Reply {
    enum Kind { kEnter, kCancel, kText };
    Kind kind = kEnter;
    std::wstring text;    // without the quotes
    bool quoted = false;  // a quoted text is nothing but text: no keyword, no handle
};
/// Blanks around the line do not count; quotes keep them.
Reply parseReply(std::wstring_view line);
bool isComment(std::wstring_view line);

/// The keywords of a prompt: "Yes No", or "Ja Nein _ Yes No" with the names that hold in every language behind the "_".
class Keywords {
  public:
    Keywords() = default;
    explicit Keywords(const wchar_t* list);

    bool empty() const { return local_.empty(); }
    const std::vector<std::wstring>& words() const { return local_; }
    /// "Yes/No"
    std::wstring joined() const;
    struct Match {
        enum Kind { kNone, kAmbiguous, kAbbreviated, kExact };
        Kind kind = kNone;
        int index = 0;
    };
    /// By any unique abbreviation, in either language; an exact one wins. A "_" in front means the second names alone.
    Match find(std::wstring_view text) const;

  private:
    std::vector<std::wstring> local_;
    std::vector<std::wstring> global_;
};

/// The prompt as it is shown: its last "[%s]" filled with the keywords, a colon at the end.
std::wstring promptText(const wchar_t* prompt, const Keywords& keywords);

/// A point as typed, in the user coordinate system.
struct TypedPoint {
    bool relative = false;
    bool flat = false;  // no Z was given, and 0 stands there
    OdGeVector3d value;
};
std::optional<TypedPoint> parsePoint(std::wstring_view text);
/// The unit direction at an angle in degrees, exact at the multiples of 90.
OdGeVector3d directionAt(double degrees);

/// By its handle, or by its number among those that lie where it does, from 1 on.
struct TypedObject {
    OdDbHandle handle;
    std::uint64_t number = 0;  // 0: by its handle

    /// "#1F", "#?12"
    std::wstring text() const;
    bool operator==(const TypedObject&) const = default;
};

struct TypedPick {
    std::vector<TypedObject> path;  // outermost first; empty when only a point was given
    bool isItself = false;          // the path ends in "/.": nothing inside is meant
    std::optional<TypedPoint> point;
    bool isNone = false;
};
std::optional<TypedPick> parsePick(std::wstring_view text);
/// "#1F #20 #33"
std::optional<std::vector<TypedObject>> parseObjects(std::wstring_view text);

struct TypedWindow {
    bool crossing = false;
    std::optional<TypedPoint> corners[2];  // none when the letter stands alone
};
std::optional<TypedWindow> parseWindow(std::wstring_view text);

/// Entities by what they are. A pattern may have `*` and `?`.
struct TypedFilter {
    enum What { kBlock, kLayer, kKind, kTag };
    What what = kBlock;
    std::wstring pattern = {};
    std::wstring value = L"*";  // of the attribute with that tag
};
std::optional<TypedFilter> parseFilter(std::wstring_view text);

}  // namespace host
