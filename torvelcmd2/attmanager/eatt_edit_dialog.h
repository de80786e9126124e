// "Enhanced Attribute Editor": what the user changes of a reference's attributes is in the drawing at once, and goes
// again on Cancel.
#pragma once

#include <set>

#include "drawingdb/block_reference.h"
#include "torvelcmd2/attmanager/attribute_pages.h"
#include "torvelcmd2/attributes/value_control.h"
#include "torvelcmd2/attributes/values/local_undo.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {

class CEAttEditDlg;

/// Tags, prompts and values in a list, and the value of the row selected.
class CEAttEditListPage final : public EditorPage {
  public:
    explicit CEAttEditListPage(CEAttEditDlg& editor);

    /// Fills the list with the reference's attributes.
    void showReference();
    /// The value of the current one, in its row.
    void showCell();
    /// The user may have dragged the columns.
    void saveColumnWidths() const;
    void reload() override;

  private:
    void onInit() override;
    void onSelect(int list, int row) override;
    void onCommand(int control, dialogs::Event event) override;
    bool onLeave(int control, int next) override;

    void restoreColumnWidths();
    void takeValue();

    CEAttEditDlg& dialog_;
    CFEdCtrl value_;
    bool hasColumns_ = false;  // the page was shown
};

/// Lives for a whole editing run: ended for a pick or for the text editor it is shown again, with what it held. Undo
/// marks in the drawing say what Cancel takes back.
class CEAttEditDlg final : public AttributeEditor {
  public:
    enum EndCode { kSelectBlock = IDC_EATTEDIT_SELECT, kEditMultiLine = IDC_EATTEDIT_EDITOR };

    /// Sets the first mark.
    explicit CEAttEditDlg(OdDbDatabase& database);

    /// Goes on to a reference, with `attribute` current, or the first when that is none of its own. False, and nothing
    /// changed, when it has no attributes that can be edited, or is none.
    bool load(OdDbObjectId reference, OdDbObjectId attribute);
    /// Lets the user edit the current attribute, which has several lines, in the text editor.
    void editMultiLineText();

    OdDbObjectId reference() const { return reference_; }
    const OdDbObjectIdArray& attributes() const { return attributes_; }
    int currentRow() const { return row_; }
    void setCurrentRow(int row);

    OdDbDatabase& database() const override { return *database_; }
    OdDbObjectId current() const override;
    OdString lockedReason() const override { return lockedReason_; }
    void attributeChanged() override;

  private:
    void onCommand(int control, dialogs::Event event) override;
    void onCancel() override;
    void savePlacement(const std::wstring& placement) override;

    void setMark();
    void undoToMark();
    void showTag();

    OdDbDatabasePtr database_;
    OdDbObjectId reference_;
    OdDbObjectIdArray attributes_;      // those that can be edited, a row each
    std::set<OdDbObjectId> unapplied_;  // references changed since the last mark
    int row_ = 0;
    OdString lockedReason_;  // of the current one
    RestorePoints marks_;
    CEAttEditListPage listPage_;
    CEAttRefEditTextOptPage textOptions_;
    CEAttRefEditPropertiesPage properties_;
};

}  // namespace torvel
