#include "drawingdb/src/fields/expression.h"

#include <algorithm>
#include <cmath>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/src/fields/field_code.h"

namespace drawingdb {

namespace {

constexpr int kMaxNesting = 64;
constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180.0;

using Value = std::optional<double>;
using Function = double (*)(double);

constexpr std::pair<std::wstring_view, Function> kFunctions[] = {
    {L"sin", [](double x) { return std::sin(x * kDegree); }},
    {L"cos", [](double x) { return std::cos(x * kDegree); }},
    {L"tan", [](double x) { return std::tan(x * kDegree); }},
    {L"asin", [](double x) { return std::asin(x) / kDegree; }},
    {L"acos", [](double x) { return std::acos(x) / kDegree; }},
    {L"atan", [](double x) { return std::atan(x) / kDegree; }},
    {L"sqrt", [](double x) { return std::sqrt(x); }},
    {L"sqr", [](double x) { return x * x; }},
    {L"abs", [](double x) { return std::fabs(x); }},
    {L"round", [](double x) { return std::round(x); }},
    {L"trunc", [](double x) { return std::trunc(x); }},
    {L"exp", [](double x) { return std::exp(x); }},
    {L"exp10", [](double x) { return std::pow(10.0, x); }},
    {L"ln", [](double x) { return std::log(x); }},
    {L"log", [](double x) { return std::log10(x); }},
    {L"r2d", [](double x) { return x / kDegree; }},
    {L"d2r", [](double x) { return x * kDegree; }},
};

// What is not finite is no value: a division by zero, a root of a negative number, an overflow.
Value finite(double value) { return std::isfinite(value) ? Value(value) : Value(); }

class Parser {
  public:
    Parser(std::wstring_view text, const std::function<Value(std::size_t)>& child)
        : text_(text), child_(child), markers_(findFields(text)) {}

    Value run() {
        const Value result = sum();
        skipBlanks();
        return result && at_ == text_.size() ? finite(*result) : Value();
    }

  private:
    Value sum() {
        Value left = product();
        while (left) {
            const bool plus = take(L'+');
            if (!plus && !take(L'-')) break;
            const Value right = product();
            left = right ? finite(plus ? *left + *right : *left - *right) : Value();
        }
        return left;
    }

    Value product() {
        Value left = factor();
        while (left) {
            const bool times = take(L'*');
            if (!times && !take(L'/')) break;
            const Value right = factor();
            left = right ? finite(times ? *left * *right : *left / *right) : Value();
        }
        return left;
    }

    Value factor() {
        bool negative = false;
        for (;;)
            if (take(L'-'))
                negative = !negative;
            else if (!take(L'+'))
                break;
        const Value value = power();
        return value && negative ? Value(-*value) : value;
    }

    Value power() {
        const Value base = primary();
        if (!base || !take(L'^')) return base;
        if (++depth_ > kMaxNesting) return {};
        const Value exponent = factor();
        --depth_;
        return exponent ? finite(std::pow(*base, *exponent)) : Value();
    }

    Value primary() {
        skipBlanks();
        if (at_ == text_.size()) return {};
        const wchar_t c = text_[at_];
        if (c == L'(') return parenthesised();
        if (c == L'%') return marker();
        if (base::isDigit(c) || c == L'.') return number();
        return named();
    }

    Value parenthesised() {
        if (!take(L'(') || ++depth_ > kMaxNesting) return {};
        const Value value = sum();
        --depth_;
        return take(L')') ? value : Value();
    }

    Value marker() {
        const auto span = std::lower_bound(markers_.begin(), markers_.end(), at_,
                                           [](const FieldSpan& s, std::size_t place) { return s.begin < place; });
        if (span == markers_.end() || span->begin != at_ || span->kind != FieldSpan::childIndex) return {};
        at_ = span->end;
        return child_(static_cast<std::size_t>(span->number));
    }

    Value number() {
        const std::size_t begin = at_;
        while (at_ < text_.size() && (base::isDigit(text_[at_]) || text_[at_] == L'.')) ++at_;
        if (at_ < text_.size() && (text_[at_] == L'e' || text_[at_] == L'E')) {
            std::size_t digits = at_ + 1;
            if (digits < text_.size() && (text_[digits] == L'+' || text_[digits] == L'-')) ++digits;
            if (digits < text_.size() && base::isDigit(text_[digits])) {
                at_ = digits;
                while (at_ < text_.size() && base::isDigit(text_[at_])) ++at_;
            }
        }
        return base::parseReal(text_.substr(begin, at_ - begin));
    }

    Value named() {
        const std::size_t begin = at_;
        while (at_ < text_.size() && (isLetter(text_[at_]) || base::isDigit(text_[at_]))) ++at_;
        const std::wstring_view name = text_.substr(begin, at_ - begin);
        if (base::equalsNoCase(name, L"pi")) return kPi;
        for (const auto& [known, function] : kFunctions) {
            if (!base::equalsNoCase(name, known)) continue;
            const Value argument = parenthesised();
            return argument ? finite(function(*argument)) : Value();
        }
        return {};
    }

    static bool isLetter(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z'); }
    void skipBlanks() {
        while (at_ < text_.size() && (text_[at_] == L' ' || text_[at_] == L'\t')) ++at_;
    }
    bool take(wchar_t c) {
        skipBlanks();
        if (at_ == text_.size() || text_[at_] != c) return false;
        ++at_;
        return true;
    }

    std::wstring_view text_;
    const std::function<Value(std::size_t)>& child_;
    std::vector<FieldSpan> markers_;
    std::size_t at_ = 0;
    int depth_ = 0;
};

}  // namespace

std::optional<double> evaluateExpression(std::wstring_view text,
                                         const std::function<std::optional<double>(std::size_t)>& child) {
    return Parser(text, child).run();
}

}  // namespace drawingdb
