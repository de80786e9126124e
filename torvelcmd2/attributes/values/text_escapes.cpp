#include "torvelcmd2/attributes/values/text_escapes.h"

#include "drawingdb/mtext_parser.h"

namespace torvel {
namespace {

// Texts in field codes escape their quotes, which multi-line text does not know.
std::wstring withPlainQuotes(std::wstring_view text) {
    std::wstring result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != L'\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        ++i;
        if (text[i] != L'"') result += L'\\';
        result += text[i];
    }
    return result;
}

}  // namespace

std::wstring withoutEscapes(std::wstring_view text) { return drawingdb::mtextPlainText(withPlainQuotes(text)); }

}  // namespace torvel
