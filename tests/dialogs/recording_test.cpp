// What the user does is told as lines that do the same again.
#include <gmock/gmock.h>

#include "dialogs/form_names.h"
#include "dialogs/run.h"
#include "tests/dialogs/each_maker.h"
#include "tests/dialogs/fields_dialog.h"

using testing::ElementsAre;

namespace {

// What all controls hold, and the runs that are left.
std::string stateOf(Fields& dialog) {
    std::wstring state = std::to_wstring(dialog.value.runs().size());
    for (const auto& control : dialog.controls())
        state += L"|" + control->text + L" " + std::to_wstring(control->selected) + (control->checked ? L" x" : L"");
    return base::toUtf8(state);
}

class Recorded : public EachMaker {
  protected:
    void TearDown() override {
        useRecorder(nullptr);
        EachMaker::TearDown();
    }

    // What is told of a run that these lines work.
    std::vector<std::string> record(Dialog& dialog, std::deque<std::string> lines) {
        std::vector<std::string> told;
        useRecorder([&](std::wstring_view line) { told.push_back(base::toUtf8(line)); });
        script_.lines = std::move(lines);
        script_.printed.clear();
        dialog.runModal();
        useRecorder(nullptr);
        EXPECT_TRUE(script_.lines.empty()) << "left over: " << script_.lines.front();
        return told;
    }
    void replay(Dialog& dialog, const std::vector<std::string>& told) {
        script_.lines.assign(told.begin(), told.end());
        dialog.runModal();
        EXPECT_TRUE(script_.lines.empty()) << "left over: " << script_.lines.front();
    }

    ResourceScope resources_{base::processImage()};
};
INSTANTIATE_TEST_SUITE_P(Makers, Recorded, EachMaker::all(), EachMaker::name);

}  // namespace

TEST_P(Recorded, ActionsBecomeTheLinesOfAScript) {
    const struct {
        std::deque<std::string> lines;
        std::vector<std::string> told;
    } kCases[] = {
        // Typing grows into one line, and says where the focus went.
        {{"type Tag: DO", "type Tag: OR", "key Tab", "key Tab", "Style = ROMANS", "key Tab", "Layer = x", "press OK"},
         {"Tag = DOOR", "key Tab", "key Tab", "Style = ROMANS", "Layer = x", "press OK"}},
        {{"Tag = \" x \"", "Tag = \"\"x\"\"", "Tag =", "close"}, {"Tag =", "close"}},
        {{"Tag = \" x \"", "close"}, {"Tag = \" x \"", "close"}},
        {{"Second point/X = 1", "X = 2", "X(2) = 3", "press OK"},
         {"Second point/X = 1", "X = 2", "Second point/X = 3", "press OK"}},
        {{"check Invisible", "check Invisible", "uncheck Invisible", "key Alt+I", "close"},
         {"check Invisible", "uncheck Invisible", "check Invisible", "close"}},
        {{"check Left", "key Right", "key Enter"}, {"check Left", "check Middle", "key Enter"}},
        {{"Style = ROMANS", "key Down", "key Escape"}, {"Style = ROMANS", "Style = My style", "key Escape"}},
        // A text that is typed is no choice, though it stands in the list.
        {{"Layer = WALLS", "caret Layer 5", "key Backspace", "type Layer: s", "close"},
         {"Layer = WALLS", "focus Layer", "key Ctrl+A", "type Layer: WALLs", "close"}},
        {{"row WIDTH", "row \"3\"", "row 3", "double row 2", "Colors = green", "close"},
         {"list = WIDTH", "focus list", "double row 3", "Colors = green", "close"}},
        {{"Note = one", "key Enter", "type Note: two", "key Enter", "close"},
         {"Note = one", "key Enter", "type Note: two", "key Enter", "close"}},
        {{"menu list: Move Up", "key F1", "press Help", "close"},
         {"menu list: Move Up", "key F1", "press Help", "close"}},
        // Where there are runs the place matters.
        {{"type Value: a", "type Value: b", "caret Value 9", "key Backspace", "key Delete", "close"},
         {"caret Value 0", "type Value: ab", "caret Value 10", "key Backspace", "caret Value 8", "key Delete",
          "close"}},
        {{"caret Value 6 8", "key Ctrl+X", "key Home", "key Ctrl+V", "close"},
         {"caret Value 6 8", "key Ctrl+X", "caret Value 0", "key Ctrl+V", "close"}},
        {{"menu Value: Clear", "type Value: plain", "close"},
         {"caret Value 0", "menu Value: Clear", "Value = plain", "close"}},
        // A click that only moves the focus.
        {{"caret Tag 0", "caret Text height 0", "close"}, {"focus Text height", "close"}},
    };
    for (const auto& [lines, told] : kCases) {
        Fields dialog, again;
        EXPECT_EQ(record(dialog, lines), told);
        replay(again, told);
        EXPECT_EQ(stateOf(again), stateOf(dialog));
    }
}

TEST_P(Recorded, WhatIsRefusedIsToldToo) {
    Fields dialog;
    dialog.refuseLeaving = IDC_TAG;
    const std::deque<std::string> lines = {"Tag = A", "press Help", "check Left",    "Style = ROMANS",
                                           "key Tab", "key Enter",  "Note = unseen", "press Cancel"};
    EXPECT_THAT(record(dialog, lines), ElementsAre("Tag = A", "press Help", "check Left", "focus Style", "key Tab",
                                                   "key Enter", "focus Note", "press Cancel"));
}

TEST_P(Recorded, BoxesAreToldByTheirAnswers) {
    Fields dialog;
    dialog.boxWhenLeaving = IDC_TAG;
    dialog.nested = [&](Fields& outer) {
        EXPECT_EQ(openTitle(), L"Fields & more");
        messageBox(BoxKind::kYesNoCancel, L"Sure?", L"Question");
        askFile({});
        Fields inner;
        inner.runModal();
        outer.end(kOkButton);
    };
    const std::vector<std::string> told =
        record(dialog, {"Tag = A", "press Nested", "press Nested", "no", "", "Tag = B", "close"});
    // The first press was dropped for a box.
    EXPECT_THAT(told, ElementsAre("Tag = A", "focus Nested", "press Nested", "no", "", "Tag = B", "close"));
    EXPECT_EQ(openTitle(), L"");
}

TEST_P(Recorded, EveryControlIsFoundByTheNameItIsToldBy) {
    Fields dialog;
    int found = 0;
    dialog.nested = [&](Fields& open) {
        for (Control* control : open.run()->shownControls()) {
            if (!control->takesFocus()) continue;
            const auto takesFocus = [](const Control& other) { return other.takesFocus(); };
            const std::wstring name = distinctName(*open.run(), *control, takesFocus);
            EXPECT_EQ(findByName(*open.run(), name, takesFocus), control) << base::toUtf8(name);
            ++found;
        }
    };
    record(dialog, {"press Nested", "close"});
    EXPECT_EQ(found, 21);
}
