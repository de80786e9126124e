#include "torvelcmd2/slides/slide_file.h"

#include <algorithm>

#include "base/code_page.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "hostapi/slides.h"
#include "torvelcmd2/frame/host_binding.h"
#include "torvelcmd2/frame/module_instance.h"

namespace torvel {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kLibraryMark = "AutoCAD Slide Library 1.0\r\n\x1A\0"sv;
constexpr std::size_t kLibraryHeader = 32;
constexpr std::size_t kEntry = 36;
constexpr std::size_t kEntryName = 32;

[[noreturn]] void fail(CXException::Code code, const OdString& subject) {
    throw CXException(code, GetModuleResourceHandle(), subject);
}

std::uint32_t offsetAt(std::string_view bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = 4; i > 0; --i) value = value << 8 | static_cast<unsigned char>(bytes[i - 1]);
    return value;
}

base::FileBuffer readSlideFile(const OdString& path) {
    // A device may have no end.
    std::error_code error;
    if (!std::filesystem::is_regular_file(base::toPath(path), error)) fail(CXException::kNotASlide, path);
    try {
        return base::readFile(path);
    } catch (const base::FileError&) {
        fail(CXException::kNotASlide, path);
    }
}

}  // namespace

std::vector<OdString> supportFolders() {
    CXStringW folders;
    if (IStdDirs* const standardFolders = hostObject(hostapi::getStdDirs)) standardFolders->supportPath(folders);
    return base::splitSearchPath(folders);
}

bool findSlideFile(OdString& name, bool isLibrary) {
    if (base::isFile(name)) return true;
    if (base::extensionOf(name).empty()) {
        name += isLibrary ? L".slb" : L".sld";
        if (base::isFile(name)) return true;
    }
    if (base::fileNameOf(name) != name) return false;
    for (const OdString& folder : supportFolders()) {
        OdString path = base::joinPath(folder, name);
        if (base::isFile(path)) {
            name = std::move(path);
            return true;
        }
    }
    return false;
}

std::vector<SlideLibraryEntry> readSlideDirectory(std::string_view library, const OdString& fileName) {
    if (library.size() < kLibraryHeader || !library.starts_with(kLibraryMark)) fail(CXException::kNotASlide, fileName);
    std::vector<SlideLibraryEntry> entries;
    for (std::string_view rest = library.substr(kLibraryHeader); rest.size() >= kEntry; rest.remove_prefix(kEntry)) {
        if (rest.starts_with("\0\0\0\0\0\0\0\0"sv)) break;
        std::string_view name = rest.substr(0, kEntryName);
        name = name.substr(0, name.find('\0'));
        entries.push_back({base::CodePage::standard().decode(name), offsetAt(rest.substr(kEntryName))});
    }
    std::ranges::stable_sort(entries, {}, &SlideLibraryEntry::offset);
    entries.push_back({OdString(), static_cast<std::uint32_t>(library.size())});
    return entries;
}

std::string readLibraryMember(std::string_view library, const OdString& slide, const OdString& fileName) {
    const std::vector<SlideLibraryEntry> entries = readSlideDirectory(library, fileName);
    // Asking for the size leaves the file at its end.
    const std::size_t position = library.size();
    const auto found = std::find_if(entries.begin(), entries.end() - 1, [&slide](const SlideLibraryEntry& entry) {
        return base::equalsNoCase(entry.name, slide);
    });
    if (found == entries.end() - 1) fail(CXException::kSlideNotInLibrary, slide);
    const std::size_t size = std::next(found)->offset - found->offset;
    // Nothing goes to the member's offset: it is read from the end, comes out empty and will be refused as no slide.
    // That slides in libraries are refused is how this command has always been.
    return std::string(library.substr(position, size));
}

std::string loadSlide(const OdString& name) {
    if (name.find(L'(', 1) == OdString::npos) {
        OdString path = name;
        if (!findSlideFile(path, false)) fail(CXException::kFileNotFound, name);
        return std::string(readSlideFile(path).view());
    }
    const std::size_t open = name.rfind(L'(');
    const std::size_t close = name.rfind(L')');
    if (close == OdString::npos || close < open) fail(CXException::kInvalidSlideName, name);
    const OdString library = name.substr(0, open);
    const OdString slide = name.substr(open + 1, close - open - 1);
    OdString path = library;
    if (!findSlideFile(path, true)) fail(CXException::kFileNotFound, library);
    return readLibraryMember(readSlideFile(path).view(), slide, path);
}

}  // namespace torvel
