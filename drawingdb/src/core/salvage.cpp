#include "drawingdb/src/core/salvage.h"

#include <algorithm>
#include <cstring>
#include <functional>

#include "base/text.h"
#include "drawingdb/object_id.h"
#include "drawingdb/src/file/spelling.h"

namespace drawingdb {

namespace {

constexpr int kLeastCode = -9, kLargestCode = 1071;
// So many groups in a row are no accident.
constexpr int kSoundGroups = 8;

bool isRecordName(std::string_view text) {
    constexpr std::size_t kLongest = 255;
    if (text.empty() || text.size() > kLongest) return false;
    bool hasLetter = false;
    for (const char c : text) {
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        hasLetter = hasLetter || letter;
        if (!letter && !base::isDigit(c) && std::string_view("_-$.:&").find(c) == std::string_view::npos) return false;
    }
    return hasLetter;
}

bool isHandle(std::string_view text) {
    text = trimmed(text);
    if (parseHandle(text) != 0) return parseHandle(text) < kHandleLimit;
    return text.find_first_not_of('0') == std::string_view::npos;
}

bool isHex(std::string_view text) {
    text = trimmed(text);
    return text.size() % 2 == 0 && std::all_of(text.begin(), text.end(), [](char c) { return base::hexValue(c) >= 0; });
}

struct Line {
    std::string_view text;
    const char* next;
    bool isEnded;  // by a line feed
};

Line lineAt(const char* place, const char* end) {
    const auto* feed = static_cast<const char*>(std::memchr(place, '\n', static_cast<std::size_t>(end - place)));
    const char* stop = feed ? feed : end;
    Line line{{}, feed ? feed + 1 : end, feed != nullptr};
    if (feed && stop > place && stop[-1] == '\r') --stop;
    line.text = {place, static_cast<std::size_t>(stop - place)};
    return line;
}

}  // namespace

// ---- damages

std::vector<OdDbWarning> Damages::warnings(const std::string& fileName) {
    std::stable_sort(all_.begin(), all_.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<OdDbWarning> told;
    told.reserve(all_.size());
    std::uint64_t line = 1;
    const char* counted = file_.data();
    for (const auto& [place, text] : all_) {
        line += static_cast<std::uint64_t>(std::count(counted, place, '\n'));
        counted = place;
        const std::uint64_t where = format_.binary ? static_cast<std::uint64_t>(place - file_.data()) : line;
        told.push_back({where, fileName + (format_.binary ? ": byte " : ":") + std::to_string(where) + ": " + text});
    }
    return told;
}

std::string SalvagedRecord::title() const {
    std::string text(name.substr(0, 40));
    const bool isNamed = (type == rtSection || type == rtTable || type == rtBlock) && find(2);
    if (isNamed) text += " " + std::string(this->text(2).substr(0, 80));
    if (handle) text += " #" + OdDbHandle(handle).ascii();
    return text;
}

std::string quoted(std::string_view text) {
    constexpr std::size_t kLongest = 60;
    std::string out = "\"";
    for (const char c : trimmed(text).substr(0, kLongest)) out += c >= ' ' && c < 127 ? c : '?';
    return out + "\"";
}

// ---- the file

namespace {

// In the order that files have them in.
constexpr std::string_view kSections[] = {"HEADER", "CLASSES", "TABLES", "BLOCKS", "ENTITIES", "OBJECTS"};

std::size_t orderOf(std::string_view section) {
    return static_cast<std::size_t>(std::find(std::begin(kSections), std::end(kSections), section) - kSections);
}

// The reader takes two of the same key for the same section.
std::string sectionKey(std::string_view name) {
    constexpr std::size_t kLongest = 40;
    std::string key(name.substr(0, kLongest));
    for (char& c : key)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return key;
}

}  // namespace

std::string_view sectionName(const SalvagedRecord& section) {
    const std::string_view name = trimmed(section.text(2));
    for (const std::string_view known : kSections)
        if (base::equalsNoCase(name, known)) return known;
    return name;
}

SalvagedNode* Salvage::section(std::string_view name) {
    const auto found = sectionOf_.find(sectionKey(name));
    return found == sectionOf_.end() ? nullptr : found->second;
}

SalvagedNode& Salvage::addSection(SalvagedRecord section) {
    SalvagedNode& node = sections.emplace_back();
    node.record = std::move(section);
    sectionOf_.emplace(sectionKey(sectionName(node)), &node);
    return node;
}

SalvagedNode& Salvage::madeSection(std::string_view name) {
    if (SalvagedNode* const found = section(name)) return *found;
    const auto next = std::find_if(sections.begin(), sections.end(), [&](const SalvagedNode& node) {
        return orderOf(sectionName(node)) > orderOf(name);
    });
    const auto made = sections.emplace(next);
    made->record = record(nullptr, [&](RecordWriter& writer) { writer.open(name); });
    sectionOf_.emplace(sectionKey(name), &*made);
    return *made;
}

SalvagedNode* Salvage::table(std::string_view name) {
    const auto found = tableOf_.find(name);
    return found == tableOf_.end() ? nullptr : found->second;
}

SalvagedNode& Salvage::addTable(SalvagedRecord table) {
    SalvagedNode& node = section("TABLES")->children.emplace_back();
    node.record = std::move(table);
    tableOf_.emplace(trimmed(node.record.text(2)), &node);
    return node;
}

std::uint16_t Salvage::typeOf(std::string_view name) {
    static const auto types = [] {
        std::unordered_map<std::string_view, std::uint16_t> all;
        for (const Kind& kind : allKinds())
            if (kind.type != rtNone) all.emplace(kind.name, kind.type);
        return all;
    }();
    const auto found = types.find(name);
    return found == types.end() ? static_cast<std::uint16_t>(rtFirstCarried) : found->second;
}

SalvagedRecord Salvage::record(const char* place, const std::function<void(RecordWriter&)>& write) {
    std::string& bytes = written.emplace_back();
    RecordWriter writer(bytes, format);
    write(writer);
    SalvagedRecord made;
    made.place = place;
    GroupCursor cursor(bytes, format);
    for (Group group; cursor.next(group);) made.groups.push_back(group);
    made.name = made.groups.front().value;
    made.type = typeOf(made.name);
    const int handleCode = made.type == rtDimstyle ? 105 : 5;
    if (made.type != rtSection && made.type != rtClass) made.handle = parseHandle(made.text(handleCode));
    return made;
}

Group Salvage::group(const std::function<void(RecordWriter&)>& write) {
    std::string& bytes = written.emplace_back();
    RecordWriter writer(bytes, format);
    write(writer);
    Group group;
    GroupCursor(bytes, format).next(group);
    return group;
}

const char* Salvage::placeOf(const Group& group, const SalvagedRecord& record) const {
    const std::less<const char*> before;
    const bool isOfFile = !before(group.begin, file.data()) && before(group.begin, file.data() + file.size());
    return isOfFile ? group.begin : record.place;
}

void Salvage::forEach(
    const std::function<void(SalvagedNode& node, SalvagedRecord& record, SalvagedNode* owner)>& visit) {
    // Blocks in tables in sections, references in blocks: no tree is deep.
    const std::function<void(SalvagedNode&, SalvagedNode*)> walk = [&](SalvagedNode& node, SalvagedNode* owner) {
        visit(node, node.record, owner);
        for (SalvagedNode& child : node.children) walk(child, &node);
        if (node.closer) visit(node, *node.closer, &node);
    };
    for (SalvagedNode& node : sections) walk(node, nullptr);
    for (SalvagedNode& node : namelessBlocks) walk(node, nullptr);
}

// ---- groups

DamagedGroups::DamagedGroups(std::string_view bytes, const FileFormat& format)
    : at_(bytes.data()), end_(at_ + bytes.size()), blanks_(end_), format_(format) {
    if (!format.binary) {
        const std::size_t used = bytes.find_last_not_of("\n\r \t\x1A") + 1;
        blanks_ = at_ + used;
    }
    for (const Kind& kind : allKinds())
        if (kind.type != rtNone) names_.insert(kind.name);
}

std::optional<Group> DamagedGroups::groupAt(const char* place) const {
    return format_.binary ? binaryGroupAt(place) : asciiGroupAt(place);
}

std::optional<Group> DamagedGroups::asciiGroupAt(const char* place) const {
    if (place == end_) return std::nullopt;
    const Line first = lineAt(place, end_);
    const std::optional<int> code = readCode(first.text);
    if (!code || *code < kLeastCode || *code > kLargestCode || !first.isEnded || first.next == end_)
        return std::nullopt;
    const Line second = lineAt(first.next, end_);
    const std::string_view value = trimmed(second.text);
    if (*code == 0 && !isRecordName(value)) return std::nullopt;
    // The last line of a file that was cut off is perhaps not whole.
    if (!second.isEnded && !(*code == 0 && value == "EOF")) return std::nullopt;
    // Where a record begins one line too late, the line before it belongs to nothing.
    if (value == "0" && second.next != end_) {
        if (isKnownName(trimmed(lineAt(second.next, end_).text))) return std::nullopt;
    }
    Group group;
    group.code = *code;
    group.value = second.text;
    group.begin = place;
    group.end = second.next;
    return group;
}

std::optional<Group> DamagedGroups::binaryGroupAt(const char* place) const {
    BinaryGroupCursor cursor({place, static_cast<std::size_t>(end_ - place)}, format_.wideCodes);
    Group group;
    if (!cursor.next(group) || group.code < kLeastCode || group.code > kLargestCode) return std::nullopt;
    if (group.code == 0 && !isRecordName(group.value)) return std::nullopt;
    if (valueKind(group.code) == ValueKind::text)
        for (const char c : group.value)
            if (static_cast<unsigned char>(c) < 32 && c != '\t') return std::nullopt;
    return group;
}

bool DamagedGroups::fits(const Group& group) const {
    switch (valueKind(group.code)) {
        case ValueKind::text:
            return true;
        case ValueKind::real:
            return groupReal(group, format_.binary).has_value();
        case ValueKind::int8:
        case ValueKind::int16:
        case ValueKind::int32:
        case ValueKind::int64:
            return groupInteger(group, format_.binary).has_value();
        case ValueKind::chunk:
            return format_.binary || isHex(group.value);
        case ValueKind::handle:
            return (group.code == 5 && !fiveIsHandle_) || isHandle(group.value);
    }
    return true;
}

bool DamagedGroups::isSound(const char* place) const {
    // In binary files a record alone is sure to be one: nearly any bytes can be numbers.
    if (format_.binary && *place != 0) return false;
    for (int count = 0; count < kSoundGroups; ++count) {
        if (count > 0 && isBlankFrom(place)) return true;
        const std::optional<Group> group = groupAt(place);
        if (!group || !fits(*group)) return false;
        if (group->code == 0) return true;
        if (format_.binary) return false;
        place = group->end;
    }
    return true;
}

bool DamagedGroups::isBadName(std::string_view bytes) const {
    const char* const end = bytes.data() + bytes.size();
    if (format_.binary) {
        BinaryGroupCursor cursor(bytes, format_.wideCodes);
        Group group;
        return cursor.next(group) && group.code == 0;
    }
    const Line first = lineAt(bytes.data(), end);
    if (readCode(first.text) != 0) return false;
    if (first.next == end) return !behindName_ && isHandleAt(end);  // the line of its name is lost
    const Line second = lineAt(first.next, end);
    return second.next == end && !readCode(second.text);
}

bool DamagedGroups::isHandleAt(const char* place) const {
    const std::optional<Group> group = groupAt(place);
    return group && (group->code == 5 || group->code == 105) && isHandle(group->value) && isSound(place);
}

bool DamagedGroups::takeBareName(Piece& piece) {
    constexpr int kNear = 3;  // lines
    if (format_.binary || behindName_) return false;
    const char* place = at_;
    bool isBehindZero = false;
    for (int line = 0; line < kNear && place != end_; ++line) {
        const Line read = lineAt(place, end_);
        const std::string_view name = trimmed(read.text);
        if (isKnownName(name) && isHandleAt(read.next)) {
            if (isBehindZero) return false;  // a sound beginning behind what is none
            piece.kind = Piece::bareName;
            piece.read = {};
            piece.read.value = name;
            piece.read.begin = at_;
            piece.read.end = at_ = read.next;
            enterRecord(name);
            return true;
        }
        isBehindZero = readCode(read.text) == 0;
        place = read.next;
    }
    return false;
}

void DamagedGroups::enterRecord(std::string_view name) {
    fiveIsHandle_ = name != "DIMSTYLE";
    behindName_ = true;
    names_.insert(name);
}

bool DamagedGroups::next(Piece& piece) {
    if (at_ == end_) return false;
    if (const std::optional<Group> group = groupAt(at_)) {
        const bool good = fits(*group);
        bool goesOn = good;
        if (!good) {
            const std::optional<Group> following = groupAt(group->end);
            goesOn = isBlankFrom(group->end) || (following && (format_.binary || isSound(group->end)));
        }
        if (goesOn) {
            piece.kind = good ? Piece::group : Piece::badValue;
            piece.read = *group;
            at_ = group->end;
            behindName_ = false;
            if (group->code == 0)
                enterRecord(trimmed(group->value));
            else if (group->code == 100)
                fiveIsHandle_ = false;
            return true;
        }
    }
    if (isBlankFrom(at_)) return false;
    if (takeBareName(piece)) return true;
    piece.kind = Piece::garbage;
    piece.read = {};
    piece.read.begin = at_;
    const auto stepFrom = [this](const char* place) { return format_.binary ? place + 1 : lineAt(place, end_).next; };
    do at_ = stepFrom(at_);
    while (at_ != end_ && !isBlankFrom(at_) && !isSound(at_));
    piece.read.end = at_;
    if (isBadName(piece.read.bytes())) piece.kind = Piece::badName;
    return true;
}

}  // namespace drawingdb
