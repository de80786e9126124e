// A reference with three attributes: two of a single line, and one of several.
#pragma once

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/database.h"

class Sign {
  public:
    Sign() {
        const OdDbObjectId block = OdDbBlockTableRecord::addNew(*database, L"SIGN");
        for (const wchar_t* const tag : {L"ONE", L"TWO", L"LINES"}) {
            const auto definition = OdDbAttributeDefinition::createObject();
            definition->setDatabaseDefaults(database.get());
            definition->setTag(tag);
            definition->setPrompt(OdString(tag) + L"?");
            block.openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(definition.get());
        }
        const auto reference = OdDbBlockReference::createObject();
        reference->setDatabaseDefaults(database.get());
        reference->setBlockTableRecord(block);
        for (const wchar_t* const tag : {L"ONE", L"TWO", L"LINES"}) {
            const auto attribute = OdDbAttribute::createObject();
            attribute->setDatabaseDefaults(database.get());
            attribute->setTag(tag);
            attribute->setTextString(L"some value");
            attribute->setPosition({3, 4, 0});
            reference->appendAttribute(attribute.get());
        }
        id = database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(reference.get());
        for (OdDbObjectId attribute : reference->attributes()) attributes.push_back(attribute);
        attributes[2].openAs<OdDbAttribute>(OdDb::forWrite)->convertIntoMTextAttribute(true);
    }
    OdSmartPtr<OdDbAttribute> attribute(std::size_t row) const { return attributes[row].openAs<OdDbAttribute>(); }

    OdDbDatabasePtr database = OdDbDatabase::createNew();
    OdDbObjectId id;
    OdDbObjectIdArray attributes;
};
