#include "torvelcmd2/attributes/values/text_escapes.h"

#include <gtest/gtest.h>

namespace {

TEST(TextEscapes, BecomeWhatTheyStandFor) {
    constexpr struct {
        const wchar_t* escaped;
        const wchar_t* plain;
    } kRows[] = {
        {L"plain", L"plain"},
        {L"", L""},
        {L"one\\Ptwo", L"one\ntwo"},
        {L"\\\\ \\{ \\} \\~|", L"\\ { }  |"},
        {L"say \\\"so\\\"", L"say \"so\""},
        {L"\\\\\"", L"\\\""},
        {L"{\\fArial|b1;bold} {\\H2.5x;\\C1;big}", L"bold big"},
        {L"\\Lunder\\l \\S1/2; \\A1;x", L"under 1/2 x"},
        {L"\\U+00B2 %%d %%p %%c", L"\u00B2 \u00B0 \u00B1 \u2205"},
        // What is no complete escape is text.
        {L"C:\\temp\\x \\Hx", L"C:\\temp\\x \\Hx"},
        {L"end\\", L"end\\"},
    };
    for (const auto& row : kRows) EXPECT_EQ(torvel::withoutEscapes(row.escaped), row.plain);
}

}  // namespace
