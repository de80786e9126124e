// The input is the lines of a form. Whatever they are, the dialog ends, its fields hold what fits them, and nothing but
// a refusal comes of a line that does not suit.
#include <algorithm>
#include <deque>

#include "base/text.h"
#include "dialogs/boxes.h"
#include "dialogs/dialog.h"
#include "dialogs/process.h"
#include "fuzz/fuzz.h"
#include "tests/dialogs/dialogs_test.h"

namespace {

using namespace dialogs;
using fuzz::require;

class Lines final : public LineSource {
  public:
    explicit Lines(std::string_view text) {
        for (std::wstring& line : base::split(base::fromUtf8(text), L'\n')) lines_.push_back(std::move(line));
    }
    std::optional<std::wstring> next(const std::wstring&) override {
        if (lines_.empty()) return std::nullopt;
        std::wstring line = std::move(lines_.front());
        lines_.pop_front();
        return line;
    }
    void print(std::wstring_view) override {}
    void refuse(const std::wstring&) override {}
    bool isScript() const override { return false; }

  private:
    std::deque<std::wstring> lines_;
};

// Characters that are the text's, and runs that go as a whole.
class Value final : public RichText {
  public:
    std::wstring text() const override { return text_; }
    std::vector<Run> runs() const override { return runs_; }
    void replace(std::size_t begin, std::size_t end, std::wstring_view plain) override {
        require(begin <= end && end <= text_.size(), "positions lie in the text");
        for (const Run& run : runs_)
            require(!(run.begin < begin && begin < run.end) && !(run.begin < end && end < run.end), "no run is cut");
        std::erase_if(runs_, [&](const Run& run) { return run.begin >= begin && run.end <= end; });
        for (Run& run : runs_) {
            if (run.begin < end) continue;
            run.begin += plain.size() - (end - begin);
            run.end += plain.size() - (end - begin);
        }
        text_.replace(begin, end - begin, plain);
    }
    std::vector<MenuEntry> menu(const TextSelection&) const override { return {{L"Copy", 1, true}, {L"", 0, true}}; }

  private:
    std::wstring text_ = L"Sheet A1 of A2";
    std::vector<Run> runs_ = {{6, 8}, {12, 14}};
};

class Form final : public Dialog {
  public:
    Form() : Dialog(IDD_FIELDS) {
        addChoice(IDC_STYLE, L"Standard");
        addChoice(IDC_STYLE, L"My style");
        addChoice(IDC_LAYER, L"0");
        addChoice(IDC_COLORS, L"red");
        setColumns(IDC_LIST, {{L"Tag", 60}, {L"Value", 80}});
        setRows(IDC_LIST, {{{L"WIDTH", L"12"}, false}, {{L"NAME", L"Door"}, true}});
        setTooltip(IDC_PICK, L"Set text height on screen");
        setRichText(IDC_VALUE, &value_);
    }

    void check() {
        for (int id : {IDC_TAG, IDC_HEIGHT, IDC_VALUE, IDC_NOTE, IDC_LAYER})
            require(selection(id).end() <= text(id).size(), "what is selected lies in the text");
        require(text(IDC_VALUE) == value_.text(), "a rich edit shows its contents");
        require(isChecked(IDC_LEFT) + isChecked(IDC_MIDDLE) + isChecked(IDC_RIGHT) <= 1, "one radio button is marked");
        require(selected(IDC_STYLE) < choiceCount(IDC_STYLE) && selected(IDC_LIST) < rowCount(IDC_LIST),
                "what is selected is there");
        require(text(IDC_COUNT).empty(), "a field that can only be read is not written");
    }

  private:
    bool onLeave(int control, int) override {
        if (control != IDC_HEIGHT || text(IDC_HEIGHT) != L"bad") return true;
        messageBox(BoxKind::kWarning, L"Bad.");
        return false;
    }
    void onCommand(int control, Event event) override {
        if (event == Event::kPressed && control == IDC_NESTED) messageBox(BoxKind::kYesNoCancel, L"Sure?");
        if (event == Event::kPressed && control == IDC_MORE) askFile({});
    }

    Value value_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Lines lines(fuzz::bytesOf(data, size));
    useForms(lines);
    const ResourceScope resources(base::processImage());
    Form form;
    form.runModal();
    form.check();
    form.runModal();  // once more, with no line left
    return 0;
}
