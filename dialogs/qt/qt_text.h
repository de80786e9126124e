// Text and positions between the controls and Qt.
//
// A control counts units of wchar_t, which are whole characters where Qt is used; Qt counts UTF-16. A field of several
// lines ends them with CR LF in a control and with one character in Qt.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace dialogs {

inline QString toQt(std::wstring_view text) {
    return QString::fromWCharArray(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::wstring fromQt(const QString& text) { return text.toStdWString(); }

enum class LineEnds { kKept, kOneCharacter };

/// How many of Qt's positions the character at `place` takes.
inline int widthInQt(std::wstring_view text, std::size_t place, LineEnds ends) {
    if (ends == LineEnds::kOneCharacter && text.substr(place).starts_with(L"\r\n")) return 0;
    return static_cast<unsigned long>(text[place]) > 0xFFFF ? 2 : 1;
}

inline int toQtPosition(std::wstring_view text, std::size_t position, LineEnds ends) {
    int units = 0;
    for (std::size_t i = 0; i < position && i < text.size(); ++i) units += widthInQt(text, i, ends);
    return units;
}

inline std::size_t fromQtPosition(std::wstring_view text, int position, LineEnds ends) {
    std::size_t i = 0;
    for (int units = 0; i < text.size(); ++i) {
        const int width = widthInQt(text, i, ends);
        if (units + width > position) break;
        units += width;
    }
    return i;
}

}  // namespace dialogs
