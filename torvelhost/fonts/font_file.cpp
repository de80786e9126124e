// The tables of a font file, looked at with care; outlines are unpacked by a library that takes care of nothing, and
// gets to see only what has been gone through.
#include "torvelhost/fonts/font_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "base/text.h"

namespace host {
namespace {

constexpr std::size_t kLargestFile = 0x3FFFFFFF;
constexpr int kMostFonts = 256;
constexpr int kDeepest = 6;  // glyphs put together from glyphs
constexpr int kMostParts = 256;
constexpr std::size_t kMostMemory = 8 << 20;  // for one outline
constexpr int kMostSteps = 40000;             // of the library for one outline: twice that of any real one
constexpr int kLargestString = 65535;         // of an outline's instructions, as the format has it

// What the library asks for while it unpacks one outline.
class Workshop {
  public:
    void begin() {
        pieces_.clear();
        used_ = 0;
        steps_ = 0;
    }
    void* allocate(std::size_t size) {
        // It looks at one point too many behind a contour that ends in a curve.
        constexpr std::size_t kMore = 64;
        if (size > kMostMemory || (used_ += size) > kMostMemory) throw BadFont("an outline is too large");
        pieces_.push_back(std::make_unique<char[]>(size + kMore));
        return pieces_.back().get();
    }
    void check(bool holds) {
        if (!holds) throw BadFont("an outline is damaged");
        if (++steps_ > kMostSteps) throw BadFont("an outline has no end");
    }

  private:
    std::vector<std::unique_ptr<char[]>> pieces_;
    std::size_t used_ = 0;
    int steps_ = 0;
};
thread_local Workshop workshop;

}  // namespace
}  // namespace host

#define STB_TRUETYPE_IMPLEMENTATION
#define STBTT_STATIC
#define STBTT_assert(holds) host::workshop.check(static_cast<bool>(holds))
#define STBTT_malloc(size, user) ((void)(user), host::workshop.allocate(size))
#define STBTT_free(memory, user) ((void)(user), (void)(memory))
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_truetype.h>
#pragma GCC diagnostic pop

namespace host {
namespace {

// Numbers in the file have their highest byte first.
class Bytes {
  public:
    Bytes() = default;
    explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

    std::size_t size() const { return bytes_.size(); }
    std::string_view view() const { return bytes_; }
    std::uint32_t byte(std::size_t at) const {
        if (at >= bytes_.size()) throw BadFont("a table is cut off");
        return static_cast<unsigned char>(bytes_[at]);
    }
    std::uint32_t u16(std::size_t at) const { return byte(at) << 8 | byte(at + 1); }
    int i16(std::size_t at) const { return static_cast<std::int16_t>(u16(at)); }
    std::uint32_t u32(std::size_t at) const { return u16(at) << 16 | u16(at + 2); }
    Bytes part(std::size_t at, std::size_t size) const {
        if (at > bytes_.size() || size > bytes_.size() - at) throw BadFont("a table is cut off");
        return Bytes(bytes_.substr(at, size));
    }
    Bytes from(std::size_t at) const { return part(at, at > bytes_.size() ? 0 : bytes_.size() - at); }

  private:
    std::string_view bytes_;
};

constexpr std::uint32_t tag(const char (&name)[5]) {
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i) number = number << 8 | static_cast<unsigned char>(name[i]);
    return number;
}

std::size_t startOf(const Bytes& file, int number) {
    if (file.u32(0) != tag("ttcf")) {
        if (number != 0) throw BadFont("there is no such font in the file");
        return 0;
    }
    if (number < 0 || static_cast<std::uint32_t>(number) >= file.u32(8))
        throw BadFont("there is no such font in the file");
    return file.u32(12 + 4 * static_cast<std::size_t>(number));
}

}  // namespace

class FontFile::Tables {
  public:
    Tables(std::string_view bytes, int number) : file_(bytes) {
        if (bytes.size() > kLargestFile) throw BadFont("the file is too large");
        const Bytes directory = file_.from(startOf(file_, number));
        const std::uint32_t count = directory.u16(4);
        for (std::uint32_t i = 0; i < count; ++i) {
            const Bytes entry = directory.part(12 + 16 * std::size_t{i}, 16);
            for (auto& [name, table] : tables_)
                if (name == entry.u32(0)) table = file_.part(entry.u32(8), entry.u32(12));
        }
        for (const char* const required : {"head", "hhea", "hmtx", "maxp", "cmap"})
            if (of(required).size() == 0) throw BadFont("a table is missing");
        if (of("CFF ").size() == 0 && (of("glyf").size() == 0 || of("loca").size() == 0))
            throw BadFont("it has no outlines");
    }

    /// Empty when it is not there.
    const Bytes& of(std::string_view name) const {
        for (const auto& [known, table] : tables_)
            if (known == (static_cast<std::uint32_t>(name[0]) << 24 | static_cast<std::uint32_t>(name[1]) << 16 |
                          static_cast<std::uint32_t>(name[2]) << 8 | static_cast<std::uint32_t>(name[3])))
                return table;
        throw std::logic_error("no such table");
    }
    std::size_t placeOf(const Bytes& table) const {
        return static_cast<std::size_t>(table.view().data() - file_.view().data());
    }
    const Bytes& file() const { return file_; }

  private:
    Bytes file_;
    std::array<std::pair<std::uint32_t, Bytes>, 10> tables_{{{tag("head"), {}},
                                                             {tag("hhea"), {}},
                                                             {tag("hmtx"), {}},
                                                             {tag("maxp"), {}},
                                                             {tag("cmap"), {}},
                                                             {tag("glyf"), {}},
                                                             {tag("loca"), {}},
                                                             {tag("CFF "), {}},
                                                             {tag("name"), {}},
                                                             {tag("OS/2"), {}}}};
};

// ---- outlines

// The file's units.
class FontFile::Outlines {
  public:
    explicit Outlines(const Tables& tables) : tables_(tables) {
        const Bytes& file = tables.file();
        info_.data = reinterpret_cast<unsigned char*>(const_cast<char*>(file.view().data()));
        info_.numGlyphs = static_cast<int>(tables.of("maxp").u16(4));
        if (tables.of("CFF ").size() != 0) {
            readCompact();
            return;
        }
        info_.indexToLocFormat = static_cast<int>(tables.of("head").u16(50));
        info_.loca = static_cast<int>(tables.placeOf(tables.of("loca")));
        info_.glyf = static_cast<int>(tables.placeOf(tables.of("glyf")));
    }

    std::vector<OutlineStep> of(std::uint32_t glyph) {
        if (glyph >= static_cast<std::uint32_t>(info_.numGlyphs)) return {};
        workshop.begin();
        steps_.clear();
        parts_ = 0;
        if (info_.cff.size != 0) {
            checkString(info_.charstrings, static_cast<int>(glyph));
            if (info_.fdselect.size != 0) checkStrings(stbtt__cid_get_glyph_subrs(&info_, static_cast<int>(glyph)));
            workshop.begin();
            unpack(glyph, OdGeMatrix3d());
        } else {
            add(glyph, OdGeMatrix3d(), 0);
        }
        return std::move(steps_);
    }

  private:
    // The library counts no steps within a string.
    static void checkString(const stbtt__buf& index, int number) {
        workshop.begin();
        if (stbtt__cff_index_get(index, number).size > kLargestString) throw BadFont("an outline is too long");
    }
    static void checkStrings(stbtt__buf index) {
        workshop.begin();
        const int count = stbtt__cff_index_count(&index);
        for (int i = 0; i < count; ++i) checkString(index, i);
    }

    // As the library reads it, which takes the table for endless.
    void readCompact() {
        const Bytes& table = tables_.of("CFF ");
        workshop.begin();
        info_.cff = stbtt__new_buf(table.view().data(), table.size());
        stbtt__buf at = info_.cff;
        stbtt__buf_skip(&at, 2);
        stbtt__buf_seek(&at, stbtt__buf_get8(&at));
        stbtt__cff_get_index(&at);  // names
        stbtt__buf topIndex = stbtt__cff_get_index(&at);
        stbtt__buf top = stbtt__cff_index_get(topIndex, 0);
        stbtt__cff_get_index(&at);  // strings
        info_.gsubrs = stbtt__cff_get_index(&at);
        constexpr int kCharStrings = 17, kType = 0x100 | 6, kFontDicts = 0x100 | 36, kSelect = 0x100 | 37;
        const auto number = [&top](int key, std::uint32_t standard) {
            stbtt_uint32 value = standard;
            stbtt__dict_get_ints(&top, key, 1, &value);
            return value;
        };
        const std::uint32_t outlines = number(kCharStrings, 0), dicts = number(kFontDicts, 0),
                            select = number(kSelect, 0);
        if (number(kType, 2) != 2 || outlines == 0) throw BadFont("outlines of an unknown kind");
        info_.subrs = stbtt__get_subrs(at, top);
        if (dicts != 0) {
            stbtt__buf_seek(&at, static_cast<int>(dicts));
            info_.fontdicts = stbtt__cff_get_index(&at);
            info_.fdselect = stbtt__buf_range(&at, static_cast<int>(select), at.size - static_cast<int>(select));
        }
        stbtt__buf_seek(&at, static_cast<int>(outlines));
        info_.charstrings = stbtt__cff_get_index(&at);
        checkStrings(info_.gsubrs);
        checkStrings(info_.subrs);
    }

    Bytes dataOf(std::uint32_t glyph) const {
        const Bytes& places = tables_.of("loca");
        const bool isShort = info_.indexToLocFormat == 0;
        if (glyph >= static_cast<std::uint32_t>(info_.numGlyphs) || info_.indexToLocFormat > 1)
            throw BadFont("no such outline");
        const std::size_t g = glyph;
        const std::size_t start = isShort ? places.u16(2 * g) * 2 : places.u32(4 * g);
        const std::size_t end = isShort ? places.u16(2 * g + 2) * 2 : places.u32(4 * g + 4);
        if (end < start) throw BadFont("an outline ends before it begins");
        return tables_.of("glyf").part(start, end - start);
    }

    void add(std::uint32_t glyph, const OdGeMatrix3d& placement, int depth) {
        const Bytes data = dataOf(glyph);
        if (data.size() == 0) return;
        const int contours = data.i16(0);
        if (++parts_ > kMostParts) throw BadFont("an outline has too many parts");
        if (contours > 0) {
            goThrough(data, static_cast<std::size_t>(contours));
            unpack(glyph, placement);
        } else if (contours < 0) {
            if (depth == kDeepest) throw BadFont("an outline is made of itself");
            addParts(data, placement, depth);
        }
    }

    // That everything the library will look at is there.
    static void goThrough(const Bytes& data, std::size_t contours) {
        std::size_t points = 0;
        for (std::size_t i = 0; i < contours; ++i) {
            const std::size_t end = data.u16(10 + 2 * i) + 1;
            if (end <= points) throw BadFont("contours out of order");
            points = end;
        }
        std::size_t at = 10 + 2 * contours;
        at += 2 + data.u16(at);  // behind the instructions
        constexpr std::uint32_t kShortX = 2, kShortY = 4, kRepeated = 8, kSameX = 16, kSameY = 32;
        std::size_t coordinates = 0;
        for (std::size_t i = 0; i < points;) {
            const std::uint32_t flags = data.byte(at++);
            const std::size_t times = flags & kRepeated ? data.byte(at++) + 1 : 1;
            const std::size_t bytes = (flags & kShortX  ? 1
                                       : flags & kSameX ? 0
                                                        : 2) +
                                      (flags & kShortY  ? 1
                                       : flags & kSameY ? 0
                                                        : 2);
            coordinates += std::min(times, points - i) * bytes;
            i += times;
        }
        data.part(at, coordinates);
    }

    void addParts(const Bytes& data, const OdGeMatrix3d& placement, int depth) {
        constexpr std::uint32_t kWords = 1, kOffsets = 2, kScale = 8, kMore = 32, kTwoScales = 64, kMatrix = 128;
        std::size_t at = 10;
        std::uint32_t flags = kMore;
        const auto next = [&] {
            at += 2;
            return data.i16(at - 2);
        };
        const auto nextByte = [&] { return static_cast<std::int8_t>(data.byte(at++)); };
        const auto nextFactor = [&] { return next() / 16384.0; };
        while (flags & kMore) {
            flags = static_cast<std::uint16_t>(next());
            const auto part = static_cast<std::uint16_t>(next());
            double dx = flags & kWords ? next() : nextByte(), dy = flags & kWords ? next() : nextByte();
            // Else the numbers of points that are to meet, which hardly any font makes use of.
            if (!(flags & kOffsets)) dx = dy = 0;
            OdGeVector3d x(1, 0, 0), y(0, 1, 0);
            if (flags & kScale) {
                x.x = y.y = nextFactor();
            } else if (flags & kTwoScales) {
                x.x = nextFactor();
                y.y = nextFactor();
            } else if (flags & kMatrix) {
                x.x = nextFactor();
                x.y = nextFactor();
                y.x = nextFactor();
                y.y = nextFactor();
            }
            add(part, placement * OdGeMatrix3d::coordSystem(OdGePoint3d(dx, dy, 0), x, y, OdGeVector3d(0, 0, 1)),
                depth + 1);
        }
    }

    void unpack(std::uint32_t glyph, const OdGeMatrix3d& placement) {
        stbtt_vertex* vertices = nullptr;
        const int count = stbtt_GetGlyphShape(&info_, static_cast<int>(glyph), &vertices);
        const auto at = [&](double x, double y) {
            const OdGePoint3d point = placement * OdGePoint3d(x, y, 0);
            return OdGePoint2d(point.x, point.y);
        };
        for (int i = 0; vertices && i < count; ++i) {
            const stbtt_vertex& v = vertices[i];
            OutlineStep step;
            step.to = at(v.x, v.y);
            if (v.type == STBTT_vcubic) {
                step.kind = OutlineStep::Kind::kCurve;
                step.control1 = at(v.cx, v.cy);
                step.control2 = at(v.cx1, v.cy1);
            } else if (v.type == STBTT_vcurve && i > 0) {
                // A parabola is a cubic curve too.
                step.kind = OutlineStep::Kind::kCurve;
                const OdGePoint2d control = at(v.cx, v.cy), from = steps_.back().to;
                step.control1 = from + (control - from) * (2.0 / 3);
                step.control2 = step.to + (control - step.to) * (2.0 / 3);
            } else if (v.type != STBTT_vmove) {
                step.kind = OutlineStep::Kind::kLine;
            }
            steps_.push_back(step);
        }
    }

    const Tables& tables_;
    stbtt_fontinfo info_{};
    std::vector<OutlineStep> steps_;
    int parts_ = 0;
};

std::vector<OutlineStep> FontFile::outlineOf(std::uint32_t glyph) const {
    try {
        if (!outlines_) outlines_ = std::make_unique<Outlines>(*tables_);
        std::vector<OutlineStep> steps = outlines_->of(glyph);
        const double scale = 1 / capitalHeight();
        for (OutlineStep& step : steps)
            for (OdGePoint2d* const point : {&step.control1, &step.control2, &step.to}) {
                point->x *= scale;
                point->y *= scale;
            }
        return steps;
    } catch (const BadFont&) {
        return {};
    }
}

// ---- what the file says of itself

int FontFile::count(std::string_view bytes) {
    const Bytes file(bytes);
    if (file.size() < 16) return 0;
    const std::uint32_t kind = file.u32(0);
    if (kind == tag("ttcf")) return static_cast<int>(std::min<std::uint32_t>(file.u32(8), kMostFonts));
    return kind == 0x00010000 || kind == tag("OTTO") || kind == tag("true") ? 1 : 0;
}

FontFile::FontFile(std::string_view bytes, int number)
    : bytes_(bytes), number_(number), tables_(std::make_unique<Tables>(bytes, number)) {
    readMetrics();
    readWeight();
    readNames();
}

FontFile::~FontFile() = default;

void FontFile::readMetrics() {
    const Bytes& head = tables_->of("head");
    unitsPerEm_ = head.u16(18);
    if (unitsPerEm_ < 16) throw BadFont("its unit is unknown");
    weight_ = head.u16(44) & 1 ? 700 : 400;
    italic_ = (head.u16(44) & 2) != 0;
    advances_ = tables_->of("hhea").u16(34);
    if (advances_ == 0 || tables_->of("hmtx").size() < 4 * std::size_t{advances_}) throw BadFont("widths are missing");
    tables_->of("maxp").u16(4);
}

void FontFile::readWeight() {
    const Bytes& table = tables_->of("OS/2");
    if (table.size() < 64) return;
    weight_ = static_cast<int>(table.u16(4));
    width_ = static_cast<int>(table.u16(6));
    italic_ |= (table.u16(62) & 1) != 0;
}

void FontFile::readNames() {
    const Bytes& table = tables_->of("name");
    if (table.size() < 6) return;
    const std::size_t texts = table.u16(4);
    constexpr std::uint32_t kFamily = 1, kFullName = 4, kTypographicFamily = 16;
    constexpr std::uint32_t kUnicode = 0, kWindows = 3;
    constexpr std::size_t kMostNames = 1000;
    const std::size_t count = std::min<std::size_t>({table.u16(2), (table.size() - 6) / 12, kMostNames});
    for (std::size_t i = 0; i < count; ++i) {
        const Bytes entry = table.part(6 + 12 * i, 12);
        const std::uint32_t platform = entry.u16(0), what = entry.u16(6);
        const std::size_t length = entry.u16(8), start = texts + entry.u16(10);
        if (platform != kUnicode && platform != kWindows) continue;
        if (what != kFamily && what != kFullName && what != kTypographicFamily) continue;
        if (start > table.size() || length > table.size() - start) continue;
        std::wstring name;
        for (std::size_t k = 0; k + 1 < length; k += 2) name += static_cast<wchar_t>(table.u16(start + k));
        if (std::find(names_.begin(), names_.end(), name) == names_.end()) names_.push_back(std::move(name));
    }
}

double FontFile::capitalHeight() const {
    if (capitalHeight_ != 0) return capitalHeight_;
    // What a font without capitals says of their height is anything, and one that cannot be is none.
    const std::uint32_t capital = glyphOf(U'H');
    if (capital == 0) return capitalHeight_ = 0.7 * unitsPerEm_;
    const auto isLikely = [this](double height) { return height > 0.3 * unitsPerEm_ && height < 1.5 * unitsPerEm_; };
    const Bytes& table = tables_->of("OS/2");
    double height = table.size() >= 90 && table.u16(0) >= 2 ? table.i16(88) : 0;
    if (!isLikely(height)) {
        height = 0;
        capitalHeight_ = 1;
        for (const OutlineStep& step : outlineOf(capital)) height = std::max(height, step.to.y);
    }
    return capitalHeight_ = isLikely(height) ? height : 0.7 * unitsPerEm_;
}

double FontFile::advanceOf(std::uint32_t glyph) const {
    const std::size_t number = std::min(glyph, advances_ - 1);
    return tables_->of("hmtx").u16(4 * number) / capitalHeight();
}

// ---- characters

void FontFile::findCharacters() const {
    charactersFormat_ = 0;
    const Bytes& table = tables_->of("cmap");
    int best = 0;
    const std::size_t count = table.u16(2);
    for (std::size_t i = 0; i < count; ++i) {
        const Bytes entry = table.part(4 + 8 * i, 8);
        const std::uint32_t platform = entry.u16(0), encoding = entry.u16(2), place = entry.u32(4);
        const int worth = platform == 3 && encoding == 10                     ? 5
                          : platform == 0 && (encoding == 4 || encoding == 6) ? 4
                          : platform == 3 && encoding == 1                    ? 3
                          : platform == 0 && encoding != 5                    ? 2
                          : platform == 3 && encoding == 0                    ? 1
                                                                              : 0;
        if (worth <= best || place + std::size_t{4} > table.size()) continue;
        const int format = static_cast<int>(table.u16(place));
        if (format != 4 && format != 12) continue;
        best = worth;
        charactersFormat_ = format;
        characters_ = table.from(place).view();
        symbols_ = worth == 1;
    }
}

namespace {

// The first of `count` ranges that ends at the character or behind it.
template <class EndOf>
std::size_t rangeOf(std::size_t count, char32_t character, EndOf endOf) {
    std::size_t low = 0;
    while (count > 0) {
        const std::size_t half = count / 2;
        if (endOf(low + half) < character) {
            low += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return low;
}

std::uint32_t glyphInSegments(const Bytes& table, char32_t character) {
    if (character > 0xFFFF) return 0;
    const std::size_t count = table.u16(6) / 2, ends = 14, starts = 16 + 2 * count, deltas = starts + 2 * count,
                      offsets = deltas + 2 * count;
    const std::size_t i = rangeOf(count, character, [&](std::size_t segment) { return table.u16(ends + 2 * segment); });
    if (i == count) return 0;
    const std::uint32_t start = table.u16(starts + 2 * i), delta = table.u16(deltas + 2 * i);
    if (character < start) return 0;
    const std::size_t place = offsets + 2 * i, offset = table.u16(place);
    if (offset == 0) return (character + delta) & 0xFFFF;
    const std::uint32_t glyph = table.u16(place + offset + 2 * std::size_t{character - start});
    return glyph == 0 ? 0 : (glyph + delta) & 0xFFFF;
}

std::uint32_t glyphInGroups(const Bytes& table, char32_t character) {
    const std::size_t count = table.u32(12);
    const std::size_t i = rangeOf(count, character, [&](std::size_t group) { return table.u32(16 + 12 * group + 4); });
    if (i == count) return 0;
    const std::uint32_t start = table.u32(16 + 12 * i);
    return character < start ? 0 : table.u32(16 + 12 * i + 8) + (character - start);
}

}  // namespace

std::uint32_t FontFile::glyphOf(char32_t character) const {
    try {
        if (charactersFormat_ < 0) findCharacters();
        if (charactersFormat_ == 0) return 0;
        const Bytes table(characters_);
        // Fonts of signs have them in an area of their own.
        if (symbols_ && character < 0x100) character += 0xF000;
        const std::uint32_t glyph =
            charactersFormat_ == 4 ? glyphInSegments(table, character) : glyphInGroups(table, character);
        return glyph < tables_->of("maxp").u16(4) ? glyph : 0;
    } catch (const BadFont&) {
        return 0;
    }
}

}  // namespace host
