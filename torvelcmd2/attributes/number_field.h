// The fields of the attribute dialogs that take a number: a length or an angle in the drawing's units, a plain factor.
#pragma once

#include <initializer_list>
#include <utility>
#include <vector>

#include "dialogs/dialog.h"
#include "drawingdb/object_id.h"

namespace torvel {

enum class NumberKind {
    kLength,
    kAngle,   ///< radians
    kFactor,  ///< shown as a plain number, whatever the units
};
enum class NumberRange { kAny, kNotNegative, kPositive };

/// The value in the drawing's units.
OdString numberText(NumberKind kind, double value);

/// What one field takes.
struct NumberRow {
    int control;
    NumberKind kind;
    NumberRange range;
    unsigned message;  ///< string id of what the user is told of anything else
};

/// The number fields of a dialog or a page. Each keeps its value to the last digit while the text, which may show
/// fewer, is not changed by the user.
class NumberFields {
  public:
    /// The dialog must outlive them.
    NumberFields(dialogs::Dialog& dialog, std::initializer_list<NumberRow> rows);

    void show(int control, double value);
    /// What was typed and not taken goes. Any control.
    void showAgain(int control);
    /// As it was shown or taken last.
    double value(int control) const { return find(control)->value; }

    enum class Left { kUnchanged, kChanged, kRefused };
    /// To be called from onLeave, for any control. kChanged: the user has given another value, which is taken.
    /// kRefused: the text gives none; the user was told, and the focus is to stay. Cancel and Help are reached unasked.
    Left leave(int control, int next);
    /// For OK: takes all fields that are enabled. False: the user was told of one, which has the focus now.
    bool takeAll();

  private:
    struct Field : NumberRow {
        double value = 0;
        std::wstring shown;  // the text that stands for the value
    };

    const Field* find(int control) const;
    Field* find(int control) { return const_cast<Field*>(std::as_const(*this).find(control)); }
    Left take(Field& field);

    dialogs::Dialog& dialog_;
    std::vector<Field> fields_;
};

}  // namespace torvel
