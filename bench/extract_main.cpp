// extract_attributes cdf|sdf|dxx DRAWING TEMPLATE OUTPUT
//
// Writes the extract of all block references in model space, in the order in which AttExt hands them to the writers.
#include <algorithm>
#include <iostream>
#include <span>

#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "torvelcmd2/extract/extract.h"

namespace {

using namespace torvel;

OdDbObjectIdArray referencesByBlock(OdDbDatabase& database) {
    std::vector<std::pair<OdDbObjectId, OdDbObjectId>> pairs;
    for (const OdDbObjectId id : database.modelSpaceId().openAs<OdDbBlockTableRecord>()->entities()) {
        if (const auto reference = id.openIf<OdDbBlockReference>()) {
            pairs.emplace_back(reference->blockTableRecord(), id);
        }
    }
    std::ranges::sort(pairs);
    OdDbObjectIdArray references;
    for (const auto& pair : pairs) references.push_back(pair.second);
    return references;
}

int extract(const std::string& format, const OdString& drawing, const OdString& templatePath, const OdString& output) {
    const OdDbDatabasePtr database = OdDbDatabase::readFile(drawing);
    const OdDbObjectIdArray references = referencesByBlock(*database);
    if (format == "dxx") return writeDxfExtract(references, output, templatePath.c_str());
    const bool isSpaceDelimited = format == "sdf";
    extractSettings().format = isSpaceDelimited ? ExtractFormat::spaceDelimited : ExtractFormat::commaDelimited;
    extractSettings().delimiter.assign(1, isSpaceDelimited ? ' ' : ',');
    return writeDelimitedExtract(templatePath, output, references);
}

}  // namespace

int main(int count, char** arguments) try {
    if (count != 5) {
        std::cerr << "usage: extract_attributes cdf|sdf|dxx DRAWING TEMPLATE OUTPUT\n";
        return 2;
    }
    const std::span<char*> given(arguments, static_cast<std::size_t>(count));
    const int written = extract(given[1], base::fromUtf8(given[2]), base::fromUtf8(given[3]), base::fromUtf8(given[4]));
    std::cout << written << " objects in extract file.\n";
    return written > 0 ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 3;
}
