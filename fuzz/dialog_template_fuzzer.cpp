// The input is a compiled dialog template. It is read, or refused by an exception of the documented kind.
#include <stdexcept>

#include "dialogs/dialog_template.h"
#include "fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const dialogs::DialogTemplate dialog =
            dialogs::readDialogTemplate({reinterpret_cast<const std::byte*>(data), size});
        fuzz::require(dialog.controls.size() * 24 <= size, "every control has bytes of its own");
    } catch (const std::runtime_error&) {
    }
    return 0;
}
