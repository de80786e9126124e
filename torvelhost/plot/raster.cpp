// Pictures are unpacked by stb_image. A damaged or hostile file must neither take more memory than its size in pixels
// explains, nor reach anything but itself: pixels are counted before they are unpacked, and what the unpacking asks for
// is limited.
#include "torvelhost/plot/raster.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"

namespace host {
namespace {

// All pictures of a drawing together: a quarter of a gigabyte, and a third of that for their smaller copies.
constexpr std::uint64_t kMostPixels = 64'000'000;
constexpr std::uint64_t kMostFileBytes = 256 << 20;

thread_local std::uint64_t mostBytes = 0;  // of one piece of memory

// Cleared: of a damaged file the library reads what it has not written.
void* allocateWithin(std::size_t size) { return size <= mostBytes ? std::calloc(1, size) : nullptr; }
void* reallocateWithin(void* memory, std::size_t size) {
    // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the library owns it.
    return size <= mostBytes ? std::realloc(memory, size) : nullptr;
}

}  // namespace
}  // namespace host

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#define STBI_ASSERT(holds) ((void)(holds))
#define STBI_MALLOC(size) host::allocateWithin(size)
#define STBI_REALLOC(memory, size) host::reallocateWithin(memory, size)
#define STBI_FREE(memory) std::free(memory)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#ifdef __clang__
// With damaged files it shifts by more than there is and copies nothing to nowhere, which does no harm.
#pragma clang attribute push(__attribute__((no_sanitize("undefined"))), apply_to = function)
#endif
#include <stb/stb_image.h>
#ifdef __clang__
#pragma clang attribute pop
#endif
#pragma GCC diagnostic pop

namespace host {
namespace {

constexpr std::uint32_t alphaOf(std::uint32_t pixel) { return pixel >> 24; }

// Their average; what is hardly seen hardly counts for its colour.
std::uint32_t average(const std::uint32_t (&pixels)[4]) {
    std::uint32_t alpha = 0, sums[3] = {};
    for (const std::uint32_t pixel : pixels) {
        alpha += alphaOf(pixel);
        for (int i = 0; i < 3; ++i) sums[i] += alphaOf(pixel) * (pixel >> (8 * i) & 255);
    }
    std::uint32_t result = (alpha + 2) / 4 << 24;
    for (int i = 0; alpha != 0 && i < 3; ++i) result |= (sums[i] + alpha / 2) / alpha << (8 * i);
    return result;
}

Raster::Grid halved(const Raster::Grid& grid) {
    Raster::Grid half{grid.width / 2, grid.height / 2, {}};
    half.pixels.reserve(static_cast<std::size_t>(half.width) * static_cast<std::size_t>(half.height));
    for (int y = 0; y < half.height; ++y) {
        const auto above =
            grid.pixels.begin() + static_cast<std::ptrdiff_t>(2) * y * static_cast<std::ptrdiff_t>(grid.width);
        const auto below = above + grid.width;
        for (int x = 0; x < half.width; ++x)
            half.pixels.push_back(average({above[2 * x], above[2 * x + 1], below[2 * x], below[2 * x + 1]}));
    }
    return half;
}

// What becomes of each strength of a colour.
struct Curve {
    std::uint8_t of[3][256];

    explicit Curve(const RasterLook& look) {
        const double contrast = look.contrast / 50.0, shift = look.brightness / 50.0 - 1, fade = look.fade / 100.0;
        for (int i = 0; i < 3; ++i) {
            const double paper = (look.paper >> (8 * i) & 255) / 255.0;
            for (int value = 0; value < 256; ++value) {
                const double strength = std::clamp((value / 255.0 - 0.5) * contrast + 0.5 + shift, 0.0, 1.0);
                of[i][value] = static_cast<std::uint8_t>(std::lround((strength + (paper - strength) * fade) * 255));
            }
        }
    }
};

std::uint32_t onPaper(std::uint32_t pixel, std::uint32_t paper) {
    const std::uint32_t alpha = alphaOf(pixel);
    if (alpha == 255) return pixel;
    std::uint32_t result = 0xFF000000;
    for (int shift = 0; shift < 24; shift += 8)
        result |= ((pixel >> shift & 255) * alpha + (paper >> shift & 255) * (255 - alpha) + 127) / 255 << shift;
    return result;
}

std::uint32_t grayOf(std::uint32_t pixel) {
    const std::uint32_t gray = ((pixel >> 16 & 255) * 77 + (pixel >> 8 & 255) * 150 + (pixel & 255) * 29 + 128) >> 8;
    return (pixel & 0xFF000000) | gray << 16 | gray << 8 | gray;
}

bool isPlain(const RasterLook& look) {
    return look.brightness == 50 && look.contrast == 50 && look.fade == 0 && !look.isGray;
}

// What a JPEG file calls its components, a character each; empty for any other file. Goes through its segments as the
// unpacking will, for that takes tables of codes (DHT) for as long as they may be.
//
//   FF marker [length of itself and what follows, two bytes] ...    FF D9 ends it
//   FF DA length ... and then data, in which FF is followed by 00 or the numbers D0 to D7
std::string jpegComponents(std::string_view bytes) {
    constexpr unsigned kFirstFrame = 0xC0, kLastFrame = 0xC2, kCodes = 0xC4, kRestart = 0xD0, kStart = 0xD8,
                       kEnd = 0xD9, kData = 0xDA;
    const BadPicture damaged("is a damaged JPEG file");
    const auto byteAt = [&](std::size_t place) -> unsigned {
        if (place >= bytes.size()) throw damaged;
        return static_cast<unsigned char>(bytes[place]);
    };
    std::string names;
    bool inData = false;
    for (std::size_t at = 0; bytes.starts_with('\xFF');) {
        if (inData) at = std::min(bytes.find('\xFF', at), bytes.size());
        const std::size_t next = bytes.find_first_not_of('\xFF', at);
        // A file that was cut off within its data shows as far as it goes.
        if (inData && next == bytes.npos) break;
        if (next == at || next == bytes.npos) throw damaged;
        at = next;
        const unsigned marker = byteAt(at++);
        if (inData && (marker == 0 || (marker >= kRestart && marker < kStart))) continue;
        if (marker == kStart) continue;
        if (marker == kEnd) break;
        const std::size_t end = at + (byteAt(at) << 8 | byteAt(at + 1));
        at += 2;
        if (end < at || end > bytes.size()) throw damaged;
        while (marker == kCodes && at < end) {
            // Which table, how many codes there are of each length, and what they stand for.
            std::size_t count = 0;
            for (std::size_t i = 1; i <= 16; ++i) count += byteAt(at + i);
            at += 17 + count;
            if (count > 256 || at > end) throw damaged;
        }
        // The depth and the size of the picture; then the number of components, and three bytes for each.
        if (marker >= kFirstFrame && marker <= kLastFrame)
            for (std::size_t i = at + 6; i < end && names.size() < byteAt(at + 5); i += 3) names += bytes[i];
        at = end;
        inData = marker == kData;
    }
    return names;
}

// What the file tells without being unpacked.
struct Head {
    std::uint64_t pixels = 0;
    std::string jpegComponents;
};

Head headOf(std::string_view bytes) {
    Head head{0, jpegComponents(bytes)};
    int width = 0, height = 0;
    mostBytes = 1 << 20;
    if (!stbi_info_from_memory(reinterpret_cast<const stbi_uc*>(bytes.data()), static_cast<int>(bytes.size()), &width,
                               &height, nullptr) ||
        width < 1 || height < 1)
        throw BadPicture("is no PNG, JPEG or BMP file, is damaged, or is far too large");
    head.pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    return head;
}

Raster unpacked(std::string_view bytes, const Head& head, const RasterLook& look) {
    int width = 0, height = 0;
    // Two bytes for each of four components; what does not fit is given twice the room.
    mostBytes = 16 * head.pixels + (1 << 20);
    const std::unique_ptr<stbi_uc, void (*)(void*)> memory(
        stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(bytes.data()), static_cast<int>(bytes.size()), &width,
                              &height, nullptr, STBI_rgb_alpha),
        std::free);
    if (!memory || static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) != head.pixels)
        throw BadPicture("is damaged, or of a kind of PNG, JPEG or BMP that is not known");

    Raster raster;
    Raster::Grid& grid = raster.grids.emplace_back();
    grid.width = width;
    grid.height = height;
    grid.pixels.reserve(head.pixels);
    const Curve curve(look);
    const bool isChanged = !isPlain(look);
    for (const stbi_uc* part = memory.get(); grid.pixels.size() < head.pixels; part += 4) {
        std::uint32_t pixel = std::uint32_t{part[3]} << 24 | std::uint32_t{part[0]} << 16 |
                              std::uint32_t{part[1]} << 8 | std::uint32_t{part[2]};
        if (!look.isTransparent) pixel = onPaper(pixel, look.paper);
        if (look.isGray) pixel = grayOf(pixel);
        if (isChanged)
            pixel = (pixel & 0xFF000000) | std::uint32_t{curve.of[2][pixel >> 16 & 255]} << 16 |
                    std::uint32_t{curve.of[1][pixel >> 8 & 255]} << 8 | curve.of[0][pixel & 255];
        raster.isOpaque &= alphaOf(pixel) == 255;
        grid.pixels.push_back(pixel);
    }
    while (raster.grids.back().width > 1 && raster.grids.back().height > 1)
        raster.grids.push_back(halved(raster.grids.back()));
    if (!isChanged) {
        // Grey alone, or luminance and two colours: what readers of PDF take them for.
        const std::string& components = head.jpegComponents;
        raster.isJpegGray = components.size() == 1;
        if (raster.isJpegGray || (components.size() == 3 && components != "RGB")) raster.jpeg = bytes;
    }
    return raster;
}

// Names come from drawings of either platform.
std::wstring placeOf(const std::wstring& name, const std::wstring& drawing) {
    const auto isThere = [](const std::wstring& path) {
        std::error_code error;
        return std::filesystem::is_regular_file(base::toPath(path), error);
    };
    const std::wstring folder = base::folderOf(drawing);
    const auto inFolder = [&](std::wstring_view part) { return base::joinPath(folder, part); };
    std::wstring local = name;
    std::ranges::replace(local, L'\\', L'/');
    // A drawing does not make anybody log in to some other machine.
    if (!local.starts_with(L"//"))
        if (std::wstring path = inFolder(local); isThere(path)) return path;
    std::wstring path = inFolder(local.substr(local.rfind(L'/') + 1));
    return isThere(path) ? path : std::wstring();
}

}  // namespace

Raster readRaster(std::string_view bytes, const RasterLook& look, std::uint64_t mostPixels) {
    const Head head = headOf(bytes);
    if (head.pixels > mostPixels)
        throw BadPicture("is too large: the pictures of a drawing have 64 million pixels at most");
    return unpacked(bytes, head, look);
}

std::shared_ptr<const Raster> Rasters::read(const std::wstring& name, const RasterLook& look) {
    const auto [entry, isNew] = known_.try_emplace({name, look});
    if (!isNew || faults_.count(name) != 0) return entry->second;
    try {
        const std::wstring path = placeOf(name, drawing_);
        if (path.empty()) throw BadPicture("is not there");
        std::error_code error;
        if (std::filesystem::file_size(base::toPath(path), error) > kMostFileBytes || error)
            throw BadPicture("is larger than 256 megabytes");
        const base::FileBuffer file = base::readFile(path);
        entry->second = std::make_shared<Raster>(readRaster(file.view(), look, kMostPixels - pixels_));
        pixels_ += entry->second->grids.front().pixels.size();
    } catch (const base::FileError& fault) {
        faults_[name] = L"cannot be read: " + fault.reason();
    } catch (const BadPicture& fault) {
        faults_[name] = base::fromUtf8(fault.what());
    } catch (const std::bad_alloc&) {
        faults_[name] = L"is too large for the memory";
    }
    return entry->second;
}

std::vector<std::wstring> Rasters::told() const {
    std::vector<std::wstring> told;
    for (const auto& [name, fault] : faults_)
        told.push_back(L"the picture " + name + L" " + fault + L"; its frame is drawn");
    return told;
}

}  // namespace host
