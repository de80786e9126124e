#include "drawingdb/src/file/groups.h"

#include <charconv>
#include <cmath>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/error.h"

namespace drawingdb {

ValueKind valueKind(int code) {
    using enum ValueKind;
    if (code < 0) return text;
    if (code == 5 || code == 105) return handle;
    if (code < 10) return text;
    if (code < 60) return real;
    if (code < 80) return int16;
    if (code < 90) return text;
    if (code < 100) return int32;
    if (code < 110) return text;
    if (code < 150) return real;
    if (code < 160) return text;
    if (code < 170) return int64;
    if (code < 180) return int16;
    if (code < 210) return text;
    if (code < 240) return real;
    if (code < 270) return text;
    if (code < 290) return int16;
    if (code < 300) return int8;
    if (code < 310) return text;
    if (code < 320) return chunk;
    if (code < 370) return handle;
    if (code < 390) return int16;
    if (code < 400) return handle;
    if (code < 410) return int16;
    if (code < 420) return text;
    if (code < 430) return int32;
    if (code < 440) return text;
    if (code < 460) return int32;
    if (code < 470) return real;
    if (code < 480) return text;
    if (code <= 481) return handle;
    if (code == 1004) return chunk;
    if (code == 1005) return handle;
    if (code >= 1010 && code < 1060) return real;
    if (code >= 1060 && code < 1071) return int16;
    if (code == 1071) return int32;
    return text;
}

namespace {

std::uint64_t feedsIn16(const char* p) {
#if defined(__SSE2__)
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n'))));
#else
    std::uint64_t bits = 0;
    for (int i = 0; i < 16; ++i) bits |= std::uint64_t{p[i] == '\n'} << i;
    return bits;
#endif
}

std::uint64_t feedsIn64(const char* p) {
    return feedsIn16(p) | feedsIn16(p + 16) << 16 | feedsIn16(p + 32) << 32 | feedsIn16(p + 48) << 48;
}

}  // namespace

std::uint64_t LineFeeds::feedsFrom(const char* block, const char* next, const char* end) {
    std::uint64_t bits = 0;
    if (end - block >= kBlock)
        bits = feedsIn64(block);
    else
        for (const char* p = block; p < end; ++p) bits |= std::uint64_t{*p == '\n'} << (p - block);
    return bits >> (next - block) << (next - block);
}

std::uint64_t GroupSieve::feedsOf(const char* window) { return feedsIn64(window); }

int AsciiGroupCursor::unusualCode(const char* line, const char* lineEnd) {
    while (line < lineEnd && (*line == ' ' || *line == '\t')) ++line;
    const bool negative = line < lineEnd && *line == '-';
    if (negative) ++line;
    if (line == lineEnd || !base::isDigit(*line)) return kNoCode;
    int code = 0;
    for (; line < lineEnd && base::isDigit(*line); ++line)
        if (code < 100000) code = code * 10 + (*line - '0');
    return negative ? -code : code;
}

bool BinaryGroupCursor::next(Group& group) {
    const char* p = at_;
    const auto left = [&] { return static_cast<std::size_t>(end_ - p); };
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(p[i]); };
    if (left() < 2) return false;
    group.begin = p;
    if (wide_) {
        group.code = static_cast<std::int16_t>(byteAt(0) | (byteAt(1) << 8));
        p += 2;
    } else if (byteAt(0) == 255) {
        if (left() < 3) return false;
        group.code = byteAt(1) | (byteAt(2) << 8);
        p += 3;
    } else {
        group.code = byteAt(0);
        p += 1;
    }
    std::size_t size = 0;
    switch (valueKind(group.code)) {
        case ValueKind::text:
        case ValueKind::handle: {
            const void* zero = left() ? std::memchr(p, 0, left()) : nullptr;
            if (!zero) return false;
            size = static_cast<std::size_t>(static_cast<const char*>(zero) - p);
            group.value = {p, size};
            at_ = group.end = p + size + 1;
            return true;
        }
        case ValueKind::chunk:
            if (left() < 1) return false;
            size = byteAt(0);
            ++p;
            break;
        case ValueKind::real:
        case ValueKind::int64:
            size = 8;
            break;
        case ValueKind::int32:
            size = 4;
            break;
        case ValueKind::int16:
            size = 2;
            break;
        case ValueKind::int8:
            size = 1;
            break;
    }
    if (left() < size) return false;
    group.value = {p, size};
    at_ = group.end = p + size;
    return true;
}

namespace {

// Numbers like "23.4" or "-100.0": so few digits that the double holds them exactly, as it does the power of ten, and
// one division rounds as it should. Nothing for any other.
std::optional<double> shortReal(const char* p, const char* end) {
    static constexpr double kPowers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                         1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    constexpr std::ptrdiff_t kMostDigits = 15;
    const bool negative = p < end && *p == '-';
    if (negative) ++p;
    if (end - p > kMostDigits + 1) return {};
    std::int64_t digits = 0;
    const char* const whole = p;
    for (; p < end && base::isDigit(*p); ++p) digits = digits * 10 + (*p - '0');
    std::ptrdiff_t count = p - whole;
    std::ptrdiff_t decimals = 0;
    if (p < end && *p == '.') {
        const char* const fraction = ++p;
        for (; p < end && base::isDigit(*p); ++p) digits = digits * 10 + (*p - '0');
        decimals = p - fraction;
        count += decimals;
    }
    if (p != end || count == 0 || count > kMostDigits) return {};
    const double value = static_cast<double>(digits) / kPowers[decimals];
    return negative ? -value : value;
}

}  // namespace

std::optional<double> groupReal(const Group& group, bool binary) {
    if (binary) {
        switch (valueKind(group.code)) {
            case ValueKind::real: {
                double value;
                if (group.value.size() != 8) return {};
                std::memcpy(&value, group.value.data(), 8);
                if (!std::isfinite(value)) return {};
                return value;
            }
            case ValueKind::text:
                break;
            default:
                if (auto whole = groupInteger(group, true)) return static_cast<double>(*whole);
                return {};
        }
    }
    const char* p = group.value.data();
    const char* end = p + group.value.size();
    while (p < end && (*p == ' ' || *p == '\t')) ++p;
    while (end > p && (end[-1] == ' ' || end[-1] == '\t' || end[-1] == '\r')) --end;
    if (p < end && *p == '+') ++p;
    if (const auto quick = shortReal(p, end)) return quick;
    double value = 0;
    const auto [stop, error] = std::from_chars(p, end, value);
    if (error == std::errc::result_out_of_range && stop == end) return base::parseReal(group.value);
    if (error != std::errc() || stop != end || !std::isfinite(value)) return {};
    return value;
}

std::optional<std::int64_t> groupInteger(const Group& group, bool binary) {
    if (binary) {
        const char* p = group.value.data();
        switch (valueKind(group.code)) {
            case ValueKind::int8:
                return static_cast<unsigned char>(*p);
            case ValueKind::int16: {
                std::int16_t v;
                std::memcpy(&v, p, 2);
                return v;
            }
            case ValueKind::int32: {
                std::int32_t v;
                std::memcpy(&v, p, 4);
                return v;
            }
            case ValueKind::int64: {
                std::int64_t v;
                std::memcpy(&v, p, 8);
                return v;
            }
            case ValueKind::real: {
                const auto real = groupReal(group, true);
                if (!real || std::fabs(*real) > 9e15) return {};
                return static_cast<std::int64_t>(*real);
            }
            default:
                break;
        }
    }
    const char* p = group.value.data();
    const char* end = p + group.value.size();
    while (p < end && (*p == ' ' || *p == '\t')) ++p;
    while (end > p && (end[-1] == ' ' || end[-1] == '\t' || end[-1] == '\r')) --end;
    if (p < end && *p == '+') ++p;
    std::int64_t value = 0;
    const auto [stop, error] = std::from_chars(p, end, value);
    if (error == std::errc() && stop == end) return value;
    // Some writers put whole numbers down as reals ("70 / 1.0").
    if (const auto real = groupReal(group, false); real && std::fabs(*real) < 9e15 && *real == std::floor(*real))
        return static_cast<std::int64_t>(*real);
    return {};
}

namespace {

// By table: whether a digit is a letter or not cannot be foreseen.
constexpr auto kHexValues = [] {
    std::array<int, UCHAR_MAX + 1> values{};
    for (std::size_t c = 0; c < values.size(); ++c) values[c] = base::hexValue(static_cast<char>(c));
    return values;
}();

}  // namespace

std::uint64_t parseHandle(std::string_view text) {
    std::uint64_t value = 0;
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    for (; i < text.size(); ++i) {
        const int digit = kHexValues[static_cast<unsigned char>(text[i])];
        if (digit < 0) break;
        if (value >> 60) return 0;
        value = value << 4 | static_cast<unsigned>(digit);
    }
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\r')) ++i;
    return i == text.size() ? value : 0;
}

// A group is put together here and appended at once.
struct GroupWriter::Line {
    static constexpr std::size_t kMostText = 200;

    Line(int code, const FileFormat& format) {
        if (format.binary)
            binaryCode(code, format.wideCodes);
        else
            asciiCode(code, format.crlf);
    }
    void add(std::string_view text) {
        std::memcpy(end, text.data(), text.size());
        end += text.size();
    }
    void addLineEnd(bool crlf) {
        if (crlf) *end++ = '\r';
        *end++ = '\n';
    }
    std::string_view view() const { return {bytes, static_cast<std::size_t>(end - bytes)}; }

    char bytes[kMostText + 20];
    char* end = bytes;

  private:
    void asciiCode(int code, bool crlf) {
        // "  0\n": at least three places.
        if (code >= 0 && code < 1000) {
            *end++ = code < 100 ? ' ' : static_cast<char>('0' + code / 100);
            *end++ = code < 10 ? ' ' : static_cast<char>('0' + code / 10 % 10);
            *end++ = static_cast<char>('0' + code % 10);
        } else {
            char* const begin = end;
            end = std::to_chars(begin, begin + 12, code).ptr;
            while (end - begin < 3) {
                std::memmove(begin + 1, begin, static_cast<std::size_t>(end - begin));
                *begin = ' ';
                ++end;
            }
        }
        addLineEnd(crlf);
    }
    void binaryCode(int code, bool wide) {
        const auto low = static_cast<char>(code & 255), high = static_cast<char>((code >> 8) & 255);
        if (!wide && code >= 0 && code < 255) {
            *end++ = low;
            return;
        }
        if (!wide) *end++ = static_cast<char>(255);
        *end++ = low;
        *end++ = high;
    }
};

void GroupWriter::text(int groupCode, std::string_view encoded) {
    Line line(groupCode, format_);
    if (format_.binary) {
        out_.append(line.view());
        for (const char c : encoded)
            if (c) out_.push_back(c);
        out_.push_back('\0');
        return;
    }
    if (encoded.size() <= Line::kMostText) {
        line.add(encoded);
        line.addLineEnd(format_.crlf);
        out_.append(line.view());
        return;
    }
    out_.append(line.view());
    out_.append(encoded);
    out_.append(format_.crlf ? "\r\n" : "\n");
}

namespace {

// Writes numbers of few decimals, whole ones as "5.0". Null, and nothing written, for any other.
//
// Six decimals and nine digits before them make at most fifteen, which no two numbers share: if they give the number
// back, they are its shortest spelling once the zeros at the end are gone.
char* writeShortReal(char* place, double value) {
    constexpr double kLargest = 1e9, kSmallest = 1e-3;
    constexpr std::int64_t kScale = 1000000;
    const double size = std::fabs(value);
    if (!(size < kLargest) || (size < kSmallest && size != 0) || (value == 0 && std::signbit(value))) return nullptr;
    // Not below zero; a wrong last digit shows in the next line.
    // NOLINTNEXTLINE(bugprone-incorrect-roundings)
    const auto scaled = static_cast<std::int64_t>(size * static_cast<double>(kScale) + 0.5);
    if (static_cast<double>(scaled) / static_cast<double>(kScale) != size) return nullptr;
    if (value < 0) *place++ = '-';
    place = std::to_chars(place, place + 10, static_cast<std::uint32_t>(scaled / kScale)).ptr;
    *place++ = '.';
    auto decimals = static_cast<std::uint32_t>(scaled % kScale);
    for (std::uint32_t unit = kScale / 10;; unit /= 10) {
        *place++ = static_cast<char>('0' + decimals / unit);
        decimals %= unit;
        if (decimals == 0) return place;
    }
}

}  // namespace

void GroupWriter::real(int groupCode, double value) {
    if (!std::isfinite(value))
        throw OdError(OdResult::invalidInput,
                      "the number of group " + std::to_string(groupCode) + " is not finite and cannot be stored");
    Line line(groupCode, format_);
    if (format_.binary) {
        line.add({reinterpret_cast<const char*>(&value), sizeof value});
        out_.append(line.view());
        return;
    }
    if (char* const end = writeShortReal(line.end, value)) {
        line.end = end;
    } else {
        char* const begin = line.end;
        line.end = std::to_chars(begin, begin + 40, value).ptr;
        const std::string_view digits(begin, static_cast<std::size_t>(line.end - begin));
        if (digits.find('e') != std::string_view::npos) {
            line.end = begin;
            line.add(base::realToText(value));
        } else if (digits.find('.') == std::string_view::npos) {
            line.add(".0");
        }
    }
    line.addLineEnd(format_.crlf);
    out_.append(line.view());
}

void GroupWriter::integer(int groupCode, std::int64_t value) {
    Line line(groupCode, format_);
    if (format_.binary) {
        const auto add = [&](std::size_t size) {
            line.add({reinterpret_cast<const char*>(&value), size});
            out_.append(line.view());
        };
        switch (valueKind(groupCode)) {
            case ValueKind::int8:
                return add(1);
            case ValueKind::int16:
                return add(2);
            case ValueKind::int32:
                return add(4);
            case ValueKind::int64:
                return add(8);
            case ValueKind::real:
                return real(groupCode, static_cast<double>(value));
            default:
                break;
        }
    }
    line.end = std::to_chars(line.end, line.end + 24, value).ptr;
    if (format_.binary)
        *line.end++ = '\0';
    else
        line.addLineEnd(format_.crlf);
    out_.append(line.view());
}

void GroupWriter::handle(int groupCode, std::uint64_t value) {
    char digits[20];
    char* const end = digits + sizeof digits;
    char* begin = end;
    do *--begin = base::kHexDigits[value & 15];
    while (value >>= 4);
    text(groupCode, {begin, static_cast<std::size_t>(end - begin)});
}

void GroupWriter::point(int groupCode, double x, double y, double z) {
    real(groupCode, x);
    real(groupCode + 10, y);
    real(groupCode + 20, z);
}

}  // namespace drawingdb
