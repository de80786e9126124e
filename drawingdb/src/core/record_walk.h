// The grammar of a record, for whoever goes through its groups:
//
//   record         group 0 with the name; the head; zones; extended data
//   head           the handle (group 5; 105 of a DIMSTYLE), control strings, fields
//   zone           a marker (group 100; 101 of an embedded object), control strings, fields
//   control        group 102 "{NAME", groups that mean something to NAME only, the next group 102
//   extended data  all from the first code of 1000 or more on
//
// Files of old versions have no markers: there, everything is head.
#pragma once

#include <cstdint>

#include "drawingdb/src/file/groups.h"

namespace drawingdb {

enum class RecordPart : std::uint8_t {
    name,
    handle,
    marker,
    controlBegin,
    inControl,
    controlEnd,
    field,
    comment,
    extendedData,
};

enum class ControlString : std::uint8_t { none, reactors, dictionary, other };

template <class Cursor>
class RecordWalk {
  public:
    explicit RecordWalk(Cursor cursor) : cursor_(std::move(cursor)) {}

    [[gnu::always_inline]] bool next() {
        if (!cursor_.next(group_)) return false;
        // Nearly every group is one of these.
        part_ = isPlain_ && group_.code < 100 && group_.code != 5 ? RecordPart::field : otherPart();
        return true;
    }
    const Group& group() const { return group_; }
    RecordPart part() const { return part_; }
    /// The control string that the group belongs to, its first and last group included.
    ControlString control() const { return control_; }
    /// Whether the group is one of the head.
    bool inHead() const { return !isMarked_; }
    /// Behind the group.
    const Cursor& ahead() const { return cursor_; }

  private:
    RecordPart otherPart() {
        const int code = group_.code;
        if (handleCode_ == 0) {
            handleCode_ = group_.value == "DIMSTYLE" ? 105 : 5;
            isPlain_ = true;
            return RecordPart::name;
        }
        if (part_ == RecordPart::extendedData) return part_;
        if (part_ == RecordPart::controlEnd) {
            control_ = ControlString::none;
            isPlain_ = true;
        }
        if (control_ != ControlString::none) return code == 102 ? RecordPart::controlEnd : RecordPart::inControl;
        if (code >= 1000) {
            isPlain_ = false;
            return RecordPart::extendedData;
        }
        if (code == handleCode_ && !isMarked_ && !hasHandle_) {
            hasHandle_ = true;
            return RecordPart::handle;
        }
        if (code == 100 || code == 101) {
            isMarked_ = true;
            return RecordPart::marker;
        }
        if (code == 102 && group_.value.starts_with('{')) {
            control_ = group_.value == "{ACAD_REACTORS"      ? ControlString::reactors
                       : group_.value == "{ACAD_XDICTIONARY" ? ControlString::dictionary
                                                             : ControlString::other;
            isPlain_ = false;
            return RecordPart::controlBegin;
        }
        return code == 999 ? RecordPart::comment : RecordPart::field;
    }

    Cursor cursor_;
    Group group_;
    int handleCode_ = 0;
    RecordPart part_ = RecordPart::name;
    ControlString control_ = ControlString::none;
    bool isPlain_ = false;  // neither before the name, nor in a control string, nor in extended data
    bool isMarked_ = false;
    bool hasHandle_ = false;
};

}  // namespace drawingdb
