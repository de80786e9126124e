#include "torvelcmd2/attributes/tag_rules.h"

namespace torvel {

unsigned tagRefusal(const TagRule& rule, const OdString& tag) {
    if (tag.empty()) return rule.emptyText;
    const bool blank = tag.find_first_of(rule.refusesTabs ? L" \t" : L" ") != OdString::npos;
    return blank ? rule.blankText : 0;
}

}  // namespace torvel
