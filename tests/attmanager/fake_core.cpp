#include "fake_core.h"

#include "hostapi/services.h"

namespace {
FakeCoreState state;
}

extern "C" {

FakeCoreState* fakeCoreState() { return &state; }

bool hostGetVarInteger(const wchar_t* name, std::int64_t& value) {
    if (std::wstring_view(name) != L"LWUNITS") return false;
    value = state.lineWeightUnits;
    return true;
}

void hostTranslateText(const wchar_t* text, CXStringW& translated) {
    translated = text;
    if (state.translates && translated == L"By Layer") translated = L"Wie Layer";
}

bool hostSelectColor(OdCmColor& color) {
    state.shownFirst = color;
    if (state.chosen) color = *state.chosen;
    return state.chosen.has_value();
}

}  // extern "C"
