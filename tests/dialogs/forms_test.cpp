// Dialogs worked by lines. On Windows every test runs twice: as forms, and with the lines driving real windows.
#include <deque>
#include <filesystem>
#include <gmock/gmock.h>
#include <set>

#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "dialogs/boxes.h"
#include "dialogs/dialog.h"
#include "tests/dialogs/each_maker.h"
#include "tests/dialogs/fields_dialog.h"

using namespace dialogs;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class Forms : public EachMaker {
  protected:
    int run(Dialog& dialog, std::deque<std::string> lines) {
        script_.lines = std::move(lines);
        script_.printed.clear();
        const int code = dialog.runModal();
        EXPECT_TRUE(script_.lines.empty()) << "left over: " << script_.lines.front();
        return code;
    }
    // What the script is told when it does not fit.
    std::string fault(Dialog& dialog, std::deque<std::string> lines) {
        script_.lines = std::move(lines);
        try {
            dialog.runModal();
        } catch (const ScriptFault& found) {
            return found.what();
        }
        return "no fault";
    }

    ResourceScope resources_{base::processImage()};
};
INSTANTIATE_TEST_SUITE_P(Makers, Forms, EachMaker::all(), EachMaker::name);

}  // namespace

TEST_P(Forms, FieldsAreFilledByTheirNames) {
    Fields dialog;
    EXPECT_EQ(run(dialog, {"tag = DOOR", "Text height= 2.5", "TEXT HEIGHT: = \" 3 \"", "First point/X = 1",
                           "second point / X = 2", "check invisible", "check\tRight", "Style = romans", "Layer = WALLS",
                           "Colors = green", "Value = plain", "press OK"}),
              kOkButton);
    EXPECT_EQ(dialog.text(IDC_TAG), L"DOOR");
    EXPECT_EQ(dialog.text(IDC_HEIGHT), L" 3 ");
    EXPECT_EQ(dialog.text(IDC_X1), L"1");
    EXPECT_EQ(dialog.text(IDC_X2), L"2");
    EXPECT_TRUE(dialog.isChecked(IDC_INVISIBLE));
    EXPECT_FALSE(dialog.isChecked(IDC_LEFT));
    EXPECT_TRUE(dialog.isChecked(IDC_RIGHT));
    EXPECT_EQ(dialog.text(IDC_STYLE), L"ROMANS");
    EXPECT_EQ(dialog.selected(IDC_STYLE), 1);
    EXPECT_EQ(dialog.selected(IDC_LAYER), 1);
    EXPECT_EQ(dialog.choiceData(IDC_LAYER, dialog.selected(IDC_LAYER)), 7);
    EXPECT_EQ(dialog.selected(IDC_COLORS), 1);
    EXPECT_EQ(dialog.value.text(), L"plain");
    EXPECT_TRUE(dialog.isModified(IDC_TAG));
    EXPECT_FALSE(dialog.isModified(IDC_NOTE));
}

TEST_P(Forms, ActionsCauseTheEventsOfAHand) {
    const struct {
        std::deque<std::string> lines;
        std::vector<std::string> events;
    } kCases[] = {
        {{"Tag = A", "key Escape"}, {"init", "edited 101", "leave 101 for 2", "cancel"}},
        {{"Tag =", "Tag = A", "Tag = A", "Tag =", "close"},
         {"init", "edited 101", "edited 101", "edited 101", "leave 101 for 2", "cancel"}},
        {{"Tag = A", "key Enter"}, {"init", "edited 101", "leave 101 for 1", "ok"}},
        {{"check Invisible", "check Invisible", "uncheck Invisible", "press OK"},
         {"init", "leave 101 for 103", "pressed 103", "pressed 103", "leave 103 for 1", "ok"}},
        {{"check Left", "press Cancel"}, {"init", "leave 101 for 104", "pressed 104", "leave 104 for 2", "cancel"}},
        {{"Layer = new one", "Layer = 0", "press OK"},
         {"init", "leave 101 for 108", "edited 108", "chosen 108", "leave 108 for 1", "ok"}},
        {{"row NAME", "row 3", "row \"3\"", "double row 2", "press OK"},
         {"init", "leave 101 for 122", "select 122 row 2", "select 122 row 1", "double 122 row 1", "leave 122 for 1",
          "ok"}},
        {{"menu list: Move Up", "menu Value: Copy", "close"},
         {"init", "leave 101 for 122", "menu 122 5", "leave 122 for 109", "leave 109 for 2", "cancel"}},
        {{"press Help", "key F1", "key Enter", "close"},
         {"init", "leave 101 for 9", "help", "help", "help", "leave 9 for 2", "cancel"}},
        {{"Colors = red", "double row 2", "close"},
         {"init", "leave 101 for 127", "chosen 127", "chosen 127", "double 127 row 1", "leave 127 for 2", "cancel"}},
        {{"check Middle", "key Right", "key Down", "key Up", "close"},
         {"init", "leave 101 for 105", "pressed 105", "leave 105 for 106", "pressed 106", "leave 106 for 104",
          "pressed 104", "leave 104 for 106", "pressed 106", "leave 106 for 2", "cancel"}},
        {{"Layer = 0", "key Down", "key Up", "close"},
         {"init", "leave 101 for 108", "chosen 108", "chosen 108", "chosen 108", "leave 108 for 2", "cancel"}},
        {{"key Tab", "key Tab", "key Shift+Tab", "close"},
         {"init", "leave 101 for 102", "leave 102 for 121", "leave 121 for 102", "leave 102 for 2", "cancel"}},
    };
    for (const auto& test : kCases) {
        Fields dialog;
        run(dialog, test.lines);
        EXPECT_EQ(dialog.log, test.events) << test.lines.front();
    }
}

TEST_P(Forms, ProgramChangesCauseNoEvents) {
    Fields dialog;
    dialog.nested = [](Fields& fields) {
        fields.setText(IDC_TAG, L"by program");
        fields.setChecked(IDC_MIDDLE);
        fields.select(IDC_STYLE, 2);
        fields.setText(IDC_LAYER, L"typed");
        fields.select(IDC_LIST, 1);
        fields.select(IDC_COLORS, 1);
        fields.enable(IDC_HEIGHT, false);
        fields.show(IDC_INVISIBLE, false);
    };
    run(dialog, {"press Nested", "press OK"});
    EXPECT_THAT(dialog.log, ElementsAre("init", "leave 101 for 123", "pressed 123", "leave 123 for 1", "ok"));
    EXPECT_EQ(dialog.text(IDC_TAG), L"by program");
    EXPECT_FALSE(dialog.isChecked(IDC_LEFT));
    EXPECT_EQ(dialog.text(IDC_STYLE), L"My style");
    EXPECT_EQ(dialog.selected(IDC_LAYER), -1);
    EXPECT_EQ(dialog.selected(IDC_LIST), 1);
}

TEST_P(Forms, LinesThatDoNotFitEndTheScript) {
    const struct {
        const char* line;
        const char* reason;
    } kCases[] = {
        {"Tug = DOOR", "no field \"Tug\""},
        {"press Tag", "no button \"Tag\""},
        {"check OK", "no box \"OK\""},
        {"uncheck Left", "no box \"Left\""},
        {"Style = nothing", "no choice \"nothing\"; there is: Standard, ROMANS, My style"},
        {"row 4", "no row \"4\""},
        {"Count = 4", "only be read"},
        {"tab Somewhere", "no page"},
        {"key F13", "no key"},
        {"X(3) = 1", "no field \"X(3)\""},
        {"dance", "no action"},
        {"menu Value: Edit field", "disabled"},
        {"menu Value: Undo", "there is: Copy, Clear, Edit field"},
        {"menu Tag: Copy", "no menu"},
    };
    for (const auto& test : kCases) {
        Fields dialog;
        EXPECT_THAT(fault(dialog, {test.line, "close"}), HasSubstr(test.reason)) << test.line;
        EXPECT_FALSE(dialog.isOpen());
    }
    Fields disabled;
    disabled.enable(IDC_TAG, false);
    EXPECT_THAT(fault(disabled, {"Tag = 1", "close"}), HasSubstr("disabled"));
    Fields unfinished;
    EXPECT_THAT(fault(unfinished, {"Tag = 1"}), HasSubstr("the script ends in the dialog \"Fields & more\""));
}

TEST_P(Forms, AFieldThatIsRefusedKeepsTheFocusAndDropsTheAction) {
    Fields dialog;
    dialog.refuseLeaving = IDC_HEIGHT;
    // Every way out of the field is tried; only Cancel is allowed.
    EXPECT_EQ(run(dialog, {"Text height = bad", "Tag = lost", "press OK", "check Invisible", "row 2", "key Enter",
                           "key Tab", "type Text height: over", "press Cancel"}),
              kCancelButton);
    EXPECT_EQ(dialog.text(IDC_TAG), L"");
    EXPECT_FALSE(dialog.isChecked(IDC_INVISIBLE));
    EXPECT_EQ(dialog.selected(IDC_LIST), -1);
    EXPECT_EQ(dialog.text(IDC_HEIGHT), L"over");  // the whole text was selected
    EXPECT_THAT(dialog.log, ElementsAre("init", "leave 101 for 102", "edited 102", "leave 102 for 101",
                                        "leave 102 for 1", "leave 102 for 103", "leave 102 for 122", "leave 102 for 1",
                                        "leave 102 for 121", "edited 102", "leave 102 for 2", "cancel"));
}

TEST_P(Forms, ABoxWhileLeavingDropsTheActionButNotTheFocus) {
    Fields dialog;
    dialog.boxWhenLeaving = IDC_TAG;
    EXPECT_EQ(run(dialog, {"Tag = A", "press OK", "press OK"}), kOkButton);
    EXPECT_THAT(dialog.log, ElementsAre("init", "edited 101", "leave 101 for 1", "ok"));
    EXPECT_EQ(script_.printed, "[warning] Mind the gap.\n");
}

TEST_P(Forms, TwoBadFields) {
    class TwoFields final : public Logged {
      public:
        TwoFields() : Logged(IDD_FIELDS) {}
        bool onLeave(int control, int) override {
            const bool bad = (control == IDC_TAG || control == IDC_HEIGHT) && text(control) == L"bad";
            if (bad) messageBox(BoxKind::kError, L"Bad " + std::to_wstring(control));
            return !bad;
        }
    } dialog;
    dialog.setText(IDC_TAG, L"bad");
    dialog.setText(IDC_HEIGHT, L"bad");
    EXPECT_EQ(run(dialog, {"press OK", "Text height = 1", "Tag = good", "key Tab", "Tag = too late",
                           "Text height = good", "key Enter"}),
              kOkButton);
    EXPECT_EQ(script_.printed, "[error] Bad 101\n[error] Bad 101\n[error] Bad 102\n");
    EXPECT_EQ(dialog.text(IDC_TAG), L"good");
}

TEST_P(Forms, EndsForAPickAndComesBackAsItWas) {
    Fields dialog;
    EXPECT_EQ(run(dialog, {"Tag = DOOR", "check Middle", "row 2", "press Text height"}), 77);
    EXPECT_FALSE(dialog.isOpen());
    EXPECT_EQ(dialog.text(IDC_TAG), L"DOOR");
    dialog.setText(IDC_HEIGHT, L"picked");
    EXPECT_EQ(run(dialog, {"show", "key Enter"}), kOkButton);
    EXPECT_EQ(dialog.text(IDC_HEIGHT), L"picked");
    EXPECT_THAT(script_.printed, HasSubstr("Tag = \"DOOR\""));
    EXPECT_THAT(script_.printed, HasSubstr("(o) Middle"));
    EXPECT_THAT(script_.printed, HasSubstr("*  2!"));
    EXPECT_THAT(script_.printed, HasSubstr("> Tag"));
}

TEST_P(Forms, ADialogOpensAnother) {
    Fields dialog;
    std::vector<std::string> innerLog;
    dialog.nested = [&](Fields& outer) {
        Fields inner;
        inner.setTitle(L"Inner");
        EXPECT_EQ(inner.runModal(), kOkButton);
        outer.setText(IDC_TAG, inner.text(IDC_TAG));
        innerLog = inner.log;
    };
    EXPECT_EQ(run(dialog, {"press Nested", "Tag = from inside", "key Enter", "Text height = 1", "press OK"}),
              kOkButton);
    EXPECT_EQ(dialog.text(IDC_TAG), L"from inside");
    EXPECT_THAT(innerLog, ElementsAre("init", "edited 101", "leave 101 for 1", "ok"));
    EXPECT_THAT(dialog.log, ElementsAre("init", "leave 101 for 123", "pressed 123", "leave 123 for 102", "edited 102",
                                        "leave 102 for 1", "ok"));
}

TEST_P(Forms, ExceptionsAndScriptEndsComeOutOfEveryLevel) {
    Fields thrower;
    thrower.throwWhenPressed = IDC_NESTED;
    EXPECT_THROW(run(thrower, {"press Nested"}), std::domain_error);
    Fields outer;
    outer.nested = [](Fields&) {
        const ResourceScope other(nullptr);
        const ResourceScope again(base::processImage());
        Fields().runModal();
    };
    EXPECT_THAT(fault(outer, {"press Nested", "Tag = 1"}), HasSubstr("the script ends"));
    EXPECT_FALSE(outer.isOpen());
    EXPECT_EQ(ResourceScope::current(), base::processImage());
    EXPECT_EQ(run(thrower, {"press OK"}), kOkButton);  // and the next dialog is as good as new
}

TEST_P(Forms, QuestionsFilesAndTheClipboard) {
    script_.lines = {"no", "", "cancel", "y"};
    EXPECT_EQ(messageBox(BoxKind::kYesNoCancel, L"Save?"), Answer::kNo);
    EXPECT_EQ(messageBox(BoxKind::kYesNo, L"Save?"), Answer::kYes);
    EXPECT_EQ(messageBox(BoxKind::kYesNoCancel, L"Save?"), Answer::kCancel);
    EXPECT_EQ(messageBox(BoxKind::kYesNo, L"Save?"), Answer::kYes);
    EXPECT_EQ(messageBox(BoxKind::kNotice, L"Done."), Answer::kOk);
    EXPECT_EQ(script_.printed, "[notice] Done.\n");
    script_.lines = {"perhaps"};
    EXPECT_THROW(messageBox(BoxKind::kYesNo, L"Save?"), ScriptFault);

    FileRequest request;
    request.save = true;
    request.defaultExtension = L"*.txt";
    script_.lines = {"new file", "", "\"other.csv\""};
    EXPECT_TRUE(askFile(request)->ends_with(L"new file.txt"));
    EXPECT_FALSE(askFile(request));
    EXPECT_TRUE(askFile(request)->ends_with(L"other.csv"));
    request = {};
    request.mustExist = true;
    script_.lines = {"no such file"};
    EXPECT_THROW(askFile(request), ScriptFault);
    request.filter = L"Tables (*.tbl)|*.tbl;*.csv|All files (*.*)|*.*||";
    request.fileName = L"*.tbl";
    base::writeFile(base::absolutePath(L"dialogs_test_doors.tbl"), "");
    script_.lines = {"dialogs_test_doors"};
    EXPECT_TRUE(askFile(request)->ends_with(L"dialogs_test_doors.tbl"));
    EXPECT_EQ(script_.prompt, "Open: ");
    std::filesystem::remove("dialogs_test_doors.tbl");
    request = {};
    request.save = true;
    request.fileName = L"parts.txt";
    script_.lines = {""};
    EXPECT_FALSE(askFile(request));
    EXPECT_EQ(script_.prompt, "Save as (now parts.txt; empty cancels): ");

    setClipboardText(L"Größe");
    EXPECT_EQ(clipboardText(), L"Größe");
}

TEST_P(Forms, RunsOfARichEditAreHandledWhole) {
    const struct {
        std::deque<std::string> lines;
        const wchar_t* text;
        std::size_t runs;
    } kCases[] = {
        {{"caret Value 7", "type Value: x", "close"}, L"Sheet A1x of A2A3", 3},  // inside a run: behind it
        {{"caret Value 8", "key Backspace", "close"}, L"Sheet  of A2A3", 2},
        {{"caret Value 6", "key Delete", "key Delete", "close"}, L"Sheet of A2A3", 2},
        {{"caret Value 14", "key Backspace", "close"}, L"Sheet A1 of A3", 2},
        {{"caret Value 3 13", "type Value: -", "close"}, L"She-A3", 1},
        {{"caret Value 16", "key Left", "key Left", "type Value: |", "close"}, L"Sheet A1 of |A2A3", 3},
        {{"caret Value 0", "key Shift+End", "key Backspace", "close"}, L"", 0},
        {{"menu Value: Clear", "type Value: new", "close"}, L"new", 0},
        {{"caret Value 0", "key Home", "key Right", "key Backspace", "type Value: S", "close"}, L"Sheet A1 of A2A3", 3},
    };
    for (const auto& test : kCases) {
        Fields dialog;
        run(dialog, test.lines);
        EXPECT_EQ(dialog.value.text(), test.text) << test.lines.front();
        EXPECT_EQ(dialog.value.runs().size(), test.runs) << test.lines.front();
        EXPECT_EQ(dialog.text(IDC_VALUE), test.text);
    }
    Fields dialog;
    run(dialog, {"caret Value 5 7", "menu Value: Copy", "show", "close"});
    EXPECT_EQ(clipboardText(), L" A1");
    EXPECT_THAT(script_.printed, HasSubstr("Value = \"Sheet {A1} of {A2}{A3}\""));
}

TEST_P(Forms, TypingGoesWhereTheCaretIs) {
    Fields dialog;
    run(dialog, {"Tag = DOOR", "caret Tag 2", "type Tag: ---", "caret Tag 0 1", "type Tag: \"> \"", "key Delete",
                 "key End", "key Backspace", "caret Note 3", "key Enter", "type Note: two", "press OK"});
    EXPECT_EQ(dialog.text(IDC_TAG), L"> ---O");
    EXPECT_EQ(dialog.text(IDC_NOTE), L"one\r\ntwo");
    dialog.setReadOnly(IDC_NOTE);
    run(dialog, {"caret Note 3", "key Enter", "close"});
    EXPECT_EQ(dialog.text(IDC_NOTE), L"one\r\ntwo");
}

TEST_P(Forms, PagesAreDialogsLikeAnyOther) {
    class Page final : public Logged {
      public:
        Page(int id, std::vector<std::string>& shared) : Logged(id), shared_(shared) {}
        bool onLeave(int control, int next) override {
            shared_.push_back("page leave " + std::to_string(control) + " for " + std::to_string(next));
            return control != IDC_ROTATION || text(control) != L"bad" || next == kCancelButton;
        }
        void onInit() override { shared_.push_back("page init " + std::to_string(templateId())); }
        std::vector<std::string>& shared_;
    };
    Logged dialog(IDD_TABS);
    Page one(IDD_PAGE_ONE, dialog.log), two(IDD_PAGE_TWO, dialog.log), inner(IDD_INNER, dialog.log);
    dialog.addPage(IDC_TAB, L"&Text Options", one);
    dialog.addPage(IDC_TAB, L"More", two);
    two.addPage(IDC_INNER_TAB, L"Deepest", inner);
    EXPECT_EQ(run(dialog, {"Rotation = bad", "tab More", "press OK", "Rotation = 45", "key Tab", "tab More",
                           "Deep = down", "tab Text Options", "Width factor = 2", "press OK"}),
              kOkButton);
    EXPECT_THAT(dialog.log,
                ElementsAre("init", "page init 111", "leave 130 for 131", "page leave 131 for 130",
                            "page leave 131 for 1", "page leave 131 for 132", "page leave 132 for 130", "page init 112",
                            "page init 113", "page 130 1", "leave 130 for 134", "page leave 134 for 130", "page 130 0",
                            "leave 130 for 132", "page leave 132 for 1", "ok"));
    EXPECT_EQ(one.text(IDC_ROTATION), L"45");
    EXPECT_EQ(inner.text(IDC_DEEP), L"down");
    EXPECT_EQ(one.parent(), &dialog);
    EXPECT_FALSE(inner.isOpen());
}

TEST_P(Forms, APageThatGoesLeavesTheFocusAtTheTab) {
    class Page final : public Logged {
      public:
        Page() : Logged(IDD_PAGE_ONE) {}
        void onCommand(int, Event) override { parent()->select(IDC_TAB, 1); }
    } one;
    Logged dialog(IDD_TABS), two(IDD_PAGE_TWO);
    dialog.addPage(IDC_TAB, L"One", one);
    dialog.addPage(IDC_TAB, L"Two", two);
    EXPECT_EQ(run(dialog, {"Rotation = 4", "key Enter"}), kOkButton);
    EXPECT_THAT(dialog.log, ElementsAre("init", "leave 130 for 131", "page 130 1", "leave 130 for 1", "ok"));
}

TEST_P(Forms, RowsGoByNamesThatNoColumnShows) {
    Fields dialog;
    dialog.setRows(IDC_LIST, {{{L"A", L"12"}}, {{L"12", L"x"}}, {{L"A", L"y"}}, {{L"a", L"z"}, false, L"Z"}});
    const struct {
        const char* line;
        int row;
    } kCases[] = {
        {"row A", 0}, {"row A(2)", 2}, {"row Z", 3},      {"row 12", 1},
        {"row 3", 2}, {"row a", 0},    {"row \"12\"", 1}, {"double row 4", 3},
    };
    for (const auto& test : kCases) {
        dialog.select(IDC_LIST, -1);
        run(dialog, {test.line, "close"});
        EXPECT_EQ(dialog.selected(IDC_LIST), test.row) << test.line;
    }
    EXPECT_THAT(fault(dialog, {"row y"}), HasSubstr("no row"));      // a cell of another column
    EXPECT_THAT(fault(dialog, {"row \"3\""}), HasSubstr("no row"));  // no tag
    EXPECT_THAT(fault(dialog, {"row A(3)"}), HasSubstr("no row"));
    // Rows without cells are rows all the same.
    dialog.setColumns(IDC_LIST, {});
    dialog.setRows(IDC_LIST, {{{}, false, L"first"}, {{}, false, L"second"}});
    run(dialog, {"row second", "close"});
    EXPECT_EQ(dialog.selected(IDC_LIST), 1);
    dialog.setColumns(IDC_LIST, {{L"Late", 50}});
    run(dialog, {"row first", "show", "close"});
    EXPECT_EQ(dialog.selected(IDC_LIST), 0);
}

TEST_P(Forms, ACellIsPrintedInOneLine) {
    Fields dialog;
    dialog.setColumns(IDC_LIST, {{L"Value", 80}});
    dialog.setRows(IDC_LIST, {{{L"one\ntwo"}, false, L"lines"}});
    run(dialog, {"show", "close"});
    EXPECT_THAT(script_.printed, HasSubstr("one\\ntwo"));
}

TEST_P(Forms, MenusTipsWidthsAndPlacesAreToldAndChanged) {
    Fields dialog;
    int widthInside = 0;
    dialog.nested = [&](Fields& fields) { widthInside = fields.columnWidth(IDC_LIST, 1); };
    run(dialog, {"menu Value", "tip Text height(2)", "tip OK", "width Value 120", "press Nested", "close"});
    EXPECT_EQ(script_.printed,
              "  Copy\n  --\n  Clear\n  Edit field (disabled)\n  Set text height on screen\n  (no tooltip)\n");
    EXPECT_EQ(widthInside, 120);  // while it is open
    for (const char* wrong :
         {"width Nothing 12", "width Tag", "move 1", "move a,b", "menu Tag", "key Alt+Z", "key Ctrl+F", "double click"})
        EXPECT_THAT(fault(dialog, {wrong, "close"}), AllOf(Not(HasSubstr("the script ends")), testing::Ne("no fault")))
            << wrong;
}

TEST_P(Forms, KeysDoTheSameEverywhere) {
    const struct {
        std::deque<std::string> lines;
        int field;
        const wchar_t* text;
    } kTexts[] = {
        {{"Tag = DOOR", "key Ctrl+A", "type Tag: X"}, IDC_TAG, L"X"},
        {{"Value = DOOR", "key Ctrl+A", "key Ctrl+C", "key End", "key Ctrl+V"}, IDC_VALUE, L"DOORDOOR"},
        {{"Value = DOOR", "caret Value 1 3", "key Ctrl+X", "key Home", "key Ctrl+V"}, IDC_VALUE, L"OODR"},
        {{"Layer = typed", "key Shift+Tab", "key Tab", "type Layer: X"}, IDC_LAYER, L"X"},
        {{"Layer = typed", "key Up"}, IDC_LAYER, L"typed"},
        {{"Layer = typed", "key Down"}, IDC_LAYER, L"0"},
        {{"Value = DOOR", "caret Value 2", "key Up", "type Value: |"}, IDC_VALUE, L"D|OOR"},
        {{"Tag = DOOR", "caret Tag 2", "key Down", "type Tag: |"}, IDC_TAG, L"DOO|R"},
        {{"Tag = DOOR", "caret Tag 2", "key Up", "type Tag: |"}, IDC_TAG, L"D|OOR"},
        {{"key Alt+E", "type Text height: 5"}, IDC_HEIGHT, L"5"},
    };
    for (const auto& test : kTexts) {
        Fields dialog;
        std::deque<std::string> lines = test.lines;
        lines.push_back("close");
        run(dialog, lines);
        EXPECT_EQ(dialog.text(test.field), test.text) << test.lines.front() << ", " << test.lines.back();
    }
    Fields dialog;
    run(dialog, {"row 1", "key PageDown", "key PageUp", "key Alt+T", "key Alt+I", "key Right", "key Alt+H", "key Right",
                 "key Left", "close"});
    EXPECT_THAT(dialog.log, ElementsAre("init", "leave 101 for 122", "select 122 row 0", "select 122 row 2",
                                        "select 122 row 0", "leave 122 for 101", "leave 101 for 103", "pressed 103",
                                        "leave 103 for 121", "leave 121 for 9", "help", "leave 9 for 123",
                                        "leave 123 for 9", "leave 9 for 2", "cancel"));
}

TEST_P(Forms, LettersBecomeCapitalsAsTheyAreTyped) {
    Fields dialog;
    dialog.setUpperCase(IDC_TAG);
    dialog.setText(IDC_TAG, L"by program ");
    run(dialog, {"key End", "type Tag: typed", "close"});
    EXPECT_EQ(dialog.text(IDC_TAG), L"by program TYPED");
}

TEST_P(Forms, TheFocusLeavesWhatIsDisabledOrHidden) {
    Fields dialog;
    dialog.nested = [](Fields& fields) { fields.enable(IDC_NESTED, false); };
    run(dialog, {"press Nested", "key Enter"});  // on OK, which is next
    EXPECT_EQ(dialog.log.back(), "ok");
    dialog.enable(IDC_NESTED);
    dialog.log.clear();
    dialog.nested = [](Fields& fields) { fields.show(IDC_NESTED, false); };
    run(dialog, {"press Nested", "key Tab", "key Enter"});
    EXPECT_EQ(dialog.log.back(), "cancel");
}

TEST_P(Forms, ADropDownShowsWhatItsHandlerSet) {
    class More final : public Logged {
      public:
        More() : Logged(IDD_FIELDS) {
            addChoice(IDC_LAYER, L"red");
            addChoice(IDC_LAYER, L"More Colors...");
        }
        void onCommand(int control, Event event) override {
            if (control == IDC_LAYER && event == Event::kChosen) setText(IDC_LAYER, L"red");
        }
    } dialog;
    run(dialog, {"Layer = More Colors...", "caret Layer 3", "type Layer: dish", "press OK"});
    EXPECT_EQ(dialog.text(IDC_LAYER), L"reddish");
}

TEST_P(Forms, HelpAndTheDocsNameEveryVerb) {
    Fields dialog;
    run(dialog, {"help", "close"});
    const base::FileBuffer docs = base::readFile(base::fromUtf8(TORVEL_DOCS "/scripts.md"));
    std::size_t verbs = 0;
    for (const std::wstring& line : base::split(base::fromUtf8(script_.printed), L'\n')) {
        if (line.empty()) continue;
        ++verbs;
        const std::size_t end = line.find(L"  ", 2);
        const std::wstring usage = line.substr(2, (end < 23 ? end : 22) - 2);
        EXPECT_THAT(std::string(docs.view()), HasSubstr("`" + base::toUtf8(base::trimmed(usage)) + "`"));
    }
    EXPECT_GT(verbs, 15u);
}

TEST_P(Forms, ThePlaceOfTheWindowIsKept) {
    class Placed final : public Logged {
      public:
        Placed() : Logged(IDD_FIELDS) {}
        std::wstring savedPlacement() override { return place; }
        void savePlacement(const std::wstring& saved) override { place = saved; }
        std::wstring place;
    } dialog;
    run(dialog, {"close"});
    if (GetParam() == Maker::forms) EXPECT_EQ(dialog.place, L"0,0,420,357");  // the template's
    const std::wstring size = dialog.place.substr(dialog.place.find(L',', dialog.place.find(L',') + 1));
    for (const wchar_t* useless : {L"", L"20,30", L"a,b,c,d"}) {
        dialog.place = useless;
        run(dialog, {"close"});
        EXPECT_TRUE(dialog.place.ends_with(size)) << base::toUtf8(dialog.place);
    }
    dialog.place = L"20,30,400,300";
    run(dialog, {"close"});
    EXPECT_EQ(dialog.place, L"20,30" + size);
    run(dialog, {"move 100,50", "close"});
    EXPECT_EQ(dialog.place, L"100,50" + size);
}

TEST_P(Forms, PicturesShowTheWindow) {
    Fields dialog;
    if (GetParam() == Maker::forms) {
        EXPECT_THAT(fault(dialog, {"picture form.bmp"}), HasSubstr("a form has no picture"));
        return;
    }
    run(dialog, {"Tag = DOOR", "row 2", "caret Value 7 12", "picture dialogs_test_before.bmp", "check Invisible",
                 "picture dialogs_test_after.bmp", "close"});
    const std::wstring before = L"dialogs_test_before.bmp", after = L"dialogs_test_after.bmp";
    const base::FileBuffer first = base::readFile(before), second = base::readFile(after);
    EXPECT_EQ(first.view().substr(0, 2), "BM");
    EXPECT_GT(std::set<char>(first.view().begin(), first.view().end()).size(), 20u) << "it is one area of colour";
    EXPECT_EQ(first.size(), second.size());
    EXPECT_NE(first.view(), second.view());
    std::filesystem::remove(base::toPath(before));
    std::filesystem::remove(base::toPath(after));
}

TEST_P(Forms, ClosingMayBeRefusedToo) {
    class Stubborn final : public Logged {
      public:
        Stubborn() : Logged(IDD_FIELDS) {}
        bool onLeave(int, int next) override {
            log.push_back("leave for " + std::to_string(next));
            return text(IDC_TAG) != L"bad";
        }
    } dialog;
    EXPECT_EQ(run(dialog, {"Tag = bad", "close", "key Escape", "^C", "press Cancel", "Tag = good", "close"}),
              kCancelButton);
    EXPECT_THAT(dialog.log, ElementsAre("init", "edited 101", "leave for 2", "leave for 2", "leave for 2",
                                        "leave for 2", "edited 101", "leave for 2", "cancel"));
}

TEST_P(Forms, ShowPrintsEveryControl) {
    Fields dialog;
    dialog.enable(IDC_NESTED, false);
    run(dialog, {"Tag = DOOR", "show", "show Style", "close"});
    EXPECT_EQ(script_.printed,
              "=== Fields & more ===\n"
              "> Tag = \"DOOR\"\n"
              "  Text height = \"\"\n"
              "  [ Text height ... ]  (Set text height on screen)\n"
              "  [ ] Invisible\n"
              "  (o) Left\n"
              "  ( ) Middle\n"
              "  ( ) Right\n"
              "  Style = \"Standard\"\n"
              "        of: Standard, ROMANS, My style\n"
              "  Layer = \"\"\n"
              "        of: 0, WALLS\n"
              "  Value = \"Sheet {A1} of {A2}{A3}\"\n"
              "  [ Value ... ]\n"
              "  list:\n"
              "        Tag   Value\n"
              "    1.  WIDTH 12\n"
              "    2!  3     three\n"
              "    3.  NAME  Door\n"
              "  -- First point --\n"
              "    X = \"\"\n"
              "  -- Second point --\n"
              "    X = \"\"\n"
              "  Count = \"3\"  (read only)\n"
              "  Colors:\n"
              "    1. red\n"
              "    2. green\n"
              "  Note = \"one\"\n"
              "  [ Nested ]  (disabled)\n"
              "  [ OK ]\n"
              "  [ Cancel ]\n"
              "  [ Help ]\n"
              "  Standard, ROMANS, My style\n");
}
