#include "base/wildcards.h"

#include <gtest/gtest.h>
#include <string>

#include "base/text.h"

using base::fitsPattern;

TEST(Wildcards, StarsAndQuestionMarks) {
    struct Case {
        const wchar_t *text, *pattern;
        bool fits;
    };
    for (const auto& [text, pattern, fits] : {
             Case{L"DOOR", L"door", true},
             Case{L"DOOR", L"doo", false},
             Case{L"DOOR", L"d*", true},
             Case{L"DOOR", L"*r", true},
             Case{L"DOOR", L"*oo*", true},
             Case{L"DOOR", L"d*o", false},
             Case{L"DOOR", L"d?or", true},
             Case{L"DOOR", L"door?", false},
             Case{L"DOOR", L"door*", true},
             Case{L"", L"*", true},
             Case{L"", L"?", false},
             Case{L"", L"", true},
             Case{L"abcabd", L"*ab?", true},  // the first place where the middle fits is not the last
             Case{L"abcabd", L"a*abd", true},
             Case{L"aab", L"*?ab", true},
             Case{L"Größe", L"GRÖ?E", true},
             Case{L"a\U0001F600b", L"a?b", true},  // one character, two units on Windows
             Case{L"*U3", L"*u*", true},
         })
        EXPECT_EQ(fitsPattern(text, pattern), fits) << base::toUtf8(pattern);
}

TEST(Wildcards, ManyStarsTakeNoTime) {
    const std::wstring text(5000, L'a');
    std::wstring pattern;
    for (int i = 0; i < 200; ++i) pattern += L"*a";
    EXPECT_FALSE(fitsPattern(text, pattern + L"b"));
}
