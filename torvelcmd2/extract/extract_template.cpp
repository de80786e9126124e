#include "torvelcmd2/extract/extract_template.h"

#include <charconv>
#include <utility>

#include "base/text.h"

namespace torvel {
namespace {

constexpr std::size_t kFormatLength = 7;
constexpr std::string_view kPropertyPrefix = "BL:";

constexpr std::pair<std::string_view, ExtractField::Source> kProperties[] = {
    {"NAME", ExtractField::Source::blockName},
    {"LAYER", ExtractField::Source::layer},
    {"HANDLE", ExtractField::Source::handle},
    {"X", ExtractField::Source::x},
    {"Y", ExtractField::Source::y},
    {"Z", ExtractField::Source::z},
    {"ORIENT", ExtractField::Source::orient},
    {"XSCALE", ExtractField::Source::xScale},
    {"YSCALE", ExtractField::Source::yScale},
    {"ZSCALE", ExtractField::Source::zScale},
    {"LEVEL", ExtractField::Source::level},
    {"NUMBER", ExtractField::Source::number},
    {"XEXTRUDE", ExtractField::Source::xExtrude},
    {"YEXTRUDE", ExtractField::Source::yExtrude},
    {"ZEXTRUDE", ExtractField::Source::zExtrude},
};

// Case counts, also that of the prefix: "bl:name" is an attribute's tag, and so is "BL:" alone.
ExtractField::Source sourceOf(std::string_view name) {
    if (name.size() <= kPropertyPrefix.size() || !name.starts_with(kPropertyPrefix))
        return ExtractField::Source::attribute;
    const std::string_view property = name.substr(kPropertyPrefix.size());
    for (const auto& [known, source] : kProperties)
        if (property == known) return source;
    return ExtractField::Source::unknown;
}

std::string_view takeWord(std::string_view& text) {
    constexpr std::string_view kBlanks = " \t\n\v\f\r";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word;
}

int leadingInteger(std::string_view digits) {
    if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
    int number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

ExtractField makeField(std::string_view name, std::string_view format) {
    ExtractField field;
    field.name = name;
    field.source = sourceOf(name);
    field.isNumeric = format.front() == 'N';
    field.width = leadingInteger(format.substr(1, 3));
    if (field.isNumeric) field.precision = leadingInteger(format.substr(4, 3));
    return field;
}

}  // namespace

std::vector<ExtractField> parseExtractTemplate(std::string_view text, ExtractSettings& settings) {
    std::vector<ExtractField> fields;
    for (;;) {
        const std::string_view name = takeWord(text);
        const std::string_view format = takeWord(text);
        if (format.empty()) return fields;
        if (base::equalsNoCase(name, "C:QUOTE"))
            settings.quote = format;
        else if (base::equalsNoCase(name, "C:DELIM"))
            settings.delimiter = format;
        else if (format.size() == kFormatLength)
            fields.push_back(makeField(name, format));
    }
}

}  // namespace torvel
