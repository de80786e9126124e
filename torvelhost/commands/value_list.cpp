#include "torvelhost/commands/value_list.h"

#include <algorithm>
#include <initializer_list>
#include <stdexcept>

#include "base/number.h"
#include "drawingdb/block.h"
#include "drawingdb/mtext_parser.h"
#include "torvelhost/lines/progress.h"

namespace host::commands {
namespace {

bool isFixedHead(std::string_view head) {
    return std::ranges::any_of(
        std::initializer_list<std::string_view>{kHandleHead, kBlockHead, kDrawingHead},
        [head](std::string_view fixed) { return base::equalsNoCase(head, fixed); });
}

}  // namespace

void Steps::stepTo(std::uint64_t done) {
    constexpr unsigned kCallsPerWord = 256;
    if (++calls_ % kCallsPerWord == 0 && !Progress::tell(done, total_)) throw std::runtime_error("stopped");
}

std::wstring counted(std::size_t count, const wchar_t* what) {
    return std::to_wstring(count) + L" " + what + (count == 1 ? L"" : L"s");
}

// ---------------------------------------------------------------------------------------------------------------------
// Columns

TagColumns::Head TagColumns::read(std::string_view head) {
    constexpr std::size_t kMostDigits = 9;
    const std::size_t open = head.rfind('(');
    if (!head.ends_with(')') || open == head.npos) return {std::string(head), 1};
    const std::string_view digits = head.substr(open + 1, head.size() - open - 2);
    if (digits.empty() || digits.size() > kMostDigits || digits.front() == '0' ||
        !std::ranges::all_of(digits, base::isDigit<char>))
        return {std::string(head), 1};
    return {std::string(head.substr(0, open)), static_cast<std::size_t>(*base::parseInteger(digits))};
}

std::string TagColumns::write(const Head& head) {
    const auto& [tag, occurrence] = head;
    const bool isPlain = occurrence == 1 && !tag.empty() && !isFixedHead(tag) && read(tag).tag == tag;
    return isPlain ? tag : tag + "(" + std::to_string(occurrence) + ")";
}

TagColumns::Entry& TagColumns::entryOf(std::string_view tag) {
    const auto known = bySpelling_.find(tag);
    if (known != bySpelling_.end()) return *known->second;
    const auto [place, isNew] = entries_.try_emplace(base::fromUtf8(tag));
    Entry& entry = place->second;
    if (isNew) entry.tag = tag;
    bySpelling_.emplace(tag, &entry);
    return entry;
}

TagColumns::Place TagColumns::next(std::string_view tag) {
    Entry& entry = entryOf(tag);
    if (entry.reference != reference_) entry.met = 0;
    entry.reference = reference_;
    const std::size_t occurrence = ++entry.met;
    return {entry.tag, occurrence, entry.columns.try_emplace(occurrence, kNone).first->second};
}

// ---------------------------------------------------------------------------------------------------------------------
// References

ListedReference::ListedReference() {
    reference_.setUtf8(true);
    attribute_.setUtf8(true);
}

void ListedReference::read(OdDbObjectId reference) { reference_.read(reference); }

const std::string& ListedReference::blockName() {
    const OdDbObjectId block = reference_.blockTableRecord();
    if (!block) return missingBlockName_ = reference_.narrowBlockName();
    const auto [entry, isNew] = blockNames_.try_emplace(block);
    if (isNew) entry->second = base::toUtf8(drawingdb::blockStoodFor(block).openAs<OdDbBlockTableRecord>()->name());
    return entry->second;
}

std::string_view ListedReference::value() {
    if (!attribute_.isMultiLine()) return attribute_.narrowTextString();
    return plain_ = base::toUtf8(drawingdb::mtextPlainText(attribute_.textString()));
}

}  // namespace host::commands
