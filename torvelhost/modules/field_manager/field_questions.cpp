#include "torvelhost/modules/field_manager/field_questions.h"

#include <algorithm>

#include "base/text.h"
#include "torvelhost/modules/field_manager/field_code.h"

namespace fieldmanager {
namespace {

using Answer = std::optional<OdString>;

// A text, or the keyword that was given by an abbreviation. Nothing for an empty answer and for a cancel, which
// `cancelled` tells apart.
Answer ask(const Desk& desk, const wchar_t* prompt, const wchar_t* keywords = L"", bool* cancelled = nullptr) {
    OdString text;
    const int result = desk.input.getKeyword(prompt, keywords, 0, reinterpret_cast<std::uintptr_t>(&text), 0);
    if (cancelled) *cancelled = result == hostapi::kCancel;
    if (result >= hostapi::kFirstKeyword)
        return base::split(keywords, L' ')[static_cast<std::size_t>(result - hostapi::kFirstKeyword)];
    return result == hostapi::kValue && !text.empty() ? Answer(text) : Answer();
}

constexpr const wchar_t* promptOf(Kind kind) {
    switch (kind) {
        case Kind::kProperty:
            return L"Enter property name [%s]";
        case Kind::kDate:
            return L"Enter which date [%s]";
        case Kind::kVariable:
            return L"Enter variable name";
        case Kind::kObject:
            return L"Enter property name";
        case Kind::kFormula:
            return L"Enter formula";
    }
    return L"";
}

// What a field of the kind shows, and how; nothing when the user gave up.
Answer askParts(const Desk& desk, const KindNames& kind) {
    FieldParts parts{kind.kind, {}};
    if (kind.kind == Kind::kObject) {
        const OdDbObjectId object = desk.selectObject(L"Select object");
        if (object.isNull()) return {};
        parts.object = object.handle().value();
    }
    const Answer name = ask(desk, promptOf(kind.kind), kind.names);
    if (!name) return {};
    parts.name = *name;
    bool cancelled = false;
    parts.format = ask(desk, L"Enter format <none>", L"", &cancelled).value_or(OdString());
    return cancelled ? Answer() : codeOf(parts);
}

OdString kindKeywords() {
    OdString keywords;
    for (const KindNames& kind : kKinds) keywords += (keywords.empty() ? L"" : L" ") + OdString(kind.keyword);
    return keywords;
}

// The whole code of a field, or a text with field codes in it.
Answer askCode(const Desk& desk) {
    const OdString keywords = kindKeywords();
    for (;;) {
        const Answer answer = ask(desk, L"Enter field code or kind of field [%s]", keywords.c_str());
        if (!answer) return {};
        if (auto code = codeMeant(*answer)) return code;
        const auto* const kind =
            std::ranges::find(kKinds, *answer, [](const KindNames& k) { return OdString(k.keyword); });
        if (kind != std::end(kKinds)) return askParts(desk, *kind);
        desk.notice(L"\"" + *answer + L"\"" + kNoCode);
    }
}

}  // namespace

OdDbFieldPtr askField(const Desk& desk) {
    const Answer code = askCode(desk);
    if (!code) return {};
    OdDbFieldPtr field = makeField(*code, desk.database);
    desk.notice(L"The field shows: " + field->getFieldCode(OdDbField::kEvaluatedText));
    return field;
}

}  // namespace fieldmanager
