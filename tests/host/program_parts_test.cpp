// The command line, what Tab makes of a line, dates, and the settings store.

#include <filesystem>
#include <gtest/gtest.h>

#include "base/files.h"
#include "base/paths.h"
#include "torvelhost/lines/completion.h"
#include "torvelhost/lines/terminal.h"
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

TEST(Completion, OfLinesAndFiles) {
    const std::vector<std::wstring> lines = {L"AttSync", L"AttExt", L"press OK", L"press Cancel", L"Tag = "};
    EXPECT_EQ(complete(L"atts", lines).text, L"AttSync");
    EXPECT_TRUE(complete(L"atts", lines).among.empty());
    EXPECT_EQ(complete(L"aT", lines).text, L"Att");
    EXPECT_EQ(complete(L"aT", lines).among, (std::vector<std::wstring>{L"AttExt", L"AttSync"}));
    EXPECT_EQ(complete(L"pr", lines).text, L"press ");
    EXPECT_EQ(complete(L"nothing of this name", lines).text, L"nothing of this name");

    const std::wstring folder = base::joinPath(base::temporaryFolder(), L"torvelhost_completion_test");
    std::filesystem::remove_all(base::toPath(folder));
    std::filesystem::create_directories(base::toPath(base::joinPath(folder, L"lists")));
    base::writeFile(base::joinPath(folder, L"doors.txt"), "");
    base::writeFile(base::joinPath(folder, L"doors \u00e9.txt"), "");
    const std::wstring front = folder + base::pathSeparator();
    EXPECT_EQ(complete(L"Tag = " + front + L"l", lines).text, L"Tag = " + front + L"lists" + base::pathSeparator());
    EXPECT_EQ(complete(front + L"do", {}).text, front + L"doors");
    EXPECT_EQ(complete(front + L"do", {}).among.size(), 2u);
    EXPECT_EQ(complete(front + L"doors.", {}).text, front + L"doors.txt");
    std::filesystem::remove_all(base::toPath(folder));
}

TEST(Terminal, ControlCharactersBecomeSigns) {
    EXPECT_EQ(visible(L"a\tb\n\u00e9\U0001F600"), L"a\tb\n\u00e9\U0001F600");
    EXPECT_EQ(visible(L"\x1b]0;x\a\r\x7f"), L"^[]0;x^G^M^?");
    EXPECT_EQ(visible(L"\x9b"
                      L"31m"),
              L"\uFFFD31m");
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
    // A place that cannot be written is told of once, not after every command.
    Profile nowhere(base::joinPath(file, L"profile.ini"));
    nowhere.writeText(L"AttExtDlg", L"Format", L"1");
    EXPECT_THROW(nowhere.save(), base::FileError);
    EXPECT_NO_THROW(nowhere.save());
    EXPECT_FALSE(Profile(file).readInteger(L"AttExtDlg", L"Format", number));

    // First settings are those of a file that is not there, and go into it; a file that is there has its own.
    const std::wstring another = base::joinPath(folder, L"another.ini");
    for (const wchar_t* first : {L"[List]\nWidth=3\n", L"[List]\nWidth=4\nHeight=5\n"}) {
        Profile fresh(another, first);
        EXPECT_TRUE(fresh.readInteger(L"List", L"Width", number));
        EXPECT_EQ(number, 3);
        EXPECT_FALSE(fresh.readInteger(L"List", L"Height", number));
        fresh.writeInteger(L"Else", L"Key", 1);
        fresh.save();
    }
    std::filesystem::remove_all(base::toPath(folder));
}
