// What of the command template cannot be seen from outside the module.
#include "torvelcmd2/frame/command.h"

#include <gtest/gtest.h>
#include <string>

namespace {

class UnaffordableCmd : public torvel::CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override { return setRunStatus(kCommandFinished); }
    static void* operator new(std::size_t, const std::nothrow_t&) noexcept { return nullptr; }
    static void operator delete(void*) {}
};

class QuietCmd : public torvel::CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override { return setRunStatus(kCommandFinished); }
};

// What a command has attached whenever an object that it is given is counted up or down.
struct Notes {
    ICmdProcess* command = nullptr;
    std::string text;
    bool asking = false;  // asking counts too
};

class Witness : public ICSUnknown {
  public:
    Witness(std::string name, Notes& notes) : name_(std::move(name)), notes_(notes) {}
    std::uint32_t addRef() override { return note("+", ++count_); }
    std::uint32_t release() override { return note("-", --count_); }
    int queryInterface(InterfaceId, void**) override { return 0; }

  private:
    std::uint32_t note(const char* what, std::uint32_t count) {
        if (notes_.asking) return count;
        notes_.asking = true;
        ICSUnknown* attached = nullptr;
        const bool any = notes_.command->getAttached(&attached) != 0;
        notes_.text += what + name_ + " with " + (any ? static_cast<Witness*>(attached)->name_ : "none") + "; ";
        if (any) attached->release();
        notes_.asking = false;
        return count;
    }

    std::string name_;
    Notes& notes_;
    std::uint32_t count_ = 1;
};

// Who is counted may look at the command: the new object is there before anybody is told.
TEST(Attached, IsStoredThenAddedThenTheOldOneReleased) {
    Notes notes;
    torvel::createCommand<QuietCmd>(&notes.command);
    Witness first("first", notes), second("second", notes);
    const auto attach = [&](Witness* object) {
        notes.text.clear();
        notes.command->setAttached(object);
        return notes.text;
    };
    EXPECT_EQ(attach(&first), "+first with first; ");
    EXPECT_EQ(attach(&second), "+second with second; -first with second; ");
    EXPECT_EQ(attach(&second), "");
    EXPECT_EQ(attach(nullptr), "-second with none; ");
    notes.command->release();
}

TEST(CreateCommand, WithoutMemoryGivesNullAndSucceeds) {
    ICmdProcess* command = reinterpret_cast<ICmdProcess*>(8);
    EXPECT_EQ(torvel::createCommand<UnaffordableCmd>(&command), 1);
    EXPECT_EQ(command, nullptr);
}

}  // namespace
