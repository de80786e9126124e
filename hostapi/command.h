// Commands as a host drives them, and the factory that it offers to modules.
#pragma once

#include "hostapi/unknown.h"

/// How a run ended, or that it has not.
enum CMD_RUNSTATUS : std::int32_t {
    kCommandFinished = 0,
    kCommandCancelled = 1,  ///< cancelled by the user, or failed
    kCommandRunning = 2,
};

class ICmdRun : public ICSUnknown {
  public:
    virtual CMD_RUNSTATUS run() = 0;        // slot 3
    virtual CMD_RUNSTATUS runStatus() = 0;  // slot 4

  protected:
    ~ICmdRun() = default;
};

/// One run of one command. The host gets it from the command's creator with a count of 1, calls run() once, reads
/// runStatus() and releases it.
class ICmdProcess : public ICmdRun {
  public:
    virtual int query5() = 0;  // slot 5
    virtual int query6() = 0;  // slot 6
    /// Slot 7. Stores the attached object with a reference added and returns 1; 0 when nothing is attached.
    virtual int getAttached(ICSUnknown** object) = 0;
    /// Slot 8. Attaches an object (a reference is taken) or null, and returns 1.
    virtual int setAttached(ICSUnknown* object) = 0;
    /// Slot 9. Releases what is attached; frees the object when bit 0 of the flags is set.
    virtual void destroy(unsigned flags) = 0;
    virtual std::uint32_t incrementReference() = 0;                         // slot 10
    virtual std::uint32_t decrementReference() = 0;                         // slot 11
    virtual int findInterface(InterfaceId interfaceId, void** result) = 0;  // slot 12

  protected:
    ~ICmdProcess() = default;
};

/// Stores a new command object, or null when there is no memory for it; returns 1 either way.
using CommandCreator = int (*)(ICmdProcess** command);

namespace hostapi {
/// Flag of a command that takes the pick-first set, when there is one, for its first selection set.
inline constexpr int kUsesPickFirst = 2;
}  // namespace hostapi

/// The host's list of commands. Names are ASCII and found without case; the first registration of a name stands.
class ICmdFactory {
  public:
    virtual std::uint32_t addRef() = 0;   // slot 0
    virtual std::uint32_t release() = 0;  // slot 1
    virtual void reserved2() {}
    virtual void reserved3() {}
    virtual void reserved4() {}
    virtual void reserved5() {}
    /// Slot 6. Of the flags only kUsesPickFirst has an effect.
    virtual int addCommandInGroup(const char* name, CommandCreator creator, const wchar_t* group, int flags,
                                  std::uintptr_t reserved1, std::uintptr_t reserved2) = 0;
    virtual void reserved7() {}
    virtual void reserved8() {}
    virtual int addCommand(const char* name, CommandCreator creator) = 0;  // slot 9

  protected:
    ~ICmdFactory() = default;
};
