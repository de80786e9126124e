// Dialog templates as resource scripts (DIALOGEX) describe them.
//
// The compiled form, all numbers little-endian:
//
//   u16 1  u16 0xFFFF  u32 help id  u32 extended style  u32 style
//   u16 number of controls  i16 x  i16 y  i16 width  i16 height
//   menu  class  caption                  text up to a zero unit; menu and class also 0xFFFF and a u16, or a lone 0
//   u16 size  u16 weight  u8 italic  u8 character set  face name      with DS_SETFONT alone
//   for each control, from a multiple of 4 bytes on:
//   u32 help id  u32 extended style  u32 style  i16 x  i16 y  i16 width  i16 height  u32 id
//   class  caption                        text, or 0xFFFF and a u16
//   u16 size of extra data, and the data
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/compiled_resources.h"
#include "dialogs/api.h"

namespace dialogs {

enum class ControlKind {
    kLabel,          ///< static text
    kPicture,        ///< a static that shows a bitmap, an icon or a frame
    kGroup,          ///< a box around others
    kButton,         ///< a push button
    kPictureButton,  ///< a push button that shows a bitmap or an icon instead of its text
    kCheck,
    kRadio,
    kEdit,
    kRichEdit,
    kListBox,
    kCombo,      ///< a drop-down list
    kEditCombo,  ///< a drop-down list with a field for free text
    kListView,   ///< rows with columns
    kTab,
    kOther,
};

/// A rectangle in dialog units: a quarter of the font's average width, an eighth of its height.
struct UnitRect {
    int x = 0, y = 0, width = 0, height = 0;
};

struct ControlTemplate {
    int id = 0;  ///< -1: no id of its own
    ControlKind kind = ControlKind::kOther;
    std::uint32_t style = 0;
    UnitRect place;
    std::wstring caption;
};

struct DialogTemplate {
    std::uint32_t style = 0;
    UnitRect place;
    std::wstring caption;
    std::vector<ControlTemplate> controls;  ///< in the order of the script, which is the order of the Tab key
};

/// Throws std::runtime_error when the bytes are no extended dialog template.
DIALOGS_API DialogTemplate readDialogTemplate(base::ResourceBytes bytes);

}  // namespace dialogs
