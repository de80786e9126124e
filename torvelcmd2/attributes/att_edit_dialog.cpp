#include "torvelcmd2/attributes/att_edit_dialog.h"

#include "base/format.h"
#include "base/text.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {

CAttEditDlgEx::CAttEditDlgEx(ValueRows& rows)
    : ModuleDialog(IDD_ATTEDIT, L"Dialogs\\AttEditDlgEx", L"IDH_AttEdit"),
      rows_(rows),
      undo_(OdDbDatabasePtr(rows.database())),
      places_(kPlaces, CFEdCtrl(rows.database())) {
    // So that the very first change can be taken back too.
    undo_.recordStep();
    setText(IDC_ATTEDIT_BLOCK, rows.blockName());
    setTooltip(IDC_ATTEDIT_BLOCK, rows.blockName());
    for (int place = 0; place < kPlaces; ++place) setRichText(IDC_ATTEDIT_VALUE + place, &places_[place]);
    showPage(0);
    focus(IDC_ATTEDIT_VALUE);
}

CAttEditDlgEx::~CAttEditDlgEx() {
    try {
        undo_.undoTo(0);
    } catch (...) {
        // Out of memory: the host takes its whole command back.
    }
}

// ---- what is shown

void CAttEditDlgEx::showPage(std::size_t page) {
    page_ = page;
    for (int place = 0; place < kPlaces; ++place) showRow(place);
    enable(IDC_ATTEDIT_PREVIOUS, page > 0);
    enable(IDC_ATTEDIT_NEXT, page + 1 < pageCount());
    setText(IDC_ATTEDIT_PAGE, base::formatPositional(loadText(IDS_ATTEDIT_PAGE), std::to_wstring(page + 1),
                                                     std::to_wstring(pageCount())));
}

void CAttEditDlgEx::showRow(int place) {
    const std::size_t row = rowAt(place);
    const bool used = row < rows_.count();
    const OdString label = used ? rows_.label(row) : OdString();
    const OdString refusal = used ? rows_.refusal(row) : OdString();
    const bool multiLine = used && rows_.isMultiLine(row), editable = used && refusal.empty();
    setText(IDC_ATTEDIT_LABEL + place, label);
    setTooltip(IDC_ATTEDIT_LABEL + place, label);
    setTooltip(IDC_ATTEDIT_VALUE + place, refusal);
    enable(IDC_ATTEDIT_LABEL + place, editable);
    enable(IDC_ATTEDIT_VALUE + place, editable);
    enable(IDC_ATTEDIT_EDITOR + place, editable && multiLine);
    // Several lines are edited by the text editor alone.
    setReadOnly(IDC_ATTEDIT_VALUE + place, multiLine);
    places_[place].setReadOnly(multiLine);
    showValue(place);
}

void CAttEditDlgEx::showValue(int place) {
    CFEdCtrl& control = places_[place];
    if (rowAt(place) < rows_.count())
        rows_.show(rowAt(place), control);
    else
        control.value().clear();
    control.markFound();
    refreshRichText(IDC_ATTEDIT_VALUE + place);
    setModified(IDC_ATTEDIT_VALUE + place, false);
}

// ---- what is written

void CAttEditDlgEx::write(int place) {
    const CFEdCtrl& control = places_[place];
    if (!isModified(IDC_ATTEDIT_VALUE + place) || !control.isChanged()) return;
    change(place, [&, this] { rows_.save(rowAt(place), control); });
}

void CAttEditDlgEx::editMultiLine() {
    focus(IDC_ATTEDIT_VALUE + edited_);
    change(edited_, [this] {
        const MultiLineEdit edit = rows_.edit(rowAt(edited_));
        if (edit.value) rows_.save(rowAt(edited_), *edit.value);
    });
}

// What the drawing refuses is told, and the other values stay.
void CAttEditDlgEx::change(int place, const std::function<void()>& make) {
    const HostLocalUndo::step step(undo_);
    try {
        make();
    } catch (const OdError& error) {
        undo_.undo();
        showBox(hostapi::kErrorBox, base::fromUtf8(error.what()));
    }
    showValue(place);
}

// ---- what the user does

bool CAttEditDlgEx::onLeave(int control, int next) {
    const int place = control - IDC_ATTEDIT_VALUE;
    if (place >= 0 && place < kPlaces && next != dialogs::kCancelButton) write(place);
    return true;
}

// Values are typed from the first row on.
void CAttEditDlgEx::turnTo(std::size_t page) {
    showPage(page);
    focus(IDC_ATTEDIT_VALUE);
    selectAll(IDC_ATTEDIT_VALUE);
}

void CAttEditDlgEx::onCommand(int control, dialogs::Event event) {
    if (event != dialogs::Event::kPressed) return;
    if (control == IDC_ATTEDIT_PREVIOUS) return turnTo(page_ - 1);
    if (control == IDC_ATTEDIT_NEXT) return turnTo(page_ + 1);
    edited_ = control - IDC_ATTEDIT_EDITOR;
    end(kEditMultiLine);
}

}  // namespace torvel
