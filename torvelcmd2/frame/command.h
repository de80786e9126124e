// What every command object has, and the frame of every run.
#pragma once

#include <new>
#include <typeinfo>
#include <utility>

#include "drawingdb/database.h"
#include "drawingdb/entity.h"
#include "hostapi/command.h"
#include "hostapi/input.h"
#include "torvelcmd2/frame/host_binding.h"

namespace torvel {

/// The part of a command object that is alike in all commands. A command class derives from
/// CCSUnknownImpl<ICmdProcess>, says what run() does and adds no fields: the state of a run lives in its run().
template <class Interface>
class CCSUnknownImpl : public Interface {
  public:
    std::uint32_t addRef() final { return this->incrementReference(); }
    std::uint32_t release() final { return this->decrementReference(); }
    int queryInterface(InterfaceId id, void** result) final { return this->findInterface(id, result); }

    CMD_RUNSTATUS runStatus() final { return status_; }
    int query5() final { return 0; }
    int query6() final { return 1; }

    int getAttached(ICSUnknown** object) final {
        if (!attached_) return 0;
        attached_->addRef();
        *object = attached_.get();
        return 1;
    }

    int setAttached(ICSUnknown* object) final {
        if (object == attached_.get()) return 1;
        // Whoever is called from here on finds the new object attached already.
        const CountedReference<ICSUnknown> before = std::exchange(attached_, CountedReference<ICSUnknown>(object));
        if (object) object->addRef();
        return 1;
    }

    std::uint32_t incrementReference() final { return ++references_; }

    std::uint32_t decrementReference() final {
        if (--references_ == 0) {
            this->destroy(1);
            return 0;
        }
        return references_;
    }

    int findInterface(InterfaceId id, void** result) final {
        // Only the root and the outermost interface are answered; ICmdRun, though it lies between them, is refused on
        // purpose.
        if (*id != typeid(ICSUnknown) && *id != typeid(Interface)) {
            if (result) *result = nullptr;
            return 0;
        }
        if (result) {
            *result = static_cast<Interface*>(this);
            incrementReference();
        }
        return 1;
    }

  protected:
    CCSUnknownImpl() = default;
    ~CCSUnknownImpl() = default;
    CCSUnknownImpl(const CCSUnknownImpl&) = delete;
    CCSUnknownImpl& operator=(const CCSUnknownImpl&) = delete;

    CMD_RUNSTATUS setRunStatus(CMD_RUNSTATUS status) { return status_ = status; }
    void releaseAttached() { attached_.reset(); }

  private:
    std::uint32_t references_ = 1;
    CountedReference<ICSUnknown> attached_;
    CMD_RUNSTATUS status_ = kCommandFinished;
};

/// A command as it is allocated: knows its whole type, so that it can free itself without a destructor in the slots.
template <class Command>
class CommandObject final : public Command {
  public:
    void destroy(unsigned flags) override {
        this->releaseAttached();
        if ((flags & 1) != 0) delete this;
    }
};

/// The creator of a command class. Returns 1 also when there is no memory: the host then sees a null command.
template <class Command>
int createCommand(ICmdProcess** command) {
    // Its reference count owns it.
    *command = new (std::nothrow) CommandObject<Command>;  // NOLINT(cppcoreguidelines-owning-memory)
    return 1;
}

/// What a run works on. The database is referenced for as long as the run lasts, the input channel is the document's.
struct RunFrame {
    OdDbDatabasePtr database;
    HostEdInput* input;
};

/// The active document's database and input channel. There must be a host and an open document.
RunFrame reachDocument();

/// The status that the last input result of a run leads to: cancelled for a cancel, finished otherwise.
CMD_RUNSTATUS statusOfInput(int inputResult);

/// A text of the module's own string table; see resources/resource.h.
OdString loadText(unsigned id);

/// Writes one line to the command line, whatever characters it holds.
void printLine(const OdString& text);

/// The block record where the user draws: the current space, but model space when a floating viewport is active in
/// paper space.
OdDbObjectId targetSpaceId(const OdDbDatabase& database);

/// Appends a new entity to a block record.
void appendToSpace(OdDbObjectId space, OdDbEntity& entity);

}  // namespace torvel
