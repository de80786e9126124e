// Windows, message boxes and file dialogs by Qt.
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include "base/text.h"
#include "dialogs/qt/file_request.h"
#include "dialogs/qt/qt_text.h"
#include "dialogs/qt/qt_view.h"
#include "dialogs/qt/screen.h"

namespace dialogs {
namespace {

// The answer to a box, by its buttons; the last one is what Escape and the close box mean.
struct Button {
    QMessageBox::StandardButton button;
    Answer answer;
};
std::vector<Button> buttonsOf(BoxKind kind) {
    switch (kind) {
        case BoxKind::kYesNo:
            return {{QMessageBox::Yes, Answer::kYes}, {QMessageBox::No, Answer::kNo}};
        case BoxKind::kYesNoCancel:
            return {{QMessageBox::Yes, Answer::kYes},
                    {QMessageBox::No, Answer::kNo},
                    {QMessageBox::Cancel, Answer::kCancel}};
        default:
            return {{QMessageBox::Ok, Answer::kOk}};
    }
}

QMessageBox::Icon iconOf(BoxKind kind) {
    switch (kind) {
        case BoxKind::kNotice:
            return QMessageBox::Information;
        case BoxKind::kWarning:
            return QMessageBox::Warning;
        case BoxKind::kError:
            return QMessageBox::Critical;
        default:
            return QMessageBox::Question;
    }
}

// A window below that lost the focus to a box does not get it back by itself where no window manager is.
void goBackTo(QWidget* owner) {
    if (owner) owner->activateWindow();
}

std::optional<std::wstring> chooseFile(QFileDialog& dialog) {
    const bool chosen = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
    goBackTo(dialog.parentWidget());
    return chosen ? std::optional(fromQt(dialog.selectedFiles().front())) : std::nullopt;
}

class QtMaker final : public Maker {
  public:
    std::unique_ptr<View> makeView(Run& run) override { return std::make_unique<QtView>(run); }

    Answer messageBox(BoxKind kind, const std::wstring& text, const std::wstring& caption,
                      std::optional<Answer> answer) override {
        Run* const run = Process::instance().current;
        QMessageBox box(QtView::currentOwner());
        box.setTextFormat(Qt::PlainText);
        box.setText(toQt(text));
        box.setWindowTitle(toQt(run && caption.empty() ? run->root().title() : caption));
        box.setIcon(iconOf(kind));
        const std::vector<Button> buttons = buttonsOf(kind);
        for (const Button& offered : buttons) {
            QPushButton* const made = box.addButton(offered.button);
            if (answer == offered.answer) QTimer::singleShot(0, made, &QPushButton::click);
        }
        box.setDefaultButton(buttons.front().button);
        box.setEscapeButton(buttons.back().button);
        const int pressed = box.exec();
        goBackTo(box.parentWidget());
        for (const Button& offered : buttons)
            if (offered.button == pressed) return offered.answer;
        return buttons.back().answer;
    }

    std::optional<std::wstring> askFile(const FileRequest& request) override {
        QFileDialog dialog(QtView::currentOwner());
        prepareFileDialog(dialog, request);
        return chooseFile(dialog);
    }

    std::optional<std::wstring> askFolder(const std::wstring& title) override {
        QFileDialog dialog(QtView::currentOwner(), toQt(title));
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly);
        return chooseFile(dialog);
    }

    std::wstring clipboardText() override { return fromQt(QApplication::clipboard()->text()); }
    void setClipboardText(const std::wstring& text) override { QApplication::clipboard()->setText(toQt(text)); }
};

}  // namespace
}  // namespace dialogs

/// Null, and why, where there is no screen.
extern "C" dialogs::Maker* makeQtMaker(std::wstring& reason) {
    return dialogs::openScreen(reason) ? new dialogs::QtMaker : nullptr;
}
