// INSERT: a reference to a block, with its attributes; the block may come out of another drawing.
#include <cmath>
#include <optional>
#include <vector>

#include "base/modules.h"
#include "base/paths.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/field.h"
#include "drawingdb/import.h"
#include "hostapi/module_functions.h"
#include "torvelhost/commands/host_commands.h"
#include "torvelhost/session/drawing_files.h"

namespace host::commands {
namespace {

using AttributeDefinitionPtr = OdSmartPtr<OdDbAttributeDefinition>;
using ShowAttEditDialog = int(const OdString& block, hostapi::AttributeValues& values, const OdGeMatrix3d& transform);

// A default of several lines is scaled with the reference: heights stand in its codes.
OdString scaledValue(const OdString& value, const OdDbAttributeDefinition& definition,
                     const OdGeMatrix3d& blockTransform) {
    const OdSmartPtr<OdDbMText> text = definition.getMTextAttributeDefinition();
    if (!text) return value;
    text->setContents(value);
    text->transformBy(blockTransform);
    return text->contents();
}

// The text around the fields is scaled as one without fields is; index markers hold the places of the fields in it.
void giveField(const OdDbFieldPtr& field, const OdDbAttributeDefinition& definition, const OdGeMatrix3d& blockTransform,
               OdDbAttribute& attribute) {
    if (definition.isMTextAttributeDefinition() && field->evaluatorId() == L"_text") {
        std::vector<OdDbFieldPtr> children(field->childCount());
        for (std::size_t i = 0; i < children.size(); ++i) children[i] = field->getChild(i)->copy();
        field->setFieldCode(scaledValue(field->getFieldCode(OdDbField::kFieldCode), definition, blockTransform),
                            OdDbField::kTextField | OdDbField::kPreserveChildren, children);
    }
    attribute.setField(L"TEXT", field);
    field->evaluate(OdDbField::kAutomatic, attribute.database());
}

// A default that is a field goes on being one.
void takeField(const OdDbAttributeDefinition& definition, const OdGeMatrix3d& blockTransform,
               OdDbAttribute& attribute) {
    if (const OdDbFieldPtr standard = definition.getField(L"TEXT"))
        giveField(standard->copy(), definition, blockTransform, attribute);
}

std::vector<AttributeDefinitionPtr> definitionsOf(OdDbObjectId block) {
    std::vector<AttributeDefinitionPtr> definitions;
    const auto record = block.openAs<OdDbBlockTableRecord>();
    for (OdDbObjectId id : record->entities())
        if (const auto definition = id.openIf<OdDbAttributeDefinition>(); definition && !definition->isConstant())
            definitions.push_back(definition);
    return definitions;
}

OdSmartPtr<OdDbAttribute> append(OdDbBlockReference& reference, const OdDbAttributeDefinition& definition) {
    auto attribute = OdDbAttribute::createObject();
    reference.appendAttribute(attribute.get());
    attribute->setAttributeFromBlock(definition, reference.blockTransform());
    return attribute;
}

// Asks for the value of each attribute that has one to ask for. False when the user cancelled one.
bool fillAttributes(HostRun& run, OdDbBlockReference& reference, const std::vector<AttributeDefinitionPtr>& definitions,
                    bool asks) {
    for (const AttributeDefinitionPtr& definition : definitions) {
        OdString value;
        int result = kEmpty;
        if (asks && !definition->isPreset()) {
            const OdString prompt = definition->prompt().empty() ? definition->tag() : definition->prompt();
            const OdString standard = definition->textString();
            result = run.input.askText((standard.empty() ? prompt : prompt + L" <" + standard + L">").c_str(), nullptr,
                                       value);
            if (result == kCancel) return false;
        }
        const auto attribute = append(reference, *definition);
        if (result == kValue)
            attribute->setTextString(scaledValue(value, *definition, reference.blockTransform()));
        else
            takeField(*definition, reference.blockTransform(), *attribute);
    }
    return true;
}

// The same by the module's dialog. What it does to the definitions on the way is taken back; a changed one tells the
// field that its value has become.
bool fillByDialog(HostRun& run, OdDbBlockReference& reference, const std::vector<AttributeDefinitionPtr>& definitions,
                  ShowAttEditDialog& showDialog) {
    struct Changed {
        OdString value;
        OdDbFieldPtr field;
    };
    std::vector<std::optional<Changed>> changes(definitions.size());
    const OdGeMatrix3d transform = reference.blockTransform();
    hostapi::AttributeValues values;
    for (const AttributeDefinitionPtr& definition : definitions)
        values.emplace_back(definition, definition->textString());
    const hostapi::AttributeValues before = values;

    run.database->blockUndoRecording(true);
    const bool accepted = showDialog(reference.blockName(), values, transform) == 1 && values.size() == before.size();
    for (std::size_t i = 0; accepted && i < values.size(); ++i) {
        const OdString& value = boost::get<1>(values[i]);
        if (value == boost::get<1>(before[i])) continue;
        changes[i] = Changed{value, {}};
        if (definitions[i]->textString() == boost::get<1>(before[i])) continue;
        if (const OdDbFieldPtr field = definitions[i]->getField(L"TEXT")) changes[i]->field = field->copy();
    }
    run.database->rollBackUndoGroup();
    if (!accepted) return false;

    for (std::size_t i = 0; i < definitions.size(); ++i) {
        const auto attribute = append(reference, *definitions[i]);
        if (!changes[i]) {
            takeField(*definitions[i], transform, *attribute);
            continue;
        }
        attribute->setTextString(scaledValue(changes[i]->value, *definitions[i], transform));
        if (changes[i]->field) giveField(changes[i]->field, *definitions[i], transform, *attribute);
    }
    return true;
}

// What stands at the name's prompt: a block of this drawing, or one that another drawing makes.
struct BlockSource {
    std::wstring name;   // of the block here
    std::wstring file;   // empty: the block is there
    std::wstring inner;  // the block of that file; empty: its model space
};

// The file of "FILE", "FILE#BLOCK" or either in quotes, with its extension; empty when there is none.
std::wstring fileOf(std::wstring_view path) {
    if (base::isFile(path)) return std::wstring(path);
    for (const wchar_t* const extension : {L".dxf", L".dwg"})
        if (std::wstring longer = std::wstring(path) + extension; base::isFile(longer)) return longer;
    return {};
}

// A block's name holds neither "=" nor a separator, so that these tell a file.
BlockSource blockSource(std::wstring_view text) {
    BlockSource source;
    const std::size_t equals = text.find(L'=');
    const bool isNamed = equals != text.npos;
    source.name = isNamed ? text.substr(0, equals) : L"";
    std::wstring_view path = isNamed ? text.substr(equals + 1) : text;
    if (path.size() >= 2 && path.starts_with(L'"') && path.ends_with(L'"')) path = path.substr(1, path.size() - 2);
    if (path.empty()) path = source.name;
    source.file = fileOf(path);
    if (const std::size_t mark = path.rfind(L'#'); source.file.empty() && mark != path.npos) {
        source.inner = path.substr(mark + 1);
        path = path.substr(0, mark);
        source.file = fileOf(path);
    }
    if (source.file.empty()) source.file = path;
    if (source.name.empty()) source.name = source.inner.empty() ? base::stemOf(path) : source.inner;
    return source;
}

bool tellsFile(std::wstring_view text) {
    const std::wstring extension = base::extensionOf(text.substr(0, text.rfind(L'#')));
    return text.find_first_of(L"=/\\") != text.npos || base::equalsNoCase(extension, L".dxf") ||
           base::equalsNoCase(extension, L".dwg");
}

// Makes the block; null when it is refused.
OdDbObjectId makeFrom(HostRun& run, const BlockSource& source) {
    const OdDbDatabasePtr drawing = readDrawingFile(source.file, false, run.application.profile());
    for (const OdDbWarning& warning : drawing->warnings()) run.terminal().notice(base::fromUtf8(warning.text));
    if (drawing->isReadOnly()) {
        run.refused(source.file + L" is not whole; nothing was changed");
        return {};
    }
    OdDbObjectId block = drawing->modelSpaceId();
    if (!source.inner.empty()) {
        block = drawing->findBlock(source.inner);
        if (!block || block.openAs<OdDbBlockTableRecord>()->isLayout()) {
            run.refused(source.file + L" has no block \"" + source.inner + L"\"");
            return {};
        }
    }
    if (block.isNull()) {
        run.refused(source.file + L" has no model space");
        return {};
    }
    try {
        const OdDbImportedBlock made = importBlock(*run.database, source.name, block);
        for (const OdString& kept : made.kept)
            run.terminal().notice(L"the block \"" + kept + L"\" within it is the one that this drawing has");
        for (const auto& [kind, count] : made.leftOut)
            run.terminal().notice(std::to_wstring(count) + L" " + base::widen(kind) +
                                  L" left out: the drawing's version holds none");
        return made.block;
    } catch (const OdError& error) {
        run.refused(base::fromUtf8(error.what()));
        return {};
    }
}

}  // namespace

CMD_RUNSTATUS insert(HostRun& run) {
    OdDbDatabase* const database = run.database;
    OdString name;
    OdDbObjectId block;
    std::optional<BlockSource> source;
    const int named = run.input.ask(L"Enter block name", nullptr, L"a block name",
                                    [&](const Reply& reply, std::wstring& reason) {
                                        source.reset();
                                        block = database->findBlock(reply.text);
                                        if (!block && tellsFile(reply.text)) {
                                            source = blockSource(reply.text);
                                            reason = blockNameRefusal(*database, source->name);
                                            if (reason.empty() && !base::isFile(source->file))
                                                reason = L"there is no file " + source->file;
                                            return reason.empty();
                                        }
                                        if (!block) reason = L"the drawing has no block \"" + reply.text + L"\"";
                                        return !block.isNull();
                                    },
                                    {Expected::kText});
    if (named != kValue) return kCommandCancelled;
    if (source) {
        if (database->findBlock(source->name) && !asksToRedefine(run, source->name)) return kCommandCancelled;
        block = makeFrom(run, *source);
        if (!block) return kCommandCancelled;
    }

    OdGePoint3d point;
    const int pointed = run.input.askPoint(L"Specify insertion point", nullptr, point);
    if (pointed == kEmpty && source) return kCommandFinished;  // the block is what was wanted
    if (pointed != kValue) return kCommandCancelled;
    double x = 1, angle = 0;
    if (run.askNumber(L"Enter X scale factor <1>", x) == kCancel) return kCommandCancelled;
    double y = x;
    if (run.askNumber(L"Enter Y scale factor <use X scale factor>", y) == kCancel) return kCommandCancelled;
    if (run.input.getAngle(angle, L"Specify rotation angle <0>", nullptr, 0, 0) == kCancel) return kCommandCancelled;
    if (x == 0 || y == 0) return run.refused(L"a scale factor is not 0");

    const OdGeMatrix3d ucs = run.document.ucs();
    const std::size_t before = run.document.undoPosition();
    OdDbObjectId inserted;
    {
        const auto reference = OdDbBlockReference::createObject();
        reference->setDatabaseDefaults(database);
        reference->setBlockTableRecord(block);
        reference->setNormal(ucs.zAxis());
        reference->setPosition(point);
        reference->setScaleFactors(OdGeScale3d(x, y, std::fabs(x)));
        // The angle is typed in the user's plane and stored in the plane of the normal.
        const OdGeVector3d direction =
            OdGeMatrix3d::worldToPlane(ucs.zAxis()) * (ucs * OdGeVector3d(std::cos(angle), std::sin(angle), 0));
        reference->setRotation(ucs == OdGeMatrix3d::kIdentity ? angle : direction.xy().angle());
        const auto space = run.document.activeSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
        inserted = space->appendOdDbEntity(reference.get());
    }
    const std::vector<AttributeDefinitionPtr> definitions = definitionsOf(block);
    const auto reference = inserted.openAs<OdDbBlockReference>(OdDb::forWrite);
    const auto isOn = [&](const wchar_t* variable) {
        return run.variables.get(variable) == VariableValue(std::int64_t{1});
    };
    auto* const dialog = isOn(L"ATTREQ") && isOn(L"ATTDIA") && !definitions.empty()
                             ? base::findFunction(hostapi::ShowAttEditDialog)
                             : nullptr;
    const bool filled = dialog ? fillByDialog(run, *reference, definitions, *dialog)
                               : fillAttributes(run, *reference, definitions, isOn(L"ATTREQ"));
    if (filled) return kCommandFinished;
    database->undoTo(before);
    return kCommandCancelled;
}

}  // namespace host::commands
