#include "torvelcmd2/attributes/prompts.h"

#include <utility>

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"

namespace torvel {

Prompts::Prompts(OdDbObjectId blockId) {
    const auto block = blockId.openIf<OdDbBlockTableRecord>();
    if (!block) return;
    for (OdDbObjectId id : block->entities())
        if (const auto definition = id.openIf<OdDbAttributeDefinition>(); definition && !definition->isConstant())
            ofTag_[base::toUpper(definition->tag())].push_back(definition->prompt());
}

OdString Prompts::take(const OdString& tag) {
    const auto found = ofTag_.find(base::toUpper(tag));
    if (found == ofTag_.end() || found->second.empty()) return {};
    OdString prompt = std::move(found->second.front());
    found->second.pop_front();
    return prompt;
}

}  // namespace torvel
