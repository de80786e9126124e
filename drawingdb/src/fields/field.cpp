// The record of a field in a file:
//
//     1 evaluator        3 3 .. 2 code in pieces      90 360 .. children        97 331 .. objects named by index
//    91 option          92 filing option      94 state      95 96 300 result of the last evaluation
//    93 number of data items, each    6 key and a value
//     7 "ACFD_FIELD_VALUE" and the cached value        301 shown text, 9 more of it        98 its length
//
//   a value:    93 flags   90 type   payload   94 what it measures   300 format   302 as text   304 "ACVALUE_END"
//               (before version 2007 the type and the payload only)
//   payload:    91 whole   140 real   2 2 .. 1 text in pieces   92 310 date   11 21 31 point   330 object
#include "drawingdb/field.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_set>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/database.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/mtext.h"
#include "drawingdb/mtext_parser.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/fields/field_code.h"
#include "drawingdb/src/fields/field_evaluators.h"
#include "drawingdb/src/fields/field_format.h"
#include "drawingdb/src/lettering/text_codes.h"
#include "drawingdb/text.h"

using namespace drawingdb;

OD_DEFINE_CLASS(OdDbField, OdDbObject)

namespace {

constexpr std::wstring_view kTextEvaluator = L"_text";
constexpr std::wstring_view kVariableKey = L"Variable";
// A checksum that other programs keep to see whether the text was changed behind the field's back.
constexpr std::wstring_view kChecksumKey = L"ACFD_FIELDTEXT_CHECKSUM";
constexpr wchar_t kNoValue[] = L"####";
constexpr wchar_t kEmptyValue[] = L"----";

// Fields that stand in each other many times over could grow without end.
constexpr std::size_t kMostText = std::size_t{1} << 20;
constexpr std::size_t kMostCopies = 10000;

enum Status { notEvaluated = 1, success = 2, noEvaluator = 4, noValue = 64 };
// A bit that files have in the state of every field with a value.
constexpr int kValueStored = 32;

constexpr int kFirstVersionWithUnits = version::v2007;
constexpr std::size_t kPiece = 250;

std::size_t utf16Length(std::wstring_view text) {
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size();) length += base::nextCharacter(text, at) > 0xFFFF ? 2 : 1;
    return length;
}

// A text in groups `code` of 250 UTF-16 units each and a last one `lastCode`.
void writePieces(GroupWriter& writer, int code, int lastCode, std::wstring_view text) {
    std::size_t begin = 0, at = 0, units = 0;
    while (at < text.size()) {
        std::size_t next = at;
        const std::size_t width = base::nextCharacter(text, next) > 0xFFFF ? 2 : 1;
        if (units + width > kPiece) {
            writer.wide(code, text.substr(begin, at - begin));
            begin = at;
            units = 0;
        }
        units += width;
        at = next;
    }
    writer.wide(lastCode, text.substr(begin));
}

std::string hexDigits(std::string_view bytes) {
    std::string hex;
    for (const char byte : bytes) {
        hex.push_back(base::kHexDigits[static_cast<unsigned char>(byte) >> 4]);
        hex.push_back(base::kHexDigits[static_cast<unsigned char>(byte) & 15]);
    }
    return hex;
}

// A date is eight whole numbers of two bytes, the lower first: year, month, weekday, day, hour, minute, second,
// millisecond.
constexpr std::size_t kDateBytes = 16;

std::string dateBytes(double julian) {
    const CalendarDate d = calendarDate(julian);
    std::string bytes;
    for (const int part : {d.year, d.month, d.weekday, d.day, d.hour, d.minute, d.second, d.millisecond}) {
        bytes.push_back(static_cast<char>(part & 255));
        bytes.push_back(static_cast<char>(part >> 8));
    }
    return bytes;
}

std::optional<double> dateFromChunk(std::string_view chunk, bool binary) {
    if (chunk.size() != (binary ? kDateBytes : 2 * kDateBytes)) return {};
    int part[kDateBytes / 2];
    for (std::size_t i = 0; i < std::size(part); ++i) {
        const auto byteAt = [&](std::size_t k) {
            return binary ? static_cast<int>(static_cast<unsigned char>(chunk[k]))
                          : static_cast<int>(parseHandle(chunk.substr(2 * k, 2)));
        };
        part[i] = byteAt(2 * i) | byteAt(2 * i + 1) << 8;
    }
    if (part[0] < 1 || part[0] > 9999 || part[1] < 1 || part[1] > 12 || part[3] < 1 || part[3] > 31) return {};
    return julianDay({part[0], part[1], part[3], part[2], part[4], part[5], part[6], part[7]});
}

bool sameValue(const OdDbFieldValue& a, const OdDbFieldValue& b) {
    return a.type == b.type && a.integer == b.integer && a.real == b.real && a.text == b.text && a.object == b.object &&
           std::equal(std::begin(a.point), std::end(a.point), std::begin(b.point));
}

struct StoredValue {
    OdDbFieldValue value;
    int flags = 0;
    int quantity = 0;
    OdString format;
    OdString text;
    std::string payload;  // groups as the file has them; empty for a value that was set
    std::string unknown;

    void set(const OdDbFieldValue& newValue) {
        value = newValue;
        payload.clear();
    }

    // Without what is spelled as in its file, to be written to any.
    StoredValue respelled() const {
        StoredValue result = *this;
        result.payload.clear();
        result.unknown.clear();
        return result;
    }

    void write(GroupWriter& writer) const {
        const bool units = writer.format().version >= kFirstVersionWithUnits;
        if (units) writer.integer(93, flags);
        writer.integer(90, value.type);
        if (payload.empty())
            writePayload(writer);
        else
            writer.raw(payload);
        writer.raw(unknown);
        if (!units) return;
        writer.integer(94, quantity);
        writer.wide(300, format);
        writer.wide(302, text);
        writer.text(304, "ACVALUE_END");
    }

  private:
    void writePayload(GroupWriter& writer) const {
        switch (value.type) {
            case OdDbFieldValue::kDouble:
                writer.real(140, value.real);
                return;
            case OdDbFieldValue::kString:
                writePieces(writer, 2, 1, value.text);
                return;
            case OdDbFieldValue::kDate: {
                const std::string bytes = dateBytes(value.real);
                writer.integer(92, static_cast<std::int64_t>(bytes.size()));
                if (writer.format().binary)
                    writer.raw("\x36\x01\x10" + bytes);  // group 310 (two bytes), size, bytes
                else
                    writer.text(310, hexDigits(bytes));
                return;
            }
            case OdDbFieldValue::kPoint:
            case OdDbFieldValue::k3dPoint:
                writer.real(11, value.point[0]);
                writer.real(21, value.point[1]);
                if (value.type == OdDbFieldValue::k3dPoint) writer.real(31, value.point[2]);
                return;
            case OdDbFieldValue::kObjectId:
                writer.handle(330, value.object.handle().value());
                return;
            default:
                writer.integer(91, value.integer);
                return;
        }
    }
};

bool isPayloadCode(int code) {
    static constexpr int kCodes[] = {1, 2, 11, 21, 31, 91, 92, 140, 310, 330};
    return std::find(std::begin(kCodes), std::end(kCodes), code) != std::end(kCodes);
}

// Reads a value that begins at groups[at]; `at` is behind it afterwards.
StoredValue readValue(const std::vector<Group>& groups, std::size_t& at, const FileFormat& format,
                      const std::function<OdDbObjectId(std::uint64_t)>& objectOf) {
    StoredValue result;
    OdDbFieldValue& value = result.value;
    std::string text;
    const auto whole = [&](const Group& group) { return groupInteger(group, format.binary).value_or(0); };
    const auto real = [&](const Group& group) { return groupReal(group, format.binary).value_or(0); };
    for (; at < groups.size(); ++at) {
        const Group& group = groups[at];
        if (group.code == 304) {
            ++at;
            break;
        }
        if (group.code == 6 || group.code == 7 || group.code == 9 || group.code == 98 || group.code == 301) break;
        if (isPayloadCode(group.code)) result.payload.append(group.bytes());
        switch (group.code) {
            case 93:
                result.flags = static_cast<int>(whole(group));
                break;
            case 90:
                value.type = static_cast<int>(whole(group));
                break;
            case 94:
                result.quantity = static_cast<int>(whole(group));
                break;
            case 300:
                result.format = decodeText(group.value, format);
                break;
            case 302:
                result.text = decodeText(group.value, format);
                break;
            case 1:
            case 2:
                text.append(group.value);
                break;
            case 91:
                value.integer = whole(group);
                break;
            case 140:
                value.real = real(group);
                break;
            case 310:
                if (value.type == OdDbFieldValue::kDate)
                    value.real = dateFromChunk(group.value, format.binary).value_or(0);
                break;
            case 11:
                value.point[0] = real(group);
                break;
            case 21:
                value.point[1] = real(group);
                break;
            case 31:
                value.point[2] = real(group);
                break;
            case 330:
                value.object = objectOf(parseHandle(group.value));
                break;
            default:
                if (!isPayloadCode(group.code)) result.unknown.append(group.bytes());
        }
    }
    if (!text.empty()) value.text = decodeText(text, format);
    return result;
}

}  // namespace

struct OdDbField::Stored {
    enum Section { head, code, children, objects, options, evaluationState, items, cache, shown, sections };
    struct Item {
        OdString key;
        StoredValue value;
    };

    std::vector<Group> groups;                  // of the record that is being read
    std::array<std::string, sections> unknown;  // groups that are not understood, by the section that they stand in
    std::vector<Item> data;
    StoredValue result;  // beside the value itself, which is OdDbField::value_
    std::int32_t filingOption = 0;
    std::int32_t errorCode = 0;
    OdString errorText;

    Item* find(std::wstring_view key) {
        const auto found = std::find_if(data.begin(), data.end(), [&](const Item& item) { return item.key == key; });
        return found == data.end() ? nullptr : &*found;
    }
    void remove(std::wstring_view key) {
        std::erase_if(
            data, [&](const Item& item) { return item.key == key; });
    }
    void set(std::wstring_view key, const OdDbFieldValue& value) {
        constexpr int kFlagsOfData = 2;
        Item* item = find(key);
        if (!item) {
            item = &data.emplace_back();
            item->key = key;
            item->value.flags = kFlagsOfData;
        }
        item->value.set(value);
    }
};

struct OdDbField::Evaluation {
    int context;
    OdDbDatabase* database;
    UnitSettings units;
    std::unordered_set<const OdDbField*> met;
    std::vector<FieldPtr> held;  // so that no other field gets the address of one that was met
};

bool OdDbField::canBeHeld(const OdDbDatabase& database) {
    const Core& core = database.core();
    return core.section(Section::objects) && core.format.version >= allKinds()[rtField].since;
}

OdDbField::OdDbField() : stored_(std::make_unique<Stored>()) {}
OdDbField::~OdDbField() = default;

// ---------------------------------------------------------------------------------------------------------------------
// Reading and writing

void OdDbField::describe(Describer& d) {
    describeHead(d);
    d.zone("AcDbField");
    d.run();
}

const ClassDescription* OdDbField::description() const {
    static const ClassDescription description = drawingdb::describe<OdDbField>("FIELD", &OdDbField::describe);
    return &description;
}

void OdDbField::clearRuns() {
    stored_ = std::make_unique<Stored>();
    evaluator_.clear();
    code_.clear();
    shown_.clear();
    childRefs_.clear();
    newChildren_.clear();
    objectRefs_.clear();
    value_ = {};
    evaluationOption_ = kAutomatic;
    state_ = 0;
    evaluationStatus_ = notEvaluated;
}

void OdDbField::readRunGroup(const Group& group, int) { stored_->groups.push_back(group); }

void OdDbField::afterDecode() {
    const std::vector<Group> groups = std::move(stored_->groups);
    stored_->groups.clear();
    if (!database_) return;
    const FileFormat& format = database_->core().format;
    const auto whole = [&](const Group& group) {
        return static_cast<std::int32_t>(groupInteger(group, format.binary).value_or(0));
    };
    const auto objectOf = [this](std::uint64_t handle) { return resolve({handle}); };
    std::string code, shown;
    Stored::Section section = Stored::head;
    for (std::size_t at = 0; at < groups.size();) {
        const Group& group = groups[at++];
        switch (group.code) {
            case 1:
                evaluator_ = decodeText(group.value, format);
                break;
            case 2:
            case 3:
                code.append(group.value);
                section = Stored::code;
                break;
            case 90:
                section = Stored::children;
                break;
            case 360:
                childRefs_.push_back({parseHandle(group.value)});
                break;
            case 97:
                section = Stored::objects;
                break;
            case 331:
                objectRefs_.push_back({parseHandle(group.value)});
                break;
            case 91:
                evaluationOption_ = whole(group);
                section = Stored::options;
                break;
            case 92:
                stored_->filingOption = whole(group);
                break;
            case 94:
                state_ = whole(group);
                section = Stored::evaluationState;
                break;
            case 95:
                evaluationStatus_ = whole(group);
                break;
            case 96:
                stored_->errorCode = whole(group);
                break;
            case 300:
                stored_->errorText = decodeText(group.value, format);
                break;
            case 93:
                section = Stored::items;
                break;
            case 6: {
                Stored::Item& item = stored_->data.emplace_back();
                item.key = decodeText(group.value, format);
                item.value = readValue(groups, at, format, objectOf);
                section = Stored::items;
                break;
            }
            case 7:
                stored_->result = readValue(groups, at, format, objectOf);
                section = Stored::cache;
                break;
            case 301:
            case 9:
                shown.append(group.value);
                section = Stored::shown;
                break;
            case 98:
                break;  // the length, which follows from the text
            default:
                stored_->unknown[section].append(group.bytes());
        }
    }
    code_ = decodeText(code, format);
    shown_ = decodeText(shown, format);
    value_ = stored_->result.value;
}

void OdDbField::writeRun(GroupWriter& writer, int) const {
    const auto endSection = [&](Stored::Section section) { writer.raw(stored_->unknown[section]); };
    const auto count = [](const auto& list) { return static_cast<std::int64_t>(list.size()); };
    writer.wide(1, evaluator_);
    endSection(Stored::head);
    writePieces(writer, 3, 2, code_);
    endSection(Stored::code);
    writer.integer(90, count(childRefs_));
    for (const HandleRef& child : childRefs_) writer.handle(360, child.handle);
    endSection(Stored::children);
    writer.integer(97, count(objectRefs_));
    for (const HandleRef& object : objectRefs_) writer.handle(331, object.handle);
    endSection(Stored::objects);
    writer.integer(91, evaluationOption_);
    writer.integer(92, stored_->filingOption);
    endSection(Stored::options);
    writer.integer(94, state_);
    writer.integer(95, evaluationStatus_);
    writer.integer(96, stored_->errorCode);
    writer.wide(300, stored_->errorText);
    endSection(Stored::evaluationState);
    writer.integer(93, count(stored_->data));
    for (const Stored::Item& item : stored_->data) {
        writer.wide(6, item.key);
        item.value.write(writer);
    }
    endSection(Stored::items);
    writer.text(7, "ACFD_FIELD_VALUE");
    stored_->result.write(writer);
    endSection(Stored::cache);
    writer.wide(301, shown_);
    writer.integer(98, static_cast<std::int64_t>(utf16Length(shown_)));
    endSection(Stored::shown);
}

// ---------------------------------------------------------------------------------------------------------------------
// Code and children

OdString OdDbField::evaluatorId() const { return evaluator_; }

void OdDbField::setEvaluationOption(int option) {
    assertWriteEnabled();
    if (evaluationOption_ == option) return;
    evaluationOption_ = option;
    runsChanged();
}

OdString OdDbField::getFieldCode(int flags) const {
    if (flags & kEvaluatedText) return shown_;
    if (!(flags & kRawCode)) return code_;
    std::size_t budget = kMostText;
    return rawCode(budget, 0);
}

// Markers that are not followed any more, since the nesting is too deep or the text too long, stay as they are.
OdString OdDbField::rawCode(std::size_t& budget, int depth) const {
    budget -= std::min(budget, code_.size() + 1);
    const bool textField = evaluator_ == kTextEvaluator;
    OdString result;
    std::size_t copied = 0;
    for (const FieldSpan& span : findFields(code_)) {
        OdString replacement;
        if (span.kind == FieldSpan::childIndex && budget > 0 && depth < kMaxFieldDepth) {
            const FieldPtr child = getChild(static_cast<std::size_t>(span.number));
            if (child) replacement = child->rawCode(budget, depth + 1);
        } else if (span.kind == FieldSpan::objectIndex && !textField && span.number < objectRefs_.size()) {
            replacement = fieldMarker(FieldSpan::objectId, objectRefs_[static_cast<std::size_t>(span.number)].handle);
        }
        if (replacement.empty()) continue;
        result.append(code_, copied, span.begin - copied).append(replacement);
        copied = span.end;
    }
    result.append(code_, copied);
    return textField ? result : bracketed(result);
}

std::size_t OdDbField::childCount() const { return childRefs_.size() + newChildren_.size(); }

OdSmartPtr<OdDbField> OdDbField::getChild(std::size_t index, OdDb::OpenMode mode) const {
    if (index < childRefs_.size()) return resolve(childRefs_[index]).openIf<OdDbField>(mode);
    index -= childRefs_.size();
    return index < newChildren_.size() ? newChildren_[index] : FieldPtr();
}

void OdDbField::setFieldCode(const OdString& code, int flags, const std::vector<FieldPtr>& children) {
    assertWriteEnabled();
    const bool textField = (flags & kTextField) != 0;
    const FieldPtr parsed = createObject();
    if (code.find(L"\\_ObjIdx") != OdString::npos) parsed->objectRefs_ = objectRefs_;
    parsed->takeText(code, textField, children.empty() ? 0 : kMaxFieldDepth);
    replaceChildren(children.empty() ? parsed->newChildren_ : children);

    evaluator_ = std::move(parsed->evaluator_);
    code_ = std::move(parsed->code_);
    objectRefs_ = std::move(parsed->objectRefs_);
    state_ = parsed->state_;
    stored_->remove(kVariableKey);
    if (const Stored::Item* variable = parsed->stored_->find(kVariableKey))
        stored_->set(kVariableKey, variable->value.value);
    stored_->result = {};
    value_ = {};
    shown_.clear();
    evaluationStatus_ = notEvaluated;
    runsChanged();
}

void OdDbField::takeText(std::wstring_view text, bool textField, int depth) {
    if (!textField) {
        const std::vector<FieldSpan> spans = findFields(text);
        if (spans.size() == 1 && spans[0].kind == FieldSpan::field && spans[0].begin == 0 &&
            spans[0].end == text.size())
            return takeCode(spans[0].code(text), depth);
        if (findFieldEvaluator(parseFieldCode(text).evaluator)) return takeCode(text, depth);
    }
    evaluator_ = kTextEvaluator;
    code_ = takeNested(text, false, depth);
    state_ = kInitialized;
}

void OdDbField::takeCode(std::wstring_view code, int depth) {
    code_ = takeNested(base::trimmed(code), true, depth);
    const FieldCode parts = parseFieldCode(code_);
    evaluator_ = parts.evaluator;
    state_ = kInitialized;
    if (withoutVersion(evaluator_) != L"AcVar") return;
    OdDbFieldValue variable;
    variable.type = OdDbFieldValue::kString;
    variable.text = unquoted(parts.body);
    stored_->set(kVariableKey, variable);
    state_ |= kCompiled;
}

// The code with markers in place of the fields in it, which become children, and of the objects that it names, if
// wanted.
OdString OdDbField::takeNested(std::wstring_view code, bool objects, int depth) {
    OdString result;
    std::size_t copied = 0;
    for (const FieldSpan& span : findFields(code)) {
        OdString marker;
        if (span.kind == FieldSpan::field && depth < kMaxFieldDepth) {
            const FieldPtr child = createObject();
            child->takeCode(span.code(code), depth + 1);
            marker = fieldMarker(FieldSpan::childIndex, newChildren_.size());
            newChildren_.push_back(child);
        } else if (span.kind == FieldSpan::objectId && objects) {
            marker = fieldMarker(FieldSpan::objectIndex, objectRefs_.size());
            objectRefs_.push_back({span.number});
        } else {
            continue;
        }
        result.append(code, copied, span.begin - copied).append(marker);
        copied = span.end;
    }
    return result.append(code, copied, code.size() - copied);
}

void OdDbField::replaceChildren(const std::vector<FieldPtr>& children) {
    std::vector<FieldPtr> before;
    for (std::size_t i = 0; i < childRefs_.size(); ++i) {
        // A damaged file may name fields of others, or this one.
        const FieldPtr child = getChild(i);
        if (child && child.get() != this && child->owner_.handle == handle().value()) before.push_back(child);
    }
    childRefs_.clear();
    newChildren_.clear();
    for (FieldPtr child : children) {
        if (!child) throw OdError(OdResult::invalidInput, "a field was given a child that is none");
        if (child.get() == this) throw OdError(OdResult::invalidInput, "a field cannot be its own child");
        if (const auto kept = std::find(before.begin(), before.end(), child); kept != before.end()) {
            before.erase(kept);
            childRefs_.push_back({child->handle().value()});
            continue;
        }
        if (child->isDatabaseResident() ||
            std::find(newChildren_.begin(), newChildren_.end(), child) != newChildren_.end())
            child = child->copy();
        if (isDatabaseResident())
            childRefs_.push_back({database_->addObject(child, objectId()).handle().value()});
        else
            newChildren_.push_back(child);
    }
    for (const FieldPtr& child : before) {
        child->upgradeOpen();
        child->erase();
    }
}

OdSmartPtr<OdDbField> OdDbField::copy() const {
    std::size_t budget = kMostCopies;
    return copyWithin(budget, 0);
}

OdSmartPtr<OdDbField> OdDbField::copyWithin(std::size_t& budget, int depth) const {
    FieldPtr result = createObject();
    --budget;
    result->evaluator_ = evaluator_;
    result->code_ = code_;
    result->shown_ = shown_;
    result->objectRefs_ = objectRefs_;
    result->value_ = value_;
    result->evaluationOption_ = evaluationOption_;
    result->state_ = state_;
    result->evaluationStatus_ = evaluationStatus_;
    result->stored_->result = stored_->result.respelled();
    for (const Stored::Item& item : stored_->data) result->stored_->data.push_back({item.key, item.value.respelled()});
    for (std::size_t i = 0; i < childCount() && budget > 0 && depth < kMaxFieldDepth; ++i) {
        const FieldPtr child = getChild(i);
        // A child that is missing leaves its number to nobody.
        result->newChildren_.push_back(child ? child->copyWithin(budget, depth + 1) : createObject());
    }
    return result;
}

void OdDbField::enterDatabase() {
    const std::vector<FieldPtr> children = std::exchange(newChildren_, {});
    for (const FieldPtr& child : children)
        childRefs_.push_back({database_->addObject(child, objectId()).handle().value()});
    if (!children.empty()) runsChanged();
}

// ---------------------------------------------------------------------------------------------------------------------
// Data items

void OdDbField::setData(const OdString& key, std::int64_t value) {
    OdDbFieldValue whole;
    whole.type = OdDbFieldValue::kLong;
    whole.integer = value;
    setData(key, whole);
}

void OdDbField::setData(const OdString& key, const OdDbFieldValue& value) {
    assertWriteEnabled();
    const Stored::Item* item = stored_->find(key);
    if (item && sameValue(item->value.value, value)) return;
    stored_->set(key, value);
    runsChanged();
}

OdDbFieldValue OdDbField::getData(const OdString& key) const {
    const Stored::Item* item = stored_->find(key);
    return item ? item->value.value : OdDbFieldValue();
}

// ---------------------------------------------------------------------------------------------------------------------
// Evaluating

OdDbFieldValue OdDbField::value() const { return value_; }

OdString OdDbField::format() const {
    return evaluator_ == kTextEvaluator ? OdString() : OdString(parseFieldCode(code_).option(L"f"));
}

namespace {

// The object whose extension dictionary has the dictionary "ACAD_FIELD" with this field under "TEXT"; null when the
// field hangs elsewhere.
OdDbObjectId textOwner(const OdDbField& field) {
    const auto fields = field.ownerId().openIf<OdDbDictionary>();
    if (!fields || fields->getAt(L"TEXT") != field.objectId()) return {};
    const auto extension = fields->ownerId().openIf<OdDbDictionary>();
    if (!extension || extension->getAt(L"ACAD_FIELD") != fields->objectId()) return {};
    const OdDbObjectPtr owner = extension->ownerId().open();
    return owner && owner->extensionDictionary() == extension->objectId() ? owner->objectId() : OdDbObjectId();
}

}  // namespace

bool OdDbField::evaluate(int context, OdDbDatabase* database) {
    if (!(context & evaluationOption_)) return true;
    Evaluation run{context, database, unitSettings(database), {}, {}};
    const OdDbObjectPtr text = isDatabaseResident() && !isErased() ? textOwner(*this).open() : OdDbObjectPtr();
    // A field's value must not be taken for a formatting code.
    const bool escapes = text && drawingdb::isMultiLine(*text);
    const bool evaluated = evaluateIn(run, 0, escapes);
    if (text) passToText(*text, escapes);
    return evaluated;
}

bool OdDbField::evaluateIn(Evaluation& run, int depth, bool escapes) {
    if (!(run.context & evaluationOption_)) return true;
    if (depth > kMaxFieldDepth) return false;
    // A field that is met again has its value already, or is being evaluated, since it contains itself.
    if (!run.met.insert(this).second) return evaluationStatus_ == success;
    run.held.emplace_back(this);

    const bool wasWritable = isWriteEnabled();
    bool evaluated = true;
    escapes = escapes && evaluator_ == kTextEvaluator;
    std::vector<FieldPtr> children;
    for (std::size_t i = 0; i < childCount(); ++i) {
        children.push_back(getChild(i));
        evaluated = children.back() && children.back()->evaluateIn(run, depth + 1, escapes) && evaluated;
    }
    if (evaluator_ == kTextEvaluator)
        evaluateText(children, escapes);
    else
        evaluated = evaluateCode(run, children) && evaluated;
    if (!wasWritable && isWriteEnabled()) downgradeOpen();
    return evaluated;
}

void OdDbField::evaluateText(const std::vector<FieldPtr>& children, bool escapes) {
    OdDbFieldValue value;
    value.type = OdDbFieldValue::kString;
    std::size_t copied = 0;
    for (const FieldSpan& span : findFields(code_)) {
        if (span.kind != FieldSpan::childIndex) continue;
        const FieldPtr child =
            span.number < children.size() ? children[static_cast<std::size_t>(span.number)] : FieldPtr();
        value.text.append(code_, copied, span.begin - copied)
            .append(child ? child->shownIn(escapes) : OdString(kNoValue));
        copied = span.end;
        if (value.text.size() > kMostText) {
            fail(noValue);
            return;
        }
    }
    value.text.append(code_, copied);
    keep(value, value.text, 0);
}

// A child that is a text is contents itself, and its own children were escaped where they stand in it.
OdString OdDbField::shownIn(bool escapes) const {
    return escapes && evaluator_ != kTextEvaluator ? drawingdb::mtextEscaped(shown_) : shown_;
}

bool OdDbField::evaluateCode(Evaluation& run, const std::vector<FieldPtr>& children) {
    const FieldCode code = parseFieldCode(code_);
    const FieldEvaluator evaluator = findFieldEvaluator(evaluator_);
    if (!evaluator) return hasCache() || fail(noEvaluator);

    std::vector<OdDbFieldValue> values;
    values.reserve(children.size());
    for (const FieldPtr& child : children) values.push_back(child ? child->value_ : OdDbFieldValue());
    std::vector<OdDbObjectId> objects;
    for (const HandleRef& object : objectRefs_)
        objects.push_back(run.database ? run.database->getObjectId(object.handle) : OdDbObjectId());
    const auto result = evaluator({code, run.database, values, objects});
    if (!result) return fail(noValue);

    OdString shown = formatFieldValue(result->value, code.option(L"f"), run.units, result->quantity);
    // Nobody could see or pick a field of no characters.
    if (shown.empty()) shown = kEmptyValue;
    if (shown.size() > kMostText) return fail(noValue);
    keep(result->value, shown, static_cast<int>(result->quantity));
    return true;
}

bool OdDbField::hasCache() const { return !shown_.empty() && shown_ != kNoValue; }

// Lets a cached value stand. Always false.
bool OdDbField::fail(int status) {
    const OdString shown = hasCache() ? shown_ : OdString(kNoValue);
    if (evaluationStatus_ == status && shown_ == shown) return false;
    upgradeOpen();
    assertWriteEnabled();
    evaluationStatus_ = status;
    shown_ = shown;
    runsChanged();
    return false;
}

void OdDbField::keep(const OdDbFieldValue& value, const OdString& shown, int quantity) {
    const bool textField = evaluator_ == kTextEvaluator;
    const int state =
        (state_ & ~kModified) | kInitialized | kEvaluated | kValueStored | (textField ? 0 : int{kHasCache});
    if (sameValue(value_, value) && shown_ == shown && state_ == state && evaluationStatus_ == success) return;
    upgradeOpen();
    assertWriteEnabled();
    if (shown_ != shown) stored_->remove(kChecksumKey);
    if (!sameValue(value_, value)) stored_->result.set(value);
    stored_->result.quantity = quantity;
    if (!textField) stored_->result.format = format();
    stored_->result.text = value.type == OdDbFieldValue::kString ? OdString() : shown;
    stored_->errorCode = 0;
    stored_->errorText.clear();
    value_ = value;
    shown_ = shown;
    state_ = state;
    evaluationStatus_ = success;
    runsChanged();
}

void OdDbField::passToText(OdDbObject& owner, bool escapes) {
    const OdString shown = shownIn(escapes);
    const auto pass = [&](auto& text, const OdString& current) {
        if (current == shown) return;
        const bool wasWritable = text.isWriteEnabled();
        text.upgradeOpen();
        text.setTextFromField(shown);
        if (!wasWritable) text.downgradeOpen();
    };
    if (auto* const text = drawingdb::as<OdDbText>(owner))
        pass(*text, text->textString());
    else if (auto* const paragraphs = drawingdb::as<OdDbMText>(owner))
        pass(*paragraphs, paragraphs->contents());
}
