#include "base/paths.h"

#include <gtest/gtest.h>

#include "base/temporary_folder.h"
#include "base/text.h"

namespace {

// The cases are written with the slash, which both platforms accept; results are compared with it too.
std::wstring withSlashes(std::wstring_view path) {
    return base::replaceAll(path, std::wstring(1, base::pathSeparator()), L"/");
}

TEST(Paths, Pieces) {
    const struct {
        const wchar_t* path;
        const wchar_t* folder;
        const wchar_t* name;
        const wchar_t* stem;
        const wchar_t* extension;
    } cases[] = {
        {L"plan.dxf", L"", L"plan.dxf", L"plan", L".dxf"},
        {L"a/b/plan.old.dxf", L"a/b", L"plan.old.dxf", L"plan.old", L".dxf"},
        {L"/plan", L"/", L"plan", L"plan", L""},
        {L"a.b/plan", L"a.b", L"plan", L"plan", L""},
        {L"a/.profile", L"a", L".profile", L".profile", L""},
        {L"a/", L"a", L"", L"", L""},
        {L"", L"", L"", L"", L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(base::toUtf8(c.path));
        EXPECT_EQ(base::folderOf(c.path), c.folder);
        EXPECT_EQ(base::fileNameOf(c.path), c.name);
        EXPECT_EQ(base::stemOf(c.path), c.stem);
        EXPECT_EQ(base::extensionOf(c.path), c.extension);
    }
}

TEST(Paths, Join) {
    EXPECT_EQ(withSlashes(base::joinPath(L"a", L"b")), L"a/b");
    EXPECT_EQ(withSlashes(base::joinPath(L"a/", L"b")), L"a/b");
    EXPECT_EQ(base::joinPath(L"", L"b"), L"b");
    EXPECT_EQ(base::joinPath(L"a", L"/b"), L"/b");
    EXPECT_EQ(base::splitSearchPath(L"a; b/c ;;d"), (std::vector<std::wstring>{L"a", L"b/c", L"d"}));
}

TEST(Paths, QuestionsToTheSystem) {
    const base::TemporaryFolder folder;
    EXPECT_TRUE(base::isFolder(folder.path()));
    EXPECT_FALSE(base::isFile(folder.path()));
    EXPECT_FALSE(base::isFolder(folder / L"missing"));
    EXPECT_TRUE(base::isAbsolutePath(base::currentFolder()));
    EXPECT_EQ(base::absolutePath(base::joinPath(folder.path(), L"x/../y")), folder / L"y");
    EXPECT_EQ(base::absolutePath(L"y"), base::joinPath(base::currentFolder(), L"y"));
    EXPECT_TRUE(base::isAbsolutePath(base::userSettingsFolder()));
    EXPECT_TRUE(base::environmentVariable(L"PATH").has_value());
    EXPECT_FALSE(base::environmentVariable(L"NO_SUCH_VARIABLE_HERE").has_value());
}

}  // namespace
