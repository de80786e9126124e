#include "base/json_writer.h"

#include "base/text.h"

namespace base {
namespace {

std::string quoted(std::string_view utf8) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text = "\"";
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20)
            text.append({'\\', 'u', '0', '0', kDigits[byte >> 4], kDigits[byte & 15]});
        else if (c == '"' || c == '\\')
            text.append({'\\', c});
        else
            text += c;
    }
    return text + '"';
}

}  // namespace

void JsonWriter::item(std::string_view key, std::string_view value) {
    if (!isFirst_) json_ += ',';
    if (depth_ > 0) json_.append(1, '\n').append(2 * depth_, ' ');
    if (!key.empty()) json_ += quoted(key) + ": ";
    json_ += value;
    isFirst_ = false;
}

void JsonWriter::text(std::string_view key, std::wstring_view value) { item(key, quoted(toUtf8(value))); }

void JsonWriter::begin(std::string_view key, char bracket) {
    item(key, std::string_view(&bracket, 1));
    ++depth_;
    isFirst_ = true;
}

void JsonWriter::end(char bracket) {
    --depth_;
    if (!isFirst_) json_.append(1, '\n').append(2 * depth_, ' ');
    json_ += bracket;
    isFirst_ = false;
}

}  // namespace base
