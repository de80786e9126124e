// The module from outside: this program is its host, and calls command objects and trackers by slot number alone.
#include <gtest/gtest.h>

#include "base/modules.h"
#include "base/paths.h"
#include "drawingdb/block.h"
#include "drawingdb/curves.h"
#include "fake_host.h"
#include "hostapi/input.h"

extern "C" {
void* GetMainDllInstance() { return base::processImage(); }
const wchar_t* GetMainDllNameW() {
    static const std::wstring name = base::fileNameOf(base::moduleFileName(base::processImage()));
    return name.c_str();
}
void new_ICmdFactory(ICmdFactory** factory) { fake::newCommandFactory(factory); }
fake::HostFunction get_host_funcptr(int id) { return fake::hostFunction(id); }
}

namespace {

using fake::host;
using fake::slot;

// A counted object of the test's own, to be attached to commands.
struct Attachment {
    static std::uint32_t addRef(void* object) { return ++static_cast<Attachment*>(object)->references; }
    static std::uint32_t release(void* object) { return --static_cast<Attachment*>(object)->references; }
    void* const* table = slots;
    std::uint32_t references = 1;
    static inline void* const slots[3] = {reinterpret_cast<void*>(addRef), reinterpret_cast<void*>(release), nullptr};
};

class ModuleInHost : public testing::Test {
  protected:
    static void SetUpTestSuite() { module_ = base::loadModule(base::libraryFileName(L"torvelcmd2")); }
    static void TearDownTestSuite() { module_.reset(); }

    void SetUp() override {
        ASSERT_NE(module_, nullptr);
        host().database = OdDbDatabase::createNew();
        host().messages.clear();
        host().points.clear();
        host().pointPrompts.clear();
        host().announcedKinds.clear();
    }
    void TearDown() override { host().database.reset(); }

    static void* create(const std::string& name) {
        for (const fake::Registration& registration : host().registrations) {
            if (registration.name == name) {
                ICmdProcess* command = nullptr;
                EXPECT_EQ(registration.creator(&command), 1);
                return command;
            }
        }
        return nullptr;
    }
    static int run(void* command) { return slot<int(void*)>(command, 3)(command); }
    static int runStatus(void* command) { return slot<int(void*)>(command, 4)(command); }
    static std::uint32_t addRef(void* command) { return slot<std::uint32_t(void*)>(command, 0)(command); }
    static std::uint32_t release(void* command) { return slot<std::uint32_t(void*)>(command, 1)(command); }

    static std::vector<OdSmartPtr<OdDbRay>> raysIn(OdDbObjectId space) {
        std::vector<OdSmartPtr<OdDbRay>> rays;
        for (OdDbObjectId id : space.openAs<OdDbBlockTableRecord>()->entities()) {
            rays.push_back(id.openAs<OdDbRay>());
        }
        return rays;
    }

    static inline base::ModuleReference module_;
};

TEST_F(ModuleInHost, RegistersItsCommandsInOrderAndGivesTheFactoryBack) {
    struct Row {
        std::string name;
        std::wstring group;
        int flags;
    };
    const std::vector<Row> rows = {{"Ray", L"", 0},     {"Divide", L"", 0},    {"ElxTest", L"", 0},
                                   {"Wipeout", L"", 0}, {"AttSync", L"", 0},   {"AttExt", L"", 0},
                                   {"XLINE", L"", 0},   {"Burst", L"HOST", 2}, {"VSlide", L"", 0}};
    ASSERT_EQ(host().registrations.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(host().registrations[i].name, rows[i].name);
        EXPECT_EQ(host().registrations[i].group, rows[i].group) << rows[i].name;
        EXPECT_EQ(host().registrations[i].flags, rows[i].flags) << rows[i].name;
    }
    EXPECT_EQ(host().factoryReferences, 0);
}

TEST_F(ModuleInHost, CountsReferencesAndFreesTheCommandWithTheLast) {
    for (const fake::Registration& registration : host().registrations) {
        void* const command = create(registration.name);
        EXPECT_EQ(runStatus(command), 0);
        EXPECT_EQ(addRef(command), 2u);
        EXPECT_EQ(slot<std::uint32_t(void*)>(command, 10)(command), 3u);
        EXPECT_EQ(slot<std::uint32_t(void*)>(command, 11)(command), 2u);
        EXPECT_EQ(release(command), 1u);
        EXPECT_EQ(slot<int(void*)>(command, 5)(command), 0);
        EXPECT_EQ(slot<int(void*)>(command, 6)(command), 1);
        EXPECT_EQ(release(command), 0u);
    }
}

TEST_F(ModuleInHost, AnswersTwoInterfacesAndNoOther) {
    void* const command = create("Ray");
    for (std::size_t query : {2, 12}) {
        const auto ask = slot<int(void*, InterfaceId, void**)>(command, query);
        for (InterfaceId known : {&typeid(ICSUnknown), &typeid(ICmdProcess)}) {
            void* result = nullptr;
            EXPECT_EQ(ask(command, known, &result), 1);
            EXPECT_EQ(result, command);
            EXPECT_EQ(release(command), 1u);
            EXPECT_EQ(ask(command, known, nullptr), 1);
            EXPECT_EQ(addRef(command), 2u) << "asking alone adds no reference";
            release(command);
        }
        void* result = command;
        EXPECT_EQ(ask(command, &typeid(ICmdRun), &result), 0);
        EXPECT_EQ(result, nullptr);
        EXPECT_EQ(ask(command, &typeid(ICmdRun), nullptr), 0);
    }
    release(command);
}

TEST_F(ModuleInHost, HoldsOneReferenceToWhatIsAttached) {
    void* const command = create("AttSync");
    const auto attached = slot<int(void*, void**)>(command, 7);
    const auto attach = slot<int(void*, void*)>(command, 8);
    Attachment first, second;
    void* read = &first;
    EXPECT_EQ(attached(command, &read), 0);
    EXPECT_EQ(attach(command, &first), 1);
    EXPECT_EQ(first.references, 2u);
    EXPECT_EQ(attach(command, &first), 1);
    EXPECT_EQ(first.references, 2u) << "attached already";
    EXPECT_EQ(attached(command, &read), 1);
    EXPECT_EQ(read, &first);
    EXPECT_EQ(first.references, 3u) << "reading adds one for the reader";
    EXPECT_EQ(attach(command, &second), 1);
    EXPECT_EQ(first.references, 2u);
    EXPECT_EQ(second.references, 2u);
    // Slot 9 without bit 0 lets go of what is attached and leaves the object alone.
    slot<void(void*, unsigned)>(command, 9)(command, 0);
    EXPECT_EQ(second.references, 1u);
    EXPECT_EQ(attached(command, &read), 0);
    EXPECT_EQ(attach(command, &second), 1);
    EXPECT_EQ(release(command), 0u);
    EXPECT_EQ(second.references, 1u);
}

TEST_F(ModuleInHost, ElxTestEchoesAnyTextEntered) {
    const std::int32_t references = host().database->references();
    struct {
        std::deque<std::wstring> texts;
        int status;
        std::vector<std::wstring> messages;
    } const cases[] = {
        {{L"abc"}, 0, {L"Inputed Text is abc."}},
        {{L""}, 0, {L"Inputed Text is ."}},
        {{L"100%s"}, 0, {L"Inputed Text is 100%s."}},
        {{}, 1, {}},
    };
    for (const auto& c : cases) {
        host().texts = c.texts;
        host().messages.clear();
        host().applicationRequests = 0;
        void* const command = create("ElxTest");
        EXPECT_EQ(run(command), c.status);
        EXPECT_EQ(runStatus(command), c.status);
        EXPECT_EQ(host().messages, c.messages);
        EXPECT_EQ(host().applicationRequests, 2);
        EXPECT_EQ(release(command), 0u);
    }
    EXPECT_EQ(host().database->references(), references);
}

TEST_F(ModuleInHost, RayEndsAtItsFirstPrompt) {
    for (const auto& [result, status] : {std::pair(hostapi::kCancel, 1), std::pair(hostapi::kEmpty, 0)}) {
        host().points = {{result, {}, {}}};
        void* const command = create("Ray");
        EXPECT_EQ(run(command), status);
        EXPECT_TRUE(raysIn(host().database->modelSpaceId()).empty());
        release(command);
    }
}

TEST_F(ModuleInHost, RayDrawsAFanAndShowsEachRayUnderTheCursor) {
    std::vector<std::string> seen;
    const auto whileAsked = [&](void* tracker) {
        // The drawables come and go in pairs; the list is a table of the test's own.
        struct List {
            void* const* table;
            OdDbRay* ray = nullptr;
        };
        const auto add = [](void* list, OdDbRay* ray, int kind, int flags, int, int) {
            EXPECT_EQ(std::pair(kind, flags), std::pair(1, 512));
            static_cast<List*>(list)->ray = ray;
            return 1;
        };
        const auto remove = [](void* list, OdDbRay* ray) {
            EXPECT_EQ(static_cast<List*>(list)->ray, ray);
            return 1;
        };
        int (*const addFunction)(void*, OdDbRay*, int, int, int, int) = add;
        int (*const removeFunction)(void*, OdDbRay*) = remove;
        void* const table[] = {reinterpret_cast<void*>(addFunction), nullptr, reinterpret_cast<void*>(removeFunction)};
        List list{table};
        EXPECT_EQ(slot<int(void*, void*)>(tracker, 1)(tracker, &list), 1);
        ASSERT_NE(list.ray, nullptr);

        const auto filter = slot<bool(void*, const HostInputEvent*, const OdGePoint3d*)>(tracker, 0);
        const auto event = [&](std::int32_t kind, double x, double y) {
            const HostInputEvent e{kind, {x, y, 0}};
            return filter(tracker, &e, &e.cursor);
        };
        EXPECT_TRUE(event(512, 1, 7));
        EXPECT_EQ(list.ray->unitDir(), OdGeVector3d(0, 1, 0));
        EXPECT_FALSE(event(513, 9, 2));
        EXPECT_FALSE(event(256, 9, 2));
        EXPECT_EQ(list.ray->unitDir(), OdGeVector3d(0, 1, 0));
        EXPECT_TRUE(event(512, 1, 2));
        EXPECT_EQ(list.ray->unitDir(), OdGeVector3d(0, 1, 0)) << "the cursor stands on the start point";
        slot<void(void*, int, const OdGePoint3d*)>(tracker, 6)(tracker, 99, &OdGePoint3d::kOrigin);
        EXPECT_LT(list.ray->unitDir().x, 0);

        std::int32_t cursor = 0;
        EXPECT_TRUE((slot<bool(void*, std::int32_t*)>(tracker, 5)(tracker, &cursor)));
        EXPECT_EQ(cursor, 4);
        EXPECT_FALSE(slot<bool(void*)>(tracker, 3)(tracker));
        EXPECT_FALSE(slot<bool(void*)>(tracker, 4)(tracker));
        void* const dimensions = static_cast<void**>(tracker) + 1;
        EXPECT_EQ(slot<int(void*)>(dimensions, 0)(dimensions), 0);
        EXPECT_EQ(slot<int(void*)>(dimensions, 1)(dimensions), 3);
        EXPECT_EQ(slot<int(void*)>(dimensions, 2)(dimensions), 3);
        slot<void(void*, void*)>(tracker, 2)(tracker, &list);
        seen.push_back(list.ray->isDatabaseResident() ? "in the drawing" : "free");
    };
    host().points = {{hostapi::kValue, {1, 2, 0}, {}},
                     {hostapi::kValue, {5, 2, 0}, whileAsked},
                     {hostapi::kValue, {1, 2, 0}, {}},  // on the start point: nothing
                     {hostapi::kValue, {1, -4, 0}, {}},
                     {hostapi::kEmpty, {}, {}}};
    void* const command = create("Ray");
    EXPECT_EQ(run(command), 0);
    release(command);

    EXPECT_EQ(seen, std::vector<std::string>{"free"});
    EXPECT_EQ(host().announcedKinds, std::vector<int>(5, 1));
    EXPECT_EQ(host().pointPrompts,
              (std::vector<std::wstring>{L"Specify start point", L"Specify through point", L"Specify through point",
                                         L"Specify through point", L"Specify through point"}));
    const auto rays = raysIn(host().database->modelSpaceId());
    ASSERT_EQ(rays.size(), 2u);
    for (const auto& ray : rays) {
        EXPECT_EQ(ray->basePoint(), OdGePoint3d(1, 2, 0));
    }
    EXPECT_EQ(rays[0]->unitDir(), OdGeVector3d(1, 0, 0));
    EXPECT_EQ(rays[1]->unitDir(), OdGeVector3d(0, -1, 0));
}

}  // namespace
