// The input is a script. Its lines are read as every kind of reply, then the host runs it on a small drawing;
// afterwards everything is undone and the drawing must be as it was.
#include <cmath>
#include <cstdio>

#include "base/text.h"
#include "drawingdb/database.h"
#include "fuzz/fuzz.h"
#include "fuzz/small_drawing.h"
#include "torvelhost/commands/command_loop.h"
#include "torvelhost/lines/reply.h"
#include "torvelhost/lines/reply_source.h"
#include "torvelhost/lines/units.h"
#include "torvelhost/session/application.h"

namespace {

using fuzz::require;

// The lines of the input, without the echo of a script's.
class Lines final : public host::ReplySource {
  public:
    explicit Lines(const std::vector<std::wstring>& lines) : lines_(lines) {}
    std::optional<std::wstring> next(const host::Question&) override {
        return taken_ < lines_.size() ? std::optional(lines_[taken_++]) : std::nullopt;
    }
    std::optional<std::wstring> peek() override {
        return taken_ < lines_.size() ? std::optional(lines_[taken_]) : std::nullopt;
    }
    void refused(const std::wstring&) override { throw host::ScriptError("a line does not suit"); }
    bool isScript() const override { return true; }

  private:
    const std::vector<std::wstring>& lines_;
    std::size_t taken_ = 0;
};

void checkReply(const std::wstring& line) {
    (void)host::isComment(line);
    const host::Reply reply = host::parseReply(line);
    const host::Keywords own(line.c_str());
    (void)host::promptText(line.c_str(), own);
    (void)host::Keywords(L"Horizontal Vertical Ang Bisect _ Hor Ver Ang Bisect").find(reply.text);
    const auto checkPoint = [](const std::optional<host::TypedPoint>& point) {
        if (point)
            require(std::isfinite(point->value.x) && std::isfinite(point->value.y) && std::isfinite(point->value.z),
                    "typed points are finite");
    };
    checkPoint(host::parsePoint(reply.text));
    if (const auto pick = host::parsePick(reply.text)) {
        require(!pick->path.empty() || pick->point || pick->isNone, "a pick names an object or a point");
        checkPoint(pick->point);
    }
    (void)host::parseObjects(reply.text);
    if (const auto window = host::parseWindow(reply.text))
        for (const auto& corner : window->corners) checkPoint(corner);
    for (int units = host::kScientific; units <= host::kFractional; ++units)
        if (const auto length = host::textToLength(reply.text)) {
            require(std::isfinite(*length), "typed lengths are finite");
            (void)host::lengthToText(*length, units, 4);
        }
    for (int units = host::kDegrees; units <= host::kSurveyor; ++units)
        if (const auto angle = host::textToAngle(reply.text, units)) {
            require(std::isfinite(*angle), "typed angles are finite");
            (void)host::angleToText(*angle, units, 4);
        }
}

void runScript(const std::vector<std::wstring>& lines) {
    const host::Options options;
    host::Terminal terminal(true);
    Lines replies(lines);
    host::Application application(options, terminal);
    const OdDbDatabasePtr database = fuzz::smallDrawing();
    const std::string before = database->writeBytes();
    const std::size_t start = database->undoPosition();
    application.open(database, replies);
    try {
        host::CommandLoop(application).run();
    } catch (const host::ScriptError&) {
        // The usual end of a script that makes no sense.
    }
    (void)OdDbDatabase::readBytes(database->writeBytes(), L"again.dxf");
    database->undoTo(start);
    require(database->writeBytes() == before, "undoing a script gives the drawing back");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***);
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // What commands print is of no interest here; the fuzzer itself writes to standard error.
    return std::freopen("/dev/null", "w", stdout) == nullptr;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring script = base::fromUtf8(fuzz::bytesOf(data, size));
    const std::vector<std::wstring> lines = base::split(script, L'\n');
    // They would leave files behind, or wait for one.
    for (const wchar_t* word : {L"save", L"values"})
        if (base::findNoCase(script, word) != std::wstring::npos) return 0;
    for (const std::wstring& line : lines) checkReply(line);
    runScript(lines);
    return 0;
}
