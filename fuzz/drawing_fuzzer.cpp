// The input is a drawing. Whatever it is, it is refused with an error or opens; then
//   - saved unchanged it is the same bytes, also after everything was marked as changed;
//   - edited (by a row of random steps that follows from the input) it saves to a drawing that can be read, and that
//     saved again is the same bytes;
//   - when all edits are undone it is the old bytes.
// With TORVEL_FUZZ_TRACE set in the environment it prints each edit; TORVEL_FUZZ_EDITS stops after so many, which finds
// the one that does the harm.
#include <random>
#include <vector>

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/database.h"
#include "drawingdb/field.h"
#include "drawingdb/mtext.h"
#include "drawingdb/symbol_table.h"
#include "drawingdb/text.h"
#include "drawingdb/wipeout.h"
#include "fuzz/fuzz.h"
#include "torvelcmd2/attributes/sync_reference.h"
#include "torvelcmd2/extract/burst/burst_reference.h"

namespace {

using fuzz::require;

constexpr int kEdits = 40;
constexpr std::size_t kMostObjects = 2000;  // that the edits choose from

// All that can be met on a walk through blocks and by small handles.
std::vector<OdDbObjectId> objectsOf(const OdDbDatabasePtr& database) {
    std::vector<OdDbObjectId> objects;
    const auto add = [&objects](OdDbObjectId id) {
        if (id.isValid() && objects.size() < kMostObjects) objects.push_back(id);
    };
    for (std::uint64_t handle = 1; handle < 0x200; ++handle) add(database->getObjectId(handle));
    if (const auto blocks = database->blockTableId().openIf<OdDbSymbolTable>()) {
        for (OdDbObjectId record : blocks->records()) {
            const auto block = record.openIf<OdDbBlockTableRecord>();
            if (!block) continue;
            for (OdDbObjectId entity : block->entities()) {
                add(entity);
                if (const auto reference = entity.openIf<OdDbBlockReference>())
                    for (OdDbObjectId attribute : reference->attributes()) add(attribute);
            }
        }
    }
    return objects;
}

// Asks for what every object can be asked for.
void look(OdDbObjectId id) {
    const auto object = id.open();
    if (!object) return;
    (void)object->ownerId();
    (void)object->xData();
    (void)object->persistentReactors();
    if (const auto entity = OdDbEntityPtr::cast(object)) {
        OdGeExtents3d extents;
        (void)entity->geomExtents(extents);
        (void)entity->layerId();
        (void)entity->color();
        std::vector<OdDbEntityPtr> pieces;
        (void)entity->explode(pieces);
    }
    if (const auto curve = OdDbCurvePtr::cast(object)) {
        const double length = curve->distAtParam(curve->endParam());
        (void)curve->pointAtDist(length / 3);
        (void)curve->firstDerivAtParam(curve->paramAtDist(length / 2));
        (void)curve->breakParams();
        std::vector<OdDbCurvePtr> offsets;
        (void)curve->getOffsetCurves(1, OdGeVector3d::kZAxis, offsets);
    }
    if (const auto wipeout = OdSmartPtr<OdDbWipeout>::cast(object)) (void)wipeout->boundary();
    if (const auto text = OdSmartPtr<OdDbMText>::cast(object)) (void)text->layout();
    if (const auto block = OdSmartPtr<OdDbBlockTableRecord>::cast(object)) (void)block->blockReferenceIds(false);
}

class Editor {
  public:
    Editor(OdDbDatabasePtr database, std::string_view input)
        : database_(std::move(database)),
          input_(input),
          random_(static_cast<std::uint32_t>(std::hash<std::string_view>()(input))),
          objects_(objectsOf(database_)) {}

    const std::vector<OdDbObjectId>& objects() const { return objects_; }
    void run() {
        const char* const most = std::getenv("TORVEL_FUZZ_EDITS");
        const int edits = most == nullptr ? kEdits : std::atoi(most);
        for (int i = 0; i < edits; ++i) {
            try {
                step();
            } catch (const OdError& error) {
                // Refusing an edit is fine, as long as what comes after finds the drawing sound.
                if (trace_) std::fprintf(stderr, "  refused: %s\n", error.what());
            }
        }
    }

  private:
    std::size_t any(std::size_t count) { return random_() % count; }
    OdDbObjectId anyObject() {
        const OdDbObjectId id = objects_.empty() ? OdDbObjectId() : objects_[any(objects_.size())];
        if (trace_ && id) std::fprintf(stderr, "  %s #%s\n", id.objectClass()->name(), id.handle().ascii().c_str());
        return id;
    }
    template <class T>
    OdSmartPtr<T> opened() {
        return anyObject().openIf<T>(OdDb::forWrite);
    }
    OdString anyText() {
        static const std::vector<OdString> kTexts = {L"",
                                                     L"value",
                                                     L"  blanks ",
                                                     L"a\nb\r\tc\x01",
                                                     L"^J \\U+00E9 \\M+18140 %%d",
                                                     L"\u00fc\u65e5\U0001F600",
                                                     L"{\\H2x;high}\\Pnext",
                                                     L"%<\\AcExpr (1+2)>%",
                                                     OdString(3000, L'x')};
        if (const std::size_t choice = any(kTexts.size() + 1); choice < kTexts.size()) return kTexts[choice];
        if (input_.empty()) return L"";
        return base::fromUtf8(input_.substr(any(input_.size()), any(60)));
    }
    double anyReal() {
        static constexpr double kReals[] = {0, 1, -1, 0.1, 1e300, -1e-300, 12345.678};
        return kReals[any(std::size(kReals))];
    }
    OdGePoint3d anyPoint() { return OdGePoint3d(anyReal(), anyReal(), any(4) == 0 ? anyReal() : 0); }
    OdGeMatrix3d anyMatrix() {
        const OdGeVector3d move(anyReal(), anyReal(), 0);
        return any(2) == 0 ? OdGeMatrix3d::translation(move)
                           : OdGeMatrix3d::translation(move) * OdGeMatrix3d::rotation(anyReal(), OdGeVector3d(0, 0, 1));
    }
    OdDbObjectId anySpace() { return any(3) == 0 ? database_->paperSpaceId() : database_->modelSpaceId(); }

    void step() {
        const std::size_t kind = any(16);
        if (trace_) std::fprintf(stderr, "edit of kind %zu\n", kind);
        switch (kind) {
            case 0:
                if (const auto entity = opened<OdDbEntity>()) entity->setLayer(anyText());
                break;
            case 1:
                if (const auto text = opened<OdDbText>()) text->setTextString(anyText());
                break;
            case 2:
                if (const auto text = opened<OdDbMText>()) text->setContents(anyText());
                break;
            case 3:
                if (const auto object = opened<OdDbObject>()) object->erase();
                break;
            case 4:
                if (const auto entity = opened<OdDbEntity>()) (void)entity->transformBy(anyMatrix());
                break;
            case 5: {
                const auto ray = OdDbRay::createObject();
                ray->setDatabaseDefaults(database_.get());
                ray->setBasePoint(anyPoint());
                anySpace().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(ray.get());
                break;
            }
            case 6:
                if (const auto reference = opened<OdDbBlockReference>()) {
                    const auto attribute = OdDbAttribute::createObject();
                    reference->appendAttribute(attribute.get());
                    attribute->setTag(anyText());
                    attribute->setTextString(anyText());
                }
                break;
            case 7:
                if (const auto text = opened<OdDbText>()) {
                    const auto field = OdDbField::createObject();
                    text->setField(L"TEXT", field);
                    field->setFieldCode(anyText(), OdDbField::kTextField);
                    field->evaluate(OdDbField::kAutomatic, database_.get());
                }
                break;
            case 8:
                if (const auto object = opened<OdDbObject>()) (void)object->removeField(L"TEXT");
                break;
            case 9: {
                OdDbIdMapping mapping;
                database_->deepCloneObjects({anyObject()}, anySpace(), mapping);
                break;
            }
            case 10:
                if (const auto object = opened<OdDbObject>()) object->swapIdWith(anyObject(), any(2) == 0, any(2) == 0);
                break;
            case 11:
                if (const auto object = opened<OdDbObject>()) {
                    std::vector<OdDbGroup> groups(1 + any(3));
                    groups.front().code = 1001;
                    for (OdDbGroup& group : groups) group.text = anyText();
                    for (std::size_t i = 1; i < groups.size(); ++i) groups[i].code = 1000;
                    object->setXData(groups);
                }
                break;
            case 12: {
                const OdDbObjectId block = anyObject();
                if (block.isKindOf(OdDbBlockTableRecord::desc()))
                    torvel::ReferenceSynchronizer(block).synchronizeReferencesIn(anySpace());
                break;
            }
            case 13:
                if (const auto attribute = opened<OdDbAttribute>()) attribute->convertIntoMTextAttribute(any(2) == 0);
                break;
            case 15:
                burst();
                break;
            case 14:
                switch (any(4)) {
                    case 0:
                        database_->setUndoMark();
                        break;
                    case 1:
                        database_->undoBack();
                        break;
                    case 2:
                        database_->startUndoRecord();
                        break;
                    default:
                        database_->undoLastRecord();
                        break;
                }
                break;
        }
    }

    void burst() {
        constexpr int kPlaces = 50;
        const auto reference = opened<OdDbBlockReference>();
        if (!reference || reference->rows() > kPlaces || reference->columns() > kPlaces) return;
        const auto owner = reference->blockId().openIf<OdDbBlockTableRecord>(OdDb::forWrite);
        if (owner && torvel::ReferenceBurster().burst(*reference, *owner)) reference->erase();
    }

    OdDbDatabasePtr database_;
    std::string_view input_;
    std::mt19937 random_;
    std::vector<OdDbObjectId> objects_;
    const bool trace_ = std::getenv("TORVEL_FUZZ_TRACE") != nullptr;
};

void check(const OdDbDatabasePtr& database, std::string_view input) {
    Editor editor(database, input);
    for (OdDbObjectId id : editor.objects()) look(id);
    require(database->writeBytes() == input, "a drawing that was only looked at is saved as it was");
    if (database->isReadOnly()) return;

    const std::size_t start = database->undoPosition();
    database->touchEverything();
    require(database->writeBytes() == input, "a drawing with nothing but equal changes is saved as it was");

    editor.run();
    const std::string edited = database->writeBytes();
    const OdDbDatabasePtr again = OdDbDatabase::readBytes(edited, L"again.dxf");
    require(!again->isReadOnly(), "an edited drawing can be read whole");
    again->touchEverything();
    require(again->writeBytes() == edited, "an edited drawing that is read again is saved as it was");

    database->undoTo(start);
    require(database->writeBytes() == input, "undoing everything gives the drawing back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::bytesOf(data, size);
    OdDbDatabasePtr database;
    try {
        database = OdDbDatabase::readBytes(std::string(input), L"input.dxf");
    } catch (const OdError& error) {
        require(error.code() == OdResult::badFile, "a drawing that cannot be read is refused as a bad file");
        return 0;
    }
    check(database, input);
    return 0;
}
