// Where a slide's bytes come from: a slide file, or a member of a slide library.
//
// A slide library:
//
//   offset 0   32 bytes   "AutoCAD Slide Library 1.0\r\n", 0x1A, 0, padding
//          32  36 each    directory: a name of 32 bytes (zero-terminated) and the 32-bit offset of the slide's data
//              8 zeros    its end, unless the file ends before
//                         the slides' data
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/object.h"

namespace torvel {

/// Looks for a file as named, then with the extension (.sld, or .slb for a library) where the name has none, then in
/// the folders of the host's search path where it names no folder. The name becomes the path found; false, and the name
/// of no meaning, when there is none.
bool findSlideFile(OdString& name, bool isLibrary);

/// The host's search path for support files, folders in order.
std::vector<OdString> supportFolders();

/// The bytes of "NAME" or "LIBRARY(SLIDE)". Throws CXException.
std::string loadSlide(const OdString& name);

struct SlideLibraryEntry {
    OdString name;
    std::uint32_t offset;
};

/// The directory of a library, in the order of offsets, closed by an entry without name at the library's end. Throws
/// CXException with `fileName` when the bytes are no library.
std::vector<SlideLibraryEntry> readSlideDirectory(std::string_view library, const OdString& fileName);

/// The bytes of a member as far as a library gives them. Throws CXException.
std::string readLibraryMember(std::string_view library, const OdString& slide, const OdString& fileName);

}  // namespace torvel
