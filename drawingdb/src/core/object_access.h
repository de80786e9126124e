// What the database's own machinery may do with an object beyond its public interface.
#pragma once

#include "drawingdb/entity.h"
#include "drawingdb/field.h"
#include "drawingdb/object.h"

namespace drawingdb {

struct ObjectAccess {
    static const ClassDescription* description(const OdDbObject& o) { return o.description(); }
    static void beforeEncode(OdDbObject& o) { o.beforeEncode(); }
    static void fieldEntered(OdDbField& field) { field.enterDatabase(); }
    static void afterDecode(OdDbObject& o) { o.afterDecode(); }
    static void readRunGroup(OdDbObject& o, const Group& group, int zone) { o.readRunGroup(group, zone); }
    static void writeRun(const OdDbObject& o, GroupWriter& writer, int zone) { o.writeRun(writer, zone); }
    static void clearRuns(OdDbObject& o) { o.clearRuns(); }

    static Stub*& stub(OdDbObject& o) { return o.stub_; }
    static OdDbDatabase*& database(OdDbObject& o) { return o.database_; }
    static HandleRef& owner(OdDbObject& o) { return o.owner_; }
    static HandleRef& extensionDictionary(OdDbObject& o) { return o.extensionDictionary_; }
    static const HandleRef& extensionDictionary(const OdDbObject& o) { return o.extensionDictionary_; }
    static std::vector<HandleRef>& reactors(OdDbObject& o) { return o.reactors_; }
    static const std::vector<HandleRef>& reactors(const OdDbObject& o) { return o.reactors_; }
    static const std::vector<OdDbGroup>* newXData(const OdDbObject& o) { return o.newXData_.get(); }
    static void forgetXData(OdDbObject& o) { o.newXData_.reset(); }
    static std::int32_t& plotStyleKind(OdDbEntity& e) { return e.plotStyleKind_; }
    static std::int32_t plotStyleKind(const OdDbEntity& e) { return e.plotStyleKind_; }
    static HandleRef& plotStyle(OdDbEntity& e) { return e.plotStyle_; }
    static OdDbObjectId plotStyleId(const OdDbEntity& e) { return e.resolve(e.plotStyle_); }
    static void setPaperSpace(OdDbEntity& e, bool on) { e.paperSpace_ = on ? 1 : 0; }
    static std::string_view& source(OdDbObject& o) { return o.source_; }
    static std::uintptr_t& closedContent(OdDbObject& o) { return o.closedContent_; }
    static bool& writable(OdDbObject& o) { return o.writable_; }
    static bool& hasFileXData(OdDbObject& o) { return o.hasFileXData_; }
    static bool& withoutMarkers(OdDbObject& o) { return o.withoutMarkers_; }
    static bool withoutMarkers(const OdDbObject& o) { return o.withoutMarkers_; }
    static bool& dirty(OdDbObject& o) { return o.dirty_; }
    static bool& runsChanged(OdDbObject& o) { return o.runsChanged_; }
    static bool runsChanged(const OdDbObject& o) { return o.runsChanged_; }
    static bool& reactorsChanged(OdDbObject& o) { return o.reactorsChanged_; }
    static bool reactorsChanged(const OdDbObject& o) { return o.reactorsChanged_; }
};

}  // namespace drawingdb
