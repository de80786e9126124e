// The input is a damaged drawing. Either nothing of it can be recovered, and it is refused with an error, or what comes
// out of the recovery
//   - can be changed and saved, also when everything was marked as changed;
//   - opens again without a recovery, and nobody complains of it;
//   - is what a second recovery leaves alone. So is a drawing that the first one found nothing in.
#include <string>

#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "drawingdb/symbol_table.h"
#include "fuzz/fuzz.h"

namespace {

using fuzz::require;

// Faults of values are found when an object is opened.
void openAll(const OdDbDatabasePtr& database) {
    const auto blocks = database->blockTableId().openIf<OdDbSymbolTable>();
    if (!blocks) return;
    for (OdDbObjectId record : blocks->records()) {
        const auto block = record.openIf<OdDbBlockTableRecord>();
        if (!block) continue;
        for (OdDbObjectId entity : block->entities()) (void)entity.open();
    }
}

void requireSound(const OdDbDatabasePtr& database) {
    openAll(database);
    for (const OdDbWarning& warning : database->warnings()) std::fprintf(stderr, "%s\n", warning.text.c_str());
    require(database->warnings().empty(), "nobody complains of what was recovered");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(fuzz::bytesOf(data, size));
    OdDbDatabasePtr database;
    try {
        database = OdDbDatabase::recoverBytes(input, L"input.dxf");
    } catch (const OdError& error) {
        require(error.code() == OdResult::badFile, "a drawing that cannot be recovered is refused as a bad file");
        return 0;
    }
    require(!database->isReadOnly(), "what was recovered can be changed");
    const std::string saved = database->writeBytes();
    require(database->isRecovered() || saved == input, "a sound drawing is left alone");
    database->touchEverything();
    require(database->writeBytes() == saved, "what was recovered and not changed is saved as it was");
    if (database->isRecovered()) requireSound(OdDbDatabase::readBytes(saved, L"again.dxf"));
    const OdDbDatabasePtr again = OdDbDatabase::recoverBytes(saved, L"again.dxf");
    require(!again->isRecovered(), "a second recovery finds nothing");
    return 0;
}
