// Commands in hosts that offer more or less than torvelhost: what they say of a version that does not fit, how they
// stop, and that they do without undo groups, redraws and progress. This program and a stand-in for the core library
// are the host.
#include <filesystem>
#include <functional>

#include "base/files.h"
#include "base/temporary_folder.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "hostapi/input.h"
#include "loaded_services.h"
#include "tests/dialogs/script_lines.h"
#include "torvelcmd2/attmanager/att_ip_edit.h"
#include "torvelcmd2/attmanager/select_attributed_block.h"
#include "torvelcmd2/attributes/att_sync.h"
#include "torvelcmd2/extract/att_ext.h"
#include "torvelcmd2/extract/burst/burst.h"
#include "torvelcmd2/extract/redefinition/redefinition_dialog_ex.h"
#include "torvelcmd2/frame/progress.h"
#include "torvelcmd2/frame/undo_scope.h"

using fake::host;
using namespace torvel;

namespace {

class Hosts : public testing::Test {
  protected:
    void SetUp() override { dialogs::useForms(script_); }
    void TearDown() override {
        dialogs::useStandard();
        host() = {};
    }

    static void open(const char* drawing) {
        host().database =
            OdDbDatabase::readFile(base::fromUtf8(TORVEL_SOURCE_DIR) + L"/tests/" + base::fromUtf8(drawing));
    }
    static OdDbObjectId object(std::uint64_t handle) { return host().database->getObjectId(OdDbHandle(handle)); }
    static std::string bytes() { return host().database->writeBytes(); }

    // attsync/plan.dxf with so many more of its references #80, which are returned.
    static OdDbObjectIdArray openLargePlan(std::size_t count) {
        open("attsync/plan.dxf");
        OdDbObjectIdArray references;
        const OdDbObjectIdArray original{object(0x80)};
        for (std::size_t i = 0; i < count; ++i) {
            OdDbIdMapping copies;
            host().database->deepCloneObjects(original, host().database->modelSpaceId(), copies);
            references.push_back(copies.find(original.front()));
        }
        return references;
    }

    template <class Command>
    static int run() {
        ICmdProcess* created = nullptr;
        createCommand<Command>(&created);
        const CountedReference<ICmdProcess> command(created);
        return command->run();
    }

    static hostapi::Pick pickOf(std::uint64_t reference, std::uint64_t nested) {
        hostapi::Pick pick;
        pick.entity = object(reference);
        pick.nested = object(nested);
        if (nested != reference) pick.containers = {pick.entity};
        return pick;
    }

    ScriptLines script_;
};

TEST_F(Hosts, AreToldOfAVersionThatDoesNotFit) {
    const auto load = [] { return base::loadModule(base::libraryFileName(hostapi::kCommandModule)); };
    const std::string wanted = std::to_string(hostapi::kInterfaceVersion);
    for (const int version : {hostapi::kInterfaceVersion, hostapi::kInterfaceVersion + 1, 0}) {
        const LoadedServices services(L"rich");
        services->interfaceVersion = version;
        host().registrations.clear();
        EXPECT_TRUE(load());
        EXPECT_FALSE(host().registrations.empty()) << "the commands are there all the same";
        if (version == hostapi::kInterfaceVersion) {
            EXPECT_TRUE(services->notices.empty());
            continue;
        }
        ASSERT_EQ(services->notices.size(), 1u);
        const std::string notice = base::toUtf8(services->notices.front());
        EXPECT_NE(notice.find("torvelcmd2 was built for version " + wanted), notice.npos) << notice;
        EXPECT_NE(notice.find("offers version " + std::to_string(version)), notice.npos) << notice;
    }
    {
        const LoadedServices tellsNone(L"poor");
        EXPECT_TRUE(load());
        EXPECT_TRUE(tellsNone->notices.empty());
    }
    const LoadedServices hasNoNotices(L"mute");
    hasNoNotices->interfaceVersion = 9;
    testing::internal::CaptureStderr();
    EXPECT_TRUE(load());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("offers version 9"), std::string::npos);
}

// More than two rounds of progress; the second is not allowed any more.
class StoppedByProgress : public Hosts {
  protected:
    static constexpr std::size_t kReferences = 600;
    static constexpr std::uint64_t kSteps = 300;

    // What the command did is what a host takes back when it ends by an exception.
    template <class Command>
    void expectStop(LoadedServices& services, const std::function<void()>& answer) {
        const std::string before = bytes();
        const std::size_t position = host().database->undoPosition();
        services->stepsAllowed = kSteps;
        answer();
        EXPECT_THROW(run<Command>(), StoppedByUser);
        EXPECT_EQ(host().database->undoGroupDepth(), 0);
        host().database->undoTo(position);
        EXPECT_TRUE(bytes() == before);
        services->stepsAllowed = FakeServices().stepsAllowed;
        services->sets.clear();
        host().keywords.clear();
        answer();
        EXPECT_EQ(run<Command>(), 0) << "the same goes through when nobody stops it";
    }
};

TEST_F(StoppedByProgress, AttSync) {
    openLargePlan(kReferences);
    LoadedServices services(L"rich");
    expectStop<CAttSyncCmd>(services, [&] {
        host().keywords = {{hostapi::kFirstKeyword + 1, L""}, {hostapi::kValue, L"DOOR"}};
    });
}

TEST_F(StoppedByProgress, Burst) {
    const OdDbObjectIdArray references = openLargePlan(kReferences);
    LoadedServices services(L"rich");
    expectStop<BurstCmd>(services, [&] { services->sets = {references}; });
}

TEST_F(StoppedByProgress, AttExtLeavesNoFile) {
    const OdDbObjectIdArray references = openLargePlan(kReferences);
    const base::TemporaryFolder folder;
    const std::string templateFile = base::toUtf8(folder / L"doors.txt");
    const std::wstring output = folder / L"out.txt";
    std::filesystem::copy_file(TORVEL_SOURCE_DIR "/tests/attext/doors.txt", base::toPath(folder / L"doors.txt"));
    for (const char* format : {"check Comma Delimeted File (CDF)", "check DXF Format Extract File (DXX)"}) {
        LoadedServices services(L"rich");
        expectStop<AttExtCmd>(services, [&] {
            EXPECT_FALSE(std::filesystem::exists(base::toPath(output)));
            services->sets = {references};
            script_.lines = {format, "press Select Objects <", "Template File = " + templateFile,
                             "Output File = " + base::toUtf8(output), "press OK"};
        });
        EXPECT_TRUE(std::filesystem::remove(base::toPath(output)));
    }
}

TEST_F(Hosts, WithAndWithoutRedrawEditInPlace) {
    for (const wchar_t* kind : {L"rich", L"poor"}) {
        open("attsync/plan.dxf");
        const LoadedServices services(kind);
        const std::string before = bytes();
        services->currentPick = pickOf(0x80, 0x82);
        EXPECT_EQ(run<ATTIPeditWCmd>(), 0) << "left alone";
        EXPECT_TRUE(bytes() == before);
        host().keywords = {{hostapi::kValue, L"95x215"}};
        EXPECT_EQ(run<ATTIPeditWCmd>(), 0);
        EXPECT_EQ(object(0x82).openAs<OdDbAttribute>()->textString(), L"95x215");
        EXPECT_FALSE(object(0x82).openAs<OdDbEntity>()->isInvisibleEntity());
        EXPECT_EQ(services->redrawn,
                  std::wstring(kind) == L"rich" ? OdDbObjectIdArray(4, object(0x82)) : OdDbObjectIdArray());
        EXPECT_EQ(run<ATTIPeditCmd>(), 1) << "no pick-first set, and the pick is cancelled";
    }
}

TEST_F(Hosts, WithAndWithoutUndoGroupsRedefine) {
    for (const wchar_t* kind : {L"rich", L"poor"}) {
        open("burst/multi_line.dxf");
        const LoadedServices services(kind);
        const std::string before = bytes();
        host().keywords = {{hostapi::kValue, L"a\\Pb"}, {hostapi::kValue, L"c\\Pd"}};
        script_.lines = {"press Default", "press Cancel"};
        EXPECT_EQ(ShowAttDDEIT(object(0x34)), 0);
        EXPECT_TRUE(bytes() == before);
        script_.lines = {"press Default", "press OK"};
        EXPECT_EQ(ShowAttDDEIT(object(0x34)), 1);
        EXPECT_EQ(object(0x34).openAs<OdDbAttributeDefinition>()->textString(), L"c\\Pd");
        EXPECT_EQ(host().database->undoGroupDepth(), 0);
    }
}

TEST_F(Hosts, WithoutProgressLetLongCommandsEnd) {
    const OdDbObjectIdArray references = openLargePlan(300);
    const LoadedServices services(L"poor");
    host().keywords = {{hostapi::kFirstKeyword + 1, L""}, {hostapi::kValue, L"DOOR"}};
    EXPECT_EQ(run<CAttSyncCmd>(), 0);
    services->sets = {references};
    EXPECT_EQ(run<BurstCmd>(), 0);
    EXPECT_FALSE(references.back().isValid());
}

TEST_F(Hosts, UndoScopesAreKeptOrTakenBackWhole) {
    const auto size = [] { return host().database->headerReal("$TEXTSIZE", 0); };
    const auto setSize = [](double value) { host().database->setHeaderReal("$TEXTSIZE", 40, value); };
    const auto openGroup = [] { host().database->blockUndoRecording(true); };
    open("attsync/plan.dxf");
    const double before = size();
    {
        const LoadedServices services(L"rich");
        openGroup();  // somebody else's stays open
        {
            UndoScope scope;
            EXPECT_EQ(host().database->undoGroupDepth(), 2);
            setSize(7);
            openGroup();  // left open within
            setSize(8);
            scope.keep();
        }
        EXPECT_EQ(size(), 8);
        EXPECT_EQ(host().database->undoGroupDepth(), 1);
        {
            const UndoScope scope;
            setSize(9);
            openGroup();
            setSize(10);
        }
        EXPECT_EQ(size(), 8);
        EXPECT_EQ(host().database->undoGroupDepth(), 1);
        host().database->rollBackUndoGroup();
        EXPECT_EQ(size(), before);
    }
    const LoadedServices services(L"poor");
    {
        const UndoScope scope;
        EXPECT_EQ(host().database->undoGroupDepth(), 0);
        setSize(9);
    }
    EXPECT_EQ(size(), 9) << "a host without groups keeps everything";
}

TEST_F(Hosts, AReferenceIsChosenWithTheAttributeUnderThePick) {
    open("attsync/plan.dxf");
    const LoadedServices services(L"rich");
    const OdDbObjectId before = object(0x81);
    const auto choose = [&](std::deque<std::optional<hostapi::Pick>> picks, bool allowNone, bool editableOnly = true) {
        services->picks = std::move(picks);
        services->pickFlags.clear();
        host().messages.clear();
        OdDbObjectId reference = before, attribute = before;
        const int status = selectAttributedBlock(reference, attribute, editableOnly, allowNone);
        return std::tuple(status, reference, attribute);
    };
    const OdDbObjectId door = object(0x80), none;
    EXPECT_EQ(choose({pickOf(0x80, 0x82)}, true), std::tuple(hostapi::kValue, door, object(0x82)));
    EXPECT_EQ(choose({pickOf(0x80, 0x80)}, true), std::tuple(hostapi::kValue, door, before)) << "beside its attributes";
    // An attribute of another reference, which lay under the cursor too.
    hostapi::Pick beside = pickOf(0x80, 0x82);
    beside.containers = {object(0x90)};
    EXPECT_EQ(choose({beside}, true), std::tuple(hostapi::kValue, door, before));
    EXPECT_EQ(choose({}, true), std::tuple(hostapi::kCancel, none, before));
    EXPECT_EQ(choose({std::nullopt}, true), std::tuple(hostapi::kEmpty, none, before));
    EXPECT_EQ(choose({std::nullopt}, false), std::tuple(hostapi::kCancel, none, before)) << "asked again";
    EXPECT_EQ(services->pickFlags,
              (std::vector<int>{hostapi::kSingleEntity, hostapi::kSingleEntity | hostapi::kRetry}));
    // Nothing, a line, a block of constants, a block without attributes.
    const auto refusals = {std::optional(hostapi::Pick()), std::optional(pickOf(0xBC, 0xBC)),
                           std::optional(pickOf(0xB8, 0xB8)), std::optional(pickOf(0xBA, 0xBA))};
    EXPECT_EQ(choose(refusals, true), std::tuple(hostapi::kCancel, none, before));
    EXPECT_EQ(host().messages, (std::vector<std::wstring>{L"That object  is not a block",
                                                          L"The selected block has no editable attributes.",
                                                          L"The selected block has no editable attributes."}));
    EXPECT_EQ(choose(refusals, true, false), std::tuple(hostapi::kValue, object(0xB8), before)) << "constants do here";
    EXPECT_EQ(choose({pickOf(0xBA, 0xBA)}, true, false), std::tuple(hostapi::kCancel, none, before));
    EXPECT_EQ(host().messages, std::vector<std::wstring>{L"The selected block has no attributes."});
}

}  // namespace
