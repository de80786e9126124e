#include "torvelhost/modules/field_manager/field_code.h"

#include <algorithm>

#include "base/number.h"
#include "base/text.h"

namespace fieldmanager {
namespace {

constexpr std::wstring_view kVariablePart = L"\\AcVar ", kCustomPart = L"CustomDP.", kFormulaPart = L"\\AcExpr (",
                            kObjectPart = L"\\AcObjProp Object(%<\\_ObjId ", kBehindObject = L">%).",
                            kFormatPart = L" \\f \"", kOpen = L"%<", kClose = L">%";

bool isUsual(Kind kind, const OdString& name) {
    const auto names = base::split(kKinds[static_cast<std::size_t>(kind)].names, L' ');
    return std::ranges::find(names, name) != names.end();
}

OdString quoted(const OdString& text) {
    return base::replaceAll(base::replaceAll(text, L"\\", L"\\\\"), L"\"", L"\\\"");
}

OdString unquoted(std::wstring_view text) {
    OdString plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'\\' && i + 1 < text.size()) ++i;
        plain += text[i];
    }
    return plain;
}

bool take(std::wstring_view& text, std::wstring_view part) {
    const bool there = text.starts_with(part);
    if (there) text.remove_prefix(part.size());
    return there;
}

// Without brackets and format.
OdString bareCode(const FieldParts& parts) {
    switch (parts.kind) {
        case Kind::kProperty:
            return OdString(kVariablePart) + (isUsual(parts.kind, parts.name) ? L"" : OdString(kCustomPart)) +
                   parts.name;
        case Kind::kDate:
        case Kind::kVariable:
            return OdString(kVariablePart) + parts.name;
        case Kind::kObject:
            return OdString(kObjectPart) + std::to_wstring(parts.object) + OdString(kBehindObject) + parts.name;
        case Kind::kFormula:
            return OdString(kFormulaPart) + parts.name + L")";
    }
    return {};
}

FieldParts bareParts(std::wstring_view code) {
    FieldParts parts;
    if (take(code, kObjectPart)) {
        parts.kind = Kind::kObject;
        const std::size_t end = std::min(code.find(kBehindObject), code.size());
        parts.object = static_cast<std::uint64_t>(base::parseInteger(code.substr(0, end)).value_or(0));
        code.remove_prefix(std::min(end + kBehindObject.size(), code.size()));
    } else if (take(code, kFormulaPart)) {
        parts.kind = Kind::kFormula;
        if (code.ends_with(L')')) code.remove_suffix(1);
    } else if (take(code, kVariablePart)) {
        const OdString name(code);
        parts.kind = take(code, kCustomPart) || isUsual(Kind::kProperty, name) ? Kind::kProperty
                     : isUsual(Kind::kDate, name)                              ? Kind::kDate
                                                                               : Kind::kVariable;
    }
    parts.name = code;
    return parts;
}

}  // namespace

OdString codeOf(const FieldParts& parts) {
    if (parts.name.empty() || (parts.kind == Kind::kObject && parts.object == 0)) return {};
    const OdString format = parts.format.empty() ? OdString() : OdString(kFormatPart) + quoted(parts.format) + L"\"";
    return OdString(kOpen) + bareCode(parts) + format + OdString(kClose);
}

std::optional<FieldParts> partsOf(const OdString& code) {
    std::wstring_view bare = code;
    if (!take(bare, kOpen) || !bare.ends_with(kClose)) return std::nullopt;
    bare.remove_suffix(kClose.size());
    OdString format;
    if (const std::size_t place = bare.rfind(kFormatPart); place != bare.npos && bare.ends_with(L'"')) {
        const std::size_t begin = place + kFormatPart.size();
        format = unquoted(bare.substr(begin, bare.size() - 1 - begin));
        bare = bare.substr(0, place);
    }
    FieldParts parts = bareParts(bare);
    parts.format = format;
    return codeOf(parts) == code ? std::optional(parts) : std::nullopt;
}

std::optional<OdString> codeMeant(const OdString& text) {
    // Bracketed codes may also lie within a code that has no brackets itself.
    if (text.find(kOpen) != OdString::npos) return text;
    // Without brackets it is a code all the same, also one whose evaluator is not there.
    if (text.starts_with(L'\\')) return OdString(kOpen) + text + OdString(kClose);
    return std::nullopt;
}

OdDbFieldPtr makeField(const OdString& code, OdDbDatabase& database) {
    OdDbFieldPtr field = OdDbField::createObject();
    field->setFieldCode(code);
    field->evaluate(OdDbField::kAutomatic, &database);
    return field;
}

}  // namespace fieldmanager
