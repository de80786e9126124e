// What a window's pictures cost, as parts of what a plot of the whole drawing costs in the same run.
//
//     window DRAWING.dxf [VIEWS]
//
// Processor time of this program alone: the first picture, and exact ones of views that zoom and pan.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <random>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block_reference.h"
#include "torvelhost/plot/plot.h"
#include "torvelhost/plot/scene.h"
#include "torvelhost/session/document.h"

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
        std::printf("%-28s %10.1f ms  %8.2f plots\n", what, seconds * 1000, seconds / plot);
    else
        std::printf("%-28s %10.2f ms  1/%.1f of a plot\n", what, seconds * 1000, plot / seconds);
}

int run(const std::wstring& path, int views) {
    double begin = now();
    {
        host::Document document(OdDbDatabase::readFile(path));
        host::DocumentView view(document, kWidth, kHeight);
        host::pngBytes(host::plotView(document, view).picture);
    }
    const double plot = now() - begin;
    std::printf("%-28s %10.1f ms\n", "read, plot, PNG", plot * 1000);

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
    std::printf("%-28s %10d, the longest %.1f ms\n", "slices of 8 ms", slices, longest * 1000);
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
            scene.drawOver(std::span(&one, 1), host::Scene::Emphasis::kHover, buffer);
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
    std::printf("%-28s %10zu\n", "references changed", changed);
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
    std::printf("%-28s %10.1f MB\n", "kept lists", static_cast<double>(scene.bytes()) / (1 << 20));
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
