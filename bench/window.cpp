// What a window's pictures cost, as parts of what a plot of the whole drawing costs in the same run.
//
//     window DRAWING.dxf [VIEWS]
//
// Processor time of this program alone: the first picture, exact ones of views that zoom and pan; and a whole window
// without a screen while the wheel turns, the view is dragged and the mouse moves.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <deque>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <random>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block_reference.h"
#include "torvelhost/commands/command_loop.h"
#include "torvelhost/plot/plot.h"
#include "torvelhost/plot/scene.h"
#include "torvelhost/session/document.h"
#include "torvelhost/window/canvas_view.h"

namespace {

constexpr int kWidth = 1280, kHeight = 760;

double now() {
    std::timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

OdGeMatrix3d toPixels(const OdGePoint2d& center, double scale) {
    return OdGeMatrix3d::coordSystem(OdGePoint3d(kWidth / 2.0 - center.x * scale, kHeight / 2.0 + center.y * scale, 0),
                                     OdGeVector3d(scale, 0, 0), OdGeVector3d(0, -scale, 0), OdGeVector3d());
}

void tell(const char* what, double seconds, double plot) {
    if (seconds > plot)
        std::printf("%-32s %10.1f ms  %8.2f plots\n", what, seconds * 1000, seconds / plot);
    else
        std::printf("%-32s %10.2f ms  1/%.1f of a plot\n", what, seconds * 1000, plot / seconds);
}

// A window in which the user never rests while he does something, and then waits until the picture is exact.
class TimedFrame final : public host::ViewFrame {
  public:
    using Deed = std::function<void(host::ViewEvents&)>;
    std::map<std::string, std::vector<double>> times;  // seconds from a deed until the view waits again, by its name

    void use(host::CanvasView& view) { view_ = &view; }
    void then(const std::string& name, Deed deed) { deeds_.push_back({name, std::move(deed)}); }
    void thenRest() { deeds_.push_back({}); }

    void open(host::ViewEvents& events) override {
        events_ = &events;
        events.resized(kWidth, kHeight, 1);
    }
    void waitForEvents(std::optional<std::int64_t> until) override {
        if (!underWay_.empty()) times[underWay_].push_back(::now() - begin_);
        underWay_.clear();
        if (until && (deeds_.empty() || !deeds_.front().act)) {
            skipped_ += std::max<std::int64_t>(*until - now(), 0);
            return;
        }
        if (deeds_.empty()) return view_->finish();
        const Step step = std::move(deeds_.front());
        deeds_.pop_front();
        if (!step.act) return;
        underWay_ = step.name;
        begin_ = ::now();
        step.act(*events_);
    }
    std::int64_t now() override { return skipped_ + static_cast<std::int64_t>(::now() * 1000); }
    bool breathe() override { return false; }
    void showPicture(const host::PixelBuffer&) override {}
    void setCursor(Cursor) override {}
    void setTip(const std::wstring&, host::CanvasPoint) override {}
    void setTitle(const std::wstring&) override {}
    void setStatus(const std::wstring&) override {}
    void setProgress(double) override {}
    void setMenus(const std::vector<host::Menu>&) override {}
    void setTabs(const std::vector<std::wstring>&, std::size_t) override {}
    void setPrompt(const std::wstring&, const std::vector<std::wstring>&) override {}
    void setCommandText(const std::wstring&) override {}
    void addHistory(const std::wstring&) override {}
    void* nativeWindow() override { return nullptr; }
    void activate() override {}

  private:
    struct Step {
        std::string name;
        Deed act;  // none: the user rests
    };
    std::deque<Step> deeds_;
    host::CanvasView* view_ = nullptr;
    host::ViewEvents* events_ = nullptr;
    std::string underWay_;
    double begin_ = 0;
    std::int64_t skipped_ = 0;  // of the clock, at which nobody worked
};

// The wheel, the middle button, and moves of the mouse over the drawing and with a window from its first corner on.
void workWindow(const std::wstring& path, int views, double plot) {
    TimedFrame frame;
    std::mt19937 random(2);
    const auto place = [&random] {
        return host::CanvasPoint{std::uniform_real_distribution<double>(100, kWidth - 100)(random),
                                 std::uniform_real_distribution<double>(100, kHeight - 100)(random)};
    };
    const auto moveTo = [&](const std::string& name) {
        frame.then(
            name, [at = place()](host::ViewEvents& events) { events.mouseMoved(at, false); });
    };
    const auto turn = [&](double notches, host::CanvasPoint at) {
        frame.then("frame in motion", [=](host::ViewEvents& events) { events.wheelTurned(notches, at); });
    };
    using host::MouseButton;
    frame.thenRest();
    for (int i = 0; i < (views + 14) / 15; ++i) {
        const host::CanvasPoint at = place();
        for (int k = 0; k < 5; ++k) turn(1, at);
        frame.thenRest();
        frame.then("", [=](host::ViewEvents& events) { events.mousePressed(MouseButton::kMiddle, at, false); });
        for (int k = 0; k < 10; ++k) moveTo("frame in motion");
        frame.then("", [=](host::ViewEvents& events) { events.mouseReleased(MouseButton::kMiddle, at, false); });
        frame.thenRest();
        for (int k = 0; k < 10; ++k) moveTo("mouse over the drawing");
        frame.then("", [=](host::ViewEvents& events) { events.mousePressed(MouseButton::kLeft, at, false); });
        for (int k = 0; k < 10; ++k) moveTo("mouse with a window");
        frame.then("", [](host::ViewEvents& events) { events.keyPressed(host::Key::kEscape); });
        for (int k = 0; k < 5; ++k) turn(-1, at);
        frame.thenRest();
    }
    const host::Options options;
    host::Terminal terminal(true);
    host::CanvasView view(frame, terminal);
    frame.use(view);
    host::Application application(options, terminal);
    frame.open(view);
    application.open(OdDbDatabase::readFile(path), view);
    view.show(application, L"");
    host::CommandLoop(application).run();
    view.showNothing();
    for (auto& [name, taken] : frame.times) {
        std::sort(taken.begin(), taken.end());
        tell((name + ", median").c_str(), taken[taken.size() / 2], plot);
        tell((name + ", 95 %").c_str(), taken[taken.size() * 95 / 100], plot);
    }
}

int run(const std::wstring& path, int views) {
    double begin = now();
    {
        host::Document document(OdDbDatabase::readFile(path));
        host::DocumentView view(document, kWidth, kHeight);
        const std::filesystem::path file = std::filesystem::temp_directory_path() / "window_bench.png";
        host::plotToFile(document, view, {}, file.wstring());
        std::filesystem::remove(file);
    }
    const double plot = now() - begin;
    std::printf("%-32s %10.1f ms\n", "read, plot, PNG", plot * 1000);

    begin = now();
    host::Document document(OdDbDatabase::readFile(path));
    tell("read", now() - begin, plot);
    host::DocumentView view(document, kWidth, kHeight);
    const OdDbObjectId space = document.database()->currentSpaceId();
    begin = now();
    host::Scene scene(document.grids());
    host::PixelBuffer buffer;
    buffer.width = kWidth;
    buffer.height = kHeight;
    const host::View whole = view.current();
    const double wholeScale = kHeight / whole.height;
    int slices = 0;
    double longest = 0;
    const auto draw = [&](const OdGePoint2d& center, double scale) {
        scene.begin(space, toPixels(center, scale), scale, buffer);
        for (bool done = false; !done; ++slices) {
            const double from = now();
            done = scene.continueFor(std::chrono::milliseconds(8));
            longest = std::max(longest, now() - from);
        }
    };
    draw(whole.center, wholeScale);
    tell("first picture", now() - begin, plot);
    std::printf("%-32s %10d, the longest %.1f ms\n", "slices of 8 ms", slices, longest * 1000);
    begin = now();
    draw(whole.center, wholeScale);
    tell("the same again", now() - begin, plot);

    // The wheel at some place, and a few pans there.
    std::mt19937 random(1);
    const auto between = [&](double a, double b) { return std::uniform_real_distribution<double>(a, b)(random); };
    std::vector<double> times;
    OdGePoint2d center = whole.center;
    double scale = wholeScale;
    for (int i = 0; i < views; ++i) {
        if (i % 15 == 0) {
            scale = wholeScale * 4;
            center = whole.center + OdGeVector2d(between(-0.3, 0.3) * whole.height * kWidth / kHeight,
                                                 between(-0.3, 0.3) * whole.height);
        }
        if (i % 3 == 0)
            scale *= 1.5;
        else
            center += OdGeVector2d(between(-200, 200) / scale, between(-200, 200) / scale);
        begin = now();
        draw(center, scale);
        times.push_back(now() - begin);
    }
    std::sort(times.begin(), times.end());
    tell("exact picture, median", times[times.size() / 2], plot);
    tell("exact picture, 95 %", times[times.size() * 95 / 100], plot);

    // Under the cursor and chosen.
    const auto shown = document.grids().of(space).all();
    if (!shown.empty()) {
        std::vector<double> over;
        for (int i = 0; i < 100; ++i) {
            begin = now();
            const auto entity = shown[random() % shown.size()]->id.openAs<OdDbEntity>();
            const OdDbEntity* const one = entity.get();
            scene.drawOver(std::span(&one, 1), host::Emphasis::kHover, buffer);
            over.push_back(now() - begin);
        }
        std::sort(over.begin(), over.end());
        tell("highlight, median", over[over.size() / 2], plot);
    }

    // As a command does that brings references in line: an attribute of every fourth one.
    std::size_t changed = 0;
    begin = now();
    OdDbTouchMark mark(*document.database());
    for (std::size_t i = 0; i < shown.size(); i += 4) {
        const auto reference = shown[i]->id.openIf<OdDbBlockReference>();
        if (!reference) continue;
        for (const OdDbObjectId id : reference->attributes()) {
            const auto attribute = id.openAs<OdDbAttribute>(OdDb::forWrite);
            attribute->setTextString(attribute->textString() + L"*");
        }
        ++changed;
    }
    std::printf("%-32s %10zu\n", "references changed", changed);
    tell("changing them", now() - begin, plot);
    begin = now();
    document.database()->takeTouched(mark);
    tell("asking what changed", now() - begin, plot);
    begin = now();
    scene.update();
    tell("taking it in", now() - begin, plot);
    begin = now();
    draw(center, scale);
    tell("exact picture behind it", now() - begin, plot);
    std::printf("%-32s %10.1f MB\n", "kept lists", static_cast<double>(scene.bytes()) / (1 << 20));
    workWindow(path, views, plot);
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    const auto views =
        count == 3 ? base::parseInteger(std::string_view(arguments[2])) : std::optional<std::int64_t>(150);
    if ((count != 2 && count != 3) || !views || *views < 1) {
        std::cerr << "usage: window DRAWING.dxf [VIEWS]\n";
        return 2;
    }
    try {
        return run(base::fromUtf8(arguments[1]), static_cast<int>(*views));
    } catch (const std::exception& error) {
        std::cerr << "window: " << error.what() << '\n';
        return 1;
    }
}
