// How the lines of a form name its controls.
//
// A control goes by the caption it shows; one without goes by the caption shown right before it in the template, and by
// its tooltip; a list without any of these is "list". "&", a trailing colon, "..." and "<" do not count, nor does case.
// A group's name may go in front
// ("Insertion Point/X"), and "(2)" behind takes the second of two alike.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dialogs/run.h"

namespace dialogs {

using ControlTest = std::function<bool(const Control&)>;

/// The caption as it is spoken: "Template File" for "&Template File...".
std::wstring plainName(std::wstring_view caption);
/// What the control is called in messages and forms; empty when it has no name.
DIALOGS_API std::wstring nameOf(const Control& control);
/// The number in "Name(2)", and the name without it.
std::optional<std::size_t> takeNumber(std::wstring_view& name);
/// The control of that name among those that are shown and pass the test. Null: none.
DIALOGS_API Control* findByName(Run& run, std::wstring_view name, const ControlTest& test);
/// The name by which findByName finds that control. Empty: there is none.
DIALOGS_API std::wstring distinctName(Run& run, const Control& control, const ControlTest& test);

/// A control's name in front of a separator, and what stands behind it. The longest name counts. A null control: none.
struct NamedPart {
    Control* control = nullptr;
    std::wstring_view rest;
};
NamedPart splitAtName(Run& run, std::wstring_view line, wchar_t separator, const ControlTest& test);

}  // namespace dialogs
