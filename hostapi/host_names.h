// The names of the host's libraries: the one place to change for another host.
//
// Names are bare; base::libraryFileName makes them file names ("torvelcore" is torvelcore.dll or libtorvelcore.so).
// A host may put several roles into one library, and need not have them all.
#pragma once

namespace hostapi {

inline constexpr wchar_t kViewModule[] = L"torvelview";  ///< host main module of a host whose program exports nothing
inline constexpr wchar_t kBridgeModule[] = L"torvelbridge";  ///< exports GetMainDllInstanceEx
inline constexpr wchar_t kCoreLibrary[] = L"torvelcore";     ///< application, commands, variables, resource translation
inline constexpr wchar_t kResourceLibrary[] = L"torvelres";  ///< second provider of resource translation
inline constexpr wchar_t kUtilityLibrary[] = L"torvelcore";  ///< spaces, units, angles
inline constexpr wchar_t kSelectionLibrary[] = L"torvelcore";  ///< picks, selection sets, highlighting
inline constexpr wchar_t kEventLibrary[] = L"torvelcore";      ///< message boxes, notifications
inline constexpr wchar_t kGraphicsLibrary[] = L"torvelcore";   ///< what the view shows

inline constexpr wchar_t kCommandModule[] = L"torvelcmd2";  ///< the command module itself

inline constexpr wchar_t kFieldModule[] = L"torvelfields";      ///< the field manager, loaded for each use
inline constexpr wchar_t kTextEditorModule[] = L"torvelmtext";  ///< the multi-line text editor, loaded for each use

}  // namespace hostapi
