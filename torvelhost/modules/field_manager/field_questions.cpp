#include "torvelhost/modules/field_manager/field_questions.h"

#include <optional>

#include "base/format.h"
#include "base/text.h"

namespace fieldmanager {
namespace {

using Answer = std::optional<OdString>;

constexpr const wchar_t* kProperties =
    L"Title Subject Author Comments Keywords LastSavedBy RevisionNumber HyperlinkBase Filename Filesize Login";
constexpr const wchar_t* kDates = L"Date CreateDate SaveDate PlotDate";

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

// Bracketed codes may also lie within a code that has no brackets itself.
bool holdsField(const OdString& text) { return text.find(L"%<") != OdString::npos; }

// The code of a variable field; a name that is none of the keywords stands for a property that the user has named.
OdString variableCode(const OdString& name) { return L"\\AcVar " + name; }

Answer propertyCode(const Desk& desk) {
    const Answer name = ask(desk, L"Enter property name [%s]", kProperties);
    if (!name) return {};
    const auto known = base::split(kProperties, L' ');
    const bool custom = std::ranges::find(known, *name) == known.end();
    return variableCode(custom ? L"CustomDP." + *name : *name);
}

Answer dateCode(const Desk& desk) {
    const Answer name = ask(desk, L"Enter which date [%s]", kDates);
    return name ? variableCode(*name) : Answer();
}

Answer systemVariableCode(const Desk& desk) {
    const Answer name = ask(desk, L"Enter variable name");
    return name ? variableCode(*name) : Answer();
}

Answer objectCode(const Desk& desk) {
    const OdDbObjectId object = desk.selectObject(L"Select object");
    const Answer property = object.isNull() ? Answer() : ask(desk, L"Enter property name");
    if (!property) return {};
    return L"\\AcObjProp Object(%<\\_ObjId " + std::to_wstring(object.handle().value()) + L">%)." + *property;
}

Answer formulaCode(const Desk& desk) {
    const Answer formula = ask(desk, L"Enter formula");
    return formula ? L"\\AcExpr (" + *formula + L")" : Answer();
}

struct Kind {
    const wchar_t* keyword;
    Answer (*code)(const Desk& desk);
};
constexpr Kind kKinds[] = {
    {L"Property", propertyCode}, {L"Date", dateCode},       {L"Variable", systemVariableCode},
    {L"Object", objectCode},     {L"Formula", formulaCode},
};
constexpr const wchar_t* kKindKeywords = L"Property Date Variable Object Formula";

OdString quoted(const OdString& text) {
    return L'"' + base::replaceAll(base::replaceAll(text, L"\\", L"\\\\"), L"\"", L"\\\"") + L'"';
}

// The whole code of a field, or a text with field codes in it.
Answer askCode(const Desk& desk) {
    for (;;) {
        Answer answer = ask(desk, L"Enter field code or kind of field [%s]", kKindKeywords);
        if (!answer || holdsField(*answer)) return answer;
        // Without brackets it is a code all the same, also one whose evaluator is not there.
        if (answer->starts_with(L'\\')) return L"%<" + *answer + L">%";
        const auto kind = std::ranges::find(kKinds, *answer, [](const Kind& k) { return OdString(k.keyword); });
        if (kind == std::end(kKinds)) {
            desk.notice(L"\"" + *answer +
                        L"\" is no field code and no kind of field; a code is written %<\\AcVar Title>%");
            continue;
        }
        const Answer code = kind->code(desk);
        if (!code) return {};
        bool cancelled = false;
        const Answer format = ask(desk, L"Enter format <none>", L"", &cancelled);
        if (cancelled) return {};
        return L"%<" + *code + (format ? L" \\f " + quoted(*format) : OdString()) + L">%";
    }
}

}  // namespace

OdDbFieldPtr askField(const Desk& desk) {
    const Answer code = askCode(desk);
    if (!code) return {};
    OdDbFieldPtr field = OdDbField::createObject();
    field->setFieldCode(*code);
    field->evaluate(OdDbField::kAutomatic, &desk.database);
    desk.notice(L"The field shows: " + field->getFieldCode(OdDbField::kEvaluatedText));
    return field;
}

}  // namespace fieldmanager
