#include "torvelcmd2/attributes/multiline_editing.h"

#include "drawingdb/attribute.h"
#include "drawingdb/database.h"
#include "drawingdb/mtext.h"
#include "torvelcmd2/frame/ask.h"

namespace torvel {
namespace {

// The variable that says how the editor presents itself.
constexpr wchar_t kEditorContext[] = L"ATTIPE";

// A copy, in no drawing; null for what has no multi-line text.
OdSmartPtr<OdDbMText> multiLineTextOf(const OdDbEntity& source) {
    if (const auto* const attribute = drawingdb::as<OdDbAttributeText>(source)) return attribute->mtextCopy();
    const auto* const text = drawingdb::as<OdDbMText>(source);
    if (!text) return {};
    auto copy = OdDbMText::createObject();
    copy->setTextFrom(*text);
    return copy;
}

// How much longer a length along the text's lines is after the transform.
double scaleAlong(const OdDbMText& text, const OdGeMatrix3d& transform) {
    const double scale = (transform * text.direction()).length() / text.direction().length();
    return scale > 0 ? scale : 1;
}

// The temporary text in the space where the user draws.
OdSmartPtr<OdDbMText> appendTemporary(const OdDbEntity& source, const OdDbMText& form, OdDbDatabase& database,
                                      const OdGeMatrix3d& transform, const CapturedText& value) {
    auto text = OdDbMText::createObject();
    text->setDatabaseDefaults(&database);
    text->setPropertiesFrom(source);
    text->setVisibility(true);
    text->setTextFrom(form);
    appendToSpace(targetSpaceId(database), *text);
    // The value comes after the transform, which would scale heights in it.
    text->transformBy(transform);
    applyText(value, *text);
    return text;
}

bool setWidth(OdDbEntity& target, double width) {
    const OdSmartPtr<OdDbMText> text = multiLineTextOf(target);
    if (!text || text->width() == width) return false;
    target.upgradeOpen();
    text->setWidth(width);
    if (auto* const attribute = drawingdb::as<OdDbAttributeText>(target))
        attribute->setMText(*text);
    else
        static_cast<OdDbMText&>(target).setWidth(width);
    return true;
}

}  // namespace

ScratchEditing::Redraw::~Redraw() {
    try {
        if (object) redraw(object);
    } catch (...) {
        // What is not drawn anew loses nothing.
    }
}

ScratchEditing::ScratchEditing(const OdDbEntity& object, WhileEdited how) : group_(OdDbDatabasePtr(object.database())) {
    if (how == WhileEdited::kAsItIs || object.isInvisibleEntity() == (how == WhileEdited::kHidden)) return;
    redraw_.object = object.objectId();
    // Whoever called has it open, too: for him, and while the user edits, it is not open for write.
    const auto shown = object.objectId().openAs<OdDbEntity>(OdDb::forWrite);
    shown->setVisibility(how == WhileEdited::kShown);
    shown->downgradeOpen();
    redraw(redraw_.object);
}

MultiLineEdit editMultiLine(const OdDbEntity& source, WhileEdited how, const OdGeMatrix3d& transform,
                            std::optional<CapturedText> value) {
    const OdSmartPtr<OdDbMText> form = multiLineTextOf(source);
    const ModuleFunction edit(hostapi::editMText);
    MultiLineEdit result;
    result.hasEditor = static_cast<bool>(edit);
    HostDocument* const document = activeDocument();
    OdDbDatabase* const database = source.database() ? source.database() : document ? document->database() : nullptr;
    if (!form || !edit || !database) return result;
    if (!value) value = captureText(source);

    std::optional<ScratchEditing> editing;
    std::optional<ScratchGroup> group;
    if (source.isDatabaseResident())
        editing.emplace(source, how);
    else
        group.emplace(OdDbDatabasePtr(database));
    const auto text = appendTemporary(source, *form, *database, transform, *value);
    text->downgradeOpen();  // the editor opens it for write when there is something to write
    value.reset();          // its fields are the text's now, and would stay open for write
    if (edit(*text, kEditorContext))
        result.value =
            MultiLineValue{captureText(*text), text->width() / scaleAlong(*form, transform), text->location()};
    return result;
}

MultiLineEdit newMultiLine(OdDbObjectId style, const OdString& text, double width, bool onScreen) {
    const ModuleFunction make(hostapi::newMTextAtt);
    MultiLineEdit result;
    result.hasEditor = static_cast<bool>(make);
    HostDocument* const document = activeDocument();
    if (!make || !document) return result;
    const ScratchGroup group(OdDbDatabasePtr(document->database()));
    OdSmartPtr<OdDbMText> made;
    if (make(document, style, text.c_str(), width, onScreen, made) && made)
        result.value = MultiLineValue{captureText(*made), made->width(), made->location()};
    return result;
}

bool applyMultiLine(const MultiLineValue& value, OdDbEntity& target) {
    const bool hasNewWidth = setWidth(target, value.width);
    if (sameText(value.text, captureText(target))) return hasNewWidth;
    applyText(value.text, target);
    return true;
}

}  // namespace torvel
