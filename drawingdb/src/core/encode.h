// The parts of a record as they are written: for new records, and for what is new in an old one.
#pragma once

#include "drawingdb/src/core/description.h"

namespace drawingdb {

inline bool knownTo(const FieldSpec& field, const FileFormat& format) { return format.version >= field.since; }
/// `base` is the field's holder.
void writeField(const OdDbObject& object, char* base, const FieldSpec& field, GroupWriter& writer);
/// A whole zone with its marker, unless there are no `markers`; nothing when its object is missing or the version does
/// not know it.
void writeZoneAnew(const OdDbObject& object, const ClassDescription& description, const Zone& zone, GroupWriter& writer,
                   bool markers);
void writeReactors(const OdDbObject& object, GroupWriter& writer);
void writeExtensionDictionary(const OdDbObject& object, GroupWriter& writer);
/// The applications of changed extended data that are not merely removed.
void writeXData(const OdDbObject& object, GroupWriter& writer);
/// A whole record.
void encodeAnew(const OdDbObject& object, const ClassDescription& description, const FileFormat& format,
                std::string& out);

}  // namespace drawingdb
