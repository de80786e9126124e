// The text editor: single-line and multi-line texts, on behalf of a command that has loaded this module for the call.
//
// A script, and a person at the command line, give one line as the whole new contents; windows show a dialog.
#include "dialogs/boxes.h"
#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "drawingdb/mtext.h"
#include "drawingdb/text.h"
#include "hostapi/input.h"
#include "torvelhost/modules/host_services.h"
#include "torvelhost/modules/text_editor/editor_dialogs.h"

namespace {

using texteditor::FieldText;
using texteditor::Sheet;

// Enter accepts what is there, and a cancel leaves the text alone.
bool askLine(HostEdInput& input, OdString& contents) {
    const OdString prompt = L"Enter text <" + contents + L">";
    OdString answer;
    const int result = input.getKeyword(prompt.c_str(), L"", 0, reinterpret_cast<std::uintptr_t>(&answer), 0);
    if (result == hostapi::kValue) contents = answer;
    return result == hostapi::kValue || result == hostapi::kEmpty;
}

bool wantsFullEditor() {
    auto* const integer = base::findFunction(hostapi::getIntegerVariable);
    std::int64_t value = 0;
    return integer && integer(L"ATTIPE", value) && value == 1;
}

bool editSheet(HostEdInput* input, Sheet& sheet) {
    if (!dialogs::asksLines()) return texteditor::editLines(sheet);
    return input && askLine(*input, sheet.contents.text);
}

// What is the same is not written.
void write(const FieldText& before, const FieldText& after, OdDbEntity& text) {
    if (after.text == before.text) return;
    text.upgradeOpen();
    texteditor::setContents(text, after);
}

}  // namespace

extern "C" {

bool editMText(OdDbMText& text, const wchar_t*) {
    HostDocument* const document = hostmodule::activeDocument();
    const Sheet before{texteditor::contentsOf(text), text.width()};
    Sheet sheet = before;
    if (!editSheet(document ? document->input() : nullptr, sheet)) return false;
    write(before.contents, sheet.contents, text);
    if (sheet.width != before.width) {
        text.upgradeOpen();
        text.setWidth(sheet.width);
    }
    return true;
}

bool newMTextAtt(HostDocument* document, OdDbObjectId style, const wchar_t* text, double width, bool onScreen,
                 OdSmartPtr<OdDbMText>& made) {
    if (!document) return false;
    Sheet sheet{{text ? text : L"", {}}, width};
    if (!editSheet(document->input(), sheet)) return false;
    OdDbObjectId space;
    if (auto* const activeSpace = base::findFunction(hostapi::getActiveBTRId)) activeSpace(space, document->database());
    if (!space) return false;
    // A person points at nothing here: the last point is where the user was.
    OdGePoint3d location;
    auto* const point = base::findFunction(hostapi::getPointVariable);
    if (onScreen && point) point(L"LASTPOINT", location);
    const auto created = OdDbMText::createObject();
    created->setDatabaseDefaults(document->database());
    if (style) created->setTextStyle(style);
    created->setLocation(location);
    created->setWidth(sheet.width);
    space.openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(created.get());
    texteditor::setContents(*created, sheet.contents);
    made = created;
    return true;
}

bool editText(OdDbText& text, HostEdInput& input) {
    const FieldText before = texteditor::contentsOf(text);
    FieldText after = before;
    const bool accepted =
        dialogs::asksLines() ? askLine(input, after.text) : texteditor::editLine(after, wantsFullEditor());
    if (accepted) write(before, after, text);
    return accepted;
}

}  // extern "C"

// The table of services and the functions say the same.
static_assert(hostapi::fits(hostapi::editMText, &editMText));
static_assert(hostapi::fits(hostapi::newMTextAtt, &newMTextAtt));
static_assert(hostapi::fits(hostapi::editText, &editText));
