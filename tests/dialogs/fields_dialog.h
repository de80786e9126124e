// A dialog with a control of every kind, which logs what happens to it.
#pragma once

#include <functional>
#include <gtest/gtest.h>

#include "base/text.h"
#include "dialogs/boxes.h"
#include "dialogs/dialog.h"
#include "dialogs_test.h"

using namespace dialogs;

// Text with "{" and "}" around runs when it is made.
class Value final : public RichText {
  public:
    explicit Value(std::wstring marked) {
        for (wchar_t c : marked)
            if (c == L'{')
                runs_.push_back({text_.size(), 0});
            else if (c == L'}')
                runs_.back().end = text_.size();
            else
                text_ += c;
    }
    std::wstring text() const override { return text_; }
    std::vector<Run> runs() const override { return runs_; }
    void replace(std::size_t begin, std::size_t end, std::wstring_view plain) override {
        for (const Run& run : runs_)
            ASSERT_FALSE((run.begin < begin && begin < run.end) || (run.begin < end && end < run.end));
        std::erase_if(runs_, [&](const Run& run) { return run.begin >= begin && run.end <= end && begin != end; });
        text_.replace(begin, end - begin, plain);
        for (Run& run : runs_) {
            if (run.begin < end) continue;
            run.begin += plain.size() - (end - begin);
            run.end += plain.size() - (end - begin);
        }
    }
    std::vector<MenuEntry> menu(const TextSelection&) const override {
        return {{L"&Copy", 1, true}, {L"", 0, true}, {L"Clear", 2, true}, {L"Edit field...", 3, false}};
    }
    bool onMenu(int command, TextSelection& selection) override {
        if (command == 1) setClipboardText(text_.substr(selection.begin(), selection.end() - selection.begin()));
        if (command == 2) replace(0, text_.size(), L"");
        return command == 2;
    }

  private:
    std::wstring text_;
    std::vector<Run> runs_;
};

class Logged : public Dialog {
  public:
    using Dialog::Dialog;
    std::vector<std::string> log;

    // What the next leave of a field meets.
    int refuseLeaving = 0;   // this field is not left
    int boxWhenLeaving = 0;  // leaving this field shows a box
    int throwWhenPressed = 0;

  protected:
    void note(const std::string& what, int control) { log.push_back(what + " " + std::to_string(control)); }
    void onCommand(int control, Event event) override {
        static const char* const kNames[] = {"pressed", "edited", "chosen"};
        note(kNames[static_cast<int>(event)], control);
        if (control == throwWhenPressed) throw std::domain_error("pressed");
    }
    bool onLeave(int control, int next) override {
        log.push_back("leave " + std::to_string(control) + " for " + std::to_string(next));
        if (control == boxWhenLeaving) messageBox(BoxKind::kWarning, L"Mind the gap.");
        return control != refuseLeaving || next == kCancelButton;
    }
    void onSelect(int list, int row) override {
        note("select", list);
        log.back() += " row " + std::to_string(row);
    }
    void onDoubleClick(int list, int row) override {
        note("double", list);
        log.back() += " row " + std::to_string(row);
    }
    void onPage(int tab, int page) override {
        note("page", tab);
        log.back() += " " + std::to_string(page);
    }
    void onOk() override {
        log.push_back("ok");
        Dialog::onOk();
    }
    void onCancel() override {
        log.push_back("cancel");
        Dialog::onCancel();
    }
    void onHelp() override { log.push_back("help"); }
    void onInit() override { log.push_back("init"); }
};

class Fields final : public Logged {
  public:
    Fields() : Logged(IDD_FIELDS) {
        for (const wchar_t* style : {L"Standard", L"ROMANS", L"My style"}) addChoice(IDC_STYLE, style);
        for (const wchar_t* layer : {L"0", L"WALLS"}) addChoice(IDC_LAYER, layer, 7);
        for (const wchar_t* color : {L"red", L"green"}) addChoice(IDC_COLORS, color);
        select(IDC_STYLE, 0);
        setColumns(IDC_LIST, {{L"Tag", 60}, {L"Value", 80}});
        setRows(IDC_LIST, {{{L"WIDTH", L"12"}, false}, {{L"3", L"three"}, true}, {{L"NAME", L"Door"}, false}});
        setTooltip(IDC_PICK, L"Set text height on screen");
        setRichText(IDC_VALUE, &value);
        setChecked(IDC_LEFT);
        setText(IDC_COUNT, L"3");
        setText(IDC_NOTE, L"one");
    }
    Value value{L"Sheet {A1} of {A2}{A3}"};
    std::function<void(Fields&)> nested;

  private:
    void onCommand(int control, Event event) override {
        if (control == IDC_PICK) end(77);
        if (control == IDC_NESTED && nested) nested(*this);
        Logged::onCommand(control, event);
    }
    std::vector<MenuEntry> menuOf(int control) override {
        if (control != IDC_LIST) return {};
        return {{L"Move &Up", 5, true}};
    }
    void onMenu(int control, int command) override {
        note("menu", control);
        log.back() += " " + std::to_string(command);
    }
};
