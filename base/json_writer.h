// JSON as programs read it and people can: UTF-8, an item a line, in the order in which it is written.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace base {

class JsonWriter {
  public:
    /// Objects and lists nest; the key is that of the object around, and is left out in a list and at the top.
    void beginObject(std::string_view key = {}) { begin(key, '{'); }
    void endObject() { end('}'); }
    void beginList(std::string_view key = {}) { begin(key, '['); }
    void endList() { end(']'); }
    /// Lone surrogates become U+FFFD.
    void text(std::string_view key, std::wstring_view value);
    void number(std::string_view key, std::size_t value) { item(key, std::to_string(value)); }
    void flag(std::string_view key, bool value) { item(key, value ? "true" : "false"); }

    /// All that was written; without a line end.
    const std::string& json() const { return json_; }

  private:
    void begin(std::string_view key, char bracket);
    void end(char bracket);
    void item(std::string_view key, std::string_view value);

    std::string json_;
    std::size_t depth_ = 0;
    bool isFirst_ = true;  // in what is around
};

}  // namespace base
