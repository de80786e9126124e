// A new drawing with a text in model space, and fields to hang on it.
#pragma once

#include <gmock/gmock.h>
#include <string>

#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "drawingdb/field.h"
#include "drawingdb/text.h"

inline bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

inline OdDbFieldPtr fieldOf(const OdString& code, int flags = OdDbField::kFieldCode) {
    const OdDbFieldPtr field = OdDbField::createObject();
    field->setFieldCode(code, flags);
    return field;
}

class FieldTest : public testing::Test {
  protected:
    FieldTest() : database(OdDbDatabase::createNew()) {
        database->setClock([] { return std::int64_t{1720537445}; });
    }  // 2024-07-09 15:04:05

    template <class Entity>
    OdSmartPtr<Entity> appended(const OdSmartPtr<Entity>& entity) {
        entity->setDatabaseDefaults(database.get());
        database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(entity.get());
        return entity;
    }
    OdSmartPtr<OdDbText> newText(const OdString& contents) {
        const auto text = appended(OdDbText::createObject());
        text->setTextString(contents);
        return text;
    }
    /// What a field shows that is not in the drawing but evaluated for it.
    OdString shown(const OdString& code) {
        const OdDbFieldPtr field = fieldOf(code);
        field->evaluate(OdDbField::kAutomatic, database.get());
        return field->getFieldCode(OdDbField::kEvaluatedText);
    }
    /// A text with a field whose code is `code`, evaluated.
    OdSmartPtr<OdDbText> newTextWithField(const OdString& code) {
        const auto text = newText(L"old");
        const OdDbFieldPtr field = OdDbField::createObject();
        text->setField(L"TEXT", field);
        field->setFieldCode(code, OdDbField::kTextField);
        field->evaluate(OdDbField::kAutomatic, database.get());
        return text;
    }
    /// The saved drawing with bare line feeds.
    std::string saved() const {
        std::string bytes = database->writeBytes();
        std::erase(bytes, '\r');
        return bytes;
    }
    static OdString code(const OdDbFieldPtr& field, int flags) { return field->getFieldCode(flags); }

    OdDbDatabasePtr database;
};
