#include "torvelcmd2/extract/tv_dxf_filer.h"

#include "base/format.h"

namespace torvel {

OD_DEFINE_ABSTRACT_CLASS(TVDxfFiler, OdDbDxfFiler)

namespace {

// The class can be found by its name as soon as the module is loaded.
[[maybe_unused]] const OdRxClass* const registered = TVDxfFiler::desc();

}  // namespace

TVDxfFiler::TVDxfFiler(OdDbObjectId object, OdDbDatabase* database)
    : object_(object), ownObjects_{object}, database_(database) {}

OdSmartPtr<TVDxfFiler> TVDxfFiler::create(OdDbObjectId object, OdDbDatabase* database) {
    return new TVDxfFiler(object, database);
}

template <class... Arguments>
void TVDxfFiler::add(const wchar_t* format, Arguments... arguments) {
    lines_.push_back(base::format(format, arguments...));
}

void TVDxfFiler::wrName(int groupCode, const OdString& value) { add(L"\t%d\n%s", groupCode, value.c_str()); }
void TVDxfFiler::wrString(int groupCode, const OdString& value) { add(L"\t%d\n%s", groupCode, value.c_str()); }
// The letter d in place of the group code is what readers of these files know.
void TVDxfFiler::wrBool(int, bool value) { add(L"\td\n%d", value ? 1 : 0); }
void TVDxfFiler::wrInt8(int groupCode, std::int8_t value) { add(L"\t%d\n%d", groupCode, value); }
void TVDxfFiler::wrUInt8(int groupCode, std::uint8_t value) { add(L"\t%d\n%d", groupCode, value); }
void TVDxfFiler::wrInt16(int groupCode, std::int16_t value) { add(L"\t%d\n%d", groupCode, value); }
void TVDxfFiler::wrUInt16(int groupCode, std::uint16_t value) { add(L"\t%d\n%d", groupCode, value); }
void TVDxfFiler::wrInt32(int groupCode, std::int32_t value) { add(L"\t%d\n%d", groupCode, value); }
// Signed formats, so a large unsigned value shows as a negative one.
void TVDxfFiler::wrUInt32(int groupCode, std::uint32_t value) { add(L"\t%d\n%d", groupCode, value); }
void TVDxfFiler::wrInt64(int groupCode, std::int64_t value) { add(L"\t%d\n%I64d", groupCode, value); }
void TVDxfFiler::wrUInt64(int groupCode, std::uint64_t value) { add(L"\t%d\n%I64d", groupCode, value); }
void TVDxfFiler::wrHandle(int groupCode, OdDbHandle value) { add(L"\t%d\n%s", groupCode, value.text().c_str()); }
// Objects that are referred to are not part of the extract.
void TVDxfFiler::wrObjectId(int, OdDbObjectId) {}
void TVDxfFiler::wrAngle(int groupCode, double radians) { add(L"\t%d\n%.2f", groupCode, radians); }
void TVDxfFiler::wrDouble(int groupCode, double value) { add(L"\t%d\n%.4f", groupCode, value); }

// Points, vectors and scales always go by the codes 10, 20 and 30, whatever the group is.
void TVDxfFiler::wrPoint2d(int, const OdGePoint2d& value) { add(L"\t10\n%.6f\n\t20\n%.6f", value.x, value.y); }
void TVDxfFiler::wrPoint3d(int, const OdGePoint3d& value) {
    add(L"\t10\n%.6f\n\t20\n%.6f\n\t30\n%.6f", value.x, value.y, value.z);
}
void TVDxfFiler::wrVector2d(int, const OdGeVector2d& value) { add(L"\t10\n%.6f\n\t20\n%.6f", value.x, value.y); }
void TVDxfFiler::wrVector3d(int, const OdGeVector3d& value) {
    add(L"\t10\n%.6f\n\t20\n%.6f\n\t30\n%.6f", value.x, value.y, value.z);
}
void TVDxfFiler::wrScale3d(int, const OdGeScale3d& value) {
    add(L"\t10\n%.6f\n\t20\n%.6f\n\t30\n%.6f", value.sx, value.sy, value.sz);
}

void TVDxfFiler::wrBinaryChunk(int groupCode, std::span<const std::uint8_t> value) {
    add(L"\t%d /*wrBinaryChunk*/\n%d", groupCode, static_cast<int>(value.size()));
}
void TVDxfFiler::wrSubclassMarker(const OdString& name) { add(L"wrSubclassMarker: %s", name.c_str()); }
void TVDxfFiler::wrBinaryChunkLength(int length) { add(L"wrBinaryChunk: %d", length); }

}  // namespace torvel
