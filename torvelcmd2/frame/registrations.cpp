// The commands of the module, handed to the host's factory while the module is being loaded.
//
// They stand in one file because their order is the order of the host's list.
#include "torvelcmd2/attmanager/att_ip_edit.h"
#include "torvelcmd2/attmanager/batt_man.h"
#include "torvelcmd2/attmanager/eatt_edit.h"
#include "torvelcmd2/attributes/att_def.h"
#include "torvelcmd2/attributes/att_edit.h"
#include "torvelcmd2/attributes/att_sync.h"
#include "torvelcmd2/construction/divide.h"
#include "torvelcmd2/construction/elx_test.h"
#include "torvelcmd2/construction/ray.h"
#include "torvelcmd2/construction/wipeout.h"
#include "torvelcmd2/construction/xline.h"
#include "torvelcmd2/extract/att_ext.h"
#include "torvelcmd2/extract/burst/burst.h"
#include "torvelcmd2/frame/command.h"
#include "torvelcmd2/frame/module_entry.h"
#include "torvelcmd2/slides/vslide.h"

namespace torvel {
namespace {

// Registers one command, if there is a host to register it with. Nothing is unregistered.
class CommandRegistration {
  public:
    CommandRegistration(const char* name, CommandCreator creator) {
        ICmdFactory* found = nullptr;
        GetCommandFactory(found);
        const CountedReference<ICmdFactory> factory(found);
        if (factory) factory->addCommand(name, creator);
    }
    CommandRegistration(const char* name, CommandCreator creator, const wchar_t* group, int flags) {
        ICmdFactory* found = nullptr;
        GetCommandFactory(found);
        const CountedReference<ICmdFactory> factory(found);
        if (factory) factory->addCommandInGroup(name, creator, group, flags, 0, 0);
    }
};

// Before the first call into the host, which may fail where the interfaces differ.
const struct InterfaceVersionCheck {
    InterfaceVersionCheck() { checkInterfaceVersion(); }
} interfaceVersionCheck;

constexpr const wchar_t* kGroup = L"HOST";

const CommandRegistration ray("Ray", createCommand<CRayCmd>);
const CommandRegistration divide("Divide", createCommand<CDivideCmd>);
const CommandRegistration elxTest("ElxTest", createCommand<TestCmd>);
const CommandRegistration wipeout("Wipeout", createCommand<CWipeoutCmd>);
const CommandRegistration attEdit("AttEdit", createCommand<AttEditCmd>, kGroup, hostapi::kUsesPickFirst);
const CommandRegistration attSync("AttSync", createCommand<CAttSyncCmd>);
const CommandRegistration attdef("Attdef", createCommand<CAttdefCmd>);
const CommandRegistration attExt("AttExt", createCommand<AttExtCmd>);
const CommandRegistration xline("XLINE", createCommand<CXLineCmd>);
const CommandRegistration attIPedit("ATTIPedit", createCommand<ATTIPeditCmd>, kGroup, hostapi::kUsesPickFirst);
// The one command of the group without the flag: it goes by a pick, not by what was selected before.
const CommandRegistration attIPeditW("ATTIPeditW", createCommand<ATTIPeditWCmd>, kGroup, 0);
const CommandRegistration bAttMan("BAttMan", createCommand<BAttManCmd>, kGroup, hostapi::kUsesPickFirst);
const CommandRegistration burst("Burst", createCommand<BurstCmd>, kGroup, hostapi::kUsesPickFirst);
const CommandRegistration eattEdit("EAttEdit", createCommand<EAttEditCmd>, kGroup, hostapi::kUsesPickFirst);
const CommandRegistration vSlide("VSlide", createCommand<VSlideCmd>);

// The attach step comes after the registrations.
const ModuleEntry moduleEntry;

}  // namespace
}  // namespace torvel
