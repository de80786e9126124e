// The dialog under real mouse and keys.
#include <optional>

#include "base/files.h"
#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "tests/dialogs/real_input.h"
#include "torvelcmd2/attributes/att_edit_dialog.h"
#include "torvelcmd2/resources/resource.h"

using torvel::AttributeRows;
using torvel::CAttEditDlgEx;

namespace {

constexpr int valueAt(int place) { return IDC_ATTEDIT_VALUE + place; }

class AttEditWindow : public testing::Test {
  protected:
    static constexpr std::uint64_t kFirst = 0x42;  // the handles of the others follow

    std::string value(std::uint64_t number) const {
        return base::toUtf8(database_->getObjectId(OdDbHandle(kFirst + number)).openAs<OdDbAttribute>()->textString());
    }
    std::vector<std::string> firstValues() const { return {value(0), value(1), value(2), value(3)}; }

    OdDbDatabasePtr database_ = OdDbDatabase::readFile(base::fromUtf8(TORVEL_SOURCE_DIR "/tests/attedit/pages.dxf"));
    OdSmartPtr<OdDbBlockReference> reference_ = database_->getObjectId(OdDbHandle(0x40)).openAs<OdDbBlockReference>();
    const OwnDesktop desktop_;
    const dialogs::ResourceScope resources_{base::processImage()};
    AttributeRows rows_{*reference_};
    std::optional<CAttEditDlgEx> dialog_{std::in_place, rows_};
    RealInput input_;
};

TEST_F(AttEditWindow, ValuesAreWrittenWhenTheirFieldsAreLeft) {
    using Values = std::vector<std::string>;
    std::vector<Values> seen;
    const auto look = [&] { input_.then([&] { seen.push_back(firstValues()); }); };
    bool meetsLabel = false, meetsPage = true;
    input_.then([&] {
        meetsLabel = hand::meets(*dialog_, IDC_ATTEDIT_LABEL + 5);
        meetsPage = hand::meets(*dialog_, IDC_ATTEDIT_PAGE);
    });
    input_.pressWith(Held::kControl, 'A');
    input_.type("ONE");
    input_.press(Key::kHelp);  // leaves nothing
    look();
    input_.press(Key::kTab);  // past the button of a value of one line
    input_.type("TWO");       // over the whole value
    look();
    input_.click(*dialog_, valueAt(3));
    look();
    input_.press(Key::kEnd);
    input_.type("X");
    input_.click(*dialog_, IDC_ATTEDIT_NEXT);
    look();
    input_.type("EIGHT");  // in the first row of the next page, over its value
    input_.pressWith(Held::kAlt, 'N');
    input_.type("LAST");
    input_.pressWith(Held::kAlt, 'N');  // there is no further page
    input_.press(Key::kEnter);
    int code = 0;
    input_.during([&] { code = dialog_->runModal(); });
    EXPECT_EQ(code, dialogs::kOkButton);
    EXPECT_TRUE(meetsLabel) << "a prompt has a tooltip";
    EXPECT_FALSE(meetsPage);
    const std::string first = "C:\\Plans", second = "%%c12", third = "no prompt", fourth = "3 & 4";
    EXPECT_EQ(seen, (std::vector<Values>{{first, second, third, fourth},
                                         {"one", second, third, fourth},
                                         {"one", "two", third, fourth},
                                         {"one", "two", third, fourth + "x"}}));
    EXPECT_EQ(value(8), "eight");
    EXPECT_EQ(value(16), "last");
}

TEST_F(AttEditWindow, EscapeTakesAllOfItBack) {
    const std::string before = database_->writeBytes();
    input_.pressWith(Held::kControl, 'A');
    input_.type("ONE");
    input_.click(*dialog_, valueAt(1));
    input_.type("TWO");
    input_.click(*dialog_, IDC_ATTEDIT_NEXT);
    input_.type("THREE");
    input_.press(Key::kEscape);
    int code = 0;
    input_.during([&] { code = dialog_->runModal(); });
    EXPECT_EQ(code, dialogs::kCancelButton);
    dialog_.reset();
    EXPECT_TRUE(database_->writeBytes() == before);
}

}  // namespace
