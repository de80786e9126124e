// What is seen: ZOOM in the view or the active viewport, and REGEN.
#include <optional>

#include "base/number.h"
#include "torvelhost/commands/host_commands.h"

namespace host::commands {
namespace {

enum Option { kAll, kCenter, kExtents, kPrevious, kWindow };

// Nothing to see changes nothing.
CMD_RUNSTATUS zoomExtents(HostRun& run) {
    DocumentView& view = run.view;
    const auto extents = view.extents();
    if (extents) view.setZoomed(view.zoomedOn(view.seenInZoomed(*extents)));
    return kCommandFinished;
}

CMD_RUNSTATUS zoomScale(HostRun& run, double factor) {
    View zoomed = run.view.zoomed();
    zoomed.height /= factor;
    run.view.setZoomed(zoomed);
    return kCommandFinished;
}

CMD_RUNSTATUS zoomCenter(HostRun& run) {
    DocumentView& view = run.view;
    OdGePoint3d center;
    double height = view.zoomed().height;
    if (run.input.askPoint(L"Specify center point", nullptr, center) != kValue) return kCommandCancelled;
    if (run.askNumber(L"Enter height", height) == kCancel) return kCommandCancelled;
    if (!(height > 0)) return run.refused(L"a height is more than 0");
    view.setZoomed({view.seenInZoomed({center, center}).center().xy(), height});
    return kCommandFinished;
}

CMD_RUNSTATUS zoomWindow(HostRun& run, std::optional<OdGePoint3d> corner) {
    DocumentView& view = run.view;
    if (!corner && run.input.askPoint(L"Specify first corner", nullptr, corner.emplace()) != kValue)
        return kCommandCancelled;
    run.document.setLastPoint(*corner);
    OdGePoint3d opposite;
    if (run.input.askPoint(L"Specify opposite corner", nullptr, opposite) != kValue) return kCommandCancelled;
    // The corners as they are seen: the box around a turned box would be larger.
    const auto seen = [&](const OdGePoint3d& point) { return view.seenInZoomed({point, point}).center(); };
    const OdGeExtents3d window(seen(*corner), seen(opposite));
    if (window.diagonal().xy().isZeroLength()) return run.refused(L"the window has no size");
    view.setZoomed(view.zoomedOn(window));
    return kCommandFinished;
}

}  // namespace

CMD_RUNSTATUS zoom(HostRun& run) {
    std::optional<OdGePoint3d> corner;
    double factor = 0;
    const int result = run.input.ask(L"Specify corner of window, enter a scale factor (nX), or [%s]",
                                     L"All Center Extents Previous Window", L"a point or a scale factor",
                                     [&](const Reply& reply, std::wstring& reason) {
                                         if (const auto typed = parsePoint(reply.text)) {
                                             corner = run.document.toWorld(*typed, reason);
                                             return corner.has_value();
                                         }
                                         std::wstring_view number = reply.text;
                                         if (number.ends_with(L'x') || number.ends_with(L'X')) number.remove_suffix(1);
                                         const auto typed = base::parseReal(number);
                                         if (typed && *typed > 0) factor = *typed;
                                         return factor > 0;
                                     });
    switch (result) {
        case kValue:
            return corner ? zoomWindow(run, corner) : zoomScale(run, factor);
        case kFirstKeyword + kAll:
        case kFirstKeyword + kExtents:
            return zoomExtents(run);
        case kFirstKeyword + kCenter:
            return zoomCenter(run);
        case kFirstKeyword + kPrevious:
            // Not refused: a recording has none of the views that a wheel has left behind.
            if (!run.view.setPrevious()) run.terminal().notice(L"There is no view before this one.");
            return kCommandFinished;
        case kFirstKeyword + kWindow:
            return zoomWindow(run, std::nullopt);
        default:
            return statusOf(result);
    }
}

CMD_RUNSTATUS regen(HostRun& run) {
    run.application.regenerate(*run.database);
    return kCommandFinished;
}

}  // namespace host::commands
