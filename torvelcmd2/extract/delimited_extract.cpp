// The comma-delimited (CDF) and the space-delimited (SDF) extract.
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <initializer_list>
#include <unordered_map>

#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/readers.h"
#include "torvelcmd2/extract/delimited_text.h"
#include "torvelcmd2/extract/extract_output.h"
#include "torvelcmd2/extract/extract_template.h"
#include "torvelcmd2/frame/progress.h"

namespace torvel {
namespace {

using Source = ExtractField::Source;

const OdDbDatabase* drawingOf(const OdDbObjectIdArray& references) {
    return references.empty() ? nullptr : references.front().database();
}

// Names are compared with tags, and written, as the output has them.
std::string asInOutput(std::string_view bytes, const OdDbDatabase* drawing, bool isUtf8) {
    constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
    if (!bytes.starts_with(kUtf8Mark)) return std::string(bytes);
    bytes.remove_prefix(kUtf8Mark.size());
    if (isUtf8) return std::string(bytes);
    std::string narrow;
    if (drawing) drawing->appendNarrow(narrow, base::fromUtf8(bytes));
    return narrow;
}

// Pads the parts, one behind the other, with blanks to the width, which counts bytes of the file, and never cuts. A
// negative width means its size and the left side, as in printf's formats.
void appendColumn(std::string& bytes, std::initializer_list<std::string_view> parts, int width, bool toTheLeft) {
    const auto columns = static_cast<std::size_t>(std::abs(width));
    std::size_t size = 0;
    for (const std::string_view part : parts) size += part.size();
    const std::size_t blanks = columns > size ? columns - size : 0;
    toTheLeft = toTheLeft || width < 0;
    if (!toTheLeft) bytes.append(blanks, ' ');
    for (const std::string_view part : parts) appendLines(bytes, part);
    if (toTheLeft) bytes.append(blanks, ' ');
}

// printf's "%*.*f", whole also where it takes more than the 256 characters that are usual for it: cut, it would be
// another number.
void assignNumber(std::string& text, double number, const ExtractField& field) {
    constexpr int kUsualPrecision = 6;      // what printf takes for a negative one
    constexpr std::size_t kLongest = 1400;  // sign, 309 digits, point, 999 digits
    char digits[kLongest];
    const int precision = field.precision < 0 ? kUsualPrecision : field.precision;
    const char* const end = std::to_chars(digits, digits + kLongest, number, std::chars_format::fixed, precision).ptr;
    text.clear();
    appendColumn(text, {std::string_view(digits, static_cast<std::size_t>(end - digits))}, field.width, false);
}

// Fills the values of one reference after the other.
class Records {
  public:
    Records(const std::vector<ExtractField>& fields, bool isUtf8)
        : fields_(fields), values_(fields.size()), isUtf8_(isUtf8) {
        reference_.setUtf8(isUtf8);
        attribute_.setUtf8(isUtf8);
        for (std::size_t i = 0; i < fields.size(); ++i)
            if (fields[i].source == Source::attribute)
                tags_[fields[i].name].push_back(i);
            else
                properties_.push_back(i);
    }

    // The values in the order of the fields, until the next call.
    const std::vector<std::string>& fill(OdDbObjectId id) {
        for (std::string& value : values_) value.clear();
        reference_.read(id);
        for (const std::size_t i : properties_) fillProperty(values_[i], fields_[i]);
        if (!tags_.empty()) fillAttributes();
        return values_;
    }

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };

    void fillAttributes() {
        for (const OdDbObjectId id : reference_.attributes()) {
            if (!attribute_.read(id)) continue;
            const auto found = tags_.find(attribute_.narrowTag());
            if (found == tags_.end()) continue;
            // Of equal tags the last one counts.
            for (const std::size_t i : found->second) values_[i] = attribute_.narrowTextString();
        }
    }

    void fillProperty(std::string& value, const ExtractField& field) {
        switch (field.source) {
            case Source::attribute:
            case Source::unknown:
                return;
            case Source::blockName:
                value = blockName();
                return;
            case Source::layer:
                value = reference_.narrowLayer();
                return;
            case Source::handle:
                value = reference_.handle().ascii();
                return;
            case Source::level:
                value = "1";  // references inside blocks are not extracted
                return;
            case Source::number:
                value = "$Number$";  // no record number takes its place
                return;
            default:
                assignNumber(value, numberOf(field.source), field);
        }
    }

    double numberOf(Source source) const {
        switch (source) {
            case Source::x:
                return reference_.position().x;
            case Source::y:
                return reference_.position().y;
            case Source::z:
                return reference_.position().z;
            case Source::orient:
                return reference_.rotation();  // radians
            case Source::xScale:
                return reference_.scaleFactors().sx;
            case Source::yScale:
                return reference_.scaleFactors().sy;
            case Source::zScale:
                return reference_.scaleFactors().sz;
            case Source::xExtrude:
                return reference_.normal().x;
            case Source::yExtrude:
                return reference_.normal().y;
            case Source::zExtrude:
                return reference_.normal().z;
            default:
                return 0;
        }
    }

    // As the definition spells it; all references to one block come together, so that one name is kept.
    const std::string& blockName() {
        const OdDbObjectId id = reference_.blockTableRecord();
        if (id != namedBlock_ || id.isNull()) {
            namedBlock_ = id;
            const auto block = id.openIf<OdDbBlockTableRecord>();
            blockName_.clear();
            if (block && isUtf8_)
                blockName_ = base::toUtf8(block->name());
            else if (block)
                block->database()->appendNarrow(blockName_, block->name());
            else
                blockName_ = reference_.narrowBlockName();
        }
        return blockName_;
    }

    const std::vector<ExtractField>& fields_;
    std::vector<std::string> values_;
    bool isUtf8_;
    std::vector<std::size_t> properties_;  // fields that are block properties
    std::unordered_map<std::string, std::vector<std::size_t>, Hash, std::equal_to<>> tags_;  // the others, by tag
    OdDbBlockReferenceReader reference_;
    OdDbAttributeReader attribute_;
    OdDbObjectId namedBlock_;
    std::string blockName_;
};

void appendHeader(std::string& bytes, const std::vector<ExtractField>& fields) {
    // Without delimiters, unlike the records.
    for (const ExtractField& field : fields) appendColumn(bytes, {"(", field.name, ")"}, field.width, true);
    bytes += "\r\n";
}

std::size_t recordSize(const std::vector<ExtractField>& fields) {
    std::size_t size = 2;
    for (const ExtractField& field : fields) size += static_cast<std::size_t>(std::abs(field.width));
    return size;
}

void appendRecord(std::string& bytes, const std::vector<ExtractField>& fields, const std::vector<std::string>& values,
                  const ExtractSettings& settings) {
    const bool isSpaceDelimited = settings.format == ExtractFormat::spaceDelimited;
    const std::string_view quote = settings.quote.empty() ? std::string_view("'") : settings.quote;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::string_view around = isSpaceDelimited || fields[i].isNumeric ? std::string_view() : quote;
        // Inside the column: with a short value it takes the place of a blank, with a long one it widens the column.
        const std::string_view behind =
            i + 1 < fields.size() ? std::string_view(settings.delimiter) : std::string_view();
        appendColumn(bytes, {around, values[i], around, behind}, fields[i].width, isSpaceDelimited);
    }
    bytes += "\r\n";
}

}  // namespace

ExtractSettings& extractSettings() {
    static ExtractSettings settings;
    return settings;
}

std::optional<std::string> delimitedText(std::string_view templateBytes, const OdDbObjectIdArray& references,
                                         ExtractSettings& settings) {
    const std::string text = asInOutput(base::untilEndMark(templateBytes), drawingOf(references), settings.isUtf8);
    const std::vector<ExtractField> fields = parseExtractTemplate(text, settings);
    if (fields.empty()) return std::nullopt;
    std::string bytes;
    // Hardly any value is wider than its column, so that this mostly is all the room that is needed.
    constexpr std::size_t kMostRoom = std::size_t{1} << 27;
    bytes.reserve(std::min(kMostRoom, recordSize(fields) * (references.size() + 1)));
    if (settings.format == ExtractFormat::spaceDelimited) appendHeader(bytes, fields);
    Records records(fields, settings.isUtf8);
    ProgressSteps progress(references.size());
    for (const OdDbObjectId id : references) {
        appendRecord(bytes, fields, records.fill(id), settings);
        progress.step();
    }
    return bytes;
}

int writeDelimitedExtract(const OdString& templatePath, const OdString& outputPath,
                          const OdDbObjectIdArray& references) {
    try {
        const auto bytes = delimitedText(base::readFile(templatePath).view(), references, extractSettings());
        if (!bytes) return 0;
        const auto output = openExtractOutput(outputPath, drawingOf(references));
        if (!output) return 0;
        output->write(*bytes);
        output->commit();
        return static_cast<int>(references.size());
    } catch (const base::FileError&) {
        return 0;
    }
}

}  // namespace torvel
