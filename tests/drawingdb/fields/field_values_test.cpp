#include "drawingdb/attribute.h"
#include "drawingdb/curves.h"
#include "drawingdb/mtext.h"
#include "drawingdb/text.h"
#include "field_fixture.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

TEST_F(FieldTest, DocumentPropertiesComeFromTheHeader) {
    EXPECT_EQ(shown(L"%<\\AcVar Title>%"), L"----");
    EXPECT_EQ(shown(L"%<\\AcVar RevisionNumber>%"), L"----");
    EXPECT_EQ(shown(L"%<\\AcVar PlotDate>%"), L"----");
    database->setHeaderText("$TITLE", 1, L"ground floor");
    database->setHeaderText("$LASTSAVEDBY", 1, L"Jo");
    EXPECT_EQ(shown(L"%<\\AcVar Title \\f \"%tc1\">%"), L"GROUND FLOOR");
    EXPECT_EQ(shown(L"%<\\AcVar.17.0 title>%"), L"ground floor");
    EXPECT_EQ(shown(L"%<\\AcVar LastSavedBy>%"), L"Jo");
    // Any other variable of the header, once the host does not know it.
    EXPECT_EQ(shown(L"%<\\AcVar CLAYER>%"), database->headerText("$CLAYER"));
    database->setSystemVariables([](const OdString& name, OdString& value) {
        value = name == L"LOGINNAME" ? L"jo" : L"2.5";
        return name == L"LOGINNAME" || name == L"LTSCALE";
    });
    EXPECT_EQ(shown(L"%<\\AcVar LTSCALE \\f \"%lu2%pr3\">%"), L"2.500");
    EXPECT_EQ(shown(L"%<\\AcVar Login>%"), L"jo");
    EXPECT_FALSE(fieldOf(L"%<\\AcVar Title>%")->evaluate(OdDbField::kAutomatic, nullptr));
}

// In a multi-line text a value is shown as it is, while the text around it keeps its formatting codes.
TEST_F(FieldTest, ValuesAreEscapedInMultiLineTextsOnly) {
    database->setSystemVariables([](const OdString& name, OdString& value) {
        value = L"DOM\\Paul {x}";
        return name == L"LOGINNAME";
    });
    const OdString code = L"{\\C1;by} %<\\AcVar LOGINNAME>%";
    const auto evaluate = [&](OdDbObject& text) {
        const OdDbFieldPtr field = OdDbField::createObject();
        text.setField(L"TEXT", field);
        field->setFieldCode(code, OdDbField::kTextField);
        for (int round = 0; round < 2; ++round) field->evaluate(OdDbField::kAutomatic, database.get());
    };
    const auto lines = appended(OdDbMText::createObject());
    evaluate(*lines);
    EXPECT_EQ(lines->contents(), L"{\\C1;by} DOM\\\\Paul \\{x\\}");
    EXPECT_EQ(lines->plainText(), L"by DOM\\Paul {x}");
    const auto line = newText(L"old");
    evaluate(*line);
    EXPECT_EQ(line->textString(), L"{\\C1;by} DOM\\Paul {x}");

    const auto definition = appended(OdDbAttributeDefinition::createObject());
    evaluate(*definition);
    EXPECT_EQ(definition->textString(), L"{\\C1;by} DOM\\Paul {x}");
    definition->convertIntoMTextAttributeDefinition(true);
    evaluate(*definition);
    EXPECT_EQ(definition->getMTextAttributeDefinition()->plainText(), L"by DOM\\Paul {x}");
    // One field alone, without a text around it.
    lines->setField(L"TEXT", fieldOf(L"%<\\AcVar LOGINNAME>%"));
    lines->getField(L"TEXT", OdDb::forWrite)->evaluate(OdDbField::kAutomatic, database.get());
    EXPECT_EQ(lines->plainText(), L"DOM\\Paul {x}");
}

TEST_F(FieldTest, CustomPropertiesComeFromHeaderOrRecord) {
    std::string bytes = saved();
    const std::size_t header = bytes.find("  9\n$HANDSEED");
    ASSERT_NE(header, std::string::npos);
    bytes.insert(header,
                 "  9\n$CUSTOMPROPERTYTAG\n  1\nClient\n  9\n$CUSTOMPROPERTY\n  1\nSmith\n"
                 "  9\n$CUSTOMPROPERTYTAG\n  1\nSite No\n  9\n$CUSTOMPROPERTY\n  1\n17\n");
    database = OdDbDatabase::readBytes(bytes, L"again.dxf");
    EXPECT_EQ(shown(L"%<\\AcVar CustomDP.Client>%"), L"Smith");
    EXPECT_EQ(shown(L"%<\\AcVar CustomDP.site no>%"), L"17");
    EXPECT_EQ(shown(L"%<\\AcVar CustomDP.Other>%"), L"####");

    // Older drawings keep all of them in a record of the named objects.
    bytes = saved();
    const std::string root = database->namedObjectsDictionaryId().handle().ascii();
    const std::size_t entry = bytes.find("  3\n", bytes.find("\n  5\n" + root + "\n"));
    bytes.insert(entry, "  3\nDWGPROPS\n350\nFEED\n");
    const std::size_t place = bytes.rfind("  0\nENDSEC\n");
    bytes.insert(place, "  0\nXRECORD\n  5\nFEED\n330\n" + root +
                            "\n100\nAcDbXrecord\n  1\nDWGPROPS COOKIE\n  2\nOld title\n  3\n\n  4\nAnn\n"
                            "  8\nJo\n300\nArea=north=1\n301\n=\n 40\n0.0\n  1\nhttp://base\n");
    database = OdDbDatabase::readBytes(bytes, L"again.dxf");
    EXPECT_EQ(shown(L"%<\\AcVar Title>%"), L"Old title");
    EXPECT_EQ(shown(L"%<\\AcVar Author>%"), L"Ann");
    EXPECT_EQ(shown(L"%<\\AcVar HyperlinkBase>%"), L"http://base");
    EXPECT_EQ(shown(L"%<\\AcVar CustomDP.Area>%"), L"north=1");
    EXPECT_EQ(shown(L"%<\\AcVar CustomDP.Client>%"), L"Smith");
}

TEST_F(FieldTest, DatesAreLocalTime) {
    EXPECT_EQ(shown(L"%<\\AcVar Date \\f \"yyyy-MM-dd HH:mm:ss\">%"), L"2024-07-09 15:04:05");
    database->setUtcOffset(10 * 3600);
    EXPECT_EQ(shown(L"%<\\AcVar Date \\f \"dddd d MMM, h:mm tt\">%"), L"Wednesday 10 Jul, 1:04 AM");
    database->setHeaderReal("$TDCREATE", 40, 2451545.25);
    database->setHeaderReal("$TDUPDATE", 40, 2451546.0);
    EXPECT_EQ(shown(L"%<\\AcVar CreateDate \\f \"M/d/yyyy H:mm\">%"), L"1/1/2000 18:00");
    EXPECT_EQ(shown(L"%<\\AcVar SaveDate>%"), L"1/2/2000");
    database->setHeaderReal("$TDCREATE", 40, 0);
    EXPECT_EQ(shown(L"%<\\AcVar CreateDate>%"), L"####");
}

TEST_F(FieldTest, FileNames) {
    database = OdDbDatabase::readBytes(saved(), L"/plans/north wing.dxf");
    EXPECT_EQ(shown(L"%<\\AcVar Filename \\f \"%fn6\">%"), L"north wing.dxf");
    EXPECT_EQ(shown(L"%<\\AcVar Filename \\f \"%fn2%tc4\">%"), L"North Wing");
    EXPECT_EQ(shown(L"%<\\AcVar Filesize>%"), L"####");
}

TEST_F(FieldTest, PropertiesOfObjects) {
    const auto handleText = [](const OdDbObjectPtr& object) { return std::to_wstring(object->handle().value()); };
    const auto property = [&](const OdDbObjectPtr& object, const OdString& name) {
        return shown(L"%<\\AcObjProp Object(%<\\_ObjId " + handleText(object) + L">%)." + name + L">%");
    };
    const auto line = appended(OdDbLine::createObject());
    line->setStartPoint({1, 1, 0});
    line->setEndPoint({4, 5, 0});
    line->setLayer(L"0");
    EXPECT_EQ(property(line, L"Length"), L"5.0000");
    EXPECT_EQ(property(line, L"EndPoint \\f \"%lu2%pr1%pt3\""), L"4.0,5.0");
    EXPECT_EQ(property(line, L"Delta"), L"3.0000,4.0000,0.0000");
    EXPECT_EQ(property(line, L"Angle \\f \"%au0%pr2\""), L"53.13");
    EXPECT_EQ(property(line, L"layer"), L"0");
    EXPECT_EQ(property(line, L"Color"), L"ByLayer");
    EXPECT_EQ(property(line, L"ObjectName"), L"AcDbLine");
    EXPECT_EQ(property(line, L"Radius"), L"####");

    const auto circle = appended(OdDbCircle::createObject());
    circle->setRadius(2);
    circle->setCenter({1, 2, 3});
    EXPECT_EQ(property(circle, L"Area \\f \"%lu2%pr2%ps[,m2]\""), L"12.57m2");
    EXPECT_EQ(property(circle, L"Circumference"), L"12.5664");
    EXPECT_EQ(property(circle, L"Length"), L"12.5664");
    EXPECT_EQ(property(circle, L"Diameter"), L"4.0000");
    EXPECT_EQ(property(circle, L"Center"), L"1.0000,2.0000,3.0000");

    // From 270 to 90 degrees: through zero.
    const auto arc = appended(OdDbArc::createObject());
    arc->setRadius(2);
    arc->setAngles(1.5 * kPi, 0.5 * kPi);
    EXPECT_EQ(property(arc, L"Length"), L"6.2832");
    EXPECT_EQ(property(arc, L"TotalAngle"), L"180");
    EXPECT_EQ(property(arc, L"Area"), L"6.2832");
    EXPECT_EQ(property(arc, L"EndPoint"), L"0.0000,2.0000,0.0000");

    // A square of 2 with a half circle outwards on its last side.
    const auto outline = appended(OdDbPolyline::createObject());
    const OdGePoint2d kCorners[] = {{0, 0}, {2, 0}, {2, 2}, {0, 2}};
    for (std::size_t i = 0; i < 4; ++i) outline->addVertexAt(i, {kCorners[i], i == 3 ? 1.0 : 0.0, -1, -1, 0});
    outline->setClosed(true);
    EXPECT_EQ(property(outline, L"Area"), L"5.5708");
    EXPECT_EQ(property(outline, L"Length"), L"9.1416");
    EXPECT_EQ(property(outline, L"Closed \\f \"%bl1\""), L"Yes");
    outline->setClosed(false);
    EXPECT_EQ(property(outline, L"Area"), L"4.0000");
    EXPECT_EQ(property(outline, L"Length"), L"6.0000");

    const auto text = newText(L"Hall");
    text->setHeight(2.5);
    text->setRotation(kPi / 6);
    text->setPosition({7, 8, 0});
    EXPECT_EQ(property(text, L"TextString \\f \"%tc1\""), L"HALL");
    EXPECT_EQ(property(text, L"Height"), L"2.5000");
    EXPECT_EQ(property(text, L"Rotation"), L"30");
    EXPECT_EQ(property(text, L"InsertionPoint"), L"7.0000,8.0000,0.0000");
    EXPECT_EQ(property(database->findLayer(L"0").open(), L"Name"), L"0");

    // The forms that are no property, and an object that is gone.
    EXPECT_EQ(property(text, L"Nothing"), L"####");
    EXPECT_EQ(shown(L"%<\\AcObjProp Object(%<\\_ObjId " + handleText(text) + L">%)>%"), L"####");
    EXPECT_EQ(shown(L"%<\\AcObjProp Object(%<\\_ObjId " + handleText(text) + L">%,1).Height>%"), L"2.5000");
    EXPECT_EQ(shown(L"%<\\AcObjProp Object(%<\\_ObjIdx 3>%).Height>%"), L"####");
    EXPECT_EQ(shown(L"%<\\AcObjProp Object(?BlockRefId,1).Name>%"), L"####");
    text->erase();
    EXPECT_EQ(property(text, L"Height"), L"####");
}

TEST_F(FieldTest, ArithmeticOnOtherFields) {
    const auto circle = appended(OdDbCircle::createObject());
    circle->setRadius(3);
    const OdString area =
        L"%<\\AcObjProp Object(%<\\_ObjId " + std::to_wstring(circle->handle().value()) + L">%).Radius>%";
    EXPECT_EQ(shown(L"%<\\AcExpr (" + area + L"*2+1)>%"), L"7.0000");
    EXPECT_EQ(shown(L"%<\\AcExpr (%<\\AcExpr 1/3>%*3) \\f \"%lu2%pr8\">%"), L"1.00000000");
    EXPECT_EQ(shown(L"%<\\AcExpr (1/0)>%"), L"####");
    EXPECT_EQ(shown(L"%<\\AcExpr (%<\\AcVar Title>%+1)>%"), L"####");
    database->setHeaderText("$TITLE", 1, L"41");
    EXPECT_EQ(shown(L"%<\\AcExpr (%<\\AcVar Title>%+1) \\f \"%lu2%pr0\">%"), L"42");
    // Without a format the drawing's units count.
    database->setHeaderInteger("$LUNITS", 70, 4);
    database->setHeaderInteger("$LUPREC", 70, 2);
    EXPECT_EQ(shown(L"%<\\AcExpr 30.25>%"), L"2'-6 1/4\"");
}

TEST_F(FieldTest, AnObjectThatAFieldNamesIsStoredByItsHandle) {
    const auto circle = appended(OdDbCircle::createObject());
    circle->setRadius(3);
    const auto text = newTextWithField(L"R = %<\\AcObjProp Object(%<\\_ObjId " +
                                       std::to_wstring(circle->handle().value()) + L">%).Radius \\f \"%lu2%pr0\">%");
    EXPECT_EQ(text->textString(), L"R = 3");
    const OdDbDatabasePtr again = OdDbDatabase::readBytes(saved(), L"again.dxf");
    const auto read = again->getObjectId(text->handle()).openAs<OdDbText>();
    again->getObjectId(circle->handle()).openAs<OdDbCircle>(OdDb::forWrite)->setRadius(8);
    EXPECT_TRUE(read->getField(L"TEXT")->evaluate(OdDbField::kAutomatic, again.get()));
    EXPECT_EQ(read->textString(), L"R = 8");
    EXPECT_TRUE(contains(again->writeBytes(), "\n 97\n1\n331\n" + circle->handle().ascii() + "\n"));
}

}  // namespace
