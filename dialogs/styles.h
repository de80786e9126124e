// The styles in templates that matter to every maker.
#pragma once

#include <cstdint>

namespace dialogs {

inline constexpr std::uint32_t kVisibleStyle = 0x10000000;
inline constexpr std::uint32_t kDisabledStyle = 0x08000000;
inline constexpr std::uint32_t kGroupStyle = 0x00020000;
inline constexpr std::uint32_t kTabStopStyle = 0x00010000;
inline constexpr std::uint32_t kSetFontStyle = 0x40;        // of a dialog
inline constexpr std::uint32_t kButtonTypeMask = 0x0F;      // of a button
inline constexpr std::uint32_t kDefaultButtonType = 0x01;   // of a button
inline constexpr std::uint32_t kButtonPictureMask = 0xC0;   // of a button
inline constexpr std::uint32_t kMultiLineStyle = 0x0004;    // of an edit
inline constexpr std::uint32_t kReadOnlyStyle = 0x0800;     // of an edit
inline constexpr std::uint32_t kWantReturnStyle = 0x1000;   // of an edit
inline constexpr std::uint32_t kNoPrefixStyle = 0x0080;     // of a static: "&" is no mnemonic
inline constexpr std::uint32_t kNotifyStyle = 0x0100;       // of a static: the mouse meets it, so that it has a tooltip
inline constexpr std::uint32_t kEndEllipsisStyle = 0x4000;  // of a static: one line, cut off with dots

}  // namespace dialogs
