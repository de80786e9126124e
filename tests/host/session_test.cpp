// The host as its commands meet it: prompts, trackers, picks, failures and undo.

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "base/files.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/layer.h"
#include "torvelhost/commands/command_factory.h"
#include "torvelhost/commands/command_loop.h"

using namespace host;
using testing::HasSubstr;

namespace {

// A command whose body is the test's. Counts how many of its objects live.
class TestCommand final : public ICmdProcess {
  public:
    static std::function<CMD_RUNSTATUS()> body;
    static int alive;
    static int create(ICmdProcess** slot) {
        *slot = new TestCommand;
        return 1;
    }
    static int createNothing(ICmdProcess** slot) {
        *slot = nullptr;
        return 1;
    }

    std::uint32_t addRef() override { return ++count_; }
    std::uint32_t release() override {
        if (--count_ > 0) return count_;
        delete this;
        return 0;
    }
    int queryInterface(InterfaceId, void**) override { return 0; }
    CMD_RUNSTATUS run() override { return status_ = body(); }
    CMD_RUNSTATUS runStatus() override { return status_; }
    int query5() override { return 0; }
    int query6() override { return 1; }
    int getAttached(ICSUnknown**) override { return 0; }
    int setAttached(ICSUnknown*) override { return 1; }
    void destroy(unsigned) override {}
    std::uint32_t incrementReference() override { return addRef(); }
    std::uint32_t decrementReference() override { return release(); }
    int findInterface(InterfaceId, void**) override { return 0; }

  private:
    TestCommand() { ++alive; }
    ~TestCommand() { --alive; }
    std::uint32_t count_ = 1;
    CMD_RUNSTATUS status_ = kCommandFinished;
};
std::function<CMD_RUNSTATUS()> TestCommand::body;
int TestCommand::alive = 0;

// A host with a drawing and a script whose lines are separated by "|".
struct Host {
    explicit Host(const wchar_t* script, OdDbDatabasePtr database = OdDbDatabase::createNew())
        : replies(terminal), application(options, terminal) {
        CommandFactory::instance().addCommand("TestCommand", TestCommand::create);
        CommandFactory::instance().addCommand("NoMemory", TestCommand::createNothing);
        if (*script) replies.addText(script);
        application.open(std::move(database), replies);
        TestCommand::body = [] { return kCommandFinished; };
    }
    Application::Session& session() { return *application.session(); }
    Input& input() { return session().input; }
    OdDbDatabase* database() { return session().document.database(); }
    ExitStatus run() { return CommandLoop(application).run(); }
    // The message of the script error that the run ends with.
    std::string scriptError() {
        try {
            run();
        } catch (const ScriptError& error) {
            return error.what();
        }
        return "no error";
    }

    Options options;
    Terminal terminal{true};
    ScriptReplies replies;
    Application application;
};

OdDbObjectId addLine(OdDbDatabase* database, const OdGePoint3d& from, const OdGePoint3d& to) {
    const auto line = OdDbLine::createObject();
    line->setDatabaseDefaults(database);
    line->setStartPoint(from);
    line->setEndPoint(to);
    return database->currentSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(line.get());
}

std::size_t entityCount(OdDbDatabase* database) {
    std::size_t count = 0;
    const auto space = database->modelSpaceId().openAs<OdDbBlockTableRecord>();
    for ([[maybe_unused]] OdDbObjectId id : space->entities()) ++count;
    return count;
}

OdGePoint3d askedPoint(Host& host, int expected = hostapi::kValue, const wchar_t* keywords = nullptr) {
    OdGePoint3d point(-1, -1, -1);
    EXPECT_EQ(host.input().getPoint(nullptr, point, L"Point", keywords, 4, 0, nullptr), expected);
    return point;
}

// What a tracker was sent: m a move, k a key, b a button, + and - drawables shown and taken back.
class RecordingTracker final : public HostEdPointTracker {
  public:
    using HostEdPointTracker::HostEdPointTracker;
    bool filterEvent(const HostInputEvent& event, const OdGePoint3d& point) override {
        EXPECT_EQ(event.cursor, point);
        const bool moved = event.kind == HostInputEvent::kPointMoved;
        log += moved ? 'm' : event.kind == HostInputEvent::kKeyDown ? 'k' : 'b';
        last = point;
        if (throws) throw std::runtime_error("tracker");
        return moved;
    }
    int addDrawables(HostDrawableList& list) override {
        log += '+';
        return HostEdPointTracker::addDrawables(list);
    }
    void removeDrawables(HostDrawableList& list) override {
        log += '-';
        HostEdPointTracker::removeDrawables(list);
    }
    std::string log;
    OdGePoint3d last;
    bool throws = false;
};

}  // namespace

// ---- prompts

TEST(Prompts, PointsAreAbsoluteRelativeAndPolar) {
    Host host(L"3,4|@1,0|@2<90|1,2,3||^C|; a comment|h|Ver");
    EXPECT_EQ(askedPoint(host), OdGePoint3d(3, 4, 0));
    EXPECT_EQ(askedPoint(host), OdGePoint3d(4, 4, 0));
    EXPECT_EQ(askedPoint(host), OdGePoint3d(4, 6, 0));
    EXPECT_EQ(askedPoint(host), OdGePoint3d(1, 2, 3));
    EXPECT_EQ(askedPoint(host, hostapi::kEmpty), OdGePoint3d(-1, -1, -1));
    askedPoint(host, hostapi::kCancel);
    askedPoint(host, 2, L"Hor Ver");
    askedPoint(host, 3, L"Hor Ver");
}

TEST(Prompts, PointsAreTypedInTheUserCoordinateSystem) {
    Host host(L"1,0|@1,0|2<90");
    host.database()->setHeaderPoint("$UCSORG", OdGePoint3d(10, 0, 0));
    host.database()->setHeaderPoint("$UCSXDIR", OdGePoint3d(0, 1, 0));
    host.database()->setHeaderPoint("$UCSYDIR", OdGePoint3d(-1, 0, 0));
    EXPECT_EQ(askedPoint(host), OdGePoint3d(10, 1, 0));
    EXPECT_EQ(askedPoint(host), OdGePoint3d(10, 2, 0));
    EXPECT_EQ(askedPoint(host), OdGePoint3d(8, 0, 0));

    // The elevation is the Z of points without one; it is each space's own.
    Host raised(L"1,2|@1,0|1,2,0|2<0|1,2");
    std::wstring reason;
    EXPECT_TRUE(raised.session().variables.set(L"ELEVATION", L"4.5", reason));
    EXPECT_EQ(askedPoint(raised), OdGePoint3d(1, 2, 4.5));
    EXPECT_EQ(askedPoint(raised), OdGePoint3d(2, 2, 4.5));
    EXPECT_EQ(askedPoint(raised), OdGePoint3d(1, 2, 0));
    EXPECT_EQ(askedPoint(raised), OdGePoint3d(2, 0, 4.5));
    EXPECT_TRUE(raised.session().variables.set(L"TILEMODE", L"0", reason));
    EXPECT_EQ(askedPoint(raised), OdGePoint3d(1, 2, 0));
}

TEST(Prompts, NumbersAnglesDistancesAndTexts) {
    Host host(L"90|0,0|0,5|2.5|0,0|3,4|3,4|Through|17|-99999999999999999999|B|S");
    double angle = 0, distance = 0;
    EXPECT_EQ(host.input().getAngle(angle, L"Angle", L"Reference", 4, 0), hostapi::kValue);
    EXPECT_DOUBLE_EQ(angle, drawingdb::kPi / 2);
    EXPECT_EQ(host.input().getAngle(angle = 0, L"Angle", nullptr, 4, 0), hostapi::kValue);
    EXPECT_DOUBLE_EQ(angle, drawingdb::kPi / 2);  // from one point to another
    EXPECT_EQ(host.input().getDistance(nullptr, distance, L"Distance", nullptr, 12, 0), hostapi::kValue);
    EXPECT_EQ(distance, 2.5);
    EXPECT_EQ(host.input().getDistance(nullptr, distance, L"Distance", nullptr, 12, 0), hostapi::kValue);
    EXPECT_EQ(distance, 5.0);
    const OdGePoint3d base(0, 4, 0);
    EXPECT_EQ(host.input().getDistance(&base, distance, L"Distance", nullptr, 12, 0), hostapi::kValue);
    EXPECT_EQ(distance, 3.0);
    EXPECT_EQ(host.input().getDistance(nullptr, distance, L"Distance [%s]", L"Through", 12, 0), 2);
    EXPECT_EQ(distance, 3.0);
    int number = 0;
    EXPECT_EQ(host.input().getInteger(number, L"Segments", L"Block", 0, 0), hostapi::kValue);
    EXPECT_EQ(number, 17);
    EXPECT_EQ(host.input().getInteger(number, L"Segments", L"Block", 0, 0), hostapi::kValue);
    EXPECT_EQ(number, std::numeric_limits<int>::min());
    EXPECT_EQ(host.input().getInteger(number, L"Segments", L"Block", 0, 0), 2);
    EXPECT_EQ(host.input().getAngle(angle, L"Angle", L"Scale", 4, 0), 2);  // no south without a number
}

TEST(Prompts, AnAngleMayBeginAtABasePoint) {
    Host host(L"1,1|30|3,2");
    double angle = 0;
    const OdGePoint3d base(0, 0, 0), other(3, 5, 0);
    const auto ask = [&](const OdGePoint3d& from) {
        return host.input().getAngle(angle, L"Angle", nullptr, 4, reinterpret_cast<std::uintptr_t>(&from));
    };
    EXPECT_EQ(ask(base), hostapi::kValue);
    EXPECT_DOUBLE_EQ(angle, drawingdb::kPi / 4);
    EXPECT_EQ(ask(base), hostapi::kValue);
    EXPECT_DOUBLE_EQ(angle, drawingdb::kPi / 6);
    EXPECT_EQ(ask(other), hostapi::kValue);
    EXPECT_DOUBLE_EQ(std::cos(angle - 1.5 * drawingdb::kPi), 1);
}

TEST(Prompts, TextsAndTheirKeywords) {
    Host host(L"door 2|\"?\"|?|\"\"||^C|  blanks go  |\"\"|^C");
    OdString text;
    const auto ask = [&] {
        text = L"-";
        return host.input().getKeyword(L"Name or [%s]", L"?", 4, reinterpret_cast<std::uintptr_t>(&text), 0);
    };
    EXPECT_EQ(ask(), hostapi::kValue);
    EXPECT_EQ(text, L"door 2");
    EXPECT_EQ(ask(), hostapi::kValue);
    EXPECT_EQ(text, L"?");
    EXPECT_EQ(ask(), hostapi::kFirstKeyword);
    EXPECT_EQ(ask(), hostapi::kValue);
    EXPECT_EQ(text, L"");
    EXPECT_EQ(ask(), hostapi::kEmpty);
    EXPECT_EQ(ask(), hostapi::kCancel);
    EXPECT_EQ(text, L"-");
    EXPECT_TRUE(host.input().getString(text));
    EXPECT_EQ(text, L"blanks go");
    EXPECT_TRUE(host.input().getString(text));
    EXPECT_EQ(text, L"");
    EXPECT_FALSE(host.input().getString(text));
}

TEST(Prompts, RepliesThatDoNotFitEndAScript) {
    struct Case {
        const wchar_t* reply;
        std::function<void(Input&)> ask;
        const char* message;
    };
    OdGePoint3d point;
    int number;
    double angle;
    for (const Case& c : {
             Case{L"x", [&](Input& i) { i.getPoint(nullptr, point, L"From", nullptr, 4, 0, nullptr); },
                  "--command:2: \"x\" is not a point, at the prompt \"From:\""},
             Case{L"O", [&](Input& i) { i.getKeyword(L"Mode [%s]", L"ON OFF", 4, 0, 0); },
                  "\"O\" may mean more than one of ON/OFF, at the prompt \"Mode [ON/OFF]:\""},
             Case{L"1.5", [&](Input& i) { i.getInteger(number, L"Count", nullptr, 0, 0); }, "is not an integer"},
             Case{L"30000000000000000000x", [&](Input& i) { i.getInteger(number, L"Count", nullptr, 0, 0); },
                  "is not an integer"},
             Case{L"1e101,0", [&](Input& i) { i.getPoint(nullptr, point, L"From", nullptr, 4, 0, nullptr); },
                  "the point lies too far away"},
             Case{L"@1e308,0",
                  [&](Input& i) {
                      i.document().setLastPoint({1e308, 0, 0});
                      i.getDistance(nullptr, angle, L"Distance", nullptr, 12, 0);
                  },
                  "the point lies too far away"},
             Case{L"-1", [&](Input& i) { i.getDistance(nullptr, angle, L"Distance", nullptr, 12, 0); },
                  "a distance is not negative"},
             Case{L"-1e101", [&](Input& i) { i.getDistance(nullptr, angle, L"Distance", nullptr, 4, 0); },
                  "the distance is too long"},
             Case{L"\"45\"", [&](Input& i) { i.getAngle(angle, L"Angle", nullptr, 0, 0); }, "is not an angle"},
         }) {
        Host host((std::wstring(L"TestCommand|") + c.reply + L"|QUIT").c_str());
        TestCommand::body = [&] {
            addLine(host.database(), {}, {1, 0, 0});
            c.ask(host.input());
            ADD_FAILURE() << "the prompt returned";
            return kCommandFinished;
        };
        EXPECT_THAT(host.scriptError(), HasSubstr(c.message));
        EXPECT_EQ(entityCount(host.database()), 0u);  // what the command had done is taken back
        EXPECT_EQ(TestCommand::alive, 0);
    }

    Host ended(L"TestCommand");
    TestCommand::body = [&] {
        ended.input().getKeyword(L"Go on? [%s]", L"Yes No", 4, 0, 0);
        return kCommandFinished;
    };
    EXPECT_EQ(ended.scriptError(), "--command:1: the script ends, at the prompt \"Go on? [Yes/No]:\"");
}

TEST(Commands, LayerRefusesWhatThereIsNoLayerFor) {
    for (const auto& [script, message] : {
             std::pair{L"LAYER|Set|x", "the drawing has no layer \"x\", at the prompt \"Enter layer name:\""},
             {L"LAYER|Freeze|x", "the drawing has no layer \"x\""},
             {L"LAYER|New|0", "the drawing has a layer \"0\" already"},
             {L"LAYER|Make|A*B", "\"A*B\" is no name for a layer"},
             {L"LAYER|Color|300|0|", "\"300\" is not a color number between 1 and 255"},
         })
        EXPECT_THAT(Host(script).scriptError(), HasSubstr(message));
    Host host(L"LAYER|Make|A|Make|0|Freeze|*|Color|255|a|");
    EXPECT_EQ(host.run(), kAllFinished);
    EXPECT_TRUE(host.database()->findLayer(L"A").openAs<OdDbLayerTableRecord>()->isFrozen());
}

// ---- trackers

TEST(Trackers, MoveLikeACursor) {
    Host host(L"8,0|^C|K|");
    const auto ray = OdDbRay::createObject();
    RecordingTracker tracker(ray);
    OdGePoint3d point;
    host.session().document.setLastPoint({4, 0, 0});
    const auto ask = [&] {
        tracker.log.clear();
        return host.input().getPoint(nullptr, point, L"Point", L"Keyword", 4, 0, &tracker);
    };
    EXPECT_EQ(ask(), hostapi::kValue);
    // A key before, moves on the way, the button at the end; shown before and taken back after.
    EXPECT_EQ(tracker.log.substr(0, 2), "+k");
    EXPECT_EQ(tracker.log.substr(tracker.log.size() - 2), "b-");
    EXPECT_GE(std::count(tracker.log.begin(), tracker.log.end(), 'm'), 2) << tracker.log;
    EXPECT_EQ(tracker.last, OdGePoint3d(8, 0, 0));
    EXPECT_EQ(ask(), hostapi::kCancel);
    EXPECT_EQ(tracker.log, "+-");
    EXPECT_EQ(ask(), 2);
    EXPECT_EQ(tracker.log, "+-");
    EXPECT_EQ(ask(), hostapi::kEmpty);
    EXPECT_EQ(tracker.log, "+-");
    EXPECT_TRUE(host.input().drawablesShown().empty());

    Host failing(L"1,1");
    tracker.throws = true;
    tracker.log.clear();
    EXPECT_THROW(failing.input().getPoint(nullptr, point, L"Point", nullptr, 4, 0, &tracker), std::runtime_error);
    EXPECT_TRUE(tracker.log.ends_with('-'));
}

// A frame is what the tracker shows at that moment, as a screen would draw it.
TEST(Trackers, FramesOfThePreview) {
    class TurningTracker final : public HostEdPointTracker {
      public:
        explicit TurningTracker(const OdSmartPtr<OdDbRay>& ray) : HostEdPointTracker(ray), ray_(*ray) {}
        bool filterEvent(const HostInputEvent& event, const OdGePoint3d& point) override {
            if (event.kind != HostInputEvent::kPointMoved || point.isEqualTo(ray_.basePoint())) return false;
            ray_.setUnitDir(point - ray_.basePoint());
            return true;
        }

      private:
        OdDbRay& ray_;
    };
    Host host(L"0,8|^C");
    std::vector<OdGeVector3d> directions;
    int emptyFrames = 0;
    host.input().watchPreview([&](const std::vector<OdDbEntity*>& shown) {
        if (shown.empty()) return static_cast<void>(++emptyFrames);
        ASSERT_EQ(shown.size(), 1u);
        directions.push_back(static_cast<OdDbRay*>(shown.front())->unitDir());
    });
    TurningTracker tracker(OdDbRay::createObject());
    OdGePoint3d point;
    host.session().document.setLastPoint({8, 0, 0});
    EXPECT_EQ(host.input().getPoint(nullptr, point, L"Point", nullptr, 4, 0, &tracker), hostapi::kValue);
    ASSERT_GE(directions.size(), 3u);
    EXPECT_EQ(directions.front(), OdGeVector3d(1, 0, 0)) << "before the cursor moves";
    EXPECT_EQ(directions.back(), OdGeVector3d(0, 1, 0));
    for (std::size_t i = 1; i < directions.size(); ++i) EXPECT_GT(directions[i].y, directions[i - 1].y);
    EXPECT_EQ(emptyFrames, 1);
    EXPECT_EQ(host.input().getPoint(nullptr, point, L"Point", nullptr, 4, 0, &tracker), hostapi::kCancel);
    EXPECT_EQ(emptyFrames, 2) << "taken back after a cancel too";
}

// ---- running commands

TEST(Commands, StatusIsThatOfTheWorst) {
    EXPECT_EQ(Host(L"").run(), kAllFinished);
    EXPECT_EQ(Host(L"testcommand||TESTCOMMAND|; nothing|^C").run(), kAllFinished);
    Host cancelled(L"TestCommand|TestCommand");
    int runs = 0;
    TestCommand::body = [&] { return ++runs == 1 ? kCommandCancelled : kCommandFinished; };
    EXPECT_EQ(cancelled.run(), kSomeFailed);
    EXPECT_EQ(runs, 2);
    EXPECT_THAT(Host(L"; one|QUIT|Nonsense").scriptError(), "no error");
    EXPECT_THAT(Host(L"; one|Nonsense").scriptError(), HasSubstr("--command:2: unknown command \"Nonsense\""));
}

// The lines that were meant for the command are not taken for commands, and the message says what was being done.
TEST(Commands, MemoryTroubleEndsAScript) {
    const auto expectEnd = [](Host& host, const std::string& message) {
        const std::string before = host.database()->writeBytes();
        try {
            host.run();
            ADD_FAILURE() << "the script went on";
        } catch (const base::FileError& error) {
            EXPECT_EQ(error.what(), message);
        }
        EXPECT_EQ(TestCommand::alive, 0);
        EXPECT_EQ(host.database()->writeBytes(), before);
    };
    Host host(L"TestCommand|meant for the command");
    TestCommand::body = [&]() -> CMD_RUNSTATUS {
        addLine(host.database(), {}, {1, 0, 0});
        throw std::bad_alloc();
    };
    expectEnd(host,
              "the new drawing: there is not enough memory for the command TestCommand; the drawing is as it was "
              "before it");
    Host other(L"NoMemory|meant for the command");
    expectEnd(other,
              "the new drawing: there is not enough memory for the command NoMemory; the drawing is as it was "
              "before it");
}

TEST(Commands, AnEscapedExceptionTakesTheChangesBack) {
    Host host(L"TestCommand|TestCommand");
    int runs = 0;
    TestCommand::body = [&]() -> CMD_RUNSTATUS {
        addLine(host.database(), {}, {1, 0, 0});
        host.database()->startUndoRecord();
        host.database()->setUndoMark();
        host.database()->blockUndoRecording(true);
        addLine(host.database(), {}, {2, 0, 0});
        if (++runs == 1) throw OdError_NotThatKindOfClass("OdDbLine", "OdDbBlockReference");
        throw 42;
    };
    const std::string before = host.database()->writeBytes();
    EXPECT_EQ(host.run(), kSomeFailed);
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(TestCommand::alive, 0);
    EXPECT_EQ(host.database()->writeBytes(), before);
    EXPECT_EQ(host.database()->undoGroupDepth(), 0);
}

TEST(Commands, NumbersThatCannotBeStoredAreTakenBackWithTheirCommand) {
    Host host(L"TestCommand|TestCommand");
    const double infinity = std::numeric_limits<double>::infinity();
    int runs = 0;
    TestCommand::body = [&] {
        addLine(host.database(), {}, {++runs == 1 ? infinity : 1, 0, 0});
        return kCommandFinished;
    };
    EXPECT_EQ(host.run(), kSomeFailed);
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(entityCount(host.database()), 1u);
    EXPECT_NO_THROW(host.database()->writeBytes());
}

TEST(Commands, UndoTakesBackWholeCommands) {
    Host host(L"TestCommand|TestCommand|TestCommand|UNDO|UNDO|2|UNDO");
    int runs = 0;
    TestCommand::body = [&] {
        if (++runs == 3) return kCommandCancelled;  // changes nothing, so there is nothing to undo in it
        addLine(host.database(), {}, {1, 0, 0});
        host.database()->setUndoMark();
        addLine(host.database(), {}, {2, 0, 0});
        return kCommandFinished;
    };
    const std::string before = host.database()->writeBytes();
    host.run();
    EXPECT_EQ(host.database()->writeBytes(), before);
}

TEST(Commands, PickFirstServesOneCommand) {
    Host host(L"");
    const OdDbObjectId line = addLine(host.database(), {}, {1, 0, 0});
    const std::wstring handle = L"#" + line.handle().text();
    host.replies.addText(handle + L"|TestCommand|TestCommand|" + handle + L"|#FFFFF");
    std::vector<std::size_t> seen;
    TestCommand::body = [&] {
        seen.push_back(host.session().selection.pickFirst().size());
        return kCommandFinished;
    };
    EXPECT_THAT(host.scriptError(), HasSubstr("there is no object #FFFFF"));
    EXPECT_EQ(seen, (std::vector<std::size_t>{1, 0}));
}

// ---- picks

TEST(Picks, ByPointAndByHandle) {
    Host host(L"");
    const OdDbObjectId below = addLine(host.database(), {0, 0, 0}, {10, 0, 0});
    const OdDbObjectId above = addLine(host.database(), {5, -5, 0}, {5, 5, 0});
    const auto circle = OdDbCircle::createObject();
    circle->setDatabaseDefaults(host.database());
    circle->setCenter({20, 0, 0});
    circle->setRadius(3);
    const OdDbObjectId circleId =
        host.database()->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(circle.get());
    host.session().view.set({{10, 0}, 30});

    host.replies.addText(L"2,0|5,0|20,0|17.01,0|2,1|#" + below.handle().text() + L"||^C|K");
    const auto pick = [&](int expected = hostapi::kValue) {
        hostapi::Pick picked;
        EXPECT_EQ(host.session().selection.pickEntity(L"Select", L"Keyword", picked), expected);
        return picked;
    };
    EXPECT_EQ(pick().entity, below);
    EXPECT_EQ(pick().entity, above);      // drawn last, so on top
    EXPECT_TRUE(pick().entity.isNull());  // the middle of a circle is empty
    EXPECT_EQ(pick().entity, circleId);
    EXPECT_TRUE(pick().entity.isNull());
    const hostapi::Pick named = pick();
    EXPECT_EQ(named.entity, below);
    EXPECT_FALSE(named.hasPoint);
    pick(hostapi::kEmpty);
    pick(hostapi::kCancel);
    pick(hostapi::kFirstKeyword);

    host.replies.addText(L"W -1,-1 11,1|C 4,-1 11,1|last||all|#" + below.handle().text() + L"||^C");
    OdDbObjectIdArray set;
    EXPECT_EQ(host.session().selection.pickSet(L"Select objects", set), hostapi::kValue);
    EXPECT_EQ(set, (OdDbObjectIdArray{below, above, circleId}));  // inside, then what crosses, then the last
    EXPECT_EQ(host.session().selection.pickSet(L"Select objects", set), hostapi::kValue);
    EXPECT_EQ(set.size(), 3u);
    EXPECT_EQ(host.session().selection.pickSet(L"Select objects", set), hostapi::kCancel);
}

namespace {

// A door with an attribute in the world, and a house with a door in it.
const char kHouse[] =
    "0\nSECTION\n2\nBLOCKS\n"
    "0\nBLOCK\n8\n0\n2\nDOOR\n70\n2\n10\n0.0\n20\n0.0\n30\n0.0\n3\nDOOR\n"
    "0\nLINE\n5\n20\n8\n0\n10\n0.0\n20\n0.0\n11\n4.0\n21\n0.0\n"
    "0\nENDBLK\n8\n0\n"
    "0\nBLOCK\n8\n0\n2\nHOUSE\n70\n0\n10\n0.0\n20\n0.0\n30\n0.0\n3\nHOUSE\n"
    "0\nINSERT\n5\n24\n8\n0\n2\nDOOR\n10\n1.0\n20\n0.0\n"
    "0\nENDBLK\n8\n0\n0\nENDSEC\n"
    "0\nSECTION\n2\nENTITIES\n"
    "0\nINSERT\n5\n30\n8\n0\n66\n1\n2\nDOOR\n10\n5.0\n20\n5.0\n"
    "0\nATTRIB\n5\n31\n8\n0\n10\n5.0\n20\n7.0\n40\n1.0\n1\nABC\n2\nTAG\n70\n0\n"
    "0\nATTRIB\n5\n32\n8\n0\n10\n5.0\n20\n9.0\n40\n1.0\n1\nDEF\n2\nHIDDEN\n70\n1\n"
    "0\nSEQEND\n8\n0\n"
    "0\nINSERT\n5\n40\n8\n0\n2\nHOUSE\n10\n50.0\n20\n50.0\n41\n2.0\n50\n90.0\n"
    "0\nENDSEC\n0\nEOF\n";

class AttributesOnly final : public HostGsSelectionReactor {
  public:
    bool selected(OdDbObjectId entity, const OdDbObjectId* containers, std::size_t containerCount) override {
        EXPECT_TRUE(containerCount == 0 || containers[0].isKindOf(OdDbBlockReference::desc()));
        return entity.isKindOf(OdDbAttribute::desc());
    }
};

}  // namespace

TEST(Picks, ObjectsInsideReferences) {
    Host host(L"", OdDbDatabase::readBytes(kHouse, L"house.dxf"));
    host.session().view.set({{30, 30}, 60});
    struct Case {
        const wchar_t* reply;
        std::vector<std::uint64_t> path;  // the containers, then what was picked
        bool onAttribute;                 // for a reactor that wants attributes alone
    };
    for (const Case& c : {
             Case{L"#31", {0x30, 0x31}, true}, Case{L"#30", {0x30}, false},  // a reference is not its attribute
             Case{L"#30 5.4,7.4", {0x30, 0x31}, true}, Case{L"5.4,7.4", {0x30, 0x31}, true},
             Case{L"#30 7,5", {0x30, 0x20}, false}, Case{L"7,5", {0x30, 0x20}, false},
             Case{L"#30 5.4,9.4", {0x30}, false},  // the attribute there is invisible
             Case{L"#30/. 5.4,7.4", {0x30}, false}, Case{L"#30/#20 5.4,7.4", {0x30, 0x20}, false},
             Case{L"#32", {0x30, 0x32}, true}, Case{L"#40/#24", {0x40, 0x24}, false},
             Case{L"#40/#24/#20", {0x40, 0x24, 0x20}, false},
             Case{L"50,54", {0x40, 0x24, 0x20}, false},  // scaled, turned, two blocks deep
         }) {
        host.replies.addText(c.reply);
        hostapi::Pick pick;
        ASSERT_EQ(host.session().selection.pickEntity(L"Select", nullptr, pick), hostapi::kValue) << c.reply;
        std::vector<std::uint64_t> path;
        for (OdDbObjectId id : pick.containers) path.push_back(id.handle().value());
        path.push_back(pick.nested.handle().value());
        EXPECT_EQ(path, c.path) << c.reply;
        EXPECT_EQ(pick.entity.handle().value(), c.path.front()) << c.reply;

        AttributesOnly reactor;
        hostapi::Pick nested;
        EXPECT_EQ(host.session().selection.pickNested(nullptr, &pick, &reactor, nested), hostapi::kValue);
        EXPECT_EQ(!nested.nested.isNull(), c.onAttribute) << c.reply;
    }
    for (const auto& [reply, message] : {std::pair{L"#30/#24", "there is no object #24 in #30"},
                                         {L"#20/#31", "#20 is no block reference"},
                                         {L"#99", "there is no object #99"}}) {
        Host refused(L"TestCommand", OdDbDatabase::readBytes(kHouse, L"house.dxf"));
        refused.replies.addText(reply);
        TestCommand::body = [&] {
            hostapi::Pick pick;
            refused.session().selection.pickEntity(L"Select", nullptr, pick);
            return kCommandFinished;
        };
        EXPECT_THAT(refused.scriptError(), HasSubstr(message));
    }
}

TEST(Picks, DoubleClickHandsThePickToItsCommand) {
    CommandFactory::instance().addCommand("ATTIPeditW", TestCommand::create);
    Host host(L"DBLCLICK #31|TestCommand", OdDbDatabase::readBytes(kHouse, L"house.dxf"));
    std::vector<std::uint64_t> picked;
    TestCommand::body = [&] {
        const auto& pick = host.session().selection.startingPick();
        picked.push_back(pick ? pick->nested.handle().value() : 0);
        return kCommandFinished;
    };
    EXPECT_EQ(host.run(), kAllFinished);
    EXPECT_EQ(picked, (std::vector<std::uint64_t>{0x31, 0}));
}

TEST(Picks, LayersHideWhatIsOnThem) {
    Host host(L"5,0|all|");
    addLine(host.database(), {0, 0, 0}, {10, 0, 0});
    host.database()->findLayer(L"0").openAs<OdDbLayerTableRecord>(OdDb::forWrite)->setIsFrozen(true);
    hostapi::Pick picked;
    host.session().selection.pickEntity(L"Select", nullptr, picked);
    EXPECT_TRUE(picked.entity.isNull());
    OdDbObjectIdArray set;
    host.session().selection.pickSet(L"Select objects", set);
    EXPECT_TRUE(set.empty());
}

// The text of the attribute #31 is gone from the screen, its reference is not.
TEST(Picks, PointsMeetNoHiddenAttributes) {
    const std::string layer[] = {"0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n70\n1\n0\nLAYER\n2\nNOTES\n70\n",
                                 "6\nCONTINUOUS\n0\nENDTAB\n0\nENDSEC\n"};
    struct Case {
        const char *layerState, *attribute;
        bool isPicked;
    };
    for (const Case& c : {Case{"0\n62\n7\n", "8\nNOTES\n", true}, Case{"1\n62\n7\n", "8\nNOTES\n", false},
                          Case{"0\n62\n-7\n", "8\nNOTES\n", false}, Case{"0\n62\n7\n", "8\n0\n60\n1\n", false}}) {
        std::string house = layer[0] + c.layerState + layer[1] + kHouse;
        const std::string head = "ATTRIB\n5\n31\n";
        house.replace(house.find(head + "8\n0\n"), head.size() + 4, head + c.attribute);
        Host host(L"5.4,7.4|#30 5.4,7.4|C 5,6.5 6,8.5|", OdDbDatabase::readBytes(house, L"house.dxf"));
        host.session().view.set({{30, 30}, 60});
        hostapi::Pick at, named;
        host.session().selection.pickEntity(L"Select", nullptr, at);
        EXPECT_EQ(at.entity.isNull(), !c.isPicked) << c.layerState << c.attribute;
        host.session().selection.pickEntity(L"Select", nullptr, named);
        EXPECT_EQ(named.nested.handle().value(), c.isPicked ? 0x31 : 0x30) << c.layerState << c.attribute;
        OdDbObjectIdArray set;
        host.session().selection.pickSet(L"Select objects", set);
        EXPECT_EQ(set.empty(), !c.isPicked) << c.layerState << c.attribute;
    }
}

// ---- system variables

TEST(Variables, OfTheDrawingAndOfTheSession) {
    Host host(L"");
    Variables& variables = host.session().variables;
    std::wstring reason;
    const auto text = [&](const wchar_t* name) { return variableText(*variables.get(name)); };
    EXPECT_EQ(text(L"clayer"), L"0");
    EXPECT_FALSE(variables.set(L"CLAYER", L"nowhere", reason));
    EXPECT_TRUE(variables.set(L"LUPREC", L"2", reason));
    EXPECT_EQ(text(L"LUPREC"), L"2");
    EXPECT_EQ(host.database()->headerInteger("$LUPREC", -1), 2);
    EXPECT_FALSE(variables.set(L"LUPREC", L"9", reason));
    EXPECT_FALSE(variables.set(L"LUPREC", L"two", reason));
    EXPECT_FALSE(variables.set(L"CMDACTIVE", L"0", reason));
    EXPECT_EQ(text(L"CMDACTIVE"), L"4");  // a script runs
    EXPECT_FALSE(variables.get(L"NOSUCH"));
    EXPECT_FALSE(variables.set(L"NOSUCH", L"1", reason));
    EXPECT_EQ(text(L"UCSXDIR"), L"1.0,0.0,0.0");
    EXPECT_FALSE(variables.set(L"UCSXDIR", L"0,0,0", reason));
    EXPECT_EQ(text(L"TILEMODE"), L"1");
    EXPECT_TRUE(variables.set(L"TILEMODE", L"0", reason));
    EXPECT_FALSE(host.session().document.isModelSpaceActive());
    EXPECT_FALSE(variables.set(L"CTAB", L"No layout", reason));
    EXPECT_TRUE(variables.set(L"CTAB", L"model", reason));
    EXPECT_TRUE(host.session().document.isModelSpaceActive());

    EXPECT_TRUE(variables.set(L"DATE", L"2026-03-01 12:00:00", reason));
    EXPECT_EQ(host.database()->now(), 1772366400);
    EXPECT_EQ(text(L"DATE"), L"2461101.0");
    OdString asked;
    EXPECT_TRUE(host.database()->systemVariable(L"Filedia", asked));
    EXPECT_EQ(asked, L"1");
}
