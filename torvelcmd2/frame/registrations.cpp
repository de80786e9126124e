// The commands of the module, handed to the host's factory while the module is being loaded.
//
// They stand in one file because their order is the order of the host's list.
#include "torvelcmd2/attributes/att_sync.h"
#include "torvelcmd2/construction/elx_test.h"
#include "torvelcmd2/construction/ray.h"
#include "torvelcmd2/extract/att_ext.h"
#include "torvelcmd2/frame/command.h"
#include "torvelcmd2/frame/module_entry.h"

namespace torvel {
namespace {

/// Registers one command, if there is a host to register it with. Nothing is unregistered.
class CommandRegistration {
  public:
    CommandRegistration(const char* name, CommandCreator creator) {
        ICmdFactory* found = nullptr;
        GetCommandFactory(found);
        const CountedReference<ICmdFactory> factory(found);
        if (factory != nullptr) {
            factory->addCommand(name, creator);
        }
    }
};

const CommandRegistration ray("Ray", createCommand<CRayCmd>);
const CommandRegistration elxTest("ElxTest", createCommand<TestCmd>);
const CommandRegistration attSync("AttSync", createCommand<CAttSyncCmd>);
const CommandRegistration attExt("AttExt", createCommand<AttExtCmd>);

// The attach step comes after the registrations.
const ModuleEntry moduleEntry;

}  // namespace
}  // namespace torvel
