// System variables: those of the drawing (its header), and those of the session.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/text.h"
#include "torvelhost/session/document.h"

namespace host {

using VariableValue = std::variant<std::wstring, std::int64_t, double, OdGePoint3d>;
std::wstring variableText(const VariableValue& value);

class Variables {
  public:
    /// The rows keep references to the document.
    explicit Variables(Document& document);
    ~Variables();
    Variables(const Variables&) = delete;
    Variables& operator=(const Variables&) = delete;

    /// Names without "$", in any case. Header variables that are not in the table are known too, as texts that cannot
    /// be set.
    std::optional<VariableValue> get(std::wstring_view name) const;
    bool isReadOnly(std::wstring_view name) const;
    /// From a text as a user types it. False, and why, when it cannot be.
    bool set(std::wstring_view name, std::wstring_view value, std::wstring& reason);
    std::vector<std::wstring> names() const;

    /// For the owners of what a variable stands for.
    using Getter = std::function<VariableValue()>;
    /// Says why a value is refused, or nothing.
    using Setter = std::function<std::wstring(const VariableValue&)>;
    /// Reads a text where that is more than a value of the kind that the variable has. Nothing, and why, when it
    /// cannot.
    using Parser = std::optional<VariableValue> (*)(std::wstring_view text, std::wstring& reason);
    void add(const std::wstring& name, Getter get, Setter set = nullptr, Parser parse = nullptr);
    /// A variable that is nothing but its value.
    void addSession(const std::wstring& name, VariableValue value, std::int64_t low = 0, std::int64_t high = 0);

    /// The clock of the variable DATE and of the drawing: seconds since 1970-01-01 UTC.
    std::int64_t now() const;

  private:
    struct Row {
        Getter get;
        Setter set;
        Parser parse = nullptr;
    };
    void addHeaderRows();
    void addSessionRows();
    void addDocumentRows();
    const Row* find(std::wstring_view name) const;

    Document& document_;
    std::map<std::wstring, Row, base::LessNoCase> rows_;
    std::optional<std::int64_t> fixedNow_;
};

/// Days since the start of the Julian calendar, as the variable DATE counts; and "2026-03-01 12:30:00" (the time may be
/// missing) or such a number as seconds since 1970.
double julianDate(std::int64_t seconds);
std::optional<std::int64_t> parseDate(std::wstring_view text);

}  // namespace host
