#include "torvelcmd2/extract/burst/burst_reference.h"

#include <algorithm>

#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/database.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/mtext.h"
#include "drawingdb/reference_cells.h"
#include "drawingdb/text.h"
#include "hostapi/module_functions.h"
#include "torvelcmd2/attributes/values/text_transfer.h"
#include "torvelcmd2/extract/burst/exact_transform.h"

namespace torvel {
namespace {

// More than anybody wants to have in a drawing; blocks that hold each other many times over could come to any number.
constexpr std::size_t kMostPieces = 1'000'000;
constexpr wchar_t kTooMany[] = L"contents are more than a million pieces";

// An attribute may be invisible by its mode, or hidden as any entity may be.
bool isShown(const OdDbAttributeText& attribute) { return !attribute.isInvisible() && !attribute.isInvisibleEntity(); }

// Everything that makes the text look as it does comes from the attribute; layer, colour and the like do not: they are
// the drawing's current ones.
OdSmartPtr<OdDbText> newText(const OdDbAttributeText& source, OdDbDatabase* database) {
    OdSmartPtr<OdDbText> text = OdDbText::createObject();
    // What the current text style would give besides is taken over anyway.
    text->OdDbEntity::setDatabaseDefaults(database);
    text->setTextFrom(source);
    return text;
}

// Unlike a single-line text, one of several lines keeps layer, colour and the like.
OdSmartPtr<OdDbMText> newMText(const OdDbMText& source, OdDbDatabase* database) {
    OdSmartPtr<OdDbMText> text = OdDbMText::createObject();
    text->setDatabaseDefaults(database);
    text->setPropertiesFrom(source);
    text->setTextFrom(source);
    return text;
}

}  // namespace

bool ReferenceBurster::burst(const OdDbBlockReference& reference, OdDbBlockTableRecord& owner) {
    owner_ = &owner;
    pieces_ = 0;
    within_.clear();
    obstacle_.clear();
    const std::size_t before = owner.database()->undoPosition();
    if (burstContents(reference, OdGeMatrix3d::kIdentity)) {
        // The owner may be a block that has references of its own, still to be burst.
        definitions_.erase(owner.objectId());
        return true;
    }
    owner.database()->undoTo(before);
    return false;
}

// `outer` places what the reference shows: nested references that are burst because they could not be placed whole have
// one that is not the identity.
bool ReferenceBurster::burstContents(const OdDbBlockReference& reference, const OdGeMatrix3d& outer) {
    const OdDbObjectId block = reference.blockTableRecord();
    const Definition& definition = definitionOf(block);
    // A block that holds itself, which damaged files have, could be burst without end.
    if (!definition.explodable || layers_.isFrozen(reference.layerId()) || std::ranges::count(within_, block) != 0)
        return false;
    if (reference.isClipped()) {
        obstacle_ = within_.empty() ? OdString(L"clip would be lost")
                                    : inBlock(L"clipped reference of " + reference.blockName());
        return false;
    }
    const auto cells = static_cast<std::size_t>(reference.rows()) * static_cast<std::size_t>(reference.columns());
    if (cells * std::max<std::size_t>(definition.entities.size(), 1) > kMostPieces) {
        obstacle_ = kTooMany;
        return false;
    }
    within_.push_back(block);
    const drawingdb::ReferenceCells places(reference);
    for (int row = 0; row < places.rows(); ++row) {
        for (int column = 0; column < places.columns(); ++column) {
            if (pieces_ + definition.entities.size() > kMostPieces) {
                obstacle_ = kTooMany;
                return false;
            }
            const OdGeMatrix3d contents = outer * places.transform(row, column);
            if (!copyEntities(definition, contents)) return false;
            addConstants(definition, contents);
            addAttributes(reference, outer * OdGeMatrix3d::translation(places.offset(row, column)));
        }
    }
    within_.pop_back();
    return true;
}

const ReferenceBurster::Definition& ReferenceBurster::definitionOf(OdDbObjectId block) {
    const auto [found, fresh] = definitions_.try_emplace(block);
    Definition& definition = found->second;
    const auto record = fresh ? block.openIf<OdDbBlockTableRecord>() : OdSmartPtr<OdDbBlockTableRecord>();
    if (!record) return definition;
    // What an external drawing shows is not in this one.
    definition.explodable = record->explodable() && !record->isFromExternalReference();
    // The copies cover each other as the originals do.
    for (OdDbObjectId id : record->entitiesInDrawOrder()) {
        if (auto attribute = id.openIf<OdDbAttributeDefinition>()) {
            if (attribute->isConstant()) definition.constants.push_back(std::move(attribute));
        } else {
            definition.entities.push_back(id);
        }
    }
    return definition;
}

bool ReferenceBurster::copyEntities(const Definition& definition, const OdGeMatrix3d& transform) {
    OdDbIdMapping mapping;
    owner_->database()->deepCloneObjects(definition.entities, owner_->objectId(), mapping);
    pieces_ += definition.entities.size();
    for (const OdDbIdMapping::Pair& pair : mapping.pairs()) {
        if (!pair.primary) continue;
        const auto copy = pair.copy.openAs<OdDbEntity>(OdDb::forWrite);
        if (!place(*copy, transform)) {
            noteObstacle(*copy);
            return false;
        }
    }
    return true;
}

OdString ReferenceBurster::inBlock(const OdString& what) const {
    return L"block " + within_.back().openAs<OdDbBlockTableRecord>()->name() + L" has a " + what;
}

// The innermost one has been noted first, and stays.
void ReferenceBurster::noteObstacle(const OdDbEntity& entity) {
    if (!obstacle_.empty()) return;
    if (const auto* const reference = drawingdb::as<OdDbBlockReference>(entity))
        obstacle_ = inBlock(L"reference of " + reference->blockName() + L", which cannot be exploded");
    else
        obstacle_ = inBlock(base::widen(entity.dxfName()));
}

// The attributes of a nested reference go along with it: its transformBy has moved them already, so the matrix that is
// left for them is the identity.
bool ReferenceBurster::place(OdDbEntity& entity, const OdGeMatrix3d& transform) {
    if (transformExactly(entity, transform) != OdResult::transformRefused) return true;
    if (!explodeAndPlace(entity, transform)) return false;
    entity.erase();
    return true;
}

bool ReferenceBurster::explodeAndPlace(OdDbEntity& entity, const OdGeMatrix3d& transform) {
    // A reference that would be sheared. Its pieces are made from its block as its own burst would make them.
    if (const auto* const nested = drawingdb::as<OdDbBlockReference>(entity)) {
        // What shows nothing needs no pieces, and must not keep the rest from being burst.
        const bool showsNothing = layers_.isFrozen(nested->layerId()) || nested->blockTableRecord().isNull();
        return showsNothing || burstContents(*nested, transform);
    }
    std::vector<OdDbEntityPtr> pieces;
    if (entity.explode(pieces) != OdResult::ok) return false;
    return std::ranges::all_of(pieces, [&](const OdDbEntityPtr& piece) {
        append(*piece);
        return place(*piece, transform);
    });
}

// A reference draws the constant attributes of its block; they must not vanish with it.
void ReferenceBurster::addConstants(const Definition& definition, const OdGeMatrix3d& transform) {
    for (const auto& constant : definition.constants)
        if (isShown(*constant)) addText(*constant, constant->getMTextAttributeDefinition(), transform);
}

// Attributes have their places in the world, not in the block.
void ReferenceBurster::addAttributes(const OdDbBlockReference& reference, const OdGeMatrix3d& transform) {
    for (OdDbObjectId id : reference.attributes()) {
        const auto attribute = id.openAs<OdDbAttribute>();
        if (isShown(*attribute)) addText(*attribute, attribute->getMTextAttribute(), transform);
    }
}

// `lines` is the multi-line text of the source, null for a single line.
void ReferenceBurster::addText(const OdDbAttributeText& source, const OdSmartPtr<OdDbMText>& lines,
                               const OdGeMatrix3d& transform) {
    OdDbDatabase* const database = owner_->database();
    const OdDbEntityPtr text =
        lines ? OdDbEntityPtr(newMText(*lines, database).get()) : OdDbEntityPtr(newText(source, database).get());
    append(*text);
    // The code goes along with the value that it shows now.
    if (const OdDbFieldPtr field = source.getField(kTextFieldKey)) text->setField(kTextFieldKey, field->copy());
    if (transform != OdGeMatrix3d::kIdentity && !place(*text, transform)) text->transformBy(transform);
}

void ReferenceBurster::append(OdDbEntity& entity) {
    owner_->appendOdDbEntity(&entity);
    ++pieces_;
}

}  // namespace torvel

bool burstBlockReference(OdDbBlockReference& reference, OdDbBlockTableRecord& owner) {
    return torvel::ReferenceBurster().burst(reference, owner);
}
static_assert(hostapi::fits(hostapi::burstBlockReference, &burstBlockReference));
