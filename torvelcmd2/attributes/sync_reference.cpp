#include "torvelcmd2/attributes/sync_reference.h"

#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "torvelcmd2/attributes/values/text_transfer.h"
#include "torvelcmd2/frame/progress.h"

namespace torvel {

ReferenceSynchronizer::ReferenceSynchronizer(OdDbObjectId block) : block_(block) {
    const auto record = block.openAs<OdDbBlockTableRecord>();
    for (OdDbObjectId id : record->entities()) addDefinition(id);
}

ReferenceSynchronizer::ReferenceSynchronizer(OdDbObjectId block, const OdDbObjectIdArray& definitions) : block_(block) {
    for (OdDbObjectId id : definitions) addDefinition(id);
}

void ReferenceSynchronizer::addDefinition(OdDbObjectId id) {
    auto definition = id.openIf<OdDbAttributeDefinition>();
    if (!definition || definition->isConstant()) return;
    byTag_[base::toUpper(definition->tag())].positions.push_back(definitions_.size());
    definitions_.push_back(std::move(definition));
}

// Only what lies directly in the space counts. The database knows a block's references, so that the others need not be
// opened to see what they are; they come in the order of their records.
void ReferenceSynchronizer::synchronizeReferencesIn(OdDbObjectId space) {
    const auto record = space.openAs<OdDbBlockTableRecord>(OdDb::forWrite);
    const OdDbObjectIdArray references = block_.openAs<OdDbBlockTableRecord>()->blockReferenceIds(false);
    ProgressSteps progress(references.size());
    for (OdDbObjectId id : references) {
        if (id.containerId() == space) synchronize(*id.openAs<OdDbBlockReference>());
        progress.step();
    }
}

void ReferenceSynchronizer::synchronize(OdDbBlockReference& reference) {
    const OdGeMatrix3d blockTransform = reference.blockTransform();
    reference.upgradeOpen();
    matchOldAttributes(reference);
    for (std::size_t i = 0; i < definitions_.size(); ++i) appendNewAttribute(reference, i, blockTransform);
    eraseOldAttributes();
    reference.downgradeOpen();
}

// Pairs each definition with the old attribute whose value it takes over. Only attributes that stand on the reference
// before anything is appended count; the definition's tag is upper-cased, the stored one is compared as it is, so that
// an old attribute with a tag in lower case matches nothing.
void ReferenceSynchronizer::matchOldAttributes(const OdDbBlockReference& reference) {
    oldAttributes_.clear();
    matches_.assign(definitions_.size(), nullptr);
    for (auto& [tag, occurrences] : byTag_) occurrences.met = 0;
    for (OdDbObjectId id : reference.attributes()) {
        oldAttributes_.push_back(id.openAs<OdDbAttribute>());
        const auto found = byTag_.find(oldAttributes_.back()->tag());
        if (found == byTag_.end()) continue;
        Occurrences& occurrences = found->second;
        if (occurrences.met < occurrences.positions.size())
            matches_[occurrences.positions[occurrences.met++]] = oldAttributes_.back().get();
    }
}

void ReferenceSynchronizer::appendNewAttribute(OdDbBlockReference& reference, std::size_t position,
                                               const OdGeMatrix3d& blockTransform) {
    const OdSmartPtr<OdDbAttribute> attribute = OdDbAttribute::createObject();
    reference.appendAttribute(attribute.get());
    const OdDbAttribute* const old = matches_[position];
    const OdDbAttributeDefinition& definition = *definitions_[position];
    if (old) {
        const CapturedText value = captureText(*old);
        attribute->setAttributeFromBlock(definition, blockTransform);
        applyText(value, *attribute);
        return;
    }
    attribute->setAttributeFromBlock(definition, blockTransform);
    // A default that is a field goes on being one.
    if (definition.getField(kTextFieldKey)) applyText(captureText(definition), *attribute);
}

// All old attributes go: those whose value was taken over, those without a definition, those beyond the number of
// definitions with their tag.
void ReferenceSynchronizer::eraseOldAttributes() {
    for (const auto& attribute : oldAttributes_) {
        attribute->upgradeOpen();
        attribute->erase();
    }
    oldAttributes_.clear();
}

}  // namespace torvel
