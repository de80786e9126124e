// A value with fields as it is edited: loaded, typed into, saved.
//
//   visible  text in which each field is a run of characters, its evaluated value
//   code     the text that is saved, with "%<\_FldIdx 0>%" where its first field stands; characters that only look like
//            the beginning of a field go into a plain field of their own, so that nobody reads them as one
#include "torvelcmd2/attributes/values/field_edit.h"

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/mtext.h"
#include "torvelcmd2/attributes/values/text_escapes.h"
#include "torvelcmd2/attributes/values/text_transfer.h"
#include "torvelcmd2/frame/host_binding.h"

namespace torvel {
namespace {

// A field of no characters could be neither seen nor picked, and would be lost with the next edit.
OdString shownText(const OdDbField& field) {
    OdString text = field.getFieldCode(OdDbField::kEvaluatedText);
    return text.empty() ? OdString(L"----") : text;
}

// What begins a field or a marker in a code, down to the backslash of its name; empty, at the end, when nothing does.
FieldEdit::Range findOpening(const OdString& text, std::size_t from) {
    for (std::size_t at = text.find(L"%<", from); at != OdString::npos; at = text.find(L"%<", at + 1)) {
        const std::size_t name = text.find_first_not_of(L" \t\r\n", at + 2);
        if (name != OdString::npos && text[name] == L'\\') return {at, name + 1};
    }
    return {text.size(), text.size()};
}

OdString inOneLine(const OdString& text) {
    OdString line = base::replaceAll(text, L"\r\n", L" ");
    std::ranges::replace_if(
        line, [](wchar_t c) { return c == L'\r' || c == L'\n'; }, L' ');
    return line;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------------
// Entities

void FieldEdit::clear() {
    text_.clear();
    owners_.clear();
    entries_.clear();
    nextNumber_ = 0;
    anchor_ = caret_ = 0;
}

void FieldEdit::setText(const OdString& text) {
    clear();
    text_ = text;
    owners_.assign(text.size(), kNoField);
    anchor_ = caret_ = text.size();
}

void FieldEdit::loadForReading(const OdDbEntity& entity) {
    load(entity, false);
    // A value with fields has lost its escapes there, but not its lines.
    if (drawingdb::isMultiLine(entity))
        setText(inOneLine(entity.getField(kTextFieldKey) ? text_ : withoutEscapes(text_)));
}

void FieldEdit::load(const OdDbEntity& entity, bool enabled) {
    const OdDbFieldPtr field = entity.getField(kTextFieldKey);
    if (!field) {
        setText(captureText(entity).text);
    } else if (!enabled) {
        // Whatever the kind of text: in a single line, too, a backslash counts as the beginning of an escape here.
        setText(withoutEscapes(field->getFieldCode(OdDbField::kEvaluatedText)));
    } else {
        clear();
        loadFields(*field);
        anchor_ = caret_ = text_.size();
    }
}

void FieldEdit::loadFields(const OdDbField& parent) {
    // A text is nearly always a field of its own that holds the others; where it is one field alone, that is the run.
    if (parent.evaluatorId() != kTextEvaluator) {
        appendRun(parent.copy(), nextNumber_++);
        return;
    }
    const InlineCode code = inlineCode(parent);
    for (std::size_t at = 0; at < code.text.size();) {
        const std::int32_t owner = code.owners[at];
        const OdDbFieldPtr field =
            owner == InlineCode::kNobody ? OdDbFieldPtr() : code.fields[static_cast<std::size_t>(owner)];
        if (!field || isPlainPart(*field)) {
            text_ += code.text[at++];
            owners_.push_back(kNoField);
            continue;
        }
        appendRun(field->copy(), owner);
        while (at < code.text.size() && code.owners[at] == owner) ++at;
    }
    nextNumber_ = static_cast<std::int32_t>(parent.childCount());
}

void FieldEdit::appendRun(const OdDbFieldPtr& field, std::int32_t number) {
    const auto first = static_cast<std::int32_t>(text_.size());
    text_ += shownText(*field);
    owners_.resize(text_.size(), number);
    entries_.push_back({first, static_cast<std::int32_t>(text_.size()) - 1, number, field});
}

std::pair<OdString, std::vector<OdDbFieldPtr>> FieldEdit::code() const {
    OdString code, plain;
    std::vector<OdDbFieldPtr> children;
    const auto add = [&](const OdDbFieldPtr& child) {
        code += drawingdb::fieldIndexMarker(children.size());
        children.push_back(child);
    };
    const bool hasFields = !std::ranges::all_of(entries_, &FieldEntry::takenOut);
    const auto addPlain = [&] {
        std::size_t at = 0;
        for (Range opening; hasFields && !(opening = findOpening(plain, at)).isEmpty(); at = opening.end) {
            code.append(plain, at, opening.begin - at);
            add(newPlainPart(plain.substr(opening.begin, opening.end - opening.begin), database_));
        }
        code.append(plain, at);
        plain.clear();
    };
    for (std::size_t at = 0; at < text_.size();) {
        if (owners_[at] == kNoField) {
            plain += text_[at++];
            continue;
        }
        const FieldEntry& entry = entryOf(owners_[at]);
        if (!entry.takenOut) {
            addPlain();
            add(newFieldLike(*entry.field, database_));
        }
        at = static_cast<std::size_t>(entry.last) + 1;
    }
    addPlain();
    return {code, children};
}

void FieldEdit::save(OdDbEntity& entity, OdString& shown) const {
    entity.upgradeOpen();
    const auto [code, children] = this->code();
    if (children.empty()) {
        applyText({false, code, {}}, entity);
        shown = code;
        return;
    }
    OdDbFieldPtr field = entity.getField(kTextFieldKey, OdDb::forWrite);
    if (!field) {
        field = OdDbField::createObject();
        entity.setField(kTextFieldKey, field);
    }
    field->setEvaluationOption(OdDbField::kAutomatic);
    // First without children, so that those which the field had go, and then with the new ones.
    field->setFieldCode(code);
    field->setFieldCode(code, OdDbField::kTextField | OdDbField::kPreserveChildren, children);
    field->setData(L"ACFD_FIELDTEXT_ATTDEF", 1);
    field->evaluate(OdDbField::kAutomatic, database_);
    shown = field->getFieldCode(OdDbField::kEvaluatedText);
}

const FieldEdit::FieldEntry& FieldEdit::entryOf(std::int32_t number) const {
    return *std::ranges::find(entries_, number, &FieldEntry::number);
}

void FieldEdit::takeOut(std::int32_t number, bool out) {
    if (const auto entry = std::ranges::find(entries_, number, &FieldEntry::number); entry != entries_.end())
        entry->takenOut = out;
}

// ---------------------------------------------------------------------------------------------------------------------
// Caret and selection

// The run that holds the characters on both sides of a position; empty, at the position, when there is none.
FieldEdit::Range FieldEdit::runAt(std::size_t position) const {
    if (position == 0 || position >= text_.size() || owners_[position] == kNoField ||
        owners_[position] != owners_[position - 1])
        return {position, position};
    const FieldEntry& entry = entryOf(owners_[position]);
    return {static_cast<std::size_t>(entry.first), static_cast<std::size_t>(entry.last) + 1};
}

void FieldEdit::select(std::size_t anchor, std::size_t caret) {
    const auto onCharacter = [this](std::size_t position) {
        position = std::min(position, text_.size());
        const bool splits = position > 0 && base::positionAfter(text_, position - 1) > position;
        return splits ? position - 1 : position;
    };
    anchor_ = onCharacter(anchor);
    caret_ = onCharacter(caret);
    const Range atAnchor = runAt(anchor_), atCaret = runAt(caret_);
    if (anchor_ == caret_) {
        anchor_ = caret_ = caret_ - atCaret.begin <= atCaret.end - caret_ ? atCaret.begin : atCaret.end;
        return;
    }
    const bool forward = anchor_ < caret_;
    anchor_ = forward ? atAnchor.begin : atAnchor.end;
    caret_ = forward ? atCaret.end : atCaret.begin;
}

std::size_t FieldEdit::stepFrom(std::size_t position, bool forward) const {
    if (forward ? position == text_.size() : position == 0) return position;
    const std::int32_t owner = owners_[forward ? position : position - 1];
    if (owner != kNoField) {
        const FieldEntry& entry = entryOf(owner);
        return static_cast<std::size_t>(forward ? entry.last + 1 : entry.first);
    }
    const std::size_t next = forward ? base::positionAfter(text_, position) : base::positionBefore(text_, position);
    // Half a character beside a run is a character of its own.
    const bool plain = owners_[forward ? next - 1 : next] == kNoField;
    return plain ? next : forward ? position + 1 : position - 1;
}

void FieldEdit::moveCaret(bool forward, bool selecting) {
    const Range selected = selection();
    if (selecting) {
        caret_ = stepFrom(caret_, forward);
    } else {
        // A selection is left at its end on that side.
        anchor_ = caret_ = selected.isEmpty() ? stepFrom(caret_, forward) : forward ? selected.end : selected.begin;
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Editing

// The range must not end inside a run.
void FieldEdit::replace(Range range, const Fragment& with) {
    const auto at = [&](std::size_t position) { return owners_.begin() + static_cast<std::ptrdiff_t>(position); };
    std::vector<std::int32_t> owners = with.owners;
    const std::int32_t firstNumber = nextNumber_;
    for (std::int32_t& owner : owners) owner = owner == kNoField ? kNoField : firstNumber + owner;
    for (const OdDbFieldPtr& field : with.fields) entries_.push_back({0, 0, nextNumber_++, field});
    text_.replace(range.begin, range.end - range.begin, with.text);
    owners_.insert(owners_.erase(at(range.begin), at(range.end)), owners.begin(), owners.end());
    anchor_ = caret_ = range.begin + with.text.size();
    findRuns();
}

// Brings the entries in line with the owners; those without a character go.
void FieldEdit::findRuns() {
    for (FieldEntry& entry : entries_) entry.first = entry.last = kNoField;
    for (std::size_t at = 0; at < owners_.size(); ++at) {
        if (owners_[at] == kNoField) continue;
        FieldEntry& entry = *std::ranges::find(entries_, owners_[at], &FieldEntry::number);
        const auto begin = owners_.begin() + static_cast<std::ptrdiff_t>(at);
        entry.first = static_cast<std::int32_t>(at);
        at = static_cast<std::size_t>(
                 std::find_if(begin, owners_.end(), [&](std::int32_t owner) { return owner != entry.number; }) -
                 owners_.begin()) -
             1;
        entry.last = static_cast<std::int32_t>(at);
    }
    std::erase_if(entries_, [](const FieldEntry& entry) { return entry.first == kNoField; });
}

FieldEdit::Fragment FieldEdit::fragmentAt(Range range) const {
    Fragment fragment;
    fragment.text = text_.substr(range.begin, range.end - range.begin);
    for (std::size_t at = range.begin; at < range.end; ++at) {
        if (owners_[at] == kNoField) {
            fragment.owners.push_back(kNoField);
            continue;
        }
        const FieldEntry& entry = entryOf(owners_[at]);
        if (at == static_cast<std::size_t>(entry.first)) fragment.fields.push_back(entry.field);
        fragment.owners.push_back(static_cast<std::int32_t>(fragment.fields.size()) - 1);
    }
    return fragment;
}

void FieldEdit::type(const OdString& text) {
    const OdString line = inOneLine(text);
    replace(selection(), {line, std::vector<std::int32_t>(line.size(), kNoField), {}});
}

void FieldEdit::deleteBack() {
    const Range selected = selection();
    replace(selected.isEmpty() ? Range{stepFrom(caret_, false), caret_} : selected, {});
}

void FieldEdit::deleteForward() {
    const Range selected = selection();
    replace(selected.isEmpty() ? Range{caret_, stepFrom(caret_, true)} : selected, {});
}

FieldEdit::Fragment& FieldEdit::copied() {
    static Fragment fragment;
    return fragment;
}

OdString FieldEdit::copy() {
    copied() = fragmentAt(selection());
    return copied().text;
}

// In an old drawing a field could not be saved.
bool FieldEdit::holdsFields() const { return !database_ || OdDbField::canBeHeld(*database_); }

// What another program has copied since has another text, most likely.
void FieldEdit::paste(const OdString& text) {
    if (text.empty()) return;
    if (text == copied().text && holdsFields())
        replace(selection(), copied());
    else
        type(text);
}

void FieldEdit::insertField(const OdDbFieldPtr& field) {
    const OdString shown = shownText(*field);
    replace(selection(), {shown, std::vector<std::int32_t>(shown.size(), 0), {field}});
}

// ---------------------------------------------------------------------------------------------------------------------
// The context menu

const wchar_t* FieldEdit::commandText(Command command) {
    static constexpr const wchar_t* kTexts[] = {L"Copy",
                                                L"Paste",
                                                L"Clear",
                                                L"Edit field...",
                                                L"Update field",
                                                L"Convert Field To Text",
                                                L"Insert field...",
                                                L"Select All"};
    static_assert(std::size(kTexts) == kCommands);
    return kTexts[command];
}

// The numbers of the fields in the selection, or of the one beside the caret.
std::vector<std::int32_t> FieldEdit::fieldsToWorkOn() const {
    Range range = selection();
    if (range.isEmpty()) {
        const bool behind = caret_ < text_.size() && owners_[caret_] != kNoField;
        range = behind || caret_ == 0 ? Range{caret_, std::min(caret_ + 1, text_.size())} : Range{caret_ - 1, caret_};
    }
    std::vector<std::int32_t> numbers;
    for (std::size_t at = range.begin; at < range.end; ++at)
        if (owners_[at] != kNoField && (numbers.empty() || numbers.back() != owners_[at]))
            numbers.push_back(owners_[at]);
    return numbers;
}

bool FieldEdit::isAvailable(Command command) const {
    switch (command) {
        case kCopy:
        case kClear:
            return !selection().isEmpty();
        case kEditField:
            return fieldsToWorkOn().size() == 1;
        case kUpdateField:
        case kConvertFieldToText:
            return !fieldsToWorkOn().empty();
        case kInsertField:
            return holdsFields();
        case kSelectAll:
            return !text_.empty();
        default:
            return true;
    }
}

void FieldEdit::run(Command command, OdString& clipboard) {
    if (!isAvailable(command)) return;
    switch (command) {
        case kCopy:
            clipboard = copy();
            break;
        case kPaste:
            paste(clipboard);
            break;
        case kClear:
            replace(selection(), {});
            break;
        case kEditField:
            editField();
            break;
        case kUpdateField:
            updateFields();
            break;
        case kConvertFieldToText:
            convertFieldsToText();
            break;
        case kInsertField:
            insertNewField();
            break;
        case kSelectAll:
            selectAll();
            break;
        case kCommands:
            break;
    }
}

// Gives a run another field and the text that it shows. Caret and selection stay where they are in the text.
void FieldEdit::showAgain(std::int32_t number, const OdDbFieldPtr& field) {
    FieldEntry& entry = *std::ranges::find(entries_, number, &FieldEntry::number);
    entry.field = field;
    const OdString shown = shownText(*field);
    const auto first = static_cast<std::size_t>(entry.first), end = static_cast<std::size_t>(entry.last) + 1;
    text_.replace(first, end - first, shown);
    const auto owner = owners_.begin() + static_cast<std::ptrdiff_t>(first);
    owners_.insert(owners_.erase(owner, owner + static_cast<std::ptrdiff_t>(end - first)), shown.size(), number);
    for (std::size_t* position : {&anchor_, &caret_})
        if (*position >= end) *position = *position - (end - first) + shown.size();
    findRuns();
}

void FieldEdit::editField() {
    const ModuleFunction change(hostapi::changeField);
    const std::int32_t number = fieldsToWorkOn().front();
    OdDbFieldPtr field = entryOf(number).field;
    if (change && change(field) && field) showAgain(number, field);
}

void FieldEdit::updateFields() {
    for (std::int32_t number : fieldsToWorkOn()) showAgain(number, newFieldLike(*entryOf(number).field, database_));
}

void FieldEdit::convertFieldsToText() {
    for (std::int32_t number : fieldsToWorkOn()) std::ranges::replace(owners_, number, kNoField);
    findRuns();
}

void FieldEdit::insertNewField() {
    const ModuleFunction insert(hostapi::insertField);
    OdDbFieldPtr field;
    if (insert && insert(field) && field) insertField(field);
}

}  // namespace torvel
