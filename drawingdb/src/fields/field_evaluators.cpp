#include "drawingdb/src/fields/field_evaluators.h"

#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>

#include "base/number.h"
#include "base/paths.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/database.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/layer.h"
#include "drawingdb/layout.h"
#include "drawingdb/mtext.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/fields/expression.h"
#include "drawingdb/symbol_table.h"
#include "drawingdb/text.h"

namespace drawingdb {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kJulianEpoch = 2440587.5;  // 1970-01-01
constexpr double kDaySeconds = 86400;

using Result = std::optional<FieldResult>;

// ---------------------------------------------------------------------------------------------------------------------
// Values

FieldResult text(const OdString& value) {
    FieldResult result;
    result.value.type = OdDbFieldValue::kString;
    result.value.text = value;
    return result;
}

FieldResult real(double value, Quantity quantity = Quantity::none) {
    FieldResult result;
    result.value.type = OdDbFieldValue::kDouble;
    result.value.real = value;
    result.quantity = quantity;
    return result;
}
FieldResult length(double value) { return real(value, Quantity::length); }
FieldResult angle(double radians) { return real(radians, Quantity::angle); }

// Files hold 32 bits of a whole number.
FieldResult whole(std::int64_t value) {
    if (value > std::numeric_limits<std::int32_t>::max() || value < std::numeric_limits<std::int32_t>::min())
        return real(static_cast<double>(value));
    FieldResult result;
    result.value.type = OdDbFieldValue::kLong;
    result.value.integer = value;
    return result;
}

FieldResult date(double julian) {
    FieldResult result;
    result.value.type = OdDbFieldValue::kDate;
    result.value.real = julian;
    return result;
}

FieldResult point(double x, double y, double z) {
    FieldResult result;
    result.value.type = OdDbFieldValue::k3dPoint;
    result.value.point[0] = x;
    result.value.point[1] = y;
    result.value.point[2] = z;
    return result;
}
FieldResult point(const OdGePoint3d& p) { return point(p.x, p.y, p.z); }
FieldResult point(const OdGeVector3d& v) { return point(v.x, v.y, v.z); }

std::optional<double> numberOf(const OdDbFieldValue& value) {
    switch (value.type) {
        case OdDbFieldValue::kLong:
            return static_cast<double>(value.integer);
        case OdDbFieldValue::kDouble:
        case OdDbFieldValue::kDate:
            return value.real;
        case OdDbFieldValue::kString:
            return base::parseReal(value.text);
        default:
            return {};
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// AcVar: properties of the document, dates, system variables

// Properties that drawings keep in their header or, as older ones do, in the record DWGPROPS of the named objects.
struct DocumentProperty {
    std::wstring_view name;
    std::string_view headerVariable;
    int recordCode;
};
constexpr DocumentProperty kDocumentProperties[] = {
    {L"Title", "$TITLE", 2},
    {L"Subject", "$SUBJECT", 3},
    {L"Author", "$AUTHOR", 4},
    {L"Comments", "$COMMENTS", 6},
    {L"Keywords", "$KEYWORDS", 7},
    {L"LastSavedBy", "$LASTSAVEDBY", 8},
    {L"RevisionNumber", "$REVISIONNUMBER", 9},
    {L"HyperlinkBase", "$HYPERLINKBASE", 1},
};

// Calls `each` with code and text of the groups of the record DWGPROPS until it returns true.
void walkPropertyRecord(const OdDbDatabase& database, const std::function<bool(int, const OdString&)>& each) {
    const auto named = database.namedObjectsDictionaryId().openIf<OdDbDictionary>();
    const OdDbObjectId record = named ? named->getAt(L"DWGPROPS") : OdDbObjectId();
    if (!record.isValid()) return;
    Core& core = database.core();
    GroupCursor cursor(core.bytesOf(*record.stub()), core.format);
    Group group;
    bool inside = false;
    while (cursor.next(group))
        if (group.code == 100)
            inside = group.value == "AcDbXrecord";
        else if (inside && valueKind(group.code) == ValueKind::text &&
                 each(group.code, decodeText(group.value, core.format)))
            return;
}

OdString documentProperty(const OdDbDatabase& database, const DocumentProperty& property) {
    OdString value = database.headerText(property.headerVariable);
    if (!value.empty()) return value;
    walkPropertyRecord(database, [&](int code, const OdString& text) {
        if (code != property.recordCode || text == L"DWGPROPS COOKIE") return false;
        value = text;
        return true;
    });
    return value;
}

// A property that the user has named. The header has pairs of a tag and a value, the record texts "name=value".
std::optional<OdString> customProperty(const OdDbDatabase& database, std::wstring_view name) {
    Core& core = database.core();
    std::optional<OdString> value;
    if (Stub* header = core.section(drawingdb::Section::header)) {
        GroupCursor cursor(core.bytesOf(*header), core.format);
        Group group;
        bool tagged = false;
        std::string_view variable;
        while (cursor.next(group) && !value)
            if (group.code == 9)
                variable = group.value;
            else if (variable == "$CUSTOMPROPERTYTAG")
                tagged = base::equalsNoCase(decodeText(group.value, core.format), name);
            else if (variable == "$CUSTOMPROPERTY" && tagged)
                value = decodeText(group.value, core.format);
    }
    if (value) return value;
    walkPropertyRecord(database, [&](int code, const OdString& text) {
        const std::size_t equals = text.find(L'=');
        if (code < 300 || code > 309 || equals == OdString::npos || !base::equalsNoCase(text.substr(0, equals), name))
            return false;
        value = text.substr(equals + 1);
        return true;
    });
    return value;
}

Result headerDate(const OdDbDatabase& database, std::string_view variable) {
    const double julian = database.headerReal(variable, 0);
    return julian > 0 ? Result(date(julian)) : Result();
}

Result fileSize(const OdDbDatabase& database) {
    if (database.fileName().empty()) return {};
    std::error_code error;
    const auto size = std::filesystem::file_size(base::toPath(database.fileName()), error);
    return error ? Result() : Result(whole(static_cast<std::int64_t>(size)));
}

Result systemVariable(const OdDbDatabase& database, const OdString& name) {
    OdString value;
    return database.systemVariable(name, value) ? Result(text(value)) : Result();
}

struct Variable {
    std::wstring_view name;
    Result (*value)(const OdDbDatabase& database);
};
constexpr Variable kVariables[] = {
    {L"Filename",
     [](const OdDbDatabase& d) {
         return d.fileName().empty() ? Result() : Result(text(base::absolutePath(d.fileName())));
     }},
    {L"Filesize", fileSize},
    {L"CreateDate", [](const OdDbDatabase& d) { return headerDate(d, "$TDCREATE"); }},
    {L"SaveDate", [](const OdDbDatabase& d) { return headerDate(d, "$TDUPDATE"); }},
    {L"PlotDate",
     [](const OdDbDatabase& d) -> Result { return systemVariable(d, L"PLOTDATE").value_or(text(OdString())); }},
    {L"Date",
     [](const OdDbDatabase& d) -> Result {
         return date(kJulianEpoch + static_cast<double>(d.now() + d.utcOffset()) / kDaySeconds);
     }},
    {L"Login", [](const OdDbDatabase& d) { return systemVariable(d, L"LOGINNAME"); }},
};

Result evaluateVariable(const FieldInput& input) {
    if (!input.database) return {};
    const OdDbDatabase& database = *input.database;
    const OdString name = unquoted(input.code.body);
    for (const Variable& variable : kVariables)
        if (base::equalsNoCase(variable.name, name)) return variable.value(database);
    for (const DocumentProperty& property : kDocumentProperties)
        if (base::equalsNoCase(property.name, name)) return text(documentProperty(database, property));
    constexpr std::wstring_view kCustom = L"CustomDP.";
    if (base::startsWithNoCase(name, kCustom)) {
        const auto value = customProperty(database, std::wstring_view(name).substr(kCustom.size()));
        return value ? Result(text(*value)) : Result();
    }
    if (auto value = systemVariable(database, name)) return value;
    const std::string variable = '$' + base::toUtf8(base::toUpper(name));
    return database.hasHeaderVariable(variable) ? Result(text(database.headerText(variable))) : Result();
}

// ---------------------------------------------------------------------------------------------------------------------
// AcObjProp: properties of objects

struct Property {
    std::wstring_view name;
    const OdRxClass* owner;
    std::function<FieldResult(const OdDbObject&)> value;
};

// A property of the class T; `value` takes a const T&.
template <class T, class Value>
Property of(std::wstring_view name, Value value) {
    return {name, T::desc(), [value](const OdDbObject& object) { return value(static_cast<const T&>(object)); }};
}

double curveLength(const OdDbCurve& curve) {
    return curve.distAtParam(curve.endParam()) - curve.distAtParam(curve.startParam());
}

double arcAngle(const OdDbArc& arc) {
    const double sweep = std::fmod(arc.endAngle() - arc.startAngle(), 2 * kPi);
    return sweep > 0 ? sweep : sweep + 2 * kPi;
}

// Of the outline that a straight line closes.
double polylineArea(const OdDbPolyline& polyline) {
    double area = 0;
    const std::size_t count = polyline.numVerts();
    for (std::size_t i = 0; i < count; ++i) {
        const bool closing = i + 1 == count;
        const OdDbPolyline::Vertex& from = polyline.vertexAt(i);
        const OdGePoint2d& to = polyline.vertexAt(closing ? 0 : i + 1).point;
        area += (from.point.x * to.y - to.x * from.point.y) / 2;
        if (from.bulge == 0 || (closing && !polyline.isClosed())) continue;
        const double sweep = 4 * std::atan(from.bulge);
        const double chord = std::hypot(to.x - from.point.x, to.y - from.point.y);
        const double radius = chord * (1 + from.bulge * from.bulge) / (4 * from.bulge);
        area += radius * radius * (sweep - std::sin(sweep)) / 2;
    }
    return std::fabs(area);
}

OdString lineweightName(int lineweight) {
    switch (lineweight) {
        case -1:
            return L"ByLayer";
        case -2:
            return L"ByBlock";
        case -3:
            return L"Default";
        default:
            return base::widen(base::realToText(lineweight / 100.0)) + L" mm";
    }
}

// The name that files mark a class by: "AcDbCircle".
OdString className(const OdDbObject& object) {
    std::string name = object.isA()->name();
    if (name.starts_with("OdDb")) name.replace(0, 4, "AcDb");
    return base::widen(name);
}

// The first property that fits counts: those of a class stand before those of the class that it is derived from.
const std::vector<Property>& properties() {
    static const std::vector<Property> all = {
        of<OdDbLine>(L"StartPoint", [](const OdDbLine& e) { return point(e.startPoint()); }),
        of<OdDbLine>(L"EndPoint", [](const OdDbLine& e) { return point(e.endPoint()); }),
        of<OdDbLine>(L"Delta", [](const OdDbLine& e) { return point(e.endPoint() - e.startPoint()); }),
        of<OdDbLine>(L"Angle",
                     [](const OdDbLine& e) {
                         const OdGeVector3d delta = e.endPoint() - e.startPoint();
                         return angle(std::atan2(delta.y, delta.x));
                     }),
        of<OdDbLine>(L"Thickness", [](const OdDbLine& e) { return length(e.thickness()); }),

        of<OdDbConstructionLine>(L"BasePoint", [](const OdDbConstructionLine& e) { return point(e.basePoint()); }),
        of<OdDbConstructionLine>(L"DirectionVector", [](const OdDbConstructionLine& e) { return point(e.unitDir()); }),

        of<OdDbPoint>(L"Coordinates", [](const OdDbPoint& e) { return point(e.position()); }),
        of<OdDbPoint>(L"Position", [](const OdDbPoint& e) { return point(e.position()); }),

        of<OdDbArc>(L"StartAngle", [](const OdDbArc& e) { return angle(e.startAngle()); }),
        of<OdDbArc>(L"EndAngle", [](const OdDbArc& e) { return angle(e.endAngle()); }),
        of<OdDbArc>(L"TotalAngle", [](const OdDbArc& e) { return angle(arcAngle(e)); }),
        of<OdDbArc>(L"StartPoint", [](const OdDbArc& e) { return point(e.pointAtParam(e.startParam())); }),
        of<OdDbArc>(L"EndPoint", [](const OdDbArc& e) { return point(e.pointAtParam(e.endParam())); }),
        of<OdDbArc>(L"ArcLength", [](const OdDbArc& e) { return length(e.radius() * arcAngle(e)); }),
        of<OdDbArc>(L"Length", [](const OdDbArc& e) { return length(e.radius() * arcAngle(e)); }),
        // Between the arc and its chord.
        of<OdDbArc>(L"Area",
                    [](const OdDbArc& e) {
                        const double sweep = arcAngle(e);
                        return real(e.radius() * e.radius() * (sweep - std::sin(sweep)) / 2, Quantity::area);
                    }),

        of<OdDbCircle>(L"Center", [](const OdDbCircle& e) { return point(e.center()); }),
        of<OdDbCircle>(L"Radius", [](const OdDbCircle& e) { return length(e.radius()); }),
        of<OdDbCircle>(L"Diameter", [](const OdDbCircle& e) { return length(2 * e.radius()); }),
        of<OdDbCircle>(L"Circumference", [](const OdDbCircle& e) { return length(2 * kPi * e.radius()); }),
        of<OdDbCircle>(L"Normal", [](const OdDbCircle& e) { return point(e.normal()); }),
        of<OdDbCircle>(L"Area",
                       [](const OdDbCircle& e) { return real(kPi * e.radius() * e.radius(), Quantity::area); }),

        of<OdDbPolyline>(L"Area", [](const OdDbPolyline& e) { return real(polylineArea(e), Quantity::area); }),
        of<OdDbPolyline>(L"Closed", [](const OdDbPolyline& e) { return whole(e.isClosed()); }),
        of<OdDbPolyline>(L"Elevation", [](const OdDbPolyline& e) { return length(e.elevation()); }),

        of<OdDbCurve>(L"Length", [](const OdDbCurve& e) { return length(curveLength(e)); }),
        of<OdDbCurve>(L"StartPoint", [](const OdDbCurve& e) { return point(e.pointAtParam(e.startParam())); }),
        of<OdDbCurve>(L"EndPoint", [](const OdDbCurve& e) { return point(e.pointAtParam(e.endParam())); }),

        of<OdDbAttributeText>(L"TagString", [](const OdDbAttributeText& e) { return text(e.tag()); }),
        of<OdDbAttributeDefinition>(L"PromptString", [](const OdDbAttributeDefinition& e) { return text(e.prompt()); }),
        of<OdDbText>(L"TextString", [](const OdDbText& e) { return text(e.textString()); }),
        of<OdDbText>(L"Height", [](const OdDbText& e) { return length(e.height()); }),
        of<OdDbText>(L"Rotation", [](const OdDbText& e) { return angle(e.rotation()); }),
        of<OdDbText>(L"ObliqueAngle", [](const OdDbText& e) { return angle(e.oblique()); }),
        of<OdDbText>(L"ScaleFactor", [](const OdDbText& e) { return real(e.widthFactor()); }),
        of<OdDbText>(L"StyleName", [](const OdDbText& e) { return text(e.textStyleName()); }),
        of<OdDbText>(L"Position", [](const OdDbText& e) { return point(e.position()); }),
        of<OdDbText>(L"InsertionPoint", [](const OdDbText& e) { return point(e.position()); }),
        of<OdDbText>(L"TextAlignmentPoint", [](const OdDbText& e) { return point(e.alignmentPoint()); }),

        of<OdDbMText>(L"TextString", [](const OdDbMText& e) { return text(e.contents()); }),
        of<OdDbMText>(L"Contents", [](const OdDbMText& e) { return text(e.contents()); }),
        of<OdDbMText>(L"Height", [](const OdDbMText& e) { return length(e.textHeight()); }),
        of<OdDbMText>(L"Width", [](const OdDbMText& e) { return length(e.width()); }),
        of<OdDbMText>(L"Rotation", [](const OdDbMText& e) { return angle(e.rotation()); }),
        of<OdDbMText>(L"StyleName", [](const OdDbMText& e) { return text(e.textStyleName()); }),
        of<OdDbMText>(L"Position", [](const OdDbMText& e) { return point(e.location()); }),
        of<OdDbMText>(L"InsertionPoint", [](const OdDbMText& e) { return point(e.location()); }),

        of<OdDbBlockReference>(L"Name", [](const OdDbBlockReference& e) { return text(e.blockName()); }),
        of<OdDbBlockReference>(L"EffectiveName", [](const OdDbBlockReference& e) { return text(e.blockName()); }),
        of<OdDbBlockReference>(L"Position", [](const OdDbBlockReference& e) { return point(e.position()); }),
        of<OdDbBlockReference>(L"InsertionPoint", [](const OdDbBlockReference& e) { return point(e.position()); }),
        of<OdDbBlockReference>(L"Rotation", [](const OdDbBlockReference& e) { return angle(e.rotation()); }),
        of<OdDbBlockReference>(L"XScaleFactor", [](const OdDbBlockReference& e) { return real(e.scaleFactors().sx); }),
        of<OdDbBlockReference>(L"YScaleFactor", [](const OdDbBlockReference& e) { return real(e.scaleFactors().sy); }),
        of<OdDbBlockReference>(L"ZScaleFactor", [](const OdDbBlockReference& e) { return real(e.scaleFactors().sz); }),

        of<OdDbEntity>(L"Layer", [](const OdDbEntity& e) { return text(e.layer()); }),
        of<OdDbEntity>(L"Color", [](const OdDbEntity& e) { return text(e.color().colorNameForDisplay()); }),
        of<OdDbEntity>(L"TrueColor", [](const OdDbEntity& e) { return text(e.color().colorNameForDisplay()); }),
        of<OdDbEntity>(L"Linetype", [](const OdDbEntity& e) { return text(e.linetype()); }),
        of<OdDbEntity>(L"LinetypeScale", [](const OdDbEntity& e) { return real(e.linetypeScale()); }),
        of<OdDbEntity>(L"Lineweight", [](const OdDbEntity& e) { return text(lineweightName(e.lineweight())); }),
        of<OdDbEntity>(L"Visible", [](const OdDbEntity& e) { return whole(!e.isInvisibleEntity()); }),

        of<OdDbLayerTableRecord>(L"Color",
                                 [](const OdDbLayerTableRecord& r) { return text(r.color().colorNameForDisplay()); }),
        of<OdDbLayerTableRecord>(L"Linetype", [](const OdDbLayerTableRecord& r) { return text(r.linetype()); }),
        of<OdDbLayerTableRecord>(L"Lineweight",
                                 [](const OdDbLayerTableRecord& r) { return text(lineweightName(r.lineweight())); }),
        of<OdDbLayerTableRecord>(L"Freeze", [](const OdDbLayerTableRecord& r) { return whole(r.isFrozen()); }),
        of<OdDbLayerTableRecord>(L"Lock", [](const OdDbLayerTableRecord& r) { return whole(r.isLocked()); }),
        of<OdDbLayerTableRecord>(L"LayerOn", [](const OdDbLayerTableRecord& r) { return whole(!r.isOff()); }),
        of<OdDbSymbolTableRecord>(L"Name", [](const OdDbSymbolTableRecord& r) { return text(r.name()); }),
        of<OdDbLayout>(L"Name", [](const OdDbLayout& l) { return text(l.layoutName()); }),

        of<OdDbObject>(L"ObjectName", [](const OdDbObject& o) { return text(className(o)); }),
        of<OdDbObject>(L"Handle", [](const OdDbObject& o) { return text(o.handle().text()); }),
    };
    return all;
}

// `Object(%<\_ObjIdx 0>%).Area`; behind the marker there may be a comma and a number, which say how the object is
// meant.
Result evaluateObjectProperty(const FieldInput& input) {
    constexpr std::wstring_view kObject = L"Object(";
    const std::wstring_view body = input.code.body;
    if (!base::startsWithNoCase(body, kObject)) return {};
    const std::vector<FieldSpan> markers = findFields(body);
    if (markers.empty() || markers[0].begin != kObject.size() || markers[0].kind != FieldSpan::objectIndex) return {};
    const std::size_t close = body.find(L')', markers[0].end);
    if (close == std::wstring_view::npos || body.substr(close + 1, 1) != L".") return {};
    const std::wstring_view name = base::trimmed(body.substr(close + 2));
    if (markers[0].number >= input.objects.size()) return {};
    const OdDbObjectPtr object = input.objects[static_cast<std::size_t>(markers[0].number)].open();
    if (!object) return {};
    for (const Property& property : properties())
        if (base::equalsNoCase(property.name, name) && object->isKindOf(property.owner)) return property.value(*object);
    return {};
}

// ---------------------------------------------------------------------------------------------------------------------
// AcExpr: arithmetic

Result evaluateArithmetic(const FieldInput& input) {
    const auto value = evaluateExpression(input.code.body, [&](std::size_t child) {
        return child < input.children.size() ? numberOf(input.children[child]) : std::optional<double>();
    });
    return value ? Result(real(*value)) : Result();
}

constexpr struct {
    std::wstring_view name;
    FieldEvaluator evaluator;
} kEvaluators[] = {
    {L"AcVar", evaluateVariable},
    {L"AcObjProp", evaluateObjectProperty},
    {L"AcExpr", evaluateArithmetic},
};

}  // namespace

FieldEvaluator findFieldEvaluator(std::wstring_view evaluator) {
    const std::wstring_view name = withoutVersion(evaluator);
    for (const auto& known : kEvaluators)
        if (known.name == name) return known.evaluator;
    return nullptr;
}

UnitSettings unitSettings(const OdDbDatabase* database) {
    UnitSettings units;
    if (!database) return units;
    const auto setting = [&](std::string_view variable, int& value, int least, int most) {
        const std::int64_t found = database->headerInteger(variable, value);
        if (found >= least && found <= most) value = static_cast<int>(found);
    };
    setting("$LUNITS", units.linear, 1, 5);
    setting("$LUPREC", units.linearPrecision, 0, 8);
    setting("$AUNITS", units.angular, 0, 4);
    setting("$AUPREC", units.angularPrecision, 0, 8);
    return units;
}

}  // namespace drawingdb
