// The host's functions as a module finds them: by name in the core library, and its interfaces as a foreign compiler
// calls them: by slot.

#include "hostapi/services.h"

#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "base/modules.h"
#include "drawingdb/curves.h"
#include "hostapi/input.h"
#include "hostapi/trackers.h"
#include "torvelhost/commands/command_factory.h"
#include "torvelhost/session/application.h"

using namespace host;

namespace {

template <class Signature>
Signature* find(const hostapi::Service<Signature>& service) {
    static const base::ModuleHandle core = base::loadModule(base::libraryFileName(hostapi::kCoreLibrary)).release();
    return base::findFunction<Signature>(core, service.name);
}

// Calls the function in a slot of an object's table.
template <class Result, class... Arguments>
Result callSlot(void* object, std::size_t slot, Arguments... arguments) {
    using Function = Result (*)(void*, Arguments...);
    const auto* table = *static_cast<const Function* const*>(object);
    return table[slot](object, arguments...);
}

}  // namespace

TEST(Services, EveryRowIsExported) {
    using namespace hostapi;
    EXPECT_EQ(find(interfaceVersion)(), kInterfaceVersion);
    EXPECT_TRUE(find(get_host_funcptr));
    EXPECT_TRUE(find(new_ICmdFactory));
    EXPECT_TRUE(find(initResTranslation));
    EXPECT_TRUE(find(deInitResTranslation));
    EXPECT_TRUE(find(loadStringNotTranslated));
    EXPECT_TRUE(find(translateText));
    EXPECT_TRUE(find(getActiveBTRId));
    EXPECT_TRUE(find(getTextOrientation));
    EXPECT_TRUE(find(getDrawingPlane));
    EXPECT_TRUE(find(realToText));
    EXPECT_TRUE(find(angleToText));
    EXPECT_TRUE(find(textToReal));
    EXPECT_TRUE(find(textToAngle));
    EXPECT_TRUE(find(getPlotStyleNames));
    EXPECT_TRUE(find(selectEntity));
    EXPECT_TRUE(find(selectNested));
    EXPECT_TRUE(find(selectSet));
    EXPECT_TRUE(find(getPickFirst));
    EXPECT_TRUE(find(setPickFirst));
    EXPECT_TRUE(find(getCurrentPick));
    EXPECT_TRUE(find(highlight));
    EXPECT_TRUE(find(getTextVariable));
    EXPECT_TRUE(find(getIntegerVariable));
    EXPECT_TRUE(find(getRealVariable));
    EXPECT_TRUE(find(getPointVariable));
    EXPECT_TRUE(find(getVectorVariable));
    EXPECT_TRUE(find(setVariable));
    EXPECT_TRUE(find(messageBox));
    EXPECT_TRUE(find(selectColor));
    EXPECT_TRUE(find(notify));
    EXPECT_TRUE(find(getProfile));
    EXPECT_TRUE(find(getHelpService));
    EXPECT_TRUE(find(getStdDirs));
    EXPECT_TRUE(find(regenerate));
    EXPECT_TRUE(find(progress));
    EXPECT_TRUE(find(undoGroupDepth));
    EXPECT_TRUE(find(openUndoGroup));
    EXPECT_TRUE(find(closeUndoGroup));
    EXPECT_TRUE(find(rollBackUndoGroup));
    EXPECT_TRUE(find(redrawEntity));
}

TEST(Services, HostFunctionsByNumber) {
    auto* byNumber = find(hostapi::get_host_funcptr);
    ASSERT_TRUE(byNumber);
    for (int id : {hostapi::kApplicationFunction, hostapi::kRefreshFunction, hostapi::kSlideViewFunction})
        EXPECT_TRUE(byNumber(id)) << id;
    EXPECT_FALSE(byNumber(0));
    EXPECT_FALSE(byNumber(3));
    // No host runs in that library here, and the functions say so quietly.
    EXPECT_FALSE(reinterpret_cast<hostapi::ApplicationFunction*>(byNumber(hostapi::kApplicationFunction))());
    reinterpret_cast<hostapi::RefreshFunction*>(byNumber(hostapi::kRefreshFunction))(1);
    hostapi::Pick pick;
    EXPECT_EQ(find(hostapi::selectEntity)(L"Select", nullptr, 0, pick), hostapi::kCancel);
    CXStringW text;
    EXPECT_TRUE(find(hostapi::realToText)(15.5, 4, 4, text));
    EXPECT_EQ(text, L"1'-3 1/2\"");
    EXPECT_FALSE(find(hostapi::realToText)(std::numeric_limits<double>::infinity(), 2, 4, text));
}

TEST(Slots, OfTheInterfacesThatModulesCall) {
    Options options;
    Terminal terminal(true);
    ScriptReplies replies(terminal);
    Application application(options, terminal);
    replies.addText(L"3,4|45|y|7|some text|2.5");

    void* hostApplication = static_cast<HostApplication*>(&application);
    EXPECT_EQ(callSlot<void*>(hostApplication, 0), nullptr);
    EXPECT_EQ(callSlot<HostEdInput*>(hostApplication, 16), application.applicationInput());
    application.open(OdDbDatabase::createNew(), replies);
    void* document = callSlot<void*>(hostApplication, 0);
    ASSERT_TRUE(document);
    EXPECT_EQ(callSlot<OdDbDatabase*>(document, 0), application.session()->document.database());
    void* input = callSlot<void*>(document, 3);
    EXPECT_EQ(input, application.session()->document.input());

    const std::uintptr_t none = 0;
    OdGePoint3d point;
    int result =
        callSlot<int, const OdGePoint3d*, OdGePoint3d*, const wchar_t*, const wchar_t*, int, std::uintptr_t, void*>(
            input, 0, nullptr, &point, L"Point", nullptr, 4, none, nullptr);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(point, OdGePoint3d(3, 4, 0));
    double number = 0;
    result = callSlot<int, double*, const wchar_t*, const wchar_t*, int, std::uintptr_t>(input, 1, &number, L"Angle",
                                                                                         nullptr, 4, none);
    EXPECT_EQ(result, -1);
    EXPECT_DOUBLE_EQ(number, drawingdb::kPi / 4);
    result = callSlot<int, const wchar_t*, const wchar_t*, int, std::uintptr_t, std::uintptr_t>(
        input, 2, L"Sure? [%s]", L"Yes No", 4, none, none);
    EXPECT_EQ(result, 2);
    int count = 0;
    result = callSlot<int, int*, const wchar_t*, const wchar_t*, int, std::uintptr_t>(input, 9, &count, L"Count",
                                                                                      nullptr, 0, none);
    EXPECT_EQ(count, 7);
    OdString text;
    EXPECT_TRUE((callSlot<bool, OdString*>(input, 6, &text)));
    EXPECT_EQ(text, L"some text");
    result = callSlot<int, const OdGePoint3d*, double*, const wchar_t*, const wchar_t*, int, std::uintptr_t>(
        input, 7, nullptr, &number, L"Distance", nullptr, 12, none);
    EXPECT_EQ(number, 2.5);
    callSlot<void, int, OdDbEntity*>(input, 18, 1, nullptr);

    testing::internal::CaptureStdout();
    using Print = void (*)(void*, const wchar_t*, ...);
    (*static_cast<const Print* const*>(input))[4](input, L"%s has %d", L"DOOR", 3);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "DOOR has 3\n");

    CommandFactory& factory = CommandFactory::instance();
    void* raw = static_cast<ICmdFactory*>(&factory);
    const std::uint32_t before = factory.references();
    const CommandCreator creator = [](ICmdProcess** slot) {
        *slot = nullptr;
        return 1;
    };
    EXPECT_EQ((callSlot<std::uint32_t>(raw, 0)), before + 1);
    callSlot<int, const char*, CommandCreator>(raw, 9, "SlotNine", creator);
    callSlot<int, const char*, CommandCreator, const wchar_t*, int, std::uintptr_t, std::uintptr_t>(
        raw, 6, "SlotSix", creator, L"HOST", 2, none, none);
    EXPECT_EQ((callSlot<std::uint32_t>(raw, 1)), before);
    ASSERT_TRUE(factory.find(L"SLOTNINE"));
    ASSERT_TRUE(factory.find(L"slotsix"));
    EXPECT_EQ(factory.find(L"slotsix")->group, L"HOST");
    EXPECT_EQ(factory.find(L"slotsix")->flags, 2);
    EXPECT_EQ(factory.find(L"SlotNine")->name, L"SlotNine");
}

namespace {

// A tracker that changes nothing of the base's behaviour.
class PlainTracker final : public HostEdPointTracker {
  public:
    using HostEdPointTracker::HostEdPointTracker;
};

class Drawables final : public HostDrawableList {
  public:
    int add(OdDbEntity* entity, int kind, int flags, int reserved1, int reserved2) override {
        EXPECT_EQ((std::array{kind, flags, reserved1, reserved2}), (std::array{1, 512, 0, 0}));
        entities.push_back(entity);
        return 1;
    }
    int remove(OdDbEntity* entity) override { return static_cast<int>(std::erase(entities, entity)); }
    std::vector<OdDbEntity*> entities;
};

}  // namespace

TEST(Slots, OfTrackers) {
    const OdSmartPtr<OdDbRay> ray = OdDbRay::createObject();
    {
        PlainTracker tracker(ray);
        EXPECT_EQ(ray->references(), 2);
        void* filter = static_cast<HostEdMessageFilter*>(&tracker);
        Drawables list;
        EXPECT_EQ((callSlot<int, HostDrawableList*>(filter, 1, &list)), 1);
        EXPECT_EQ(list.entities, std::vector<OdDbEntity*>{ray.get()});
        callSlot<void, HostDrawableList*>(filter, 2, &list);
        EXPECT_TRUE(list.entities.empty());
        EXPECT_FALSE(callSlot<bool>(filter, 3));
        EXPECT_FALSE(callSlot<bool>(filter, 4));
        std::int32_t kind = 0;
        EXPECT_FALSE((callSlot<bool, std::int32_t*>(filter, 5, &kind)));
        void* dimensions = static_cast<HostEdJigDimData*>(&tracker);
        EXPECT_EQ(callSlot<int>(dimensions, 0), 0);
        EXPECT_EQ(callSlot<int>(dimensions, 1), 3);
        EXPECT_EQ(callSlot<int>(dimensions, 2), 3);
    }
    EXPECT_EQ(ray->references(), 1);
}
