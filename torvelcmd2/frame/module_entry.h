// What the platform's loader calls. One file per platform implements it.
#pragma once

namespace torvel {

/// Where the loader knows no entry routine but the static initialisers, this object is the entry routine: it attaches
/// when it is made and detaches when it goes. It is the last static object of the registrations' file, so that the
/// registrations come first everywhere. Where the loader calls an entry routine after the static initialisers, it does
/// nothing.
class ModuleEntry {
  public:
    ModuleEntry();
    ~ModuleEntry();
    ModuleEntry(const ModuleEntry&) = delete;
    ModuleEntry& operator=(const ModuleEntry&) = delete;
};

}  // namespace torvel
