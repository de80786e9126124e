// What the user does in dialogs and boxes, told as the lines that a script would have (docs/scripts.md).
//
// View, Run and the boxes say what is about to be done before any handler is called, so that the answer to a box that a
// handler shows comes behind the line that led to it. A few actions wait for the next one before they are told: typing
// grows into one line, a move of the focus is none where an action on the same control follows, and a click is part of
// a double click.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dialogs/control.h"
#include "dialogs/form_script.h"
#include "dialogs/view.h"

namespace dialogs {

class Recording {
  public:
    using Recorder = std::function<void(std::wstring_view line)>;

    void use(Recorder recorder);
    bool isOn() const { return recorder_ && quiet_ == 0; }
    bool isQuiet() const { return quiet_ > 0; }
    void setQuiet(bool on);

    /// ---- what the user is about to do
    /// The focus is about to go there: by that key, or else by the mouse.
    void moves(Run& run, const Control& control, std::wstring_view key = {});
    /// That was refused, or a box came between.
    void stays();
    void presses(Run& run, const Control& button);
    void chooses(Run& run, const Control& list, int item);
    void doubleClicks(Run& run, const Control& list, int row);
    void presses(Key key);
    void closes();
    /// The new text is in the control, but the dialog has not been told. A rich edit has no runs.
    void edits(Run& run, const Control& field);
    void choosesEntry(Run& run, const Control& control, int command);
    void answers(std::wstring_view line);

    /// ---- in a rich edit with runs, which stay what they are only when the same is done at the same place
    void types(Run& run, const Control& field, std::wstring_view text);
    void pressesIn(Run& run, const Control& field, Key key);

    /// ---- afterwards
    void copied();
    /// Whether a replay finds on its clipboard what is on this one.
    bool knowsClipboard() const;
    /// The entry of the menu was done. One that pasted a text from elsewhere counts as typing it.
    void choseEntry(const Control& control);

    /// Tells what waits.
    void flush();
    /// A dialog ends: its controls are nobody's any more.
    void ends();

  private:
    enum class Kind { kNothing, kMove, kEdit, kTyping, kChoice, kEntry };
    struct Waiting {
        Kind kind = Kind::kNothing;
        const Control* control = nullptr;
        std::vector<std::wstring> lines = {};    // told, but for edits
        std::vector<std::wstring> instead = {};  // of a move that is refused, a choice that becomes a double click
        std::wstring name = {};                  // of an edit
        std::wstring text = {};                  // of an edit, of typing; that of the field before an entry
        std::wstring clipboard = {};             // before an entry
        TextSelection selection = {};            // the same
        int item = -1;                           // of a choice
    };

    void wait(Waiting action);
    void begin(const Control& control);
    void tell(const std::wstring& line) const;
    static std::vector<std::wstring> linesOf(const Waiting& edit);
    std::wstring itemOf(Run& run, const Control& list, int item);

    Recorder recorder_;
    int quiet_ = 0;
    Waiting waiting_;
    std::optional<std::wstring> copied_;
    std::optional<ItemNames> names_;  // of the list that was looked at last
    std::uint64_t namesRevision_ = 0;
};

/// The process's own.
Recording& recording();

}  // namespace dialogs
