#include "torvelhost/modules/text_editor/field_text.h"

#include <algorithm>
#include <string_view>

#include "drawingdb/database.h"
#include "drawingdb/mtext.h"
#include "drawingdb/text.h"

namespace texteditor {
namespace {

const OdString kTextKey = L"TEXT";
constexpr wchar_t kTextEvaluator[] = L"_text";

OdString plainContents(const OdDbEntity& text) {
    const auto* const paragraphs = drawingdb::as<OdDbMText>(text);
    return paragraphs ? paragraphs->contents() : static_cast<const OdDbText&>(text).textString();
}

void setPlainContents(OdDbEntity& text, const OdString& contents) {
    if (auto* const paragraphs = drawingdb::as<OdDbMText>(text))
        paragraphs->setContents(contents);
    else
        static_cast<OdDbText&>(text).setTextString(contents);
}

// What a text is made of.
struct Piece {
    enum Kind {
        kPlain,
        kOpening,  // plain text that reads like the beginning of a code
        kField,    // the marker of a field that is there
    } kind;
    std::size_t begin, end;
    std::size_t field;
};

// The marker of one of so many fields that begins there; an empty piece when none does.
Piece markerAt(std::wstring_view text, std::size_t begin, std::size_t fields) {
    const auto marker = drawingdb::fieldIndexMarkerAt(text, begin);
    if (!marker || marker->child >= fields) return {Piece::kField, begin, begin, 0};
    return {Piece::kField, begin, marker->end, marker->child};
}

// "%<" and the backslash of an evaluator's name.
Piece openingAt(std::wstring_view text, std::size_t begin) {
    const std::size_t name =
        text.substr(begin).starts_with(L"%<") ? text.find_first_not_of(L" \t\r\n", begin + 2) : text.npos;
    const bool opens = name != text.npos && text[name] == L'\\';
    return {Piece::kOpening, begin, opens ? name + 1 : begin, 0};
}

std::vector<Piece> piecesOf(const FieldText& contents) {
    std::vector<Piece> pieces;
    const std::wstring_view text = contents.text;
    for (std::size_t at = 0; at < text.size(); at = pieces.back().end) {
        Piece piece = markerAt(text, at, contents.fields.size());
        if (piece.end == at) piece = openingAt(text, at);
        if (piece.end == at) piece = {Piece::kPlain, at, std::min(text.find(L'%', at + 1), text.size()), 0};
        pieces.push_back(piece);
    }
    return pieces;
}

}  // namespace

FieldText contentsOf(const OdDbEntity& text) {
    const OdDbFieldPtr field = text.getField(kTextKey);
    if (!field) return {plainContents(text), {}};
    // Where a text is one field alone, that is all there is.
    if (field->evaluatorId() != kTextEvaluator) return {drawingdb::fieldIndexMarker(0), {field->copy()}};
    FieldText contents{field->getFieldCode(OdDbField::kFieldCode), {}};
    for (std::size_t i = 0; i < field->childCount(); ++i) {
        const OdDbFieldPtr child = field->getChild(i);
        contents.fields.push_back(child ? child->copy() : OdDbField::createObject());
    }
    return contents;
}

void setContents(OdDbEntity& text, const FieldText& contents) {
    const std::vector<Piece> pieces = piecesOf(contents);
    if (std::ranges::find(pieces, Piece::kField, &Piece::kind) == pieces.end())
        return setPlainContents(text, contents.text);
    OdString code;
    std::vector<OdDbFieldPtr> children;
    const auto add = [&](const OdDbFieldPtr& child) {
        code += drawingdb::fieldIndexMarker(children.size());
        child->evaluate(OdDbField::kAutomatic, text.database());
        children.push_back(child);
    };
    for (const Piece& piece : pieces) {
        const OdString plain = contents.text.substr(piece.begin, piece.end - piece.begin);
        if (piece.kind == Piece::kField) {
            add(contents.fields[piece.field]->copy());
        } else if (piece.kind == Piece::kOpening) {
            // A field of plain text keeps it from being a code.
            const OdDbFieldPtr part = OdDbField::createObject();
            part->setFieldCode(plain, OdDbField::kTextField);
            add(part);
        } else {
            code += plain;
        }
    }
    const OdDbFieldPtr field = OdDbField::createObject();
    text.setField(kTextKey, field);
    field->setEvaluationOption(OdDbField::kAutomatic);
    field->setFieldCode(code, OdDbField::kTextField | OdDbField::kPreserveChildren, children);
    field->evaluate(OdDbField::kAutomatic, text.database());
}

}  // namespace texteditor
