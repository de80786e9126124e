#include <random>

#include "drawingdb/mtext.h"
#include "drawingdb/text.h"
#include "field_fixture.h"
#include "tests/drawingdb/sample.h"

namespace {

constexpr int kMarked = OdDbField::kTextField | OdDbField::kPreserveChildren;

std::string replaced(std::string text, const std::string& what, const std::string& with) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), with);
}

// ---- Codes

TEST_F(FieldTest, ACodeIsTakenApartAndComesBackWhole) {
    const struct {
        const wchar_t* raw;
        const wchar_t* stored;
        const wchar_t* evaluator;
        std::size_t children;
    } kRows[] = {
        {L"%<\\AcVar Title>%", L"\\AcVar Title", L"AcVar", 0},
        {L"%<\\AcVar.17.0 Date \\f \"M/d/yyyy\">%", L"\\AcVar.17.0 Date \\f \"M/d/yyyy\"", L"AcVar.17.0", 0},
        {L"Sheet %<\\AcVar Title>%", L"Sheet %<\\_FldIdx 0>%", L"_text", 1},
        {L"%<\\AcVar A>%%<\\AcVar B>%", L"%<\\_FldIdx 0>%%<\\_FldIdx 1>%", L"_text", 2},
        {L"%<\\AcExpr (%<\\AcVar A>%+%<\\AcVar B>%)>%", L"\\AcExpr (%<\\_FldIdx 0>%+%<\\_FldIdx 1>%)", L"AcExpr", 2},
        {L"%<\\AcObjProp Object(%<\\_ObjId 4711>%).Area>%", L"\\AcObjProp Object(%<\\_ObjIdx 0>%).Area", L"AcObjProp",
         0},
        {L"plain", L"plain", L"_text", 0},
        {L"", L"", L"_text", 0},
        {L"50%< and >%, %<\\AcVar A", L"50%< and >%, %<\\AcVar A", L"_text", 0},
        {L"\\A1;{\\C1;red} \\AcVar A", L"\\A1;{\\C1;red} \\AcVar A", L"_text", 0},
    };
    for (const auto& row : kRows) {
        const OdDbFieldPtr field = fieldOf(row.raw);
        EXPECT_EQ(field->getFieldCode(OdDbField::kRawCode), row.raw);
        EXPECT_EQ(field->getFieldCode(OdDbField::kFieldCode), row.stored);
        EXPECT_EQ(field->evaluatorId(), row.evaluator);
        EXPECT_EQ(field->childCount(), row.children);
    }
    // A stored code is understood as well; as a text field even a single field is a child.
    EXPECT_EQ(fieldOf(L"\\AcVar Title")->getFieldCode(OdDbField::kRawCode), L"%<\\AcVar Title>%");
    const OdDbFieldPtr text = fieldOf(L"%<\\AcVar Title>%", OdDbField::kTextField);
    EXPECT_EQ(text->evaluatorId(), L"_text");
    EXPECT_EQ(text->getChild(0)->getFieldCode(OdDbField::kFieldCode), L"\\AcVar Title");
    EXPECT_FALSE(text->getChild(1));
}

TEST_F(FieldTest, AnyCodeIsTheSameAfterParsingItTwice) {
    std::mt19937 random(11);
    const std::wstring_view kPieces[] = {L"%<", L">%", L"%<\\AcExpr ", L"%<\\AcVar A>%", L"%<\\_ObjId 31>%", L"\\",
                                         L"\"", L" ",  L"x",           L"(1+2)"};
    for (int run = 0; run < 2000; ++run) {
        OdString raw;
        for (int i = 0; i < 12; ++i) raw += kPieces[random() % std::size(kPieces)];
        const OdDbFieldPtr once = fieldOf(raw, OdDbField::kTextField);
        const OdString again = once->getFieldCode(OdDbField::kRawCode);
        const OdDbFieldPtr twice = fieldOf(again, OdDbField::kTextField);
        ASSERT_EQ(twice->getFieldCode(OdDbField::kRawCode), again);
        ASSERT_EQ(twice->getFieldCode(OdDbField::kFieldCode), once->getFieldCode(OdDbField::kFieldCode));
        once->evaluate(OdDbField::kAutomatic, database.get());
    }
}

TEST_F(FieldTest, NestingHasABound) {
    OdString raw;
    for (int i = 0; i < 10000; ++i) raw += L"%<\\AcExpr 1+";
    raw += L"1";
    for (int i = 0; i < 10000; ++i) raw += L">%";
    const OdDbFieldPtr field = fieldOf(raw);
    EXPECT_EQ(field->getFieldCode(OdDbField::kRawCode), raw);
    EXPECT_FALSE(field->evaluate(OdDbField::kAutomatic, database.get()));
    EXPECT_EQ(field->getFieldCode(OdDbField::kEvaluatedText), L"####");
}

// ---- Children

TEST_F(FieldTest, ChildrenGivenAreKeptAsTheyAre) {
    const OdDbFieldPtr first = fieldOf(L"%<\\AcExpr 1 \\f \"%lu2%pr0\">%"),
                       second = fieldOf(L"%<\\AcExpr 2 \\f \"%lu2%pr0\">%");
    const OdDbFieldPtr field = OdDbField::createObject();
    field->setFieldCode(L"%<\\_FldIdx 1>% before %<\\_FldIdx 0>%, not %<\\_FldIdx 2>%", kMarked, {first, second});
    EXPECT_EQ(field->getChild(0), first);
    EXPECT_EQ(field->getChild(1), second);
    EXPECT_EQ(code(field, OdDbField::kRawCode),
              L"%<\\AcExpr 2 \\f \"%lu2%pr0\">% before %<\\AcExpr 1 \\f \"%lu2%pr0\">%, not %<\\_FldIdx 2>%");
    field->evaluate(OdDbField::kAutomatic, database.get());
    EXPECT_EQ(code(field, OdDbField::kEvaluatedText), L"2 before 1, not ####");
    EXPECT_THROW(field->setFieldCode(L"%<\\_FldIdx 0>%", kMarked, {field}), OdError);
    EXPECT_THROW(field->setFieldCode(L"%<\\_FldIdx 0>%", kMarked, {OdDbFieldPtr()}), OdError);
}

TEST_F(FieldTest, AFieldMayBeStoredFirstAndFilledAfterwards) {
    const auto text = newText(L"old");
    const OdDbFieldPtr field = OdDbField::createObject();
    text->setField(L"TEXT", field);
    field->setEvaluationOption(63);
    field->setFieldCode(L"Sum %<\\_FldIdx 0>%", 0);
    field->setFieldCode(L"Sum %<\\_FldIdx 0>%", 384, {fieldOf(L"%<\\AcExpr (%<\\AcExpr 3>%+4) \\f \"%lu2%pr0\">%")});
    field->setData(L"ACFD_FIELDTEXT_ATTDEF", 1);
    EXPECT_TRUE(field->evaluate(63, database.get()));
    EXPECT_EQ(text->textString(), L"Sum 7");

    // In the saved drawing the field, its child and the child's child hang together and stand in the list of fields.
    const OdDbHandle handle = text->handle();
    const std::string bytes = saved();
    const OdDbDatabasePtr again = OdDbDatabase::readBytes(bytes, L"again.dxf");
    EXPECT_TRUE(again->warnings().empty());
    const OdDbFieldPtr read = again->getObjectId(handle).openAs<OdDbText>()->getField(L"TEXT");
    ASSERT_TRUE(read);
    EXPECT_EQ(code(read, OdDbField::kRawCode), L"Sum %<\\AcExpr (%<\\AcExpr 3>%+4) \\f \"%lu2%pr0\">%");
    EXPECT_EQ(code(read, OdDbField::kEvaluatedText), L"Sum 7");
    EXPECT_EQ(read->getData(L"ACFD_FIELDTEXT_ATTDEF").integer, 1);
    EXPECT_EQ(read->getData(L"other").type, OdDbFieldValue::kUnknown);
    EXPECT_EQ(read->getChild(0)->ownerId(), read->objectId());
    EXPECT_EQ(read->getChild(0)->getChild(0)->ownerId(), read->getChild(0)->objectId());
    EXPECT_EQ(read->getChild(0)->value().real, 7.0);
    for (const OdDbObjectId id :
         {read->objectId(), read->getChild(0)->objectId(), read->getChild(0)->getChild(0)->objectId()}) {
        const std::size_t list = bytes.find("AcDbIdSet");
        ASSERT_NE(list, std::string::npos);
        EXPECT_NE(bytes.find("330\n" + id.handle().ascii() + "\n", list), std::string::npos) << id.handle().ascii();
    }
    EXPECT_TRUE(again->writeBytes() == bytes);
}

TEST_F(FieldTest, ANewCodeTakesTheOldChildrenAway) {
    const auto text = newTextWithField(L"%<\\AcExpr 1>% %<\\AcExpr 2>%");
    const OdDbFieldPtr field = text->getField(L"TEXT", OdDb::forWrite);
    const OdDbFieldPtr first = field->getChild(0), second = field->getChild(1);
    const OdDbFieldPtr foreign = newTextWithField(L"%<\\AcExpr 5>%")->getField(L"TEXT")->getChild(0);
    // The second stays, the foreign one is copied.
    field->setFieldCode(L"%<\\_FldIdx 0>%%<\\_FldIdx 1>%", kMarked, {second, foreign});
    EXPECT_TRUE(first->isErased());
    EXPECT_FALSE(second->isErased());
    EXPECT_FALSE(foreign->isErased());
    EXPECT_EQ(field->getChild(0), second);
    EXPECT_NE(field->getChild(1), foreign);
    EXPECT_EQ(code(field, OdDbField::kRawCode), L"%<\\AcExpr 2>%%<\\AcExpr 5>%");
    field->setFieldCode(L"plain", OdDbField::kTextField);
    EXPECT_TRUE(second->isErased());
    EXPECT_FALSE(foreign->isErased());
    EXPECT_EQ(field->childCount(), 0u);
}

TEST_F(FieldTest, UndoTakesBackCodeChildrenAndValue) {
    const auto text = newTextWithField(L"%<\\AcExpr 1+1 \\f \"%lu2%pr0\">%");
    const std::string before = saved();
    database->startUndoRecord();
    const OdDbFieldPtr field = text->getField(L"TEXT", OdDb::forWrite);
    field->setFieldCode(L"now %<\\AcExpr 5>% and %<\\AcExpr 6>%", OdDbField::kTextField);
    field->evaluate(OdDbField::kAutomatic, database.get());
    EXPECT_EQ(text->textString(), L"now 5.0000 and 6.0000");
    EXPECT_TRUE(database->undoLastRecord());
    EXPECT_EQ(code(field, OdDbField::kRawCode), L"%<\\AcExpr 1+1 \\f \"%lu2%pr0\">%");
    EXPECT_EQ(text->textString(), L"2");
    EXPECT_TRUE(saved() == before);
}

TEST_F(FieldTest, ReadOnlyFieldsRefuseChanges) {
    const auto text = newTextWithField(L"%<\\AcVar Title>%");
    text->getField(L"TEXT", OdDb::forWrite)->downgradeOpen();
    const OdDbFieldPtr field = text->getField(L"TEXT");
    EXPECT_THROW(field->setFieldCode(L"x"), OdError);
    EXPECT_THROW(field->setData(L"key", 1), OdError);
    EXPECT_THROW(field->setEvaluationOption(1), OdError);
}

// ---- Evaluating

TEST_F(FieldTest, TheEvaluationOptionDecidesWhenToEvaluate) {
    const OdDbFieldPtr field = fieldOf(L"%<\\AcExpr 1>%");
    field->setEvaluationOption(OdDbField::kOnPlot);
    EXPECT_TRUE(field->evaluate(OdDbField::kOnOpen | OdDbField::kOnSave, database.get()));
    EXPECT_EQ(code(field, OdDbField::kEvaluatedText), L"");
    EXPECT_TRUE(field->evaluate(OdDbField::kOnPlot, database.get()));
    EXPECT_EQ(code(field, OdDbField::kEvaluatedText), L"1.0000");
    EXPECT_EQ(field->state() & (OdDbField::kEvaluated | OdDbField::kHasCache),
              OdDbField::kEvaluated | OdDbField::kHasCache);
}

TEST_F(FieldTest, AValueThatCannotBeHadLeavesTheCachedOne) {
    OdString value = L"A-101";
    database->setSystemVariables([&](const OdString& name, OdString& result) {
        result = value;
        return name == L"SHEET" && !value.empty();
    });
    const auto text = newTextWithField(L"Sheet %<\\AcVar SHEET>%");
    const OdDbFieldPtr field = text->getField(L"TEXT");
    EXPECT_EQ(text->textString(), L"Sheet A-101");
    value.clear();
    EXPECT_FALSE(field->evaluate(OdDbField::kAutomatic, database.get()));
    EXPECT_EQ(text->textString(), L"Sheet A-101");
    value = L"A-102";
    EXPECT_TRUE(field->evaluate(OdDbField::kAutomatic, database.get()));
    EXPECT_EQ(text->textString(), L"Sheet A-102");
    EXPECT_EQ(shown(L"%<\\AcVar NoSuchVariable>%"), L"####");
    EXPECT_EQ(newTextWithField(L"%<\\AcVar NoSuchVariable>%!")->textString(), L"####!");
}

TEST_F(FieldTest, AnUnknownEvaluatorKeepsWhatTheFileHas) {
    const auto text = newTextWithField(L"x %<\\AcExpr 5 \\f \"%lu2%pr0\">%");
    const OdDbHandle handle = text->handle();
    std::string bytes = saved();
    bytes = replaced(bytes, "\nAcExpr\n", "\nElsewhere\n");
    bytes = replaced(bytes, "\n\\AcExpr 5", "\n\\Elsewhere 5");
    const OdDbDatabasePtr again = OdDbDatabase::readBytes(bytes, L"again.dxf");
    const OdDbFieldPtr field = again->getObjectId(handle).openAs<OdDbText>()->getField(L"TEXT");
    EXPECT_TRUE(field->evaluate(OdDbField::kAutomatic, again.get()));
    EXPECT_EQ(code(field, OdDbField::kEvaluatedText), L"x 5");
    EXPECT_TRUE(again->writeBytes() == bytes);
    EXPECT_EQ(shown(L"%<\\Elsewhere 5>%"), L"####");

    // A copy has the value too, wherever it goes; a field made from the code alone cannot.
    const OdDbFieldPtr copy = field->getChild(0)->copy();
    EXPECT_FALSE(copy->isDatabaseResident());
    EXPECT_TRUE(copy->evaluate(OdDbField::kAutomatic, database.get()));
    const auto other = newText(L"old");
    const OdDbFieldPtr outer = OdDbField::createObject();
    other->setField(L"TEXT", outer);
    outer->setFieldCode(L"still %<\\_FldIdx 0>%", kMarked, {copy});
    EXPECT_TRUE(outer->evaluate(OdDbField::kAutomatic, database.get()));
    EXPECT_EQ(other->textString(), L"still 5");
    EXPECT_EQ(code(field->copy(), OdDbField::kRawCode), code(field, OdDbField::kRawCode));
}

TEST_F(FieldTest, TheTextGetsTheValueAndOnlyWhenItChanged) {
    const auto paragraphs = appended(OdDbMText::createObject());
    const OdDbFieldPtr field = OdDbField::createObject();
    paragraphs->setField(L"TEXT", field);
    field->setFieldCode(L"{\\C1;%<\\AcExpr 2*3 \\f \"%lu2%pr0\">%}\\Pend", OdDbField::kTextField);
    field->evaluate(OdDbField::kAutomatic, database.get());
    EXPECT_EQ(paragraphs->contents(), L"{\\C1;6}\\Pend");
    EXPECT_EQ(field->value().text, L"{\\C1;6}\\Pend");

    const std::string before = saved();
    paragraphs->downgradeOpen();
    field->downgradeOpen();
    EXPECT_TRUE(field->evaluate(OdDbField::kAutomatic, database.get()));
    EXPECT_FALSE(field->isWriteEnabled());
    EXPECT_FALSE(paragraphs->isWriteEnabled());
    EXPECT_TRUE(saved() == before);

    // Not under "TEXT": nobody's text.
    const OdDbFieldPtr other = fieldOf(L"other");
    paragraphs->upgradeOpen();
    paragraphs->setField(L"OTHER", other);
    other->evaluate(OdDbField::kAutomatic, database.get());
    EXPECT_EQ(paragraphs->contents(), L"{\\C1;6}\\Pend");
}

TEST_F(FieldTest, FieldsThatContainEachOtherComeToAnEnd) {
    const auto text = newTextWithField(L"a %<\\AcExpr 1>%");
    const OdDbHandle handle = text->handle();
    const std::string own = text->getField(L"TEXT")->handle().ascii();
    const std::string child = text->getField(L"TEXT")->getChild(0)->handle().ascii();
    const std::string bytes = replaced(saved(), "360\n" + child + "\n 97", "360\n" + own + "\n 97");
    const OdDbDatabasePtr circle = OdDbDatabase::readBytes(bytes, L"circle.dxf");
    const OdDbFieldPtr field = circle->getObjectId(handle).openAs<OdDbText>()->getField(L"TEXT", OdDb::forWrite);
    ASSERT_EQ(field->childCount(), 1u);
    field->evaluate(OdDbField::kAutomatic, circle.get());
    EXPECT_LT(field->getFieldCode(OdDbField::kRawCode).size(), 1000u);
    field->setFieldCode(L"free %<\\AcExpr 1>%", OdDbField::kTextField);
    EXPECT_FALSE(field->isErased());
    EXPECT_TRUE(field->evaluate(OdDbField::kAutomatic, circle.get()));
    EXPECT_EQ(code(field, OdDbField::kEvaluatedText), L"free 1.0000");
}

TEST_F(FieldTest, FieldsThatStandInEachOtherManyTimesStayBounded) {
    OdDbFieldPtr field = fieldOf(L"0123456789", OdDbField::kTextField);
    for (int i = 0; i < 60; ++i) {
        const OdDbFieldPtr outer = OdDbField::createObject();
        outer->setFieldCode(L"%<\\_FldIdx 0>%%<\\_FldIdx 0>%", kMarked, {field});
        field = outer;
    }
    field->evaluate(OdDbField::kAutomatic, database.get());
    EXPECT_LT(code(field, OdDbField::kEvaluatedText).size(), std::size_t{1} << 22);
    EXPECT_LT(code(field, OdDbField::kRawCode).size(), std::size_t{1} << 24);

    // The same in a file: a chain of fields, each naming the next one three times.
    std::string bytes = saved();
    std::string chain;
    for (int i = 0; i < 200; ++i) {
        const std::string next = OdDbHandle(static_cast<std::uint64_t>(0xA001 + i)).ascii();
        chain +=
            "  0\nFIELD\n  5\n" + OdDbHandle(static_cast<std::uint64_t>(0xA000 + i)).ascii() +
            "\n330\n0\n100\nAcDbField\n  1\n_text\n  2\n%<\\_FldIdx 0>%%<\\_FldIdx 1>%%<\\_FldIdx 2>%\n 90\n3\n360\n" +
            next + "\n360\n" + next + "\n360\n" + next + "\n";
    }
    bytes.insert(bytes.rfind("  0\nENDSEC\n"), chain);
    const OdDbDatabasePtr again = OdDbDatabase::readBytes(bytes, L"chain.dxf");
    const OdDbFieldPtr head = again->getObjectId(0xA000).openAs<OdDbField>(OdDb::forWrite);
    head->evaluate(OdDbField::kAutomatic, again.get());
    EXPECT_LT(code(head, OdDbField::kEvaluatedText).size(), std::size_t{1} << 22);
    EXPECT_LT(code(head, OdDbField::kRawCode).size(), std::size_t{1} << 24);
    EXPECT_TRUE(head->copy());
}

// ---- Files

TEST_F(FieldTest, WhatIsNotUnderstoodStaysWhenTheFieldChanges) {
    const auto text = newTextWithField(L"%<\\AcVar Title>%");
    const OdDbHandle handle = text->handle();
    std::string bytes = saved();
    // Groups that nobody here knows: behind the evaluator, the children, within the value, at the end; and a checksum.
    bytes = replaced(bytes, "  1\n_text\n", "  1\n_text\n 60\n5\n");
    bytes = replaced(bytes, " 97\n0\n", " 70\n 7\n 97\n0\n");
    bytes = replaced(
        bytes, " 93\n0\n",
        " 93\n1\n  6\nACFD_FIELDTEXT_CHECKSUM\n 93\n2\n 90\n2\n140\n12.50\n 94\n0\n300\n\n302\n\n304\nACVALUE_END\n");
    bytes = replaced(bytes, "----\n 94\n0\n300\n\n302\n\n", "----\n172\n 3\n 94\n0\n300\nstatic\n302\n\n");
    bytes = replaced(bytes, "301\n----\n 98\n4\n", "301\n----\n 98\n4\n 62\n 1\n");
    const OdDbDatabasePtr again = OdDbDatabase::readBytes(bytes, L"again.dxf");
    again->touchEverything();
    EXPECT_TRUE(again->writeBytes() == bytes);

    const OdDbFieldPtr field = again->getObjectId(handle).openAs<OdDbText>()->getField(L"TEXT", OdDb::forWrite);
    EXPECT_EQ(field->getData(L"ACFD_FIELDTEXT_CHECKSUM").real, 12.5);
    field->setData(L"own", 3);
    const std::string marked = again->writeBytes();
    for (const char* kept : {"  1\n_text\n 60\n5\n", " 70\n 7\n 97\n", "140\n12.50\n", "----\n172\n 3\n", "\nstatic\n",
                             " 98\n4\n 62\n 1\n"})
        EXPECT_TRUE(contains(marked, kept)) << kept;

    // A new text makes the old checksum wrong.
    again->setHeaderText("$TITLE", 1, L"Plan");
    EXPECT_TRUE(field->evaluate(OdDbField::kAutomatic, again.get()));
    EXPECT_EQ(code(field, OdDbField::kEvaluatedText), L"Plan");
    EXPECT_FALSE(contains(again->writeBytes(), "CHECKSUM"));
    EXPECT_TRUE(contains(again->writeBytes(), "\nstatic\n"));
}

TEST_F(FieldTest, LongAndForeignTextsComeBackInPieces) {
    OdString plain;
    for (int i = 0; i < 300; ++i) plain += i % 7 ? L"text ^ " : L"\u2022\tß";
    plain += L"\U0001F4D0";
    const auto text = newTextWithField(plain + L"%<\\AcExpr 1>%");
    const std::string bytes = saved();
    const OdDbDatabasePtr again = OdDbDatabase::readBytes(bytes, L"again.dxf");
    const OdDbFieldPtr field = again->getObjectId(text->handle()).openAs<OdDbText>()->getField(L"TEXT");
    EXPECT_EQ(code(field, OdDbField::kRawCode), plain + L"%<\\AcExpr 1>%");
    EXPECT_EQ(code(field, OdDbField::kEvaluatedText), plain + L"1.0000");
    EXPECT_EQ(field->value().text, plain + L"1.0000");
    // The length counts UTF-16 units, of which the last sign has two.
    const std::size_t signs = plain.size() + (sizeof(wchar_t) > 2) + 6;
    EXPECT_TRUE(contains(bytes, "\n 98\n" + std::to_string(signs) + "\n"));
}

TEST_F(FieldTest, EveryKindOfValueComesBack) {
    const auto text = newTextWithField(L"x");
    const OdDbFieldPtr field = text->getField(L"TEXT", OdDb::forWrite);
    std::vector<OdDbFieldValue> values(6);
    values[0].type = OdDbFieldValue::kLong;
    values[0].integer = -2147483648LL;
    values[1].type = OdDbFieldValue::kDouble;
    values[1].real = 0.1;
    values[2].type = OdDbFieldValue::kString;
    values[2].text = OdString(600, L'y');
    values[3].type = OdDbFieldValue::kDate;
    values[3].real = 2460501.25;
    values[4].type = OdDbFieldValue::k3dPoint;
    for (int i = 0; i < 3; ++i) values[4].point[i] = i - 0.5;
    values[5].type = OdDbFieldValue::kObjectId;
    values[5].object = text->objectId();
    for (std::size_t i = 0; i < values.size(); ++i) field->setData(L"item " + std::to_wstring(i), values[i]);
    const OdDbDatabasePtr again = OdDbDatabase::readBytes(saved(), L"again.dxf");
    const OdDbFieldPtr read = again->getObjectId(text->handle()).openAs<OdDbText>()->getField(L"TEXT");
    for (std::size_t i = 0; i < values.size(); ++i) {
        const OdDbFieldValue value = read->getData(L"item " + std::to_wstring(i));
        EXPECT_EQ(value.type, values[i].type);
        EXPECT_EQ(value.integer, values[i].integer);
        EXPECT_EQ(value.real, values[i].real);
        EXPECT_EQ(value.text, values[i].text);
        EXPECT_THAT(value.point, testing::ElementsAreArray(values[i].point));
        EXPECT_EQ(value.object.handle(), values[i].object.handle());
    }
}

TEST_F(FieldTest, BinaryAndOlderFilesHoldTheSame) {
    const auto text = newTextWithField(L"Size %<\\AcExpr 2 \\f \"%lu2%pr0\">%");
    std::string older = saved();
    older = replaced(older, "AC1032", "AC1018");
    const std::string binary = asBinary(saved(), true);
    for (const std::string& bytes : {older, binary}) {
        const OdDbDatabasePtr again = OdDbDatabase::readBytes(bytes, L"again.dxf");
        const auto owner = again->getObjectId(text->handle()).openAs<OdDbText>();
        const OdDbFieldPtr field = owner->getField(L"TEXT", OdDb::forWrite);
        OdDbFieldValue date;
        date.type = OdDbFieldValue::kDate;
        date.real = 2451545.25;
        field->setData(L"Date", date);
        field->setFieldCode(L"now %<\\AcExpr 3 \\f \"%lu2%pr0\">%", OdDbField::kTextField);
        field->evaluate(OdDbField::kAutomatic, again.get());
        const std::string written = again->writeBytes();
        EXPECT_EQ(contains(written, "ACVALUE_END"), bytes != older);  // values are shorter before 2007
        const OdDbDatabasePtr third = OdDbDatabase::readBytes(written, L"third.dxf");
        const OdDbFieldPtr read = third->getObjectId(text->handle()).openAs<OdDbText>()->getField(L"TEXT");
        EXPECT_EQ(code(read, OdDbField::kRawCode), code(field, OdDbField::kRawCode));
        EXPECT_EQ(code(read, OdDbField::kEvaluatedText), L"now 3");
        EXPECT_EQ(read->getData(L"Date").real, date.real);
        EXPECT_EQ(read->value().text, L"now 3");
        EXPECT_EQ(read->getChild(0)->value().real, 3.0);
    }
}

TEST_F(FieldTest, DamagedRecordsAreReadAsFarAsTheyGo) {
    const auto text = newTextWithField(L"%<\\AcVar Title>%");
    const OdDbHandle handle = text->handle();
    const std::string bytes = saved();
    const std::size_t begin = bytes.find("AcDbField\n"), end = bytes.find("  0\n", begin);
    std::mt19937 random(3);
    int tried = 0;
    for (int run = 0; run < 300; ++run) {
        std::string damaged = bytes;
        for (int i = 0; i < 3; ++i) {
            const std::size_t at = begin + 10 + random() % (end - begin - 10);
            if (damaged[at] != '\n') damaged[at] = "0123456789x %<\\"[random() % 15];
        }
        const OdDbDatabasePtr again = OdDbDatabase::readBytes(damaged, L"damaged.dxf");
        // Where the damage cuts the file short it opens read-only, and says so.
        if (again->isReadOnly()) continue;
        const auto owner = again->getObjectId(handle).openIf<OdDbText>(OdDb::forWrite);
        const OdDbFieldPtr field = owner ? owner->getField(L"TEXT", OdDb::forWrite) : OdDbFieldPtr();
        if (!field) continue;
        ++tried;
        field->getFieldCode(OdDbField::kRawCode);
        field->setData(L"key", run);
        field->evaluate(OdDbField::kAutomatic, again.get());
        EXPECT_FALSE(again->writeBytes().empty());
    }
    EXPECT_GT(tried, 100);
}

}  // namespace
