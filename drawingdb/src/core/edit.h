// What copying and erasing have to know of the groups of a record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "drawingdb/src/file/groups.h"

namespace drawingdb {

/// Groups that name objects which the record owns.
constexpr bool isOwnerCode(int code) { return code >= 350 && code < 370; }
/// Groups that name objects which the record needs, and which it does not own.
constexpr bool isHardPointerCode(int code) {
    return (code >= 340 && code < 350) || (code >= 390 && code < 400) || code == 480 || code == 481;
}
/// Groups that name objects which the record does not own.
constexpr bool isPointerCode(int code) { return (code >= 320 && code < 340) || isHardPointerCode(code); }
/// Groups of a record that name objects; its extended data has a code of its own for that.
constexpr bool isReferenceCode(int code) { return isOwnerCode(code) || isPointerCode(code); }
constexpr int kHandleInData = 1005;

/// The owner that a record names: the first group 330 of its head; 0 when there is none.
std::uint64_t ownerHandle(std::string_view bytes, const FileFormat& format);

/// With another control string of the extension dictionary in its place; a new one stands behind the handle.
std::string withDictionary(std::string_view bytes, std::string_view dictionary, const FileFormat& format);

}  // namespace drawingdb
