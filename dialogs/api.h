// What the library exports: the declarations marked DIALOGS_API, on every platform.
#pragma once

#if defined(_WIN32)
#if defined(DIALOGS_BUILDING)
#define DIALOGS_API __declspec(dllexport)
#else
#define DIALOGS_API __declspec(dllimport)
#endif
#else
#define DIALOGS_API __attribute__((visibility("default")))
#endif
