// The input is a slide library. Its directory is read and its slides are asked for by name.
#include "fuzz/fuzz.h"
#include "hostapi/slides.h"
#include "torvelcmd2/slides/slide_file.h"

using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = fuzz::bytesOf(data, size);
    try {
        const auto entries = torvel::readSlideDirectory(bytes, L"fuzz.slb");
        require(!entries.empty() && entries.back().offset == size, "the last entry closes the directory");
        require(entries.size() <= size / 36 + 1, "an entry has 36 bytes");
        for (std::size_t i = 0; i + 1 < entries.size(); ++i) {
            require(entries[i].name.size() <= 32, "a name has 32 bytes at most");
            require(i + 2 == entries.size() || entries[i].offset <= entries[i + 1].offset, "offsets grow");
            // Enough to have tried every way through.
            if (i < 8)
                require(torvel::readLibraryMember(bytes, entries[i].name, L"fuzz.slb").empty(),
                        "nothing is behind the end");
        }
        torvel::readLibraryMember(bytes, L"CHAIR", L"fuzz.slb");
    } catch (const CXException& error) {
        require(error.code() == CXException::kNotASlide || error.code() == CXException::kSlideNotInLibrary,
                "a library fails in two ways");
    }
    return 0;
}
