// Loaded into torvelhost in front of its libraries: writes the lines that dialogs take, and those that are recorded of
// them, into the file RECORDED_LINES. tests/run_recorded.py makes a script of it.
//
//     took Tag = A        a line of the script that does something
//     asked show          one that only shows something
//     recorded Tag = A
//     nameless 1004            a control that a screen reader would meet without a name
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <memory>
#include <QAccessible>
#include <QApplication>
#include <QWidget>

#include "base/text.h"
#include "dialogs/process.h"

namespace {

void note(const char* what, std::wstring_view line) {
    static std::ofstream file(std::getenv("RECORDED_LINES"));
    file << what << ' ' << base::toUtf8(line) << std::endl;
}

bool onlyShows(std::wstring_view line) {
    for (std::wstring_view verb : {L"show", L"tip ", L"help", L"width ", L"move ", L"picture "})
        if (line.starts_with(verb)) return true;
    return line.starts_with(L"menu ") && line.find(L':') == line.npos;
}

// What a screen reader asks for. A drop-down goes by its label.
bool hasName(QWidget& widget) {
    QAccessibleInterface* const asked = QAccessible::queryAccessibleInterface(&widget);
    return asked && ((asked->role() != QAccessible::ComboBox && !asked->text(QAccessible::Name).trimmed().isEmpty()) ||
                     !asked->relations(QAccessible::Label).isEmpty());
}

void noteNameless() {
    QWidget* const dialog = qApp ? QApplication::activeModalWidget() : nullptr;
    if (!dialog) return;
    for (QWidget* const widget : dialog->findChildren<QWidget*>())
        if (widget->isVisible() && widget->isEnabled() && widget->focusPolicy() != Qt::NoFocus &&
            !widget->focusProxy() && !hasName(*widget))
            note("nameless",
                 base::fromUtf8(QStringLiteral("%1 %2 of \"%3\"")
                                    .arg(widget->metaObject()->className(), widget->objectName(), dialog->windowTitle())
                                    .toStdString()));
}

class NotedLines final : public dialogs::LineSource {
  public:
    explicit NotedLines(dialogs::LineSource& lines) : lines_(lines) {
        dialogs::useRecorder([](std::wstring_view line) { note("recorded", line); });
    }

    std::optional<std::wstring> next(const std::wstring& prompt) override { return noted(lines_.next(prompt)); }
    std::optional<std::wstring> peek() override { return lines_.peek(); }
    std::optional<std::wstring> answer(const std::wstring& question) override { return noted(lines_.answer(question)); }
    std::optional<std::wstring> choose(const std::wstring& prompt, const Choices& choices) override {
        return noted(lines_.choose(prompt, choices));
    }
    void print(std::wstring_view text) override { lines_.print(text); }
    void refuse(const std::wstring& why) override { lines_.refuse(why); }
    bool isScript() const override { return lines_.isScript(); }

  private:
    static std::optional<std::wstring> noted(std::optional<std::wstring> line) {
        if (!line) return line;
        noteNameless();
        const bool shows = onlyShows(*line);
        if (shows) const dialogs::HiddenWindows tellsWhatWaits;
        note(shows ? "asked" : "took", *line);
        return line;
    }

    dialogs::LineSource& lines_;
};

dialogs::LineSource& noted(dialogs::LineSource& lines) {
    static std::unique_ptr<NotedLines> noted;
    noted = std::make_unique<NotedLines>(lines);
    return *noted;
}

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

namespace dialogs {

void useForms(LineSource& lines) { next<void(LineSource&)>("_ZN7dialogs8useFormsERNS_10LineSourceE")(noted(lines)); }

bool useWindows(LineSource* script, Waiting waiting, std::wstring* reason) {
    auto* const use = next<bool(LineSource*, Waiting, std::wstring*)>(
        "_ZN7dialogs10useWindowsEPNS_10LineSourceESt8functionIFvRKS2_IFvvEEEEPNSt7__cxx1112basic_stringIwSt11char_"
        "traitsIwESaIwEEE");
    return use(script ? &noted(*script) : nullptr, std::move(waiting), reason);
}

}  // namespace dialogs
