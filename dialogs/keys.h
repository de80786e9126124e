// The keys that dialogs know what to do with.
#pragma once

namespace dialogs {

enum class Key {
    kEnter,
    kEscape,
    kTab,
    kSpace,
    kBackspace,
    kDelete,
    kLeft,
    kRight,
    kUp,
    kDown,
    kHome,
    kEnd,
    kPageUp,
    kPageDown,
    kHelp,
    kSelectAll,  ///< Ctrl+A
    kCopy,
    kCut,
    kPaste
};

}  // namespace dialogs
