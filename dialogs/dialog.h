// A dialog: what its controls hold, and what happens when the user does something. Nothing here knows how a window is
// made; docs/dialogs.md shows how to write one.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/modules.h"
#include "dialogs/api.h"
#include "dialogs/control.h"

namespace dialogs {

class Run;

inline constexpr int kOkButton = 1;
inline constexpr int kCancelButton = 2;
inline constexpr int kHelpButton = 9;

/// What the user did to a control.
enum class Event {
    kPressed,  ///< a button, a check box or a radio button
    kEdited,   ///< the text of a field changed
    kChosen,   ///< a choice of a list or of a drop-down was made
};

/// While one lives, dialogs take their templates from that module, and the thread's locale is the system's standard
/// one. Its end brings back the resources, also when an exception passes; the locale stays.
class DIALOGS_API ResourceScope {
  public:
    explicit ResourceScope(base::ModuleHandle resources);
    ~ResourceScope();
    ResourceScope(const ResourceScope&) = delete;
    ResourceScope& operator=(const ResourceScope&) = delete;

    /// The module in force; null outside of every scope.
    static base::ModuleHandle current();

  private:
    base::ModuleHandle before_;
};

/// Base of every dialog and of every page of a tabbed one.
///
/// Controls are named by their ids in the template; an id that is not there throws std::out_of_range. What they hold
/// can be read and changed at any time, before, during and after a run. Changes by the program cause no events.
class DIALOGS_API Dialog {
  public:
    /// Reads the template from the resources in force. Throws std::runtime_error when there is none.
    explicit Dialog(int templateId);
    virtual ~Dialog();
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    /// Shows the dialog and works it until it ends; returns the end code. A dialog that ended (for a pick, say) can be
    /// run again and comes back with what its controls held, the focus at the first tab stop. What a handler throws
    /// ends the dialog and comes out here.
    int runModal();
    /// Ends the run. In a page, the run of the dialog around it. The first code counts.
    void end(int code);
    bool isOpen() const;
    /// The handle of its window, for services that want an owner; null where there is none.
    void* window() const;

    std::wstring title() const { return title_; }
    void setTitle(std::wstring_view title);

    /// ---- any control
    std::wstring text(int id) const { return control(id).text; }
    void setText(int id, std::wstring_view text);
    bool isEnabled(int id) const { return control(id).enabled; }
    void enable(int id, bool on = true);
    bool isVisible(int id) const { return control(id).visible; }
    void show(int id, bool on = true);
    void setTooltip(int id, std::wstring_view text);
    /// An icon of the dialog's resources for a picture button (BS_ICON). It has a picture for each resolution: 16
    /// pixels at 96 dots an inch, 24 at 144, 32 at 192.
    void setPicture(int id, int icon);
    /// Moves the focus there without asking the field that has it. Before a run, that run begins there.
    void focus(int id);
    /// 0: none of this dialog's controls has the focus.
    int focused() const;

    /// ---- check boxes and radio buttons
    bool isChecked(int id) const { return control(id).checked; }
    /// Marking a radio button clears the others of its group.
    void setChecked(int id, bool on = true);

    /// ---- fields
    TextSelection selection(int id) const { return control(id).selection; }
    void setSelection(int id, TextSelection selection);
    void selectAll(int id);
    void setReadOnly(int id, bool on = true);
    /// Letters that the user types become capitals; what the program sets stays as it is.
    void setUpperCase(int id, bool on = true) { control(id).upperCase = on; }
    bool isModified(int id) const { return control(id).modified; }
    void setModified(int id, bool on) { control(id).modified = on; }
    /// Binds a rich edit to its contents, which must outlive the dialog; null unbinds it.
    void setRichText(int id, RichText* contents);
    /// Shows the contents anew after they were changed from outside.
    void refreshRichText(int id);

    /// ---- choices of list boxes and drop-downs
    int addChoice(int id, std::wstring_view text, std::intptr_t data = 0);
    void clearChoices(int id);
    void setSwatch(int id, int choice, std::uint32_t rgb);
    int choiceCount(int id) const { return static_cast<int>(control(id).choices.size()); }
    std::wstring choiceText(int id, int choice) const { return control(id).choices.at(choice).text; }
    std::intptr_t choiceData(int id, int choice) const { return control(id).choices.at(choice).data; }
    /// -1 when there is none. Texts are compared exactly.
    int findChoice(int id, std::wstring_view text) const;
    int findChoiceData(int id, std::intptr_t data) const;
    /// The choice, row or page selected; -1: none. Selecting a choice of an editable drop-down also sets its text.
    int selected(int id) const { return control(id).selected; }
    void select(int id, int item);

    /// ---- list views
    void setColumns(int id, std::vector<Column> columns);
    /// As it is now: the user can drag it.
    int columnWidth(int id, int column) const { return control(id).columns.at(column).width; }
    /// The width that columns share, in pixels.
    int listWidth(int id) const;
    /// Replaces all rows at once; none is selected afterwards.
    void setRows(int id, std::vector<Row> rows);
    int rowCount(int id) const { return static_cast<int>(control(id).rows.size()); }
    std::wstring cell(int id, int row, int column) const { return control(id).rows.at(row).cells.at(column); }
    void setCell(int id, int row, int column, std::wstring_view text);

    /// ---- pages of a tab control
    /// The page must outlive the dialog's runs. It is initialised when it is first shown in a run.
    void addPage(int id, std::wstring_view title, Dialog& page);
    /// The dialog around a page; null for any other.
    Dialog* parent() const { return parent_; }

    /// ---- for the makers
    const DialogTemplate& design() const { return design_; }
    std::vector<std::unique_ptr<Control>>& controls() { return controls_; }
    base::ModuleHandle resources() const { return resources_; }
    int templateId() const { return templateId_; }
    Run* run() const;

  protected:
    // ---- what happens; nothing need be overridden

    /// The run begins; in a page, the page is shown for the first time in it. The windows are not visible yet.
    virtual void onInit() {}
    virtual void onCommand([[maybe_unused]] int control, [[maybe_unused]] Event event) {}
    /// Buttons 1 and 2. Enter, Escape and the close box lead here too.
    virtual void onOk() { end(kOkButton); }
    virtual void onCancel() { end(kCancelButton); }
    /// The help button and F1.
    virtual void onHelp() {}
    /// The focus is about to go from `control` to `next` (which may belong to another dialog of the same window: keep
    /// their ids apart). False keeps it, with the whole text selected; what the user was about to do is then dropped,
    /// as it is when a box was shown meanwhile. Enter counts as going to the button it presses, Escape and the close
    /// box as going to Cancel.
    virtual bool onLeave([[maybe_unused]] int control, [[maybe_unused]] int next) { return true; }
    /// A row of a list view was selected.
    virtual void onSelect([[maybe_unused]] int list, [[maybe_unused]] int row) {}
    /// A row of a list view, or a choice of a list box.
    virtual void onDoubleClick([[maybe_unused]] int list, [[maybe_unused]] int row) {}
    /// Another page is shown.
    virtual void onPage([[maybe_unused]] int tab, [[maybe_unused]] int page) {}
    /// The context menu of a control that is no rich edit; empty: none.
    virtual std::vector<MenuEntry> menuOf([[maybe_unused]] int control) { return {}; }
    virtual void onMenu([[maybe_unused]] int control, [[maybe_unused]] int command) {}
    /// The place of the window as it was saved last, and the place to save when a run ends.
    virtual std::wstring savedPlacement() { return {}; }
    virtual void savePlacement([[maybe_unused]] const std::wstring& placement) {}

  private:
    friend class Run;

    const Control& control(int id) const;
    Control& control(int id);
    bool owns(int id) const;

    base::ModuleHandle resources_;
    int templateId_;
    DialogTemplate design_;
    std::wstring title_;
    std::vector<std::unique_ptr<Control>> controls_;
    Dialog* parent_ = nullptr;
    Run* run_ = nullptr;
    int firstFocus_ = 0;        // of the next run; 0: the first tab stop
    bool initialized_ = false;  // in this run
};

}  // namespace dialogs
