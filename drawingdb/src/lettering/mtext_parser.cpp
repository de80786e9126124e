// Multi-line text's formatting codes: contents to paragraphs and runs.

#include "drawingdb/mtext_parser.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "base/code_page.h"
#include "base/number.h"
#include "base/text.h"
#include "drawingdb/src/lettering/text_codes.h"

namespace drawingdb {

namespace {

// Deeper braces are counted, but their formats are not kept apart.
constexpr std::size_t kDeepestGroup = 1000;
// Every run carries its font and every paragraph its tab stops, so that neither may grow with the text.
constexpr std::size_t kLongestFontName = 255;
constexpr std::size_t kMostTabStops = 32;

// Reads parameters of codes. Where one does not read, it gives nothing; the caller then lets the code stand as text.
class ParameterReader {
  public:
    ParameterReader(std::wstring_view text, std::size_t position) : text_(text), position_(position) {}

    std::size_t position() const { return position_; }
    bool atEnd() const { return position_ >= text_.size(); }

    bool skip(wchar_t c) {
        const bool there = !atEnd() && text_[position_] == c;
        position_ += there ? 1 : 0;
        return there;
    }

    // A decimal number, finite, without exponent (an "e" would be text).
    std::optional<double> number() {
        char digits[64];
        std::size_t length = 0, i = position_;
        if (i < text_.size() && text_[i] == L'+') ++i;
        for (; i < text_.size() && length < sizeof digits; ++i) {
            const wchar_t c = text_[i];
            const bool belongs = base::isDigit(c) || c == L'.' || (c == L'-' && length == 0);
            if (!belongs) break;
            digits[length++] = static_cast<char>(c);
        }
        double value = 0.0;
        const auto [end, error] = std::from_chars(digits, digits + length, value, std::chars_format::fixed);
        if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
        position_ = i - static_cast<std::size_t>(digits + length - end);
        return value;
    }

    std::optional<std::uint32_t> hexDigits(std::size_t count) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < count; ++i) {
            if (position_ + i >= text_.size()) return std::nullopt;
            const int digit = base::hexValue(text_[position_ + i]);
            if (digit < 0) return std::nullopt;
            value = value * 16 + static_cast<std::uint32_t>(digit);
        }
        position_ += count;
        return value;
    }

  private:
    std::wstring_view text_;
    std::size_t position_;
};

bool isHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }

bool isLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

class MTextParser {
  public:
    MTextParser(std::wstring_view contents, const MTextFormat& initial)
        : text_(contents), format_(initial), lastSemicolon_(contents.rfind(L';')) {
        paragraphs_.emplace_back();
    }

    std::vector<MTextParagraph> parse() {
        while (at_ < text_.size()) parseNext();
        endParagraph();
        return std::move(paragraphs_);
    }

  private:
    void parseNext() {
        if (const ControlCode code = controlCodeAt(text_, at_); code.kind != ControlCode::None) {
            at_ += code.length;
            applyControlCode(code);
            return;
        }
        switch (text_[at_]) {
            case L'\\':
                parseCode();
                return;
            case L'{':
                ++at_;
                openGroup();
                return;
            case L'}':
                ++at_;
                closeGroup();
                return;
            default:
                break;
        }
        const char32_t c = base::nextCharacter(text_, at_);
        if (c >= U' ')
            base::appendCharacter(pending_, c);
        else
            addControlCharacter(c);
    }

    void applyControlCode(const ControlCode& code) {
        switch (code.kind) {
            case ControlCode::Underline:
                change(format_.underlined, !format_.underlined);
                break;
            case ControlCode::Overline:
                change(format_.overlined, !format_.overlined);
                break;
            case ControlCode::StrikeThrough:
                change(format_.struckThrough, !format_.struckThrough);
                break;
            default:
                base::appendCharacter(pending_, code.character);
                break;
        }
    }

    void addControlCharacter(char32_t c) {
        if (c == U'\t')
            addRun(MTextRun{MTextRunKind::Tab, {}, {}, L'/', format_});
        else if (c == U'\n')
            nextParagraph();
    }

    void parseCode() {
        const std::size_t start = at_++;
        if (at_ < text_.size() && parseCodeLetter(text_[at_++])) return;
        // What does not read as a code stands as text; reading goes on behind its backslash.
        pending_ += text_[start];
        at_ = start + 1;
    }

    bool parseCodeLetter(wchar_t letter) {
        switch (letter) {
            case L'\\':
            case L'{':
            case L'}':
                pending_ += letter;
                return true;
            case L'~':
                pending_ += L'\u00A0';
                return true;
            case L'P':
                nextParagraph();
                return true;
            case L'N':
                // At the end it only says that a column ended there.
                if (at_ < text_.size()) {
                    nextParagraph();
                    paragraphs_.back().beginsColumn = true;
                }
                return true;
            case L'L':
            case L'l':
                change(format_.underlined, letter == L'L');
                return true;
            case L'O':
            case L'o':
                change(format_.overlined, letter == L'O');
                return true;
            case L'K':
            case L'k':
                change(format_.struckThrough, letter == L'K');
                return true;
            case L'f':
            case L'F':
                return parseFont();
            case L'H':
                return parseFactor(format_.height);
            case L'W':
                return parseFactor(format_.widthFactor);
            case L'T':
                return parseFactor(format_.tracking);
            case L'Q':
                return parseNumber([this](double degrees) { change(format_.oblique, degrees * kPi / 180.0); });
            case L'A':
                return parseNumber([this](double value) {
                    if (value >= 0.0 && value <= 2.0)
                        change(format_.alignment, static_cast<MTextLineAlignment>(static_cast<int>(value)));
                });
            case L'C':
                return parseNumber([this](double value) {
                    if (value >= 0.0 && value <= 256.0)
                        change(format_.color, std::optional(OdCmColor::fromIndex(static_cast<int>(value))));
                });
            case L'c':
                return parseNumber([this](double value) {
                    if (value < 0.0 || value > 0xFFFFFF) return;
                    const auto bgr = static_cast<std::uint32_t>(value);
                    const std::uint32_t rgb = (bgr & 0xFF) << 16 | (bgr & 0xFF00) | bgr >> 16;
                    change(format_.color, std::optional(OdCmColor::fromRgb(rgb)));
                });
            case L'S':
                return parseStack();
            case L'p':
                return parseParagraphFormat();
            case L'U':
                return parseUnicode();
            case L'M':
                return parseCodePageBytes();
            default:
                return false;
        }
    }

    // ---- Codes with parameters. The position is behind the letter; it is set behind the code when the code reads.

    std::optional<std::wstring_view> parameters() {
        if (lastSemicolon_ == std::wstring_view::npos || at_ > lastSemicolon_) return std::nullopt;
        const std::size_t end = text_.find(L';', at_);
        const std::wstring_view inside = text_.substr(at_, end - at_);
        at_ = end + 1;
        return inside;
    }

    bool parseFont() {
        const auto inside = parameters();
        if (!inside) return false;
        const auto parts = base::split(*inside, L'|');
        MTextFormat changed = format_;
        changed.font = base::prefix(parts[0], kLongestFontName);
        changed.bold = changed.italic = false;
        for (std::size_t i = 1; i < parts.size(); ++i)
            if (base::startsWithNoCase(parts[i], L"b"))
                changed.bold = parts[i].find_first_of(L"123456789", 1) == 1;
            else if (base::startsWithNoCase(parts[i], L"i"))
                changed.italic = parts[i].find_first_of(L"123456789", 1) == 1;
        change(format_, changed);
        return true;
    }

    template <typename Apply>
    bool parseNumber(Apply apply) {
        ParameterReader reader(text_, at_);
        const auto value = reader.number();
        if (!value) return false;
        reader.skip(L';');
        at_ = reader.position();
        apply(*value);
        return true;
    }

    // A positive number, or with an "x" behind it a multiple of the present one. What is out of all proportion is
    // ignored, so that repeated multiples cannot leave the range of numbers.
    bool parseFactor(double& target) {
        constexpr double kSmallest = 1e-30, kLargest = 1e30;
        ParameterReader reader(text_, at_);
        const auto value = reader.number();
        if (!value) return false;
        const bool relative = reader.skip(L'x') || reader.skip(L'X');
        reader.skip(L';');
        at_ = reader.position();
        const double result = relative ? *value * target : *value;
        if (result >= kSmallest && result <= kLargest) change(target, result);
        return true;
    }

    // Upper part, separator, lower part. A backslash takes the next character as it is.
    bool parseStack() {
        if (stackUnclosed_ || lastSemicolon_ == std::wstring_view::npos) return false;
        MTextRun stack{MTextRunKind::Stack, {}, {}, L'\0', format_};
        std::size_t i = at_;
        for (; i < text_.size() && text_[i] != L';'; ++i) {
            std::wstring& part = stack.separator == L'\0' ? stack.text : stack.lower;
            const wchar_t c = text_[i];
            if (c == L'\\' && i + 1 < text_.size()) {
                part += text_[++i];
            } else if (stack.separator == L'\0' && (c == L'/' || c == L'#' || c == L'^')) {
                stack.separator = c;
                // Tolerances are often typed as files have them, where a blank follows every caret.
                if (c == L'^' && i + 1 < text_.size() && text_[i + 1] == L' ') ++i;
            } else if (c >= L' ') {
                part += c;
            }
        }
        if (i >= text_.size()) {
            stackUnclosed_ = true;  // nor will any later one find its end
            return false;
        }
        at_ = i + 1;
        if (stack.separator == L'\0')
            pending_ += stack.text;
        else
            addRun(std::move(stack));
        return true;
    }

    bool parseParagraphFormat() {
        const auto inside = parameters();
        if (!inside) return false;
        MTextParagraphFormat& format = paragraphs_.back().format;
        const std::wstring_view codes = *inside;
        for (std::size_t i = 0; i < codes.size();) {
            const wchar_t letter = codes[i++];
            ParameterReader reader(codes, i);
            switch (letter) {
                case L'i':
                    readIndent(reader, format.firstIndent);
                    break;
                case L'l':
                    readIndent(reader, format.leftIndent);
                    break;
                case L'r':
                    readIndent(reader, format.rightIndent);
                    break;
                case L'q':
                    if (!reader.atEnd()) {
                        format.justification = justificationOf(codes[i]);
                        reader.skip(codes[i]);
                    }
                    break;
                case L't':
                    format.tabStops.clear();
                    readTabStops(reader, format.tabStops);
                    break;
                default:
                    break;
            }
            i = reader.position();
        }
        return true;
    }

    static void readIndent(ParameterReader& reader, double& indent) {
        if (reader.skip(L'*'))
            indent = 0.0;
        else if (const auto value = reader.number())
            indent = *value;
    }

    // Stops may say by a letter that text is centred or ends there; all are taken as where text begins.
    static void readTabStops(ParameterReader& reader, std::vector<double>& stops) {
        do {
            if (!reader.skip(L'c') && !reader.skip(L'r')) reader.skip(L'd');
            const auto value = reader.number();
            if (!value) break;
            if (stops.size() < kMostTabStops) stops.push_back(*value);
        } while (reader.skip(L','));
        std::sort(stops.begin(), stops.end());
    }

    static MTextJustification justificationOf(wchar_t letter) {
        switch (letter) {
            case L'l':
                return MTextJustification::Left;
            case L'c':
                return MTextJustification::Center;
            case L'r':
                return MTextJustification::Right;
            case L'j':
                return MTextJustification::Justified;
            case L'd':
                return MTextJustification::Distributed;
            default:
                return MTextJustification::FromAttachment;
        }
    }

    // \U+XXXX; two of them may make a pair of surrogates.
    bool parseUnicode() {
        ParameterReader reader(text_, at_);
        const auto unit = reader.skip(L'+') ? reader.hexDigits(4) : std::nullopt;
        if (!unit) return false;
        at_ = reader.position();
        char32_t character = *unit;
        if (isHighSurrogate(*unit) && reader.skip(L'\\') && reader.skip(L'U') && reader.skip(L'+')) {
            const auto low = reader.hexDigits(4);
            if (low && isLowSurrogate(*low)) {
                character = 0x10000 + ((*unit - 0xD800) << 10) + (*low - 0xDC00);
                at_ = reader.position();
            }
        }
        addDecoded(character);
        return true;
    }

    // \M+nXXXX: two bytes in the code page with that number.
    bool parseCodePageBytes() {
        ParameterReader reader(text_, at_);
        if (!reader.skip(L'+')) return false;
        const auto number = reader.hexDigits(1);
        const auto bytes = reader.hexDigits(4);
        if (!number || !bytes || *number < 1 || *number > 5) return false;
        at_ = reader.position();
        const base::CodePage* page = base::CodePage::byMultiByteNumber(static_cast<int>(*number));
        std::string encoded{static_cast<char>(*bytes >> 8), static_cast<char>(*bytes & 0xFF)};
        if (encoded[0] == '\0') encoded.erase(0, 1);
        const std::wstring decoded = page ? page->decode(encoded) : L"\uFFFD";
        for (std::size_t i = 0; i < decoded.size();) addDecoded(base::nextCharacter(decoded, i));
        return true;
    }

    void addDecoded(char32_t character) {
        if (character >= U' ')
            base::appendCharacter(pending_, character);
        else
            addControlCharacter(character);
    }

    // ---- Groups, runs, paragraphs

    void openGroup() {
        if (groups_.size() < kDeepestGroup)
            groups_.push_back(format_);
        else
            ++deeperGroups_;
    }

    void closeGroup() {
        if (deeperGroups_ > 0) {
            --deeperGroups_;
        } else if (!groups_.empty()) {
            change(format_, groups_.back());
            groups_.pop_back();
        }
    }

    template <typename T>
    void change(T& part, const T& value) {
        if (part == value) return;
        endRun();
        part = value;
    }

    void endRun() {
        if (pending_.empty()) return;
        paragraphs_.back().runs.push_back({MTextRunKind::Text, std::move(pending_), {}, L'/', format_});
        pending_.clear();
    }

    void addRun(MTextRun run) {
        endRun();
        paragraphs_.back().runs.push_back(std::move(run));
    }

    void endParagraph() {
        endRun();
        paragraphs_.back().endFormat = format_;
    }

    void nextParagraph() {
        endParagraph();
        MTextParagraph next;
        next.format = paragraphs_.back().format;
        paragraphs_.push_back(std::move(next));
    }

    std::wstring_view text_;
    std::size_t at_ = 0;
    MTextFormat format_;
    std::wstring pending_;  // characters in the present format that are in no run yet
    std::vector<MTextFormat> groups_;
    std::size_t deeperGroups_ = 0;
    std::vector<MTextParagraph> paragraphs_;
    // Codes that run to a semicolon need not search for one where there is none: the text is read in linear time.
    std::size_t lastSemicolon_;
    bool stackUnclosed_ = false;
};

}  // namespace

std::vector<MTextParagraph> parseMText(std::wstring_view contents, const MTextFormat& initial) {
    return MTextParser(contents, initial).parse();
}

std::wstring mtextEscaped(std::wstring_view plain) {
    std::wstring contents;
    for (const wchar_t c : plain) {
        if (c == L'\\' || c == L'{' || c == L'}') contents += L'\\';
        contents += c;
    }
    return contents;
}

std::wstring mtextPlainText(std::wstring_view contents) {
    std::wstring plain;
    bool first = true;
    for (const MTextParagraph& paragraph : parseMText(contents)) {
        if (!first) plain += L'\n';
        first = false;
        for (const MTextRun& run : paragraph.runs) {
            switch (run.kind) {
                case MTextRunKind::Text:
                    plain += run.text;
                    break;
                case MTextRunKind::Tab:
                    plain += L'\t';
                    break;
                case MTextRunKind::Stack:
                    plain += run.text;
                    if (!run.text.empty() && !run.lower.empty()) plain += run.separator == L'^' ? L'^' : L'/';
                    plain += run.lower;
                    break;
            }
        }
    }
    std::replace(plain.begin(), plain.end(), L'\u00A0', L' ');
    return plain;
}

}  // namespace drawingdb
