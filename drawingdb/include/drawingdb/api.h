// The one place that says how drawingdb's functions are exported from its shared library.
//
// drawingdb_EXPORTS is defined by the build while the library itself is compiled; DRAWINGDB_STATIC by whoever
// compiles drawingdb's sources straight into a program.
#pragma once

#if defined(DRAWINGDB_STATIC)
#define DRAWINGDB_API
#elif defined(_WIN32)
#if defined(drawingdb_EXPORTS)
#define DRAWINGDB_API __declspec(dllexport)
#else
#define DRAWINGDB_API __declspec(dllimport)
#endif
#else
#define DRAWINGDB_API __attribute__((visibility("default")))
#endif
