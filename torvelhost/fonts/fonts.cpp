#include "torvelhost/fonts/fonts.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "torvelhost/fonts/font_folders.h"

namespace host {

// ---- a font in use

std::uint32_t Typeface::glyphOf(char32_t character) {
    const auto [known, isNew] = glyphs_.try_emplace(character);
    if (isNew) known->second = file_->glyphOf(character);
    return known->second;
}

double Typeface::advanceOf(std::uint32_t glyph) {
    const auto [known, isNew] = advances_.try_emplace(glyph);
    if (isNew) known->second = std::clamp(file_->advanceOf(glyph), 0.0, kWidestGlyph);
    return known->second;
}

const Typeface::Contours& Typeface::contoursOf(std::uint32_t glyph, int fineness) {
    constexpr std::size_t kMostPoints = 2000000;  // of 16 bytes
    if (points_ > kMostPoints) {
        contours_.clear();
        points_ = 0;
    }
    const auto [known, isNew] = contours_.try_emplace(std::uint64_t{glyph} << 8 | static_cast<std::uint8_t>(fineness));
    Contours& contours = known->second;
    if (!isNew) return contours;
    const double tolerance = std::ldexp(1.0, -fineness);
    for (const OutlineStep& step : file_->outlineOf(glyph)) {
        if (step.kind == OutlineStep::Kind::kMove || contours.empty()) contours.emplace_back();
        std::vector<OdGePoint2d>& contour = contours.back();
        if (step.kind == OutlineStep::Kind::kCurve && !contour.empty()) {
            const OdGePoint2d a = contour.back(), b = step.control1, c = step.control2, d = step.to;
            const double bend = std::max(((a - b) + (c - b)).length(), ((b - c) + (d - c)).length());
            constexpr double kMostPieces = 64;
            const double pieces = std::clamp(std::ceil(std::sqrt(0.75 * bend / tolerance)), 1.0, kMostPieces);
            for (int i = 1; i < pieces; ++i) {
                const double t = i / pieces, u = 1 - t;
                const auto mixed = [&](double p, double q, double r, double s) {
                    return u * u * u * p + 3 * u * u * t * q + 3 * u * t * t * r + t * t * t * s;
                };
                contour.emplace_back(mixed(a.x, b.x, c.x, d.x), mixed(a.y, b.y, c.y, d.y));
            }
        }
        contour.push_back(step.to);
    }
    for (const std::vector<OdGePoint2d>& contour : contours) points_ += contour.size();
    return contours;
}

void Typeface::shape(Shaper& shaper, std::u32string_view paragraph, std::size_t start, std::size_t count, bool toLeft,
                     std::vector<ShapedGlyph>& glyphs) {
    if (!shaped_) shaped_ = shaper.open(file_->bytes(), file_->number());
    const std::size_t first = glyphs.size();
    shaped_->shape(paragraph, start, count, toLeft, glyphs);
    const double capital = file_->capitalHeight();
    const auto inCapitals = [capital](double length, double least) {
        return std::clamp(length / capital, least, kWidestGlyph);
    };
    for (std::size_t i = first; i < glyphs.size(); ++i) {
        glyphs[i].advance = inCapitals(glyphs[i].advance, 0.0);
        glyphs[i].x = inCapitals(glyphs[i].x, -kWidestGlyph);
        glyphs[i].y = inCapitals(glyphs[i].y, -kWidestGlyph);
    }
}

// ---- names

namespace {

// Families and files are written with blanks and hyphens, or without.
std::wstring plain(std::wstring_view name) {
    std::wstring text;
    for (const wchar_t c : base::toLower(name))
        if (c != L' ' && c != L'-' && c != L'_' && c != L'@') text += c;
    return text;
}

bool isFontFile(std::wstring_view path) {
    const std::wstring extension = base::toLower(base::extensionOf(path));
    return extension == L".ttf" || extension == L".otf" || extension == L".ttc" || extension == L".otc";
}

// Files that other systems have for these families; "bd" and the like behind it stand for bold and italic.
constexpr std::pair<const wchar_t*, const wchar_t*> kFileNames[] = {
    {L"arialn", L"arialnarrow"}, {L"times", L"timesnewroman"}, {L"cour", L"couriernew"}, {L"trebuc", L"trebuchetms"},
    {L"consola", L"consolas"},   {L"arial", L"arial"},         {L"calibri", L"calibri"}, {L"verdana", L"verdana"},
    {L"tahoma", L"tahoma"},      {L"georgia", L"georgia"},     {L"cambria", L"cambria"}, {L"segoeui", L"segoeui"},
};

// By what a name is made of: what resembles it.
constexpr const wchar_t* kSans[] = {L"arial",   L"liberationsans", L"dejavusans", L"notosans",
                                    L"segoeui", L"tahoma",         L"nimbussans", L"freesans"};
constexpr const wchar_t* kSerif[] = {L"timesnewroman", L"liberationserif", L"dejavuserif",
                                     L"notoserif",     L"nimbusroman",     L"freeserif"};
constexpr const wchar_t* kMono[] = {L"couriernew",   L"liberationmono", L"dejavusansmono",
                                    L"notosansmono", L"nimbusmonops",   L"consolas"};
constexpr const wchar_t* kNarrow[] = {L"arialnarrow", L"liberationsansnarrow", L"nimbussansnarrow",
                                      L"dejavusanscondensed"};
struct Resemblance {
    const wchar_t* part;
    std::span<const wchar_t* const> fonts;
};
const Resemblance kResemblances[] = {
    {L"narrow", kNarrow},   {L"condensed", kNarrow}, {L"mono", kMono},      {L"cour", kMono},     {L"consol", kMono},
    {L"typewriter", kMono}, {L"terminal", kMono},    {L"sans", kSans},      {L"times", kSerif},   {L"serif", kSerif},
    {L"roman", kSerif},     {L"georgia", kSerif},    {L"garamond", kSerif}, {L"cambria", kSerif}, {L"palat", kSerif},
    {L"bookman", kSerif},   {L"schoolbook", kSerif}, {L"song", kSerif},     {L"ming", kSerif},    {L"simsun", kSerif},
};

}  // namespace

// ---- what is installed

Fonts& Fonts::installed() {
    static Fonts fonts = [] {
        const auto chosen = base::environmentVariable(L"TORVEL_FONTS");
        return Fonts(chosen ? base::splitSearchPath(*chosen) : systemFontFolders());
    }();
    return fonts;
}

void Fonts::look() {
    if (std::exchange(looked_, true)) return;
    for (const std::wstring& folder : folders_) lookInto(folder);
}

// In the order of names, so that the same fonts give the same plot.
void Fonts::lookInto(const std::wstring& folder) {
    namespace fs = std::filesystem;
    std::error_code error;
    std::vector<std::wstring> paths;
    constexpr auto kOptions = fs::directory_options::skip_permission_denied;
    for (fs::recursive_directory_iterator file(base::toPath(folder), kOptions, error), end; !error && file != end;
         file.increment(error)) {
        const std::wstring path = base::fromPath(file->path());
        std::error_code unknown;
        if (isFontFile(path) && file->is_regular_file(unknown)) paths.push_back(path);
    }
    std::sort(paths.begin(), paths.end());
    for (const std::wstring& path : paths) add(path);
}

void Fonts::add(const std::wstring& path) {
    try {
        const base::MappedFile& file = files_.emplace_back(path);
        const std::size_t before = typefaces_.size();
        for (int i = 0; i < FontFile::count(file.view()); ++i) {
            try {
                typefaces_.emplace_back(std::make_unique<FontFile>(file.view(), i));
            } catch (const BadFont&) {
                continue;
            }
            std::vector<std::wstring> names{plain(base::stemOf(path))};
            for (const std::wstring& name : typefaces_.back().file().names()) names.push_back(plain(name));
            std::sort(names.begin(), names.end());
            names.erase(std::unique(names.begin(), names.end()), names.end());
            for (std::wstring& name : names) byName_.emplace(std::move(name), typefaces_.size() - 1);
        }
        if (typefaces_.size() == before) files_.pop_back();
    } catch (const base::FileError&) {
        // It cannot be read: it is not there.
    }
}

Typeface* Fonts::named(const std::wstring& plainName, Wanted wanted) {
    // Of two that are equally near the one that was found first.
    std::pair<int, std::size_t> best{0, typefaces_.size()};
    const auto [low, high] = byName_.equal_range(plainName);
    for (auto entry = low; entry != high; ++entry) {
        const FontFile& file = typefaces_[entry->second].file();
        const int distance = std::abs(file.weight() - (wanted.bold ? 700 : 400)) / 100 +
                             4 * int{file.isItalic() != wanted.italic} + 3 * std::abs(file.width() - 5);
        const std::pair found{distance, entry->second};
        if (best.second == typefaces_.size() || found < best) best = found;
    }
    return best.second == typefaces_.size() ? nullptr : &typefaces_[best.second];
}

Typeface* Fonts::first(std::span<const wchar_t* const> names, Wanted wanted) {
    for (const wchar_t* const name : names)
        if (Typeface* const typeface = named(name, wanted)) return typeface;
    return nullptr;
}

Typeface* Fonts::find(std::wstring_view name, bool bold, bool italic) {
    look();
    Wanted wanted{bold, italic};
    // Drawings tell paths of either platform.
    if (const std::size_t separator = name.find_last_of(L"/\\"); separator != name.npos)
        name.remove_prefix(separator + 1);
    const std::wstring known = plain(isFontFile(name) ? base::stemOf(name) : name);
    if (Typeface* const typeface = named(known, wanted)) return typeface;
    std::wstring family = known;
    for (const auto& [stem, familyOfFile] : kFileNames) {
        if (known.rfind(stem, 0) != 0) continue;
        const std::wstring rest = known.substr(std::wstring_view(stem).size());
        const bool isBoth = rest == L"bi" || rest == L"z";
        const bool isBold = rest == L"b" || rest == L"bd" || isBoth, isItalic = rest == L"i" || rest == L"it" || isBoth;
        if (!rest.empty() && !isBold && !isItalic) continue;
        family = familyOfFile;
        wanted = {bold || isBold, italic || isItalic};
        if (Typeface* const typeface = named(family, wanted)) return typeface;
        break;
    }
    for (const Resemblance& resemblance : kResemblances) {
        if (family.find(resemblance.part) == family.npos) continue;
        if (Typeface* const typeface = first(resemblance.fonts, wanted)) return typeface;
        break;
    }
    if (Typeface* const typeface = first(kSans, wanted)) return typeface;
    return typefaces_.empty() ? nullptr : &typefaces_.front();
}

Typeface* Fonts::withCharacter(char32_t character) {
    look();
    const auto [known, isNew] = byCharacter_.try_emplace(character);
    if (!isNew) return known->second;
    for (const wchar_t* const name : kSans)
        if (Typeface* const typeface = named(name, {}); typeface && typeface->glyphOf(character) != 0)
            return known->second = typeface;
    // Every font that is installed: what it does not have is not kept.
    for (Typeface& typeface : typefaces_)
        if (typeface.file().glyphOf(character) != 0) return known->second = &typeface;
    return nullptr;
}

}  // namespace host
