#include "torvelhost/plot/groups.h"

#include "drawingdb/database.h"
#include "drawingdb/filer.h"

namespace host {
namespace {

// Takes down what is written to it.
class GroupRecorder final : public OdDbDxfFiler {
  public:
    explicit GroupRecorder(OdDbDatabase* database) : database_(database) {}

    std::vector<PlotGroup> groups;

    FilerType filerType() const override { return extractFiler; }
    OdResult filerStatus() const override { return OdResult::ok; }
    OdDbDatabase* database() const override { return database_; }

    void wrName(int code, const OdString& value) override { add(code).text = value; }
    void wrString(int code, const OdString& value) override { add(code).text = value; }
    void wrSubclassMarker(const OdString& value) override { add(100).text = value; }
    void wrBool(int code, bool value) override { add(code).integer = value; }
    // NOLINTNEXTLINE(bugprone-signed-char-misuse): a number, no character.
    void wrInt8(int code, std::int8_t value) override { add(code).integer = value; }
    void wrUInt8(int code, std::uint8_t value) override { add(code).integer = value; }
    void wrInt16(int code, std::int16_t value) override { add(code).integer = value; }
    void wrUInt16(int code, std::uint16_t value) override { add(code).integer = value; }
    void wrInt32(int code, std::int32_t value) override { add(code).integer = value; }
    void wrUInt32(int code, std::uint32_t value) override { add(code).integer = value; }
    void wrInt64(int code, std::int64_t value) override { add(code).integer = value; }
    void wrUInt64(int code, std::uint64_t value) override { add(code).integer = static_cast<std::int64_t>(value); }
    void wrHandle(int code, OdDbHandle value) override {
        PlotGroup& group = add(code);
        group.integer = static_cast<std::int64_t>(value.value());
        if (database_) group.id = database_->getObjectId(value);
    }
    void wrObjectId(int code, OdDbObjectId value) override { add(code).id = value; }
    void wrAngle(int code, double radians) override { add(code).real = radians; }
    void wrDouble(int code, double value) override { add(code).real = value; }
    void wrPoint2d(int code, const OdGePoint2d& value) override { add(code).point.set(value.x, value.y, 0); }
    void wrPoint3d(int code, const OdGePoint3d& value) override { add(code).point = value; }
    void wrVector2d(int code, const OdGeVector2d& value) override { add(code).point.set(value.x, value.y, 0); }
    void wrVector3d(int code, const OdGeVector3d& value) override { add(code).point.set(value.x, value.y, value.z); }
    void wrScale3d(int code, const OdGeScale3d& value) override { add(code).point.set(value.sx, value.sy, value.sz); }
    void wrBinaryChunk(int code, std::span<const std::uint8_t> value) override {
        add(code).text.assign(value.begin(), value.end());
    }

  private:
    PlotGroup& add(int code) {
        PlotGroup& group = groups.emplace_back();
        group.code = code;
        return group;
    }

    OdDbDatabase* database_;
};

}  // namespace

std::vector<PlotGroup> groupsOf(const OdDbObject& object) {
    const OdSmartPtr<GroupRecorder> recorder(new GroupRecorder(object.database()));
    object.dxfOutFields(*recorder);
    return std::move(recorder->groups);
}

OdCmColor colorOf(std::int64_t number) {
    const auto bits = static_cast<std::uint32_t>(number);
    switch (bits >> 24) {
        case OdCmEntityColor::kByLayer:
            return OdCmColor::fromIndex(256);
        case OdCmEntityColor::kByRgb:
            return OdCmColor::fromRgb(bits & 0xFFFFFF);
        case OdCmEntityColor::kByIndex:
            return OdCmColor::fromIndex(static_cast<int>(bits & 0xFF));
        default:
            return OdCmColor::fromIndex(0);
    }
}

const PlotGroup* findGroup(std::span<const PlotGroup> groups, int code) {
    for (const PlotGroup& group : groups)
        if (group.code == code) return &group;
    return nullptr;
}

const PlotGroup& groupOrZero(std::span<const PlotGroup> groups, int code) {
    static const PlotGroup zero;
    const PlotGroup* found = findGroup(groups, code);
    return found ? *found : zero;
}

}  // namespace host
