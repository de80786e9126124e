// The module from outside: this program is its host, and calls command objects and trackers by slot number alone.
#include <gtest/gtest.h>

#include "base/modules.h"
#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/curves.h"
#include "fake_host.h"
#include "hostapi/input.h"
#include "hostapi/slides.h"

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
        host().distances.clear();
        host().distancePrompts.clear();
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
        for (OdDbObjectId id : space.openAs<OdDbBlockTableRecord>()->entities()) rays.push_back(id.openAs<OdDbRay>());
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
    const std::vector<Row> rows = {{"Ray", L"", 0},           {"Divide", L"", 0},         {"ElxTest", L"", 0},
                                   {"Wipeout", L"", 0},       {"AttEdit", L"HOST", 2},    {"AttSync", L"", 0},
                                   {"Attdef", L"", 0},        {"AttExt", L"", 0},         {"XLINE", L"", 0},
                                   {"ATTIPedit", L"HOST", 2}, {"ATTIPeditW", L"HOST", 0}, {"BAttMan", L"HOST", 2},
                                   {"Burst", L"HOST", 2},     {"EAttEdit", L"HOST", 2},   {"VSlide", L"", 0}};
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

// A tracker as a host drives it, and the entity that it shows.
template <class Entity>
struct DrivenTracker {
    explicit DrivenTracker(void* object) : tracker(object) {
        // The list of drawables is a table of the test's own.
        struct List {
            void* const* table;
            Entity* shown = nullptr;
        };
        int (*const add)(List*, Entity*, int, int, int, int) = [](List* list, Entity* shown, int, int, int, int) {
            list->shown = shown;
            return 1;
        };
        void* const table[] = {reinterpret_cast<void*>(add)};
        List list{table};
        EXPECT_EQ(slot<int(void*, void*)>(tracker, 1)(tracker, &list), 1);
        entity = list.shown;
    }
    bool event(std::int32_t kind, const OdGePoint3d& point) const {
        const HostInputEvent e{kind, point};
        return slot<bool(void*, const HostInputEvent*, const OdGePoint3d*)>(tracker, 0)(tracker, &e, &e.cursor);
    }
    bool asksForCursor() const {
        std::int32_t cursor = 0;
        return slot<bool(void*, std::int32_t*)>(tracker, 5)(tracker, &cursor) && cursor == 4;
    }
    void* tracker;
    Entity* entity = nullptr;
};

TEST_F(ModuleInHost, XlineTrackersGoByTheirMode) {
    using Xline = DrivenTracker<OdDbXline>;
    constexpr int kHor = hostapi::kFirstKeyword, kBisect = kHor + 3;
    int driven = 0;
    const auto runs = [&](std::deque<fake::PointReply> replies) {
        host().points = std::move(replies);
        host().announcedKinds.clear();
        void* const command = create("XLINE");
        const int status = run(command);
        release(command);
        return status;
    };
    const auto through = [&](void* tracker) {
        const Xline line(tracker);
        EXPECT_TRUE(line.event(512, {1, 9, 0}));
        EXPECT_EQ(line.entity->unitDir(), OdGeVector3d(0, 1, 0));
        EXPECT_FALSE(line.event(513, {5, 2, 0}));
        EXPECT_TRUE(line.event(512, {1, 2, 0})) << "on the base point: seen, and nothing turns";
        EXPECT_EQ(line.entity->unitDir(), OdGeVector3d(0, 1, 0));
        EXPECT_EQ(line.entity->basePoint(), OdGePoint3d(1, 2, 0));
        EXPECT_TRUE(line.asksForCursor());
        ++driven;
    };
    EXPECT_EQ(runs({{hostapi::kValue, {1, 2, 0}, {}}, {hostapi::kCancel, {}, through}}), 0);
    // A line is announced as none, and then, in this mode, as the new entity.
    EXPECT_EQ(host().announcedKinds, (std::vector<int>{0, 1}));

    const auto horizontal = [&](void* tracker) {
        const Xline line(tracker);
        EXPECT_TRUE(line.event(512, {3, 4, 5}));
        EXPECT_EQ(line.entity->basePoint(), OdGePoint3d(3, 4, 5));
        EXPECT_EQ(line.entity->unitDir(), OdGeVector3d(1, 0, 0));
        EXPECT_FALSE(line.event(256, {9, 9, 9}));
        EXPECT_EQ(line.entity->basePoint(), OdGePoint3d(3, 4, 5));
        EXPECT_TRUE(line.asksForCursor());
        ++driven;
    };
    EXPECT_EQ(runs({{kHor, {}, {}}, {hostapi::kEmpty, {}, horizontal}}), 0);
    EXPECT_EQ(host().announcedKinds, std::vector<int>{0});

    const auto bisecting = [&](void* tracker) {
        const Xline line(tracker);
        EXPECT_TRUE(line.event(512, {1, 7, 0}));
        const OdGeVector3d diagonal = OdGeVector3d(1, 1, 0).normal();
        EXPECT_TRUE(line.entity->unitDir().isEqualTo(diagonal));
        EXPECT_TRUE(line.event(512, {1, 1, 0})) << "on the vertex";
        EXPECT_TRUE(line.event(512, {-8, 1, 0})) << "straight across";
        EXPECT_TRUE(line.entity->unitDir().isEqualTo(diagonal));
        EXPECT_EQ(line.entity->basePoint(), OdGePoint3d(1, 1, 0));
        ++driven;
    };
    EXPECT_EQ(runs({{kBisect, {}, {}},
                    {hostapi::kValue, {1, 1, 0}, {}},
                    {hostapi::kValue, {5, 1, 0}, {}},
                    {hostapi::kCancel, {}, bisecting}}),
              0);
    EXPECT_EQ(driven, 3);
    // What is no mode ends the run as a cancelled one, Enter and results that no keyword has among them.
    for (const int result : {hostapi::kEmpty, hostapi::kCancel, 0, 7}) EXPECT_EQ(runs({{result, {}, {}}}), 1) << result;
}

// This host cannot pick lines, nor has it a service for lengths.
TEST_F(ModuleInHost, XlineOffersTheOffsetThatEnterTakes) {
    constexpr int kOffset = 6;
    host().distances = {2.5};
    for (int i = 0; i < 2; ++i) {
        host().points = {{kOffset, {}, {}}};
        void* const command = create("XLINE");
        run(command);
        release(command);
    }
    ASSERT_EQ(host().distancePrompts.size(), 2u);
    EXPECT_TRUE(host().distancePrompts[0].ends_with(L"<Through>")) << base::toUtf8(host().distancePrompts[0]);
    EXPECT_TRUE(host().distancePrompts[1].ends_with(L"<2.5>")) << base::toUtf8(host().distancePrompts[1]);
}

TEST_F(ModuleInHost, WipeoutShowsItsPolygonUnderTheCursor) {
    using Boundary = DrivenTracker<OdDbPolyline>;
    int driven = 0;
    const auto second = [&](void* tracker) {
        const Boundary boundary(tracker);
        ASSERT_EQ(boundary.entity->numVerts(), 2u);
        EXPECT_FALSE(boundary.entity->isDatabaseResident());
        EXPECT_TRUE(boundary.entity->isClosed());
        EXPECT_EQ(boundary.entity->elevation(), 5);
        EXPECT_EQ(boundary.entity->vertexAt(0).startWidth, -1);
        EXPECT_EQ(boundary.entity->pointAt(1), OdGePoint3d(1, 2, 5)) << "it begins at the last point";
        EXPECT_TRUE(boundary.event(512, {7, 8, 9}));
        EXPECT_EQ(boundary.entity->pointAt(1), OdGePoint3d(7, 8, 5)) << "brought into the plane";
        EXPECT_FALSE(boundary.event(513, {0, 0, 0}));
        EXPECT_EQ(boundary.entity->pointAt(1), OdGePoint3d(7, 8, 5));
        EXPECT_EQ(boundary.entity->pointAt(0), OdGePoint3d(1, 2, 5));
        EXPECT_FALSE(boundary.asksForCursor());
        ++driven;
    };
    const auto third = [&](void* tracker) {
        const Boundary boundary(tracker);
        ASSERT_EQ(boundary.entity->numVerts(), 3u);
        EXPECT_EQ(boundary.entity->pointAt(1), OdGePoint3d(3, 2, 5)) << "the point given, not the one last shown";
        ++driven;
    };
    host().points = {
        {hostapi::kValue, {1, 2, 5}, {}}, {hostapi::kValue, {3, 2, 5}, second}, {hostapi::kCancel, {}, third}};
    void* const command = create("Wipeout");
    EXPECT_EQ(run(command), 1);
    release(command);
    EXPECT_EQ(driven, 2);
    EXPECT_TRUE(raysIn(host().database->modelSpaceId()).empty());
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
    for (const auto& ray : rays) EXPECT_EQ(ray->basePoint(), OdGePoint3d(1, 2, 0));
    EXPECT_EQ(rays[0]->unitDir(), OdGeVector3d(1, 0, 0));
    EXPECT_EQ(rays[1]->unitDir(), OdGeVector3d(0, -1, 0));
}

class CountingPainter final : public slidePainter {
  public:
    void header(const SlideHeader& header) override { width = header.highX(); }
    void color(std::int16_t) override { ++colors; }
    void line(const SlidePoint&, const SlidePoint&) override { ++lines; }
    void fill(const SlidePoint*, int) override { ++fills; }

    int width = 0, colors = 0, lines = 0, fills = 0;
};

TEST_F(ModuleInHost, DrawsSlidesForOtherModules) {
    auto* const draw = base::findFunction<void(const CXStringW&, slidePainter*)>(module_.get(), "loadAndDrawVSlide");
    ASSERT_NE(draw, nullptr);
    CountingPainter painter;
    const std::wstring folder = base::fromUtf8(TORVEL_SOURCE_DIR) + L"/tests/slides/";
    draw(folder + L"chair", &painter);
    EXPECT_EQ(painter.width, 160);
    EXPECT_EQ(painter.lines, 10);
    EXPECT_EQ(painter.fills, 3);
    try {
        draw(folder + L"no_slide.sld", &painter);
        ADD_FAILURE();
    } catch (const CXException& error) {
        EXPECT_EQ(error.code(), CXException::kNotASlide);
        EXPECT_EQ(error.resources(), module_.get());
    }
}

TEST_F(ModuleInHost, HasAFilerOfItsOwn) { EXPECT_NE(OdRxClass::find("TVDxfFiler"), nullptr); }

}  // namespace
