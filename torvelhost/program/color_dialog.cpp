#include "torvelhost/program/color_dialog.h"

#include "base/text.h"
#include "dialogs/boxes.h"
#include "dialogs/process.h"
#include "torvelhost/resources/resource.h"

namespace host {
namespace {

constexpr int kLastIndex = 255;
constexpr wchar_t kWanted[] =
    L" is no colour; give a number from 1 to 255, a name, three numbers \"red,green,blue\", ByLayer or ByBlock";

}  // namespace

ColorDialog::ColorDialog(const OdCmColor& color) : Dialog(IDD_COLOR), color_(color) {
    for (int index = 1; index <= kLastIndex; ++index) {
        const OdCmColor listed = OdCmColor::fromIndex(index);
        const int choice = addChoice(IDC_COLOR_LIST, listed.colorNameForDisplay(), index);
        setSwatch(IDC_COLOR_LIST, choice, listed.rgb());
    }
    setText(IDC_COLOR_NAME, color.colorNameForDisplay());
    if (color.isByIndex()) select(IDC_COLOR_LIST, color.colorIndex() - 1);
}

void ColorDialog::onCommand(int control, dialogs::Event event) {
    if (control == IDC_COLOR_LIST && event == dialogs::Event::kChosen)
        setText(IDC_COLOR_NAME, choiceText(IDC_COLOR_LIST, selected(IDC_COLOR_LIST)));
}

void ColorDialog::onDoubleClick(int, int) { onOk(); }

void ColorDialog::onOk() {
    const auto color = OdCmColor::fromDisplayName(text(IDC_COLOR_NAME));
    if (!color) {
        dialogs::messageBox(dialogs::BoxKind::kWarning, L"\"" + text(IDC_COLOR_NAME) + L"\"" + kWanted + L".");
        focus(IDC_COLOR_NAME);
        return selectAll(IDC_COLOR_NAME);
    }
    color_ = *color;
    end(dialogs::kOkButton);
}

bool chooseColor(OdCmColor& color) {
    if (dialogs::asksLines()) {
        while (const auto line = dialogs::askLine(L"Color")) {
            if (const auto chosen = OdCmColor::fromDisplayName(*line)) {
                color = *chosen;
                return true;
            }
            dialogs::refuseLine(L"\"" + *line + L"\"" + kWanted);
        }
        return false;
    }
    const dialogs::ResourceScope resources(base::moduleOf(reinterpret_cast<const void*>(&chooseColor)));
    ColorDialog dialog(color);
    dialogs::OneAnswer answer;
    if (dialog.runModal() != dialogs::kOkButton) return false;
    color = dialog.color();
    answer.tell(color.colorNameForDisplay());
    return true;
}

}  // namespace host
