// TVDxfFiler: the filer that turns an object's groups into the lines of a DXX extract.
#pragma once

#include <vector>

#include "drawingdb/filer.h"
#include "drawingdb/object.h"

namespace torvel {

/// Keeps one text for every value that an object writes: group code and value, each on a line of its own, the last one
/// without its end. The format is no DXF: see the write operations.
class TVDxfFiler final : public OdDbDxfFiler {
    OD_DECLARE_CLASS(TVDxfFiler)
  public:
    /// A filer for one object.
    static OdSmartPtr<TVDxfFiler> create(OdDbObjectId object, OdDbDatabase* database);

    const std::vector<OdString>& lines() const { return lines_; }
    OdDbObjectId object() const { return object_; }
    /// The objects that count as owned by the one that is written; itself, to begin with.
    const OdDbObjectIdArray& ownObjects() const { return ownObjects_; }

    FilerType filerType() const override { return extractFiler; }
    OdResult filerStatus() const override { return OdResult::ok; }
    OdDbDatabase* database() const override { return database_; }

    void wrName(int groupCode, const OdString& value) override;
    void wrString(int groupCode, const OdString& value) override;
    void wrBool(int groupCode, bool value) override;
    void wrInt8(int groupCode, std::int8_t value) override;
    void wrUInt8(int groupCode, std::uint8_t value) override;
    void wrInt16(int groupCode, std::int16_t value) override;
    void wrUInt16(int groupCode, std::uint16_t value) override;
    void wrInt32(int groupCode, std::int32_t value) override;
    void wrUInt32(int groupCode, std::uint32_t value) override;
    void wrInt64(int groupCode, std::int64_t value) override;
    void wrUInt64(int groupCode, std::uint64_t value) override;
    void wrHandle(int groupCode, OdDbHandle value) override;
    void wrObjectId(int groupCode, OdDbObjectId value) override;
    void wrAngle(int groupCode, double radians) override;
    void wrDouble(int groupCode, double value) override;
    void wrPoint2d(int groupCode, const OdGePoint2d& value) override;
    void wrPoint3d(int groupCode, const OdGePoint3d& value) override;
    void wrVector2d(int groupCode, const OdGeVector2d& value) override;
    void wrVector3d(int groupCode, const OdGeVector3d& value) override;
    void wrScale3d(int groupCode, const OdGeScale3d& value) override;
    void wrBinaryChunk(int groupCode, std::span<const std::uint8_t> value) override;
    void wrSubclassMarker(const OdString& name) override;
    /// Beside the interface: a chunk of which only the length is known.
    void wrBinaryChunkLength(int length);

  private:
    TVDxfFiler(OdDbObjectId object, OdDbDatabase* database);

    template <class... Arguments>
    void add(const wchar_t* format, Arguments... arguments);

    std::vector<OdString> lines_;
    OdDbObjectId object_;
    OdDbObjectIdArray ownObjects_;
    OdDbDatabase* database_;
};

}  // namespace torvel
