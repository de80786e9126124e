#include "dialogs/maker.h"

namespace dialogs {

std::unique_ptr<Maker> makeWindowsMaker(bool) { return nullptr; }

// Texts and numbers here do not depend on a thread's locale.
void useSystemLocale() {}

}  // namespace dialogs
