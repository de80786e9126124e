// Exported.
#include "hostapi/module_functions.h"
#include "torvelcmd2/attributes/values/text_escapes.h"

// withoutEscapes, for other modules; a null text is an empty one.
extern "C" std::wstring deEscapeString(const wchar_t* text) { return torvel::withoutEscapes(text ? text : L""); }
static_assert(hostapi::fits(hostapi::deEscapeString, &deEscapeString));
