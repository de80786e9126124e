// The commands that modules have registered.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/text.h"
#include "hostapi/command.h"

namespace host {

struct RegisteredCommand {
    std::wstring name;
    CommandCreator creator = nullptr;
    std::wstring group;
    int flags = 0;
};

/// One for the process; modules get counted references to it.
class CommandFactory final : public ICmdFactory {
  public:
    static CommandFactory& instance();

    std::uint32_t addRef() override { return ++references_; }
    std::uint32_t release() override { return --references_; }
    /// 1; 0 for a name that is taken or a null creator.
    int addCommandInGroup(const char* name, CommandCreator creator, const wchar_t* group, int flags,
                          std::uintptr_t reserved1, std::uintptr_t reserved2) override;
    int addCommand(const char* name, CommandCreator creator) override;

    /// In any case; null when there is none.
    const RegisteredCommand* find(std::wstring_view name) const;
    std::vector<std::wstring> names() const;
    /// References that modules hold.
    std::uint32_t references() const { return references_; }

  private:
    std::map<std::wstring, RegisteredCommand, base::LessNoCase> commands_;
    std::uint32_t references_ = 0;
};

}  // namespace host
