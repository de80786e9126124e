#include "base/wildcards.h"

#include "base/text.h"

namespace base {

// What follows the last `*` is tried from each place of the text on; no earlier one need move for that.
bool fitsPattern(std::wstring_view text, std::wstring_view pattern) {
    std::size_t at = 0, inPattern = 0;
    std::size_t behindStar = pattern.npos, triedFrom = 0;
    while (at < text.size()) {
        if (inPattern < pattern.size() && pattern[inPattern] == L'*') {
            behindStar = ++inPattern;
            triedFrom = at;
            continue;
        }
        std::size_t nextInText = at, nextInPattern = inPattern;
        const char32_t character = nextCharacter(text, nextInText);
        const bool fits =
            inPattern < pattern.size() &&
            (pattern[inPattern] == L'?' ? (++nextInPattern, true)
                                        : foldCase(nextCharacter(pattern, nextInPattern)) == foldCase(character));
        if (fits) {
            at = nextInText;
            inPattern = nextInPattern;
        } else if (behindStar != pattern.npos) {
            at = triedFrom = positionAfter(text, triedFrom);
            inPattern = behindStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', inPattern) == pattern.npos;
}

}  // namespace base
