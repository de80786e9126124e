// The Enhanced Attribute Editor under real mouse and keys.
#include "tests/dialogs/real_input.h"
#include "tests/eattedit/sign.h"
#include "torvelcmd2/attmanager/eatt_edit_dialog.h"

namespace {

class EditorWindow : public testing::Test {
  protected:
    EditorWindow() { EXPECT_TRUE(dialog_.load(sign_.id, {})); }

    const dialogs::Dialog& page(std::size_t index) {
        for (const auto& control : dialog_.controls())
            if (control->id() == IDC_EATTEDIT_TAB) return *control->pages[index];
        throw std::logic_error("there is no tab");
    }
    // From the first field of a page, to which Tab leads from the tab control.
    void toNextPage() {
        input_.press(Key::kTab, Held::kShift);
        input_.press(Key::kRight);
    }
    int run() {
        int code = 0;
        input_.during([&] { code = dialog_.runModal(); });
        return code;
    }

    const OwnDesktop desktop_;
    const dialogs::ResourceScope resources_{base::processImage()};
    Sign sign_;
    torvel::CEAttEditDlg dialog_{*sign_.database};
    RealInput input_;
};

TEST_F(EditorWindow, ValuesRowByRow) {
    input_.press(Key::kDown);  // the list has the focus
    input_.pressWith(Held::kAlt, 'V');
    input_.type("SECOND");
    input_.clickItem(page(0), IDC_EATTEDIT_LIST, 0);
    input_.click(page(0), IDC_EATTEDIT_VALUE);
    input_.pressWith(Held::kControl, 'A');
    input_.type("FIRST");
    input_.pressWith(Held::kAlt, 'A');  // Apply
    input_.clickItem(page(0), IDC_EATTEDIT_LIST, 1);
    input_.pressWith(Held::kAlt, 'V');
    input_.type("LOST");
    input_.press(Key::kEscape);
    EXPECT_EQ(run(), dialogs::kCancelButton);
    EXPECT_EQ(sign_.attribute(0)->textString(), L"first");
    EXPECT_EQ(sign_.attribute(1)->textString(), L"second");
}

TEST_F(EditorWindow, ANumberThatDoesNotSuitKeepsTheFocus) {
    std::vector<int> focused;
    const auto look = [&] { focused.push_back(const_cast<dialogs::Dialog&>(page(1)).focused()); };
    toNextPage();
    input_.pressWith(Held::kAlt, 'W');
    input_.then(look);
    input_.type("0");
    input_.press(Key::kTab);
    input_.then(look);
    input_.click(page(1), IDC_TEXT_HEIGHT);
    input_.then(look);
    input_.click(page(1), IDC_TEXT_BACKWARDS);
    input_.then(look);
    input_.click(dialog_, IDC_EATTEDIT_SELECT);
    input_.then(look);
    input_.press(Key::kEnter);
    input_.then(look);
    input_.type("2");  // over the whole text
    input_.click(page(1), IDC_TEXT_BACKWARDS);
    input_.then(look);
    input_.pressWith(Held::kAlt, 'O');
    input_.type("1");
    input_.press(Key::kEnter);
    EXPECT_EQ(run(), dialogs::kOkButton);
    constexpr int kFactor = IDC_TEXT_WIDTH_FACTOR;
    EXPECT_EQ(focused, (std::vector<int>{kFactor, kFactor, kFactor, kFactor, kFactor, kFactor, IDC_TEXT_BACKWARDS}));
    EXPECT_EQ(sign_.attribute(0)->widthFactor(), 2);
    EXPECT_EQ(sign_.attribute(0)->oblique(), 1);
    EXPECT_TRUE(sign_.attribute(0)->isMirroredInX());
}

TEST_F(EditorWindow, ChoicesByKeys) {
    toNextPage();
    input_.pressWith(Held::kAlt, 'J');
    for (int row = 0; row < 3; ++row) input_.press(Key::kDown);  // past Align and Fit, which give no place
    input_.press(Key::kTab, Held::kShift);                       // the text style
    toNextPage();
    input_.pressWith(Held::kAlt, 'W');
    input_.type("5");
    input_.pressWith(Held::kAlt, 'C');
    input_.type("RED");
    input_.pressWith(Held::kAlt, 'S');
    input_.press(Key::kDown);
    input_.click(dialog_, dialogs::kOkButton);
    EXPECT_EQ(run(), dialogs::kOkButton);
    EXPECT_EQ(sign_.attribute(0)->color(), OdCmColor::fromRgb(255, 0, 0));
    EXPECT_EQ(sign_.attribute(0)->lineweight(), 211);
}

TEST_F(EditorWindow, TheButtonsEndItForAPick) {
    input_.pressWith(Held::kAlt, 'B');
    EXPECT_EQ(run(), torvel::CEAttEditDlg::kSelectBlock);
    input_ = {};
    input_.click(dialog_, IDC_EATTEDIT_PICK);
    EXPECT_EQ(run(), torvel::CEAttEditDlg::kSelectBlock);
    input_ = {};
    input_.clickItem(page(0), IDC_EATTEDIT_LIST, 2);
    input_.click(page(0), IDC_EATTEDIT_EDITOR);
    EXPECT_EQ(run(), torvel::CEAttEditDlg::kEditMultiLine);
}

}  // namespace
