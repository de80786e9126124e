// Templates as the resource compiler writes them, and damaged ones.
#include <gtest/gtest.h>

#include "base/resources.h"
#include "dialogs/dialog_template.h"
#include "dialogs_test.h"

using namespace dialogs;

namespace {

base::ResourceBytes fieldsTemplate() {
    return base::findResource(base::processImage(), base::kDialogResource, IDD_FIELDS);
}

TEST(DialogTemplate, HasTheControlsInTheirOrder) {
    const DialogTemplate dialog = readDialogTemplate(fieldsTemplate());
    EXPECT_EQ(dialog.caption, L"Fields & more");
    EXPECT_EQ(dialog.place.width, 280);
    EXPECT_EQ(dialog.place.height, 220);
    const struct {
        int id;
        ControlKind kind;
        const wchar_t* caption;
    } kExpected[] = {
        {-1, ControlKind::kLabel, L"&Tag:"},           {IDC_TAG, ControlKind::kEdit, L""},
        {-1, ControlKind::kLabel, L"Text h&eight:"},   {IDC_HEIGHT, ControlKind::kEdit, L""},
        {IDC_PICK, ControlKind::kPictureButton, L"<"}, {IDC_INVISIBLE, ControlKind::kCheck, L"&Invisible"},
        {IDC_LEFT, ControlKind::kRadio, L"Left"},      {IDC_MIDDLE, ControlKind::kRadio, L"Middle"},
        {IDC_RIGHT, ControlKind::kRadio, L"Right"},    {-1, ControlKind::kLabel, L"Style:"},
        {IDC_STYLE, ControlKind::kCombo, L""},         {-1, ControlKind::kLabel, L"Layer:"},
        {IDC_LAYER, ControlKind::kEditCombo, L""},     {-1, ControlKind::kLabel, L"&Value:"},
        {IDC_VALUE, ControlKind::kRichEdit, L""},      {IDC_MORE, ControlKind::kButton, L"..."},
        {IDC_LIST, ControlKind::kListView, L""},       {-1, ControlKind::kGroup, L"First point"},
    };
    ASSERT_GT(dialog.controls.size(), std::size(kExpected));
    for (std::size_t i = 0; i < std::size(kExpected); ++i) {
        EXPECT_EQ(dialog.controls[i].id, kExpected[i].id) << i;
        EXPECT_EQ(dialog.controls[i].kind, kExpected[i].kind) << i;
        EXPECT_EQ(dialog.controls[i].caption, kExpected[i].caption) << i;
    }
    EXPECT_EQ(dialog.controls[1].place.x, 60);
    EXPECT_EQ(dialog.controls[1].place.width, 70);
    const DialogTemplate tabs =
        readDialogTemplate(base::findResource(base::processImage(), base::kDialogResource, IDD_TABS));
    EXPECT_EQ(tabs.controls.at(0).kind, ControlKind::kTab);
}

TEST(DialogTemplate, CutShortAnywhereIsRefused) {
    const base::ResourceBytes whole = fieldsTemplate();
    for (std::size_t size = 0; size + 4 < whole.size(); size += 2) {
        // In a buffer of just that size, where the sanitizer sees every byte too far.
        const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_THROW(readDialogTemplate(cut), std::runtime_error) << size;
    }
}

}  // namespace
