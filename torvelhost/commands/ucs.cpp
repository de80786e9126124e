// UCS: the coordinate system that points are typed in.
#include "torvelhost/commands/host_commands.h"

namespace host::commands {

CMD_RUNSTATUS ucs(HostRun& run) {
    Document& document = run.document;
    enum { kWorld, kX, kY, kZ };
    OdGePoint3d origin;
    const int result = run.input.askPoint(L"Specify origin of UCS or [%s] <World>", L"World X Y Z", origin);
    const OdGeMatrix3d current = document.ucs();
    switch (result) {
        case kCancel:
            return kCommandCancelled;
        case kEmpty:
        case kFirstKeyword + kWorld:
            document.setUcs(OdGeMatrix3d::kIdentity);
            return kCommandFinished;
        case kValue:
            break;
        default: {
            const int axis = result - kFirstKeyword;
            double angle = drawingdb::kPi / 2;
            const wchar_t* const prompt = axis == kX   ? L"Specify rotation angle about X axis <90>"
                                          : axis == kY ? L"Specify rotation angle about Y axis <90>"
                                                       : L"Specify rotation angle about Z axis <90>";
            if (run.input.getAngle(angle, prompt, nullptr, 0, 0) == kCancel) return kCommandCancelled;
            const OdGeVector3d about = axis == kX   ? OdGeVector3d::kXAxis
                                       : axis == kY ? OdGeVector3d::kYAxis
                                                    : OdGeVector3d::kZAxis;
            document.setUcs(current * OdGeMatrix3d::rotation(angle, about));
            return kCommandFinished;
        }
    }
    // The axes stay as they are as far as no point says otherwise.
    OdGeVector3d x = current.xAxis(), z = current.zAxis();
    OdGePoint3d point;
    int given = run.input.askPoint(L"Specify point on X axis or <accept>", nullptr, point);
    if (given == kCancel) return kCommandCancelled;
    if (given == kValue) {
        x = (point - origin).normal();
        if (x.isZeroLength()) return run.refused(L"the X axis has no direction");
        if (z.crossProduct(x).isZeroLength()) z = current.xAxis();
        given = run.input.askPoint(L"Specify point on the XY plane or <accept>", nullptr, point);
        if (given == kCancel) return kCommandCancelled;
        if (given == kValue) z = x.crossProduct(point - origin);
    }
    const OdGeVector3d y = z.crossProduct(x).normal();
    if (y.isZeroLength()) return run.refused(L"the three points lie on one line");
    document.setUcs(OdGeMatrix3d::coordSystem(origin, x, y, x.crossProduct(y)));
    return kCommandFinished;
}

}  // namespace host::commands
