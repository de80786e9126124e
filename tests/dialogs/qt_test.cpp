// What Qt's maker alone has: file dialogs as requests want them, pictures of two kinds, and the host's window that owns
// dialogs.
#include <filesystem>
#include <gmock/gmock.h>
#include <QFileDialog>
#include <QWidget>

#include "base/files.h"
#include "base/modules.h"
#include "base/paths.h"
#include "dialogs/qt/file_request.h"
#include "dialogs_test.h"
#include "tests/dialogs/real_input.h"
#include "tests/dialogs/script_lines.h"

using namespace dialogs;

namespace {

TEST(FileRequests, FiltersNameTheirPatterns) {
    EXPECT_EQ(nameFilters(L"Tables (*.tbl)|*.tbl;*.csv|All files (*.*)|*.*||"),
              QStringList({"Tables (*.tbl *.csv)", "All files (*)"}));
    EXPECT_EQ(nameFilters(L"Texts|*.txt||"), QStringList({"Texts (*.txt)"}));
    EXPECT_EQ(nameFilters(L""), QStringList());
}

TEST(FileRequests, AFileDialogIsWhatTheRequestWants) {
    const OwnDesktop desktop;
    FileRequest request;
    request.mustExist = true;
    request.fileName = L"*.txt";  // a pattern, not a name
    QFileDialog open;
    open.setOption(QFileDialog::DontUseNativeDialog);
    prepareFileDialog(open, request);
    EXPECT_EQ(open.acceptMode(), QFileDialog::AcceptOpen);
    EXPECT_EQ(open.fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(open.findChild<QWidget*>("fileNameEdit")->property("text").toString(), "");

    request = {};
    request.save = true;
    request.title = L"Output file";
    request.fileName = L"parts.csv";
    request.defaultExtension = L"*.csv";
    QFileDialog save;
    save.setOption(QFileDialog::DontUseNativeDialog);
    prepareFileDialog(save, request);
    EXPECT_EQ(save.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(save.windowTitle(), "Output file");
    EXPECT_EQ(save.defaultSuffix(), "csv");
    EXPECT_TRUE(save.testOption(QFileDialog::DontConfirmOverwrite));
    EXPECT_EQ(save.findChild<QWidget*>("fileNameEdit")->property("text").toString(), "parts.csv");
}

TEST(Pictures, AreOfTheKindThatTheirNameSays) {
    ScriptLines script;
    ASSERT_TRUE(useWindows(&script));
    {
        const ResourceScope resources(base::processImage());
        Dialog dialog(IDD_FIELDS);
        script.lines = {"picture qt_test.png", "picture qt_test.bmp", "close"};
        dialog.runModal();
    }
    useStandard();
    const std::wstring png = L"qt_test.png", bmp = L"qt_test.bmp";
    EXPECT_EQ(base::readFile(png).view().substr(1, 3), "PNG");
    EXPECT_EQ(base::readFile(bmp).view().substr(0, 2), "BM");
    std::filesystem::remove(base::toPath(png));
    std::filesystem::remove(base::toPath(bmp));
}

TEST(Owners, TheHostsWindowOwnsADialogAndThatOneTheNext) {
    const OwnDesktop desktop;
    const ResourceScope resources(base::processImage());
    QWidget host;
    host.setGeometry(100, 50, 600, 400);
    host.show();
    useMainWindow(&host);
    Dialog outer(IDD_FIELDS), inner(IDD_TABS);
    const auto windowOf = [](const Dialog& dialog) { return static_cast<QWidget*>(dialog.window()); };
    const QWidget* ownerOfOuter = nullptr;
    bool innerIsOuters = false, isCentered = false, hostIsActive = false;
    RealInput input;
    input.then([&] {
        ownerOfOuter = windowOf(outer)->parentWidget();
        const QPoint away = windowOf(outer)->frameGeometry().center() - host.frameGeometry().center();
        isCentered = away.manhattanLength() <= 10;
        RealInput more;
        more.then([&] {
            innerIsOuters = windowOf(inner)->parentWidget() == windowOf(outer);
            {
                const HiddenWindows hidden;
                hostIsActive = host.isActiveWindow() && !windowOf(outer)->isVisible();
            }
            inner.end(kOkButton);
        });
        more.during([&] { inner.runModal(); });
        outer.end(kOkButton);
    });
    input.during([&] { outer.runModal(); });
    useMainWindow(nullptr);
    EXPECT_EQ(ownerOfOuter, &host);
    EXPECT_TRUE(innerIsOuters);
    EXPECT_TRUE(isCentered);
    EXPECT_TRUE(hostIsActive);
}

}  // namespace
