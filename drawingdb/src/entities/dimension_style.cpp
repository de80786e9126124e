#include "drawingdb/src/entities/dimension_style.h"

#include <algorithm>

#include "drawingdb/database.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/symbol_table.h"

namespace drawingdb {

void readDimensionStyle(const OdDbEntity& entity, const std::function<void(int, const Group&)>& take) {
    Core& core = entity.database()->core();
    const FileFormat& format = core.format;
    GroupCursor cursor(core.bytesOf(*entity.objectId().stub()), format);
    Group group;
    OdString name;
    bool more = cursor.next(group);
    for (; more && group.code < 1000; more = cursor.next(group))
        if (group.code == 3) name = decodeText(group.value, format);

    const auto table = entity.database()->tableId("DIMSTYLE").openIf<OdDbSymbolTable>();
    if (const OdDbObjectId style = table ? table->getAt(name) : OdDbObjectId(); !style.isNull()) {
        GroupCursor ofStyle(core.bytesOf(*style.stub()), format);
        for (Group value; ofStyle.next(value) && value.code < 1000;) take(value.code, value);
    }

    bool overrides = false;
    for (int code = 0; more; more = cursor.next(group)) {
        if (group.code == 1001) overrides = false;
        if (group.code == 1000) overrides = group.value == "DSTYLE";
        if (!overrides || group.code == 1000 || group.code == 1002) continue;
        if (code == 0) {
            code = static_cast<int>(groupInteger(group, format.binary).value_or(0));
        } else {
            take(code, group);
            code = 0;
        }
    }
}

void overrideDimensionStyle(OdDbEntity& entity, int code, double value) {
    constexpr wchar_t kApplication[] = L"ACAD", kList[] = L"DSTYLE";
    const auto group = [](int of, const wchar_t* text) { return OdDbGroup{of, text}; };
    std::vector<OdDbGroup> data = entity.xData(kApplication);
    if (data.empty()) data.push_back(group(1001, kApplication));
    auto at = std::ranges::find_if(data, [&](const OdDbGroup& g) { return g.code == 1000 && g.text == kList; });
    if (at == data.end()) at = data.insert(data.end(), {group(1000, kList), group(1002, L"{"), group(1002, L"}")});
    if (++at != data.end() && at->code == 1002) ++at;
    while (at != data.end() && at->code == 1070 && at->integer != code && at + 1 != data.end()) at += 2;
    if (at == data.end() || at->code != 1070) at = data.insert(at, {OdDbGroup{1070, {}, 0, code}, OdDbGroup{1040, {}}});
    if (++at == data.end()) return;
    at->code = 1040;
    at->real = value;
    entity.setXData(data);
}

}  // namespace drawingdb
