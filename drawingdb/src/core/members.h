// The members that a description's fields stand for.
#pragma once

#include <algorithm>

#include "drawingdb/mtext.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/core/object_access.h"

namespace drawingdb {

inline constexpr std::size_t kMaxFields = 192;

// Where a record's groups stand, besides the zones.
inline constexpr int kUnknownZone = -2;
inline constexpr int kNoMarkers = -1;

/// Whether a chunked text goes on with a group.
inline bool goesOn(const FieldSpec& field, const Group& group) {
    return group.code == field.code || group.code == field.chunkCode || group.code == 999;
}

/// The object that holds a zone's fields: the object itself, or the embedded one (null when there is none).
inline char* holder(const OdDbObject& object, const Zone& zone) {
    char* base = reinterpret_cast<char*>(const_cast<OdDbObject*>(&object));
    if (!zone.embedded) return base;
    auto& pointer = *reinterpret_cast<OdSmartPtr<OdDbMText>*>(base + zone.pointer);
    return reinterpret_cast<char*>(static_cast<OdDbObject*>(pointer.get()));
}
inline char* makeHolder(OdDbObject& object, const Zone& zone) {
    auto& pointer = *reinterpret_cast<OdSmartPtr<OdDbMText>*>(reinterpret_cast<char*>(&object) + zone.pointer);
    if (!pointer) pointer = OdDbMText::createObject();
    return reinterpret_cast<char*>(static_cast<OdDbObject*>(pointer.get()));
}

template <class T>
T& member(char* base, const FieldSpec& field) {
    return *reinterpret_cast<T*>(base + field.offset);
}

inline bool isEmpty(const FileText& text) { return text.text ? text.text->empty() : text.raw.empty(); }

inline bool isDefault(char* base, const FieldSpec& field) {
    switch (field.kind) {
        case FieldKind::text: {
            const FileText& text = member<FileText>(base, field);
            if (isEmpty(text)) return true;
            if (text.text)
                return std::equal(text.text->begin(), text.text->end(), field.defaultText.begin(),
                                  field.defaultText.end(),
                                  [](wchar_t a, char b) { return a == static_cast<wchar_t>(b); });
            return text.raw == field.defaultText;
        }
        case FieldKind::chunkedText:
            return isEmpty(member<FileText>(base, field));
        case FieldKind::real:
        case FieldKind::angle:
            return member<double>(base, field) == field.defaultReal;
        case FieldKind::int16:
            return member<std::int16_t>(base, field) == field.defaultInteger;
        case FieldKind::int32:
            return member<std::int32_t>(base, field) == field.defaultInteger;
        case FieldKind::handle:
            return member<HandleRef>(base, field).handle == 0;
        case FieldKind::run:
            return true;
    }
    return true;
}

}  // namespace drawingdb
