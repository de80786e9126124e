#include "torvelcmd2/attributes/number_field.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/number.h"
#include "base/text.h"
#include "torvelcmd2/frame/module_dialog.h"

namespace torvel {
namespace {

constexpr int kDrawingsOwn = -1;
// Two of them multiplied are still a number, as the height and the width factor of a text are.
constexpr double kLargest = 1e100;

OdString plainNumber(double value) { return base::widen(base::realToText(value)); }

std::optional<double> valueOf(NumberKind kind, const OdString& text) {
    const auto& service = kind == NumberKind::kAngle ? hostapi::textToAngle : hostapi::textToReal;
    auto* const toValue = hostService(service);
    if (!toValue) return base::parseReal(std::wstring_view(text));
    double value = 0;
    return toValue(text.c_str(), kDrawingsOwn, value) ? std::optional(value) : std::nullopt;
}

bool isIn(NumberRange range, double value) {
    if (!(std::fabs(value) <= kLargest)) return false;
    switch (range) {
        case NumberRange::kNotNegative:
            return value >= 0;
        case NumberRange::kPositive:
            return value > 0;
        case NumberRange::kAny:
            break;
    }
    return true;
}

}  // namespace

OdString numberText(NumberKind kind, double value) {
    const auto& service = kind == NumberKind::kAngle ? hostapi::angleToText : hostapi::realToText;
    auto* const toText = hostService(service);
    OdString text;
    if (kind == NumberKind::kFactor || !toText || !toText(value, kDrawingsOwn, kDrawingsOwn, text))
        return plainNumber(value);
    return text;
}

NumberFields::NumberFields(dialogs::Dialog& dialog, std::initializer_list<NumberRow> rows) : dialog_(dialog) {
    for (const NumberRow& row : rows) fields_.push_back({row, 0, {}});
}

const NumberFields::Field* NumberFields::find(int control) const {
    const auto found = std::ranges::find(fields_, control, &Field::control);
    return found == fields_.end() ? nullptr : &*found;
}

void NumberFields::show(int control, double value) {
    Field& field = *find(control);
    field.value = value;
    field.shown = numberText(field.kind, value);
    dialog_.setText(control, field.shown);
}

void NumberFields::showAgain(int control) {
    if (const Field* const field = find(control)) dialog_.setText(control, field->shown);
}

NumberFields::Left NumberFields::take(Field& field) {
    const OdString text = dialog_.text(field.control);
    const bool changed = text != field.shown;
    const std::optional<double> value = changed ? valueOf(field.kind, text) : field.value;
    if (!value || !isIn(field.range, *value)) {
        showBox(hostapi::kWarningBox, loadText(field.message));
        return Left::kRefused;
    }
    field.value = *value;
    field.shown = text;
    return changed ? Left::kChanged : Left::kUnchanged;
}

NumberFields::Left NumberFields::leave(int control, int next) {
    Field* const field = find(control);
    if (!field || next == dialogs::kCancelButton || next == dialogs::kHelpButton) return Left::kUnchanged;
    // What the drawing holds may be out of range; that is no fault of the user's.
    return dialog_.text(control) == field->shown ? Left::kUnchanged : take(*field);
}

bool NumberFields::takeAll() {
    for (Field& field : fields_) {
        if (!dialog_.isEnabled(field.control) || take(field) != Left::kRefused) continue;
        dialog_.focus(field.control);
        dialog_.selectAll(field.control);
        return false;
    }
    return true;
}

}  // namespace torvel
