// The formatting codes of multi-line text.
//
// Contents are paragraphs with formatting codes:
//     \P \N         next paragraph, next column
//     \~            blank that does not break         \\ \{ \}   the character itself
//     \L \O \K      underline, overline, strike-through on; \l \o \k off
//     \fNAME|b1|i1; font, bold, italic (also \F)
//     \H2.5; \H2x;  height, or a multiple of the present one; \W and \T likewise for width factor and tracking
//     \Q15;         oblique angle in degrees
//     \C1; \c255;   colour number, true colour (blue highest)
//     \A0;          smaller text stands at the bottom, middle (1) or top (2) of the line
//     \S1/2;        stacked: / a fraction, # a slanted one, ^ a tolerance
//     \pi1,l2,r3,qc,t4,8;  indents of the first line, the left and the right, justification, tab stops, in text heights
//     \U+XXXX \M+nXXXX     a character by its number, by its bytes in a double-byte code page
//     { }           formats set inside end here
// besides the %% codes of single-line text, tabs, and line feeds, which begin a paragraph; other control characters do
// not show. Carets are themselves: what ^I and the like mean in a file, the file's reader has undone.
//
// Nothing here fails: a broken code shows as it stands.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/api.h"
#include "drawingdb/color.h"

namespace drawingdb {

enum class MTextLineAlignment : int { Bottom = 0, Middle = 1, Top = 2 };

struct MTextFormat {
    double height = 1.0;
    double widthFactor = 1.0;
    double oblique = 0.0;
    double tracking = 1.0;
    std::optional<OdCmColor> color;  ///< none: the text's own
    std::wstring font;               ///< empty: the style's
    bool bold = false;
    bool italic = false;
    bool underlined = false;
    bool overlined = false;
    bool struckThrough = false;
    MTextLineAlignment alignment = MTextLineAlignment::Bottom;

    bool operator==(const MTextFormat&) const = default;
};

enum class MTextRunKind { Text, Tab, Stack };

/// Characters in one format, a tab, or a stack.
struct MTextRun {
    MTextRunKind kind = MTextRunKind::Text;
    std::wstring text;         ///< of a stack: the upper part
    std::wstring lower;        ///< of a stack only
    wchar_t separator = L'/';  ///< of a stack: / # or ^
    MTextFormat format;
};

enum class MTextJustification { FromAttachment, Left, Center, Right, Justified, Distributed };

/// Lengths in units of the nominal text height.
struct MTextParagraphFormat {
    double firstIndent = 0.0;  ///< of the first line, added to the left indent
    double leftIndent = 0.0;
    double rightIndent = 0.0;
    std::vector<double> tabStops;
    MTextJustification justification = MTextJustification::FromAttachment;
};

struct MTextParagraph {
    MTextParagraphFormat format;
    std::vector<MTextRun> runs;
    MTextFormat endFormat;  ///< in force at its end; gives an empty paragraph its height
    bool beginsColumn = false;
};

/// Always at least one paragraph. The initial format gives the nominal height, to which \H2x; relates.
DRAWINGDB_API std::vector<MTextParagraph> parseMText(std::wstring_view contents, const MTextFormat& initial = {});

/// What a reader sees: paragraphs end in a line feed (the last one does not), a stack reads "1/2" or "+1^-2".
DRAWINGDB_API std::wstring mtextPlainText(std::wstring_view contents);

/// Plain text as contents of a multi-line text, which begin their codes with a backslash and group by braces.
DRAWINGDB_API std::wstring mtextEscaped(std::wstring_view plain);

}  // namespace drawingdb
