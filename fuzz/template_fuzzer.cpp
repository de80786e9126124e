// The input is an extraction template. It is read, and the extract of a small drawing made with it in both formats.
#include "drawingdb/database.h"
#include "fuzz/fuzz.h"
#include "torvelcmd2/extract/delimited_text.h"
#include "torvelcmd2/extract/extract_template.h"

namespace {

using fuzz::require;

OdDbDatabasePtr drawing() {
    static const std::string bytes = [] {
        std::string text =
            "0|SECTION|2|HEADER|9|$ACADVER|1|AC1032|0|ENDSEC|0|SECTION|2|ENTITIES|"
            "0|INSERT|5|50|100|AcDbEntity|8|WALLS|100|AcDbBlockReference|2|DOOR|10|12.5|20|-1e300|30|0.0|"
            "0|ATTRIB|5|51|100|AcDbEntity|8|0|100|AcDbText|1|42|100|AcDbAttribute|2|TAG|"
            "0|ATTRIB|5|52|100|AcDbEntity|8|0|100|AcDbText|1|\xE4\xB8\xAD^J|100|AcDbAttribute|2|NOTE|"
            "0|SEQEND|5|53|0|INSERT|5|60|100|AcDbEntity|8|0|100|AcDbBlockReference|2|DOOR|10|0.0|20|0.0|30|0.0|"
            "0|ENDSEC|0|EOF|";
        for (char& c : text)
            if (c == '|') c = '\n';
        return text;
    }();
    return OdDbDatabase::readBytes(bytes, L"template.dxf");
}

std::size_t count(std::string_view text, std::string_view what) {
    std::size_t found = 0;
    for (std::size_t i = 0; (i = text.find(what, i)) != std::string_view::npos; i += what.size()) ++found;
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::bytesOf(data, size);
    static const OdDbDatabasePtr database = drawing();
    const OdDbObjectIdArray references{database->getObjectId(0x50), database->getObjectId(0x60)};

    torvel::ExtractSettings settings;
    const auto fields = torvel::parseExtractTemplate(text, settings);
    std::size_t least = 0;
    for (const torvel::ExtractField& field : fields) {
        require(!field.name.empty(), "a field has a name");
        require(field.width >= -99 && field.width <= 999 && field.precision >= -99 && field.precision <= 999,
                "widths and precisions have three digits");
        require(field.isNumeric || field.precision == 0, "only numbers have a precision");
        least += static_cast<std::size_t>(field.width < 0 ? -field.width : field.width);
    }
    for (const auto format : {torvel::ExtractFormat::commaDelimited, torvel::ExtractFormat::spaceDelimited}) {
        settings = {};
        settings.format = format;
        const std::string bytes = torvel::delimitedText(text, references, settings).value_or("");
        if (bytes.empty()) continue;
        require(bytes.ends_with("\r\n"), "the last line ends");
        require(count(bytes, "\n") == count(bytes, "\r\n"), "lines end alike");
        // The end mark and the byte order mark make the text another one.
        if (text.find('\x1A') == text.npos && !text.starts_with("\xEF\xBB\xBF")) {
            require(!fields.empty() && bytes.size() >= least * references.size(),
                    "columns are as wide as they should be");
        }
    }
    return 0;
}
