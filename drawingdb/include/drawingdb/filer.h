// Filers: what an object writes its groups to.
#pragma once

#include <cstdint>
#include <span>

#include "drawingdb/ge.h"
#include "drawingdb/object_id.h"

class DRAWINGDB_API OdDbFiler : public OdRxObject {
    OD_DECLARE_CLASS(OdDbFiler)
  public:
    enum FilerType { fileFiler, copyFiler, extractFiler };
    virtual FilerType filerType() const = 0;
    virtual OdResult filerStatus() const = 0;
    virtual OdDbDatabase* database() const = 0;
};

/// A filer of group code and value pairs. The write operations stand in slot order.
class DRAWINGDB_API OdDbDxfFiler : public OdDbFiler {
    OD_DECLARE_CLASS(OdDbDxfFiler)
  public:
    virtual void wrName(int groupCode, const OdString& value) = 0;
    virtual void wrString(int groupCode, const OdString& value) = 0;
    virtual void wrBool(int groupCode, bool value) = 0;
    virtual void wrInt8(int groupCode, std::int8_t value) = 0;
    virtual void wrUInt8(int groupCode, std::uint8_t value) = 0;
    virtual void wrInt16(int groupCode, std::int16_t value) = 0;
    virtual void wrUInt16(int groupCode, std::uint16_t value) = 0;
    virtual void wrInt32(int groupCode, std::int32_t value) = 0;
    virtual void wrUInt32(int groupCode, std::uint32_t value) = 0;
    virtual void wrInt64(int groupCode, std::int64_t value) = 0;
    virtual void wrUInt64(int groupCode, std::uint64_t value) = 0;
    virtual void wrHandle(int groupCode, OdDbHandle value) = 0;
    virtual void wrObjectId(int groupCode, OdDbObjectId value) = 0;
    virtual void wrAngle(int groupCode, double radians) = 0;
    virtual void wrDouble(int groupCode, double value) = 0;
    virtual void wrPoint2d(int groupCode, const OdGePoint2d& value) = 0;
    virtual void wrPoint3d(int groupCode, const OdGePoint3d& value) = 0;
    virtual void wrVector2d(int groupCode, const OdGeVector2d& value) = 0;
    virtual void wrVector3d(int groupCode, const OdGeVector3d& value) = 0;
    virtual void wrScale3d(int groupCode, const OdGeScale3d& value) = 0;
    virtual void wrBinaryChunk(int groupCode, std::span<const std::uint8_t> value) = 0;

    /// Digits after the decimal point that the filer keeps.
    virtual int precision() const { return 16; }
    /// Groups written so far.
    virtual std::uint64_t position() const { return 0; }
    virtual bool atEndOfObject() const { return true; }
    virtual bool atEndOfFile() const { return true; }
    virtual bool atExtendedData() const { return false; }
    virtual bool atSubclassData(const OdString&) const { return false; }
    /// A subclass marker that the object passes.
    virtual void wrSubclassMarker(const OdString&) {}
};

/// Marks that a run of writing leaves on objects while it checks that each is owned once.
class DRAWINGDB_API OdDbFilerController {
  public:
    /// Takes the marks off; called after each object that was written to a filer of one's own.
    static void clearOwnershipCheckFlags(OdDbDatabase& database);
};
