// Dialogs without windows: what the user does comes as lines, and the state of the controls is all there is.
#include "dialogs/form_script.h"
#include "dialogs/form_text.h"
#include "dialogs/maker.h"
#include "dialogs/run.h"

namespace dialogs {
namespace {

// What dialog units come to with the usual font at 96 dots an inch.
PixelRect pixelsOf(const UnitRect& units) {
    return {units.x * 3 / 2, units.y * 13 / 8, units.width * 3 / 2, units.height * 13 / 8};
}

class FormView final : public View {
  public:
    explicit FormView(Run& run) : View(run), place_(pixelsOf(run.root().design().place)) {}

    void work() override {
        LineSource& lines = *Process::instance().lines;
        if (!lines.isScript()) lines.print(formText(run_));
        FormScript script(run_, lines);
        while (!run_.hasEnded()) script.step();
    }

    void titleChanged() override {}
    void changed(Control&, Aspect) override {}
    void pageShown(Control&) override {}
    void showFocus(Control*) override {}
    int listWidth(const Control& list) override { return pixelsOf(list.design->place).width; }
    PixelRect place() override { return place_; }
    void movePlace(int left, int top) override {
        place_.left = left;
        place_.top = top;
    }
    void savePicture(const std::wstring&) override {
        Process::instance().lines->refuse(L"a form has no picture; show the dialog as a window");
    }

  private:
    PixelRect place_;
};

class FormsMaker final : public Maker {
  public:
    std::unique_ptr<View> makeView(Run& run) override { return std::make_unique<FormView>(run); }
    Answer messageBox(BoxKind, const std::wstring&, const std::wstring&, std::optional<Answer> answer) override {
        return answer.value_or(Answer::kOk);  // asked and answered in a line
    }
    std::optional<std::wstring> askFile(const FileRequest&) override { return std::nullopt; }
    std::optional<std::wstring> askFolder(const std::wstring&) override { return std::nullopt; }
    std::wstring clipboardText() override { return clipboard_; }
    void setClipboardText(const std::wstring& text) override { clipboard_ = text; }

  private:
    std::wstring clipboard_;
};

}  // namespace

std::unique_ptr<Maker> makeFormsMaker() { return std::make_unique<FormsMaker>(); }

}  // namespace dialogs
