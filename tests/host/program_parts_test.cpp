// The command line, the editing of a line, dates, and the settings store.

#include <filesystem>
#include <gtest/gtest.h>

#include "base/files.h"
#include "base/paths.h"
#include "torvelhost/lines/line_edit.h"
#include "torvelhost/session/options.h"
#include "torvelhost/session/profile.h"
#include "torvelhost/session/variables.h"

using namespace host;

namespace {

Options parse(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "torvelhost");
    return parseOptions(arguments);
}

}  // namespace

TEST(Options, EveryForm) {
    const Options options = parse({"-c", "Ray|0,0", "--script=a.scr", "--command", "QUIT", "-q", "--size", "800x600",
                                   "--set", "CLAYER=A=B", "-o", "out.dxf", "in.dxf", "--profile", "p.ini"});
    ASSERT_EQ(options.scripts.size(), 3u);  // in the order given
    EXPECT_EQ(options.scripts[0].text, L"Ray|0,0");
    EXPECT_TRUE(options.scripts[1].isFile);
    EXPECT_EQ(options.scripts[2].text, L"QUIT");
    EXPECT_TRUE(options.quiet);
    EXPECT_EQ(options.width, 800);
    EXPECT_EQ(options.height, 600);
    EXPECT_EQ(options.variables[0], (std::pair<std::wstring, std::wstring>(L"CLAYER", L"A=B")));
    EXPECT_EQ(options.drawing, L"in.dxf");
    EXPECT_EQ(options.output, L"out.dxf");
    EXPECT_EQ(options.profile, L"p.ini");
    EXPECT_FALSE(options.isInteractive());

    EXPECT_TRUE(parse({}).isInteractive());
    EXPECT_TRUE(parse({"in.dxf", "--set", "A=1"}).isInteractive());
    EXPECT_FALSE(parse({"-o", "out.dxf"}).isInteractive());
    EXPECT_EQ(parse({"--", "-c"}).drawing, L"-c");
    EXPECT_EQ(parse({"-s", "-"}).scripts[0].text, L"-");
}

TEST(Options, WrongUsage) {
    for (const std::vector<std::string>& wrong : {std::vector<std::string>{"--nothing"},
                                                  {"-x"},
                                                  {"-c"},
                                                  {"a.dxf", "b.dxf"},
                                                  {"--size", "10"},
                                                  {"--size", "0x5"},
                                                  {"--size", "axb"},
                                                  {"--set", "A"},
                                                  {"--set", "=1"},
                                                  {"--quiet=1"},
                                                  {"-cRay"}})
        EXPECT_THROW(parse(wrong), UsageError) << wrong[0];
}

TEST(LineEdit, KeysAndHistory) {
    const std::vector<std::wstring> history = {L"Ray", L"AttSync"};
    LineEdit line(history);
    line.insert(L"one two");
    line.press(LineEdit::kWordLeft);
    EXPECT_EQ(line.caret(), 4u);
    line.insert(L"\u00e9");
    EXPECT_EQ(line.text(), L"one \u00e9two");
    line.press(LineEdit::kBackspace);
    line.press(LineEdit::kDeleteToEnd);
    EXPECT_EQ(line.text(), L"one ");
    line.press(LineEdit::kPrevious);
    EXPECT_EQ(line.text(), L"AttSync");
    line.press(LineEdit::kPrevious);
    line.press(LineEdit::kPrevious);
    EXPECT_EQ(line.text(), L"Ray");
    line.press(LineEdit::kNext);
    line.press(LineEdit::kNext);
    EXPECT_EQ(line.text(), L"one ");  // what was being typed comes back
    line.press(LineEdit::kDeleteWord);
    EXPECT_EQ(line.text(), L"");
    line.press(LineEdit::kLeft);
    line.press(LineEdit::kDelete);
    line.press(LineEdit::kBackspace);
    EXPECT_EQ(line.caret(), 0u);

    // One character is one key press on both platforms.
    LineEdit beyond(history);
    beyond.insert(L"\U0001F600");
    beyond.press(LineEdit::kLeft);
    EXPECT_EQ(beyond.caret(), 0u);
    beyond.press(LineEdit::kDelete);
    EXPECT_EQ(beyond.text(), L"");
}

TEST(Dates, TextsAndJulianDays) {
    EXPECT_EQ(parseDate(L"1970-01-02"), 86400);
    EXPECT_EQ(parseDate(L"2026-03-01 12:30:05"), 1772368205);
    EXPECT_EQ(parseDate(L"2026-03-01T12:30:05"), 1772368205);
    EXPECT_DOUBLE_EQ(julianDate(0), 2440587.5);
    EXPECT_EQ(parseDate(L"2440588.5"), 86400);
    EXPECT_EQ(parseDate(L"1960-01-01"), -315619200);
    for (const wchar_t* bad :
         {L"", L"soon", L"2026-02-30", L"2026-13-01", L"2026-03-01 24:00:00", L"2026-03", L"-5", L"1e99"})
        EXPECT_FALSE(parseDate(bad)) << bad;
}

TEST(Profile, KeepsSettingsInAFile) {
    const std::wstring folder = base::joinPath(base::temporaryFolder(), L"torvelhost_profile_test");
    std::filesystem::remove_all(base::toPath(folder));
    const std::wstring file = base::joinPath(base::joinPath(folder, L"new"), L"profile.ini");
    {
        Profile profile(file);
        profile.save();
        EXPECT_FALSE(base::isFile(file));  // nothing was set
        profile.writeText(L"Dialogs\\EAttEdit", L"Placement", L"1,2\n= [x] \\n \u00e9");
        profile.writeText(L"Dialogs\\EAttEdit", L"Empty", L"");
        profile.writeInteger(L"AttExtDlg", L"Format", -3);
        profile.writeText(L"AttExtDlg", L"Gone", L"x");
        profile.removeKey(L"attextdlg", L"GONE");
        profile.save();
    }
    Profile profile(file);
    CXStringW text;
    std::int32_t number = 0;
    EXPECT_TRUE(profile.readText(L"DIALOGS\\eattedit", L"placement", text));
    EXPECT_EQ(text, L"1,2\n= [x] \\n \u00e9");
    EXPECT_TRUE(profile.readText(L"Dialogs\\EAttEdit", L"Empty", text));
    EXPECT_EQ(text, L"");
    EXPECT_TRUE(profile.readInteger(L"AttExtDlg", L"Format", number));
    EXPECT_EQ(number, -3);
    EXPECT_FALSE(profile.readText(L"AttExtDlg", L"Gone", text));
    EXPECT_FALSE(profile.readInteger(L"Dialogs\\EAttEdit", L"Placement", number));
    profile.removeSection(L"AttExtDlg");
    profile.save();
    EXPECT_FALSE(Profile(file).readInteger(L"AttExtDlg", L"Format", number));
    std::filesystem::remove_all(base::toPath(folder));
}
