// The tables of the system variables, and how a value is typed, checked and shown. A new variable is a row: of the
// header where the drawing keeps it, of the document where it is worked out, of the session where it is gone at the
// end; what belongs to another part of the host is added by its owner.
#include "torvelhost/session/variables.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <memory>

#include "base/number.h"
#include "base/paths.h"
#include "drawingdb/viewport.h"
#include "torvelhost/lines/units.h"

namespace host {
namespace {

constexpr double kJulianDayOf1970 = 2440587.5;
constexpr double kSecondsPerDay = 86400.0;

enum class Kind { kText, kInteger, kReal, kPoint };

// What refuses a text says why, or nothing.
std::wstring unlessLayer(const OdDbDatabase& database, const std::wstring& name) {
    return database.findLayer(name) ? L"" : L"the drawing has no layer \"" + name + L"\"";
}
std::wstring unlessTextStyle(const OdDbDatabase& database, const std::wstring& name) {
    return database.findTextStyle(name) ? L"" : L"the drawing has no text style \"" + name + L"\"";
}

// A variable that stands in the header under the same name.
struct HeaderVariable {
    const char* name;
    Kind kind;
    int group;  // 0: cannot be set
    double standard = 0;
    std::int64_t low = 0, high = 0;  // of integers; equal: any
    const wchar_t* standardText = L"";
    std::wstring (*refusal)(const OdDbDatabase& database, const std::wstring& text) = nullptr;
};
const HeaderVariable kHeaderVariables[] = {
    {"ANGBASE", Kind::kReal, 50},
    {"ANGDIR", Kind::kInteger, 70, 0, 0, 1},
    {"ATTMODE", Kind::kInteger, 70, 1, 0, 2},
    {"AUNITS", Kind::kInteger, 70, 0, 0, 4},
    {"AUPREC", Kind::kInteger, 70, 0, 0, 8},
    {"CECOLOR", Kind::kInteger, 62, 256, 0, 256},
    {"CELTSCALE", Kind::kReal, 40, 1},
    {"CELTYPE", Kind::kText, 6, 0, 0, 0, L"ByLayer"},
    {"CELWEIGHT", Kind::kInteger, 370, -1, -3, 211},
    {"CLAYER", Kind::kText, 8, 0, 0, 0, L"0", unlessLayer},
    {"DIMSCALE", Kind::kReal, 40, 1},
    {"DWGCODEPAGE", Kind::kText, 0, 0, 0, 0, L"ANSI_1252"},
    {"FILLMODE", Kind::kInteger, 70, 1, 0, 1},
    {"INSBASE", Kind::kPoint, 10},
    {"INSUNITS", Kind::kInteger, 70, 0, 0, 24},
    {"LTSCALE", Kind::kReal, 40, 1},
    {"LUNITS", Kind::kInteger, 70, kDecimal, kScientific, kFractional},
    {"LUPREC", Kind::kInteger, 70, 4, 0, 8},
    {"MEASUREMENT", Kind::kInteger, 70, 0, 0, 1},
    {"MIRRTEXT", Kind::kInteger, 70, 0, 0, 1},
    {"PDMODE", Kind::kInteger, 70, 0, 0, 100},
    {"PDSIZE", Kind::kReal, 40},
    {"TEXTSIZE", Kind::kReal, 40, 0.2},
    {"TEXTSTYLE", Kind::kText, 7, 0, 0, 0, L"Standard", unlessTextStyle},
    {"THICKNESS", Kind::kReal, 40},
};

std::string narrowName(std::wstring_view name) { return "$" + base::toUtf8(base::toUpper(name)); }

std::optional<OdGePoint3d> parseCoordinates(std::wstring_view text) {
    const auto typed = parsePoint(text);
    if (!typed || typed->relative) return std::nullopt;
    return OdGePoint3d(typed->value.x, typed->value.y, typed->value.z);
}

const wchar_t* kindName(const VariableValue& value) {
    static const wchar_t* const kNames[] = {L"a text", L"an integer", L"a number", L"a point"};
    return kNames[value.index()];
}

std::optional<VariableValue> parseLike(const VariableValue& model, std::wstring_view text, std::wstring& reason) {
    if (std::holds_alternative<std::wstring>(model)) return VariableValue(std::wstring(text));
    if (std::holds_alternative<std::int64_t>(model)) {
        if (const auto number = base::parseInteger(text)) return VariableValue(*number);
    } else if (std::holds_alternative<double>(model)) {
        if (const auto number = textToLength(text)) return VariableValue(*number);
    } else if (const auto point = parseCoordinates(text)) {
        return VariableValue(*point);
    }
    reason = L"\"" + std::wstring(text) + L"\" is not " + kindName(model);
    return std::nullopt;
}

std::wstring rangeRefusal(const VariableValue& value, std::int64_t low, std::int64_t high) {
    const auto* number = std::get_if<std::int64_t>(&value);
    if (!number || low == high || (*number >= low && *number <= high)) return L"";
    return L"an integer between " + std::to_wstring(low) + L" and " + std::to_wstring(high) + L" is wanted";
}

// ---- variables of the session that switch something on or off

struct SwitchVariable {
    const wchar_t* name;
    std::int64_t standard;
};
const SwitchVariable kSwitches[] = {{L"FILEDIA", 1}, {L"ATTIPE", 0},      {L"LWUNITS", 1},  {L"ATTREQ", 1},
                                    {L"ATTDIA", 0},  {L"EXTRACTUTF8", 0}, {L"PLOTFONTS", 1}};

// ---- variables that the document works out

std::wstring setLayout(Document& document, const VariableValue& value) {
    const auto& name = std::get<std::wstring>(value);
    return document.database()->setCurrentLayout(name) ? L"" : L"the drawing has no layout \"" + name + L"\"";
}

VariableValue isModelCurrent(Document& document) {
    return std::int64_t{document.database()->currentSpaceId() == document.database()->modelSpaceId()};
}
std::wstring setModelCurrent(Document& document, const VariableValue& value) {
    const std::int64_t wanted = std::get<std::int64_t>(value);
    if (wanted != 0 && wanted != 1) return L"0 or 1 is wanted";
    if (value == isModelCurrent(document)) return L"";
    const std::vector<OdString> layouts = document.database()->layoutNames();
    if (wanted == 0 && layouts.size() < 2) return L"the drawing has no paper space layout";
    document.database()->setCurrentLayout(wanted == 1 ? OdString(L"Model") : layouts[1]);
    return L"";
}

constexpr std::int64_t kPaperViewport = 1, kModelViewport = 2;

VariableValue viewportNumber(Document& document) {
    const auto viewport = document.database()->activeViewportId().openIf<OdDbViewport>();
    return viewport ? std::int64_t{viewport->number()} : kModelViewport;
}
std::wstring setViewportNumber(Document& document, const VariableValue& value) {
    const std::int64_t wanted = std::get<std::int64_t>(value);
    if (wanted == kPaperViewport) {
        document.database()->setActiveViewport({});
        return L"";
    }
    for (OdDbObjectId id : document.floatingViewports()) {
        if (id.openAs<OdDbViewport>()->number() != wanted) continue;
        document.database()->setActiveViewport(id);
        return L"";
    }
    return L"the current layout has no viewport " + std::to_wstring(wanted);
}

// The user coordinate system belongs to the active space, and the elevation in it.
std::wstring setUcsPart(Document& document, const char* part, const OdGePoint3d& point) {
    document.database()->setHeaderPoint((document.isModelSpaceActive() ? "$UCS" : "$PUCS") + std::string(part), point);
    return L"";
}
std::wstring setUcsAxis(Document& document, const char* part, const OdGePoint3d& point) {
    return point.asVector().isZeroLength() ? L"a direction has a length" : setUcsPart(document, part, point);
}

OdGePoint3d pointOf(const OdGeVector3d& vector) { return {vector.x, vector.y, vector.z}; }
const OdGePoint3d& pointOf(const VariableValue& value) { return std::get<OdGePoint3d>(value); }

struct DocumentVariable {
    const wchar_t* name;
    VariableValue (*get)(Document& document);
    std::wstring (*set)(Document& document, const VariableValue& value);  // null: cannot be set
};
const DocumentVariable kDocumentVariables[] = {
    {L"CTAB", [](Document& document) -> VariableValue { return document.database()->currentLayoutName(); }, setLayout},
    {L"CVPORT", viewportNumber, setViewportNumber},
    {L"DBMOD", [](Document& document) -> VariableValue { return std::int64_t{document.database()->isModified()}; },
     nullptr},
    {L"ELEVATION", [](Document& document) -> VariableValue { return document.elevation(); },
     [](Document& document, const VariableValue& value) -> std::wstring {
         document.database()->setHeaderReal(document.elevationName(), 40, std::get<double>(value));
         return L"";
     }},
    {L"LASTPOINT", [](Document& document) -> VariableValue { return document.lastPoint(); },
     [](Document& document, const VariableValue& value) -> std::wstring {
         document.setLastPoint(pointOf(value));
         return L"";
     }},
    {L"TILEMODE", isModelCurrent, setModelCurrent},
    {L"UCSORG", [](Document& document) -> VariableValue { return document.ucs().origin(); },
     [](Document& document, const VariableValue& value) { return setUcsPart(document, "ORG", pointOf(value)); }},
    {L"UCSXDIR", [](Document& document) -> VariableValue { return pointOf(document.ucs().xAxis()); },
     [](Document& document, const VariableValue& value) { return setUcsAxis(document, "XDIR", pointOf(value)); }},
    {L"UCSYDIR", [](Document& document) -> VariableValue { return pointOf(document.ucs().yAxis()); },
     [](Document& document, const VariableValue& value) { return setUcsAxis(document, "YDIR", pointOf(value)); }},
};

// ---- dates and users

std::optional<VariableValue> parseDateValue(std::wstring_view text, std::wstring& reason) {
    const auto date = parseDate(text);
    if (date) return VariableValue(*date);
    reason = L"\"" + std::wstring(text) + L"\" is no date; give it as 2026-03-01 12:30:00";
    return std::nullopt;
}

int localOffset(std::int64_t now) {
    const auto time = static_cast<std::time_t>(now);
    const std::tm* utc = std::gmtime(&time);
    if (!utc) return 0;
    std::tm asLocal = *utc;
    asLocal.tm_isdst = -1;
    return static_cast<int>(std::difftime(time, std::mktime(&asLocal)));
}

std::wstring loginName() {
    for (const wchar_t* name : {L"USER", L"USERNAME", L"LOGNAME"})
        if (const auto value = base::environmentVariable(name); value && !value->empty()) return *value;
    return L"user";
}

}  // namespace

std::wstring variableText(const VariableValue& value) {
    if (const auto* text = std::get_if<std::wstring>(&value)) return *text;
    if (const auto* integer = std::get_if<std::int64_t>(&value)) return std::to_wstring(*integer);
    if (const auto* real = std::get_if<double>(&value)) return base::widen(base::realToText(*real));
    const auto& point = std::get<OdGePoint3d>(value);
    return base::widen(base::realToText(point.x) + "," + base::realToText(point.y) + "," + base::realToText(point.z));
}

double julianDate(std::int64_t seconds) { return kJulianDayOf1970 + static_cast<double>(seconds) / kSecondsPerDay; }

std::optional<std::int64_t> parseDate(std::wstring_view text) {
    text = base::trimmed(text);
    if (const auto day = base::parseReal(text)) {
        if (*day < 0 || *day > 1e7) return std::nullopt;
        return std::llround((*day - kJulianDayOf1970) * kSecondsPerDay);
    }
    std::wstring plain(text);
    for (wchar_t& c : plain)
        if (c == L'T' || c == L'-' || c == L':' || c == L' ') c = L',';
    const std::vector<std::wstring> pieces = base::split(plain, L',');
    if (pieces.size() != 3 && pieces.size() != 6) return std::nullopt;
    int numbers[6] = {};
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const auto number = base::parseInteger(std::wstring_view(pieces[i]));
        if (!number || *number < 0 || *number > 9999) return std::nullopt;
        numbers[i] = static_cast<int>(*number);
    }
    using namespace std::chrono;
    const year_month_day date{year{numbers[0]}, month{static_cast<unsigned>(numbers[1])},
                              day{static_cast<unsigned>(numbers[2])}};
    if (!date.ok() || numbers[3] > 23 || numbers[4] > 59 || numbers[5] > 59) return std::nullopt;
    const auto time = sys_days(date) + hours(numbers[3]) + minutes(numbers[4]) + seconds(numbers[5]);
    return duration_cast<seconds>(time.time_since_epoch()).count();
}

Variables::Variables(Document& document) : document_(document) {
    addHeaderRows();
    addSessionRows();
    addDocumentRows();
    OdDbDatabase* database = document_.database();
    database->setSystemVariables([this](const OdString& name, OdString& value) {
        const auto found = get(name);
        if (found) value = variableText(*found);
        return found.has_value();
    });
    database->setClock([this] { return now(); });
    database->setUtcOffset(localOffset(now()));
}

Variables::~Variables() {
    document_.database()->setSystemVariables(nullptr);
    document_.database()->setClock(nullptr);
}

std::int64_t Variables::now() const { return fixedNow_ ? *fixedNow_ : static_cast<std::int64_t>(std::time(nullptr)); }

void Variables::add(const std::wstring& name, Getter get, Setter set, Parser parse) {
    rows_[name] = {std::move(get), std::move(set), parse};
}

void Variables::addSession(const std::wstring& name, VariableValue value, std::int64_t low, std::int64_t high) {
    const auto stored = std::make_shared<VariableValue>(std::move(value));
    add(
        name, [stored] { return *stored; },
        [stored, low, high](const VariableValue& wanted) {
            std::wstring refusal = rangeRefusal(wanted, low, high);
            if (refusal.empty()) *stored = wanted;
            return refusal;
        });
}

void Variables::addHeaderRows() {
    for (const HeaderVariable& variable : kHeaderVariables) {
        OdDbDatabase* database = document_.database();
        const std::string name = std::string("$") + variable.name;
        Getter get = [database, name, &variable]() -> VariableValue {
            switch (variable.kind) {
                case Kind::kInteger:
                    return database->headerInteger(name, static_cast<std::int64_t>(variable.standard));
                case Kind::kReal:
                    return database->headerReal(name, variable.standard);
                case Kind::kPoint:
                    return database->headerPoint(name, OdGePoint3d());
                case Kind::kText:
                    break;
            }
            return database->headerText(name, variable.standardText);
        };
        Setter set = [database, name, &variable](const VariableValue& value) {
            std::wstring refusal = rangeRefusal(value, variable.low, variable.high);
            if (!refusal.empty()) return refusal;
            if (const auto* text = std::get_if<std::wstring>(&value)) {
                if (variable.refusal) refusal = variable.refusal(*database, *text);
                if (refusal.empty()) database->setHeaderText(name, variable.group, *text);
            } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
                database->setHeaderInteger(name, variable.group, *integer);
            } else if (const auto* real = std::get_if<double>(&value)) {
                database->setHeaderReal(name, variable.group, *real);
            } else {
                database->setHeaderPoint(name, std::get<OdGePoint3d>(value));
            }
            return refusal;
        };
        add(base::widen(variable.name), std::move(get), variable.group != 0 ? std::move(set) : nullptr);
    }
}

void Variables::addSessionRows() {
    for (const SwitchVariable& variable : kSwitches) addSession(variable.name, variable.standard, 0, 1);
    addSession(L"LOGINNAME", loginName());

    const OdString& fileName = document_.database()->fileName();
    const std::wstring file = fileName.empty() ? L"" : base::absolutePath(fileName);
    add(L"DWGNAME", [file] { return file.empty() ? L"Drawing1.dxf" : base::fileNameOf(file); });
    add(L"DWGPREFIX", [file] {
        std::wstring folder = file.empty() ? base::currentFolder() : base::folderOf(file);
        if (folder.empty() || !base::isPathSeparator(folder.back())) folder += base::pathSeparator();
        return folder;
    });
    addSession(L"SUPPORTPATH", base::folderOf(file));

    add(
        L"DATE", [this] { return julianDate(now() + document_.database()->utcOffset()); },
        [this](const VariableValue& seconds) {
            fixedNow_ = std::get<std::int64_t>(seconds);
            document_.database()->setUtcOffset(0);
            return std::wstring();
        },
        parseDateValue);
}

void Variables::addDocumentRows() {
    for (const DocumentVariable& variable : kDocumentVariables) {
        Setter set;
        if (variable.set)
            set = [this, &variable](const VariableValue& value) { return variable.set(document_, value); };
        add(
            variable.name, [this, &variable] { return variable.get(document_); }, std::move(set));
    }
}

const Variables::Row* Variables::find(std::wstring_view name) const {
    const auto found = rows_.find(name);
    return found == rows_.end() ? nullptr : &found->second;
}

std::optional<VariableValue> Variables::get(std::wstring_view name) const {
    if (const Row* row = find(name)) return row->get();
    const std::string headerName = narrowName(name);
    const OdDbDatabase* database = document_.database();
    if (!database->hasHeaderVariable(headerName)) return std::nullopt;
    return VariableValue(database->headerText(headerName));
}

bool Variables::isReadOnly(std::wstring_view name) const {
    const Row* row = find(name);
    return !row || !row->set;
}

bool Variables::set(std::wstring_view name, std::wstring_view value, std::wstring& reason) {
    const Row* row = find(name);
    if (!row && !get(name)) {
        reason = L"there is no variable " + std::wstring(name);
        return false;
    }
    if (!row || !row->set) {
        reason = base::toUpper(name) + L" cannot be set";
        return false;
    }
    const auto wanted = row->parse ? row->parse(value, reason) : parseLike(row->get(), value, reason);
    if (!wanted) return false;
    reason = row->set(*wanted);
    return reason.empty();
}

std::vector<std::wstring> Variables::names() const {
    std::vector<std::wstring> all;
    for (const auto& [name, row] : rows_) all.push_back(name);
    return all;
}

}  // namespace host
