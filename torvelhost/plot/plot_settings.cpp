#include "torvelhost/plot/plot_settings.h"

#include <utility>

#include "base/number.h"
#include "base/text.h"

namespace host {
namespace {

struct PaperName {
    std::wstring_view name;
    double width, height;  // upright
};
constexpr PaperName kPapers[] = {
    {L"A0", 841, 1189},        {L"A1", 594, 841},         {L"A2", 420, 594},          {L"A3", 297, 420},
    {L"A4", 210, 297},         {L"A5", 148, 210},         {L"ANSI-A", 215.9, 279.4},  {L"ANSI-B", 279.4, 431.8},
    {L"ANSI-C", 431.8, 558.8}, {L"ANSI-D", 558.8, 863.6}, {L"ANSI-E", 863.6, 1117.6},
};
constexpr double kSmallestSide = 10;

bool isSide(const std::optional<double>& side) { return side && *side >= kSmallestSide && *side <= kLargestPaperSide; }

// Takes the word and what parts it from the rest off the end.
bool takeEnd(std::wstring_view& text, std::wstring_view word) {
    if (text.size() <= word.size() || !base::equalsNoCase(text.substr(text.size() - word.size()), word)) return false;
    const wchar_t before = text[text.size() - word.size() - 1];
    if (before != L'-' && before != L' ') return false;
    text.remove_suffix(word.size() + 1);
    return true;
}

}  // namespace

Paper Paper::suiting(double boxWidth, double boxHeight) const {
    Paper paper = *this;
    if (!isTurned && (boxWidth > boxHeight) != (width > height)) std::swap(paper.width, paper.height);
    paper.isTurned = true;
    return paper;
}

bool PlotSettings::hasAllLayouts() const { return layout && base::equalsNoCase(*layout, L"all"); }

std::optional<Paper> parsePaper(std::wstring_view text) {
    text = base::trimmed(text);
    if (const std::size_t cross = text.find_first_of(L"xX"); cross != text.npos) {
        const auto width = base::parseReal(text.substr(0, cross)), height = base::parseReal(text.substr(cross + 1));
        if (isSide(width) && isSide(height)) return Paper{*width, *height};
    }
    const bool isPortrait = takeEnd(text, L"portrait"), isLandscape = !isPortrait && takeEnd(text, L"landscape");
    std::wstring name(text);
    for (wchar_t& c : name)
        if (c == L' ') c = L'-';
    for (const PaperName& paper : kPapers) {
        if (!base::equalsNoCase(name, paper.name)) continue;
        if (isLandscape) return Paper{paper.height, paper.width};
        return Paper{paper.width, paper.height, isPortrait};
    }
    return std::nullopt;
}

std::optional<double> parsePlotScale(std::wstring_view text) {
    text = base::trimmed(text);
    if (base::equalsNoCase(text, L"fit")) return 0.0;
    const std::size_t colon = text.find(L':');
    if (colon == text.npos) return std::nullopt;
    const auto paper = base::parseReal(text.substr(0, colon)), drawing = base::parseReal(text.substr(colon + 1));
    constexpr double kLargest = 1e9;
    if (!paper || !drawing || !(*paper > 0) || !(*drawing > 0) || *paper > kLargest || *drawing > kLargest)
        return std::nullopt;
    const double scale = *paper / *drawing;
    return scale > 1 / kLargest ? std::optional(scale) : std::nullopt;
}

std::optional<Inks> parseInks(std::wstring_view text) {
    if (base::equalsNoCase(text, L"color")) return Inks{};
    if (base::equalsNoCase(text, L"mono")) return Inks{.mono = true};
    if (base::equalsNoCase(text, L"dark")) return Inks::dark();
    return std::nullopt;
}

}  // namespace host
