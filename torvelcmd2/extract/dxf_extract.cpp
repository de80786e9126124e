// The DXF extract (DXX): the groups of block references as TVDxfFiler tells them.
#include "base/text.h"
#include "drawingdb/block_reference.h"
#include "torvelcmd2/extract/extract.h"
#include "torvelcmd2/extract/extract_output.h"
#include "torvelcmd2/extract/tv_dxf_filer.h"
#include "torvelcmd2/frame/progress.h"

namespace torvel {
namespace {

// Returns the number of lines that the filer kept.
std::size_t writeRecord(const OdDbBlockReference& reference, base::AtomicFile& output) {
    const auto filer = TVDxfFiler::create(reference.objectId(), reference.database());
    reference.dxfOutFields(*filer);
    std::string narrow;
    std::string bytes;
    for (const OdString& line : filer->lines()) {
        narrow.clear();
        if (extractSettings().isUtf8)
            narrow = base::toUtf8(line);
        else
            reference.database()->appendNarrow(narrow, line);
        appendLines(bytes, narrow + '\n');
    }
    // Behind every reference, not only the last.
    appendLines(bytes, "EOF\n");
    output.write(bytes);
    OdDbFilerController::clearOwnershipCheckFlags(*reference.database());
    return filer->lines().size();
}

}  // namespace

int writeDxfExtract(const OdDbObjectIdArray& selection, const OdString& outputPath, const wchar_t* templatePath) {
    if (selection.empty() || !templatePath) return 0;
    const auto output = openExtractOutput(outputPath, selection.front().database());
    if (!output) return 0;
    int count = 0;
    try {
        ProgressSteps progress(selection.size());
        for (const OdDbObjectId id : selection) {
            progress.step();
            const auto reference = id.openIf<OdDbBlockReference>();
            if (!reference) continue;
            writeRecord(*reference, *output);
            ++count;
        }
        output->commit();
    } catch (const base::FileError&) {
        return 0;
    }
    return count;
}

}  // namespace torvel
