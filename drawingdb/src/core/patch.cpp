// Writing an object over the record that it was read from: equal groups stay as bytes, changed ones are written in
// their place, new ones behind their predecessor, and what the class does not know stays.
#include <algorithm>
#include <array>

#include "drawingdb/src/core/encode.h"
#include "drawingdb/src/core/members.h"
#include "drawingdb/src/core/record_walk.h"
#include "drawingdb/src/geometry/curve_math.h"

namespace drawingdb {

namespace {

// Whether the member is what `group` says.
bool sameValue(char* base, const FieldSpec& field, const Group& group, const FileFormat& format) {
    switch (field.kind) {
        case FieldKind::text: {
            const FileText& text = member<FileText>(base, field);
            if (!text.text) return text.raw == group.value;
            return *text.text == decodeText(group.value, format);
        }
        case FieldKind::real:
            return groupReal(group, format.binary).value_or(field.defaultReal) == member<double>(base, field);
        case FieldKind::angle: {
            const auto value = groupReal(group, format.binary);
            return (value ? *value * kDegree : field.defaultReal) == member<double>(base, field);
        }
        case FieldKind::int16:
            return static_cast<std::int16_t>(groupInteger(group, format.binary).value_or(field.defaultInteger)) ==
                   member<std::int16_t>(base, field);
        case FieldKind::int32:
            return static_cast<std::int32_t>(groupInteger(group, format.binary).value_or(field.defaultInteger)) ==
                   member<std::int32_t>(base, field);
        case FieldKind::handle:
            return parseHandle(group.value) == member<HandleRef>(base, field).handle;
        case FieldKind::chunkedText:
        case FieldKind::run:
            break;
    }
    return true;
}

// One old record being patched.
class Patch {
  public:
    Patch(const OdDbObject& object, const ClassDescription& description, std::string_view old, const FileFormat& format,
          std::string& out)
        : object_(object), description_(description), format_(format), writer_(out, format), old_(old) {}

    void run() {
        classify(nullptr);
        if (hasStrays_ && anyMarkers_ && (description_.expectedZones() & ~marked_) != 0) {
            isLacking_ = true;
            const ZoneSet marked = marked_;
            classify(&marked);
        }
        findMissing();
        emit();
    }

  private:
    enum class Do : std::uint8_t { keep, drop, field, chunks, run, handle, reactors, dictionary };
    struct Item {
        Group group;
        Do action = Do::keep;
        std::int16_t field = -1;
    };
    struct Insert {
        int after;
        int field;  // or -1 - zone for a whole zone, or one of the specials
    };
    static constexpr int kReactors = 10000, kDictionary = 10001;

    // What becomes of each group. `lacking`: the zones whose markers do stand in a record that lacks others.
    void classify(const ZoneSet* lacking) {
        place_.fill(-1);
        zoneEnd_.assign(description_.zones.size(), -1);
        items_.clear();
        items_.reserve(64);
        chunkField_ = -1;
        int zone = ObjectAccess::withoutMarkers(object_) ? kNoMarkers : 0;
        int after = -1;
        bool dropApplication = false;
        RecordWalk walk(GroupCursor(old_, format_));
        while (walk.next()) {
            const Group& group = walk.group();
            const int index = static_cast<int>(items_.size());
            Item& item = items_.emplace_back();
            item.group = group;
            if (walk.part() == RecordPart::extendedData) {
                if (group.code == 1001) dropApplication = changesApplication(group.value);
                if (dropApplication) item.action = Do::drop;
                continue;
            }
            lastPlain_ = index;
            if (zone >= 0 && walk.control() == ControlString::none && walk.part() == RecordPart::field)
                zoneEnd_[zoneIndex(zone)] = index;
            if (walk.control() == ControlString::none && chunkField_ >= 0 &&
                !goesOn(description_.fields[static_cast<std::size_t>(chunkField_)], group))
                chunkField_ = -1;
            switch (walk.part()) {
                case RecordPart::controlBegin:
                case RecordPart::inControl:
                case RecordPart::controlEnd:
                    classifyControl(walk, index, item);
                    break;
                case RecordPart::marker:
                    anyMarkers_ = true;
                    zone = description_.findZone(group.value, std::max(zone, 0) + 1, group.code == 101);
                    if (zone < 0) {
                        zone = kUnknownZone;
                        break;
                    }
                    markers_ = true;
                    marked_ |= zoneBit(zone);
                    after = description_.zones[zoneIndex(zone)].first - 1;
                    zoneEnd_[zoneIndex(zone)] = index;
                    if (!holder(object_, description_.zones[zoneIndex(zone)])) item.action = Do::drop;
                    break;
                case RecordPart::handle:
                    handleAt_ = index;
                    if (parseHandle(group.value) != object_.handle().value()) item.action = Do::handle;
                    break;
                case RecordPart::field:
                    if (zone != kUnknownZone) classifyField(walk.ahead(), zone, index, item, after, lacking);
                    break;
                default:
                    break;
            }
            if (zone < 1 && zone != kUnknownZone && walk.part() != RecordPart::comment) lastHead_ = index;
        }
    }

    void classifyControl(const RecordWalk<GroupCursor>& walk, int index, Item& item) {
        const bool begins = walk.part() == RecordPart::controlBegin;
        if (walk.control() == ControlString::reactors) {
            if (begins) reactorsAt_ = index;
            if (ObjectAccess::reactorsChanged(object_)) item.action = begins ? Do::reactors : Do::drop;
        } else if (walk.control() == ControlString::dictionary) {
            if (begins) {
                isDictionary_ = namesDictionary(walk.ahead());
                if (!isDictionary_) return;
                dictionaryAt_ = index;
                dictionaryGone_ = ObjectAccess::extensionDictionary(object_).handle == 0;
            }
            if (!isDictionary_) return;
            if (walk.part() == RecordPart::inControl) {
                if (item.group.code == 360) patchDictionary(item);
            } else if (dictionaryGone_) {
                item.action = Do::drop;
            }
        }
    }

    void classifyField(const GroupCursor& ahead, int zone, int index, Item& item, int& after, const ZoneSet* lacking) {
        if (zone >= 0 && !holder(object_, description_.zones[zoneIndex(zone)])) {
            item.action = Do::drop;
            return;
        }
        const Group& group = item.group;
        const int found = lacking ? description_.meaningBeyond(zone, group.code, after, *lacking)
                                  : description_.meaningOf(zone, group.code, after);
        if (zone >= 0) zoneEnd_[zoneIndex(zone)] = index;  // of the zone that is meant
        if (found == ClassDescription::kRun) {
            if (!ObjectAccess::runsChanged(object_)) return;
            const int field = runField(zone);
            int& place = place_[static_cast<std::size_t>(field)];
            item.action = place < 0 ? Do::run : Do::drop;
            item.field = static_cast<std::int16_t>(field);
            if (place < 0) place = index;
            return;
        }
        if (found < 0) {
            hasStrays_ = true;
            return;
        }
        const FieldSpec& field = description_.fields[static_cast<std::size_t>(found)];
        int& place = place_[static_cast<std::size_t>(found)];
        if (field.kind == FieldKind::chunkedText) {
            if (chunkField_ == found) {
                if (dropChunks_) item.action = Do::drop;
            } else if (place >= 0) {  // a second text: not ours
                return;
            } else {
                chunkField_ = found;
                dropChunks_ = !chunksSame(found, index, ahead);
                if (dropChunks_) {
                    item.action = Do::chunks;
                    item.field = static_cast<std::int16_t>(found);
                }
            }
            place = index;
            return;
        }
        if (place >= 0) {
            // Of two the first counts. The second may not come into its place.
            if (items_[static_cast<std::size_t>(place)].action == Do::drop) item.action = Do::drop;
            return;
        }
        place = index;
        after = found;
        char* const base = holder(object_, description_.zones[field.zone]);
        if (sameValue(base, field, group, format_)) return;
        // A default of which nothing is written may have no spelling at all, as "no true colour".
        item.action = !field.required && field.parts == 1 && isDefault(base, field) ? Do::drop : Do::field;
        item.field = static_cast<std::int16_t>(found);
    }

    // Whether the control string that begins here names a dictionary; a damaged one is left alone.
    static bool namesDictionary(GroupCursor ahead) {
        for (Group group; ahead.next(group) && group.code != 102;)
            if (group.code == 360 && parseHandle(group.value) != 0) return true;
        return false;
    }

    void patchDictionary(Item& item) {
        const std::uint64_t now = ObjectAccess::extensionDictionary(object_).handle;
        if (now == 0)
            item.action = Do::drop;
        else if (now != parseHandle(item.group.value))
            item.action = Do::dictionary;
    }

    bool changesApplication(std::string_view rawName) const {
        const std::vector<OdDbGroup>* const xData = ObjectAccess::newXData(object_);
        if (!xData) return false;
        const std::wstring name = decodeText(rawName, format_);
        return std::any_of(xData->begin(), xData->end(),
                           [&](const OdDbGroup& g) { return g.code == 1001 && g.text == name; });
    }

    int runField(int zone) const {
        for (std::size_t i = 0; i < description_.fields.size(); ++i)
            if (description_.fields[i].kind == FieldKind::run && (zone < 0 || description_.fields[i].zone == zone))
                return static_cast<int>(i);
        return -1;
    }

    // Whether the chunks that begin at the group just read hold the text that the object has.
    bool chunksSame(int fieldIndex, int index, GroupCursor ahead) const {
        const FieldSpec& field = description_.fields[static_cast<std::size_t>(fieldIndex)];
        const FileText& text = member<FileText>(holder(object_, description_.zones[field.zone]), field);
        std::string all(items_[static_cast<std::size_t>(index)].group.value);
        Group group;
        while (ahead.next(group) && goesOn(field, group))
            if (group.code != 999) all.append(group.value);
        if (!text.text) return text.raw == all;
        return *text.text == decodeText(all, format_);
    }

    void findMissing() {
        if (reactorsAt_ < 0 && ObjectAccess::reactorsChanged(object_) && hasMarkers())
            inserts_.push_back({headPlace(), kReactors});
        if (dictionaryAt_ < 0 && ObjectAccess::extensionDictionary(object_).handle && hasMarkers())
            inserts_.push_back({std::max(handleAt_, 0), kDictionary});
        for (std::size_t z = 0; z < description_.zones.size(); ++z) {
            const Zone& zone = description_.zones[z];
            char* base = holder(object_, zone);
            if (!base || format_.version < zone.since) continue;
            // A zone that lacks its marker goes on where the one before it ends.
            const bool lacksMarker =
                isLacking_ && !zone.embedded && z > 0 && (marked_ & zoneBit(static_cast<int>(z))) == 0;
            const bool present = z == 0 || !markers_ || lacksMarker || zoneEnd_[z] >= 0;
            if (!present) {
                bool any = zone.embedded;
                for (int i = zone.first; i < zone.last && !any; ++i)
                    any = !isDefault(base, description_.fields[static_cast<std::size_t>(i)]);
                if (any) inserts_.push_back({endOfZonesUpTo(z), -1 - static_cast<int>(z)});
                continue;
            }
            if (zone.embedded && !markers_) continue;
            int predecessor = z == 0        ? headPlaceForFields()
                              : lacksMarker ? placeWithoutMarker(z)
                                            : (markers_ ? markerPlace(z) : -1);
            for (int i = zone.first; i < zone.last; ++i) {
                const auto f = static_cast<std::size_t>(i);
                const FieldSpec& field = description_.fields[f];
                if (place_[f] >= 0) {
                    predecessor = place_[f];
                    continue;
                }
                if (!knownTo(field, format_)) continue;
                const bool missing =
                    field.kind == FieldKind::run ? ObjectAccess::runsChanged(object_) : isMissing(base, f);
                if (missing) inserts_.push_back({predecessor >= 0 ? predecessor : lastPlain_, i});
            }
        }
        std::stable_sort(inserts_.begin(), inserts_.end(),
                         [](const Insert& a, const Insert& b) { return a.after < b.after; });
    }

    // Whether a field that does not stand in the record has to. A point of which some groups stand there gets only
    // those that are not the default: a flat point stays flat.
    bool isMissing(char* base, std::size_t f) const {
        const FieldSpec& field = description_.fields[f];
        const std::size_t first = f - field.part;
        bool changed = false;
        for (std::size_t part = first; part < first + field.parts; ++part) {
            if (place_[part] >= 0) return !isDefault(base, field);
            changed = changed || !isDefault(base, description_.fields[part]);
        }
        return changed;
    }

    static std::size_t zoneIndex(int zone) { return static_cast<std::size_t>(zone); }
    int headPlace() const { return dictionaryAt_ >= 0 ? dictionaryAt_ + 2 : std::max(handleAt_, 0); }
    bool hasMarkers() const { return markers_ || format_.hasMarkers(); }
    int headPlaceForFields() const { return markers_ ? lastHead_ : -1; }
    int markerPlace(std::size_t z) const {
        for (std::size_t i = 0; i < items_.size(); ++i) {
            const Group& g = items_[i].group;
            if (g.code == (description_.zones[z].embedded ? 101 : 100) && static_cast<int>(i) <= zoneEnd_[z] &&
                (g.value == description_.zones[z].marker ||
                 (!description_.zones[z].alias.empty() && g.value == description_.zones[z].alias))) {
                // The last such marker at or before the zone's end.
                std::size_t best = i;
                for (std::size_t k = i + 1; k < items_.size() && static_cast<int>(k) <= zoneEnd_[z]; ++k)
                    if (items_[k].group.code == g.code && items_[k].group.value == g.value) best = k;
                return static_cast<int>(best);
            }
        }
        return lastPlain_;
    }
    int placeWithoutMarker(std::size_t z) const {
        for (++z; z-- > 0;)
            if (zoneEnd_[z] >= 0) return zoneEnd_[z];
        return lastHead_;
    }
    int endOfZonesUpTo(std::size_t z) const {
        while (z-- > 1)
            if (zoneEnd_[z] >= 0) return zoneEnd_[z];
        return lastPlain_;
    }

    void emit() {
        std::size_t next = 0;
        const char* runBegin = nullptr;
        const char* runEnd = nullptr;
        const auto flush = [&] {
            if (runBegin) writer_.raw({runBegin, static_cast<std::size_t>(runEnd - runBegin)});
            runBegin = nullptr;
        };
        for (std::size_t i = 0; i < items_.size(); ++i) {
            const Item& item = items_[i];
            if (item.action == Do::keep) {
                if (!runBegin) runBegin = item.group.begin;
                runEnd = item.group.end;
            } else {
                flush();
                emitChanged(item);
            }
            for (; next < inserts_.size() && inserts_[next].after <= static_cast<int>(i); ++next) {
                flush();
                emitInsert(inserts_[next]);
            }
        }
        flush();
        writeXData(object_, writer_);
    }

    void emitChanged(const Item& item) {
        switch (item.action) {
            case Do::keep:
            case Do::drop:
                return;
            case Do::field:
            case Do::chunks:
            case Do::run: {
                const FieldSpec& field = description_.fields[static_cast<std::size_t>(item.field)];
                writeField(object_, holder(object_, description_.zones[field.zone]), field, writer_);
                return;
            }
            case Do::handle:
                writer_.handle(item.group.code, object_.handle().value());
                return;
            case Do::reactors:
                writeReactors(object_, writer_);
                return;
            case Do::dictionary:
                writer_.handle(360, ObjectAccess::extensionDictionary(object_).handle);
                return;
        }
    }

    void emitInsert(const Insert& insert) {
        if (insert.field == kReactors) {
            writeReactors(object_, writer_);
        } else if (insert.field == kDictionary) {
            writeExtensionDictionary(object_, writer_);
        } else if (insert.field < 0) {
            writeZoneAnew(object_, description_, description_.zones[static_cast<std::size_t>(-1 - insert.field)],
                          writer_, markers_);
        } else {
            const FieldSpec& field = description_.fields[static_cast<std::size_t>(insert.field)];
            writeField(object_, holder(object_, description_.zones[field.zone]), field, writer_);
        }
    }

    const OdDbObject& object_;
    const ClassDescription& description_;
    const FileFormat& format_;
    GroupWriter writer_;
    std::string_view old_;
    std::vector<Item> items_;
    std::vector<Insert> inserts_;
    std::array<int, kMaxFields> place_;
    std::vector<int> zoneEnd_;
    int handleAt_ = -1;
    int reactorsAt_ = -1;
    int dictionaryAt_ = -1;
    int lastHead_ = 0;
    int lastPlain_ = 0;
    bool anyMarkers_ = false;  // of zones that the class does not know, too
    bool markers_ = false;
    ZoneSet marked_ = 0;
    int chunkField_ = -1;
    bool dropChunks_ = false;
    bool isDictionary_ = false;  // the control string is that of a dictionary that there is
    bool dictionaryGone_ = false;
    bool hasStrays_ = false;  // groups that mean nothing in their zone
    bool isLacking_ = false;  // markers of zones whose groups stand there
};

}  // namespace

void encodeObject(const OdDbObject& object, const ClassDescription& description, std::string_view oldBytes,
                  const FileFormat& format, std::string& out) {
    if (oldBytes.empty())
        encodeAnew(object, description, format, out);
    else
        Patch(object, description, oldBytes, format, out).run();
}

}  // namespace drawingdb
