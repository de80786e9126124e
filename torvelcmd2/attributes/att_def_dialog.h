// "Attribute Definition": what the definition is to be.
#pragma once

#include <optional>

#include "drawingdb/attribute.h"
#include "torvelcmd2/attributes/justification.h"
#include "torvelcmd2/attributes/multiline_editing.h"
#include "torvelcmd2/attributes/number_field.h"
#include "torvelcmd2/attributes/value_control.h"
#include "torvelcmd2/frame/module_dialog.h"

namespace torvel {

/// Bits of the mode flags.
enum DefinitionMode : unsigned {
    kInvisibleMode = 1,
    kConstantMode = 2,
    kVerifyMode = 4,
    kPresetMode = 8,
    kLockPositionMode = 16,
    kMultiLineMode = 32,
};

/// What the dialog hands to the command. Lengths are drawing units, angles radians, points world coordinates.
struct DefinitionValues {
    OdString tag;
    OdString prompt;
    OdString defaultText;  ///< of a multi-line one with its formatting codes
    OdString textStyle;    ///< empty: the current one
    double height = 0;
    double rotation = 0;         ///< in the user coordinate system
    double boundaryWidth = 0;    ///< 0: none
    unsigned justification = 0;  ///< its string id; 0: left
    unsigned modes = 0;
    bool onScreen = false;       ///< the insertion point is to be asked for
    bool belowPrevious = false;  ///< never without `previous`
    bool annotative = false;
    OdGePoint3d insertionPoint;
    CapturedText singleLine;                  ///< the default with its fields
    OdDbFieldPtr field;                       ///< what Insert Field gave last; null: nothing
    std::optional<MultiLineValue> multiLine;  ///< what the text editor gave last
    OdDbObjectId previous;                    ///< the last definition of the space; null: none
};

/// From a line of the text to the next below it.
OdGeVector3d nextLineBelow(const OdDbText& text);

/// Lives for a whole command: ended for a pick it is shown again, with what it held. Modes, text style and
/// justification are remembered until the module is unloaded.
class CAttDefDlg final : public ModuleDialog {
  public:
    /// End codes of the buttons that want the screen or another module.
    enum EndCode { kPickHeight = 10, kPickRotation = 11, kEditDefault = 12, kPickWidth = 13, kInsertField = 14 };

    explicit CAttDefDlg(OdDbDatabase& database);

    void setHeight(double height);
    void setRotation(double rotation);
    void setBoundaryWidth(double width);
    /// Lets the user edit the default as a multi-line text.
    void editDefault();
    /// Puts a field in place of the default.
    void setField(const OdDbFieldPtr& field);
    /// After OK.
    DefinitionValues values();

  private:
    void onCommand(int control, dialogs::Event event) override;
    bool onLeave(int control, int next) override;
    void onOk() override;

    void leaveFor(EndCode code);
    bool isHeldToOneLine() const;
    void remember() const;
    unsigned modes() const;
    void setModes(unsigned modes);
    OdDbObjectId textStyle() const;
    void showTextStyles();
    void prepareButtons();
    double firstHeight() const;
    OdGePoint3d insertionPoint() const;
    void setInsertionPoint(const OdGePoint3d& point);

    void changeMultiLine();
    void showMultiLine();
    void showInsertionPoint();
    void selectJustification(unsigned textId);
    void alignBelowPrevious();
    void showBelowPrevious();

    void showEdited();

    OdDbDatabase& database_;
    OdDbObjectId previous_;
    NumberFields numbers_;
    CFEdCtrl default_;
    OdDbFieldPtr field_;
    std::optional<MultiLineValue> multiLine_;
    OdString multiLineShown_;  // what the default showed of it
    unsigned justification_ = 0;
};

}  // namespace torvel
