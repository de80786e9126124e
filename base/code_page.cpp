#include "base/code_page.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "base/code_page_tables.h"
#include "base/double_byte.h"
#include "base/text.h"

namespace base {
namespace {

class SingleByteCodePage final : public CodePage {
  public:
    explicit SingleByteCodePage(const SingleBytePage& page) : CodePage(page.name), page_(page) {
        for (std::size_t i = 0; i < reverse_.size(); ++i)
            reverse_[i] = {page.upperHalf[i], static_cast<unsigned char>(0x80 + i)};
        std::sort(reverse_.begin(), reverse_.end());
    }

  private:
    char32_t takeCharacter(std::string_view& bytes) const override {
        const unsigned char byte = static_cast<unsigned char>(bytes.front());
        bytes.remove_prefix(1);
        return byte < 0x80 ? byte : page_.upperHalf[byte - 0x80];
    }

    bool appendEncoded(char32_t character, std::string& bytes) const override {
        if (character < 0x80) {
            bytes += static_cast<char>(character);
            return true;
        }
        const auto found =
            std::lower_bound(reverse_.begin(), reverse_.end(), std::pair<char32_t, unsigned char>(character, 0));
        if (found == reverse_.end() || found->first != character) return false;
        bytes += static_cast<char>(found->second);
        return true;
    }

    const SingleBytePage& page_;
    std::array<std::pair<char32_t, unsigned char>, 128> reverse_;
};

class DoubleByteCodePage final : public CodePage {
  public:
    DoubleByteCodePage(std::string_view name, std::vector<char32_t> table) : CodePage(name), table_(std::move(table)) {
        // ASCII is ASCII in every page, whatever a system's table makes of the backslash.
        for (char32_t c = 0; c < 0x80; ++c) table_[c] = c;
        // Where several pairs mean one character the first is written; the rows 0xED and 0xEE of the Japanese page
        // only repeat others.
        auto addRow = [&](unsigned lead) {
            for (unsigned code = lead << 8; code < (lead + 1) << 8; ++code) {
                if (table_[code] != 0) {
                    reverse_.emplace(table_[code], static_cast<char16_t>(code));
                    isLead_[lead] = lead != 0;
                }
            }
        };
        const bool isJapanese = name.ends_with("932");
        for (unsigned lead = 0; lead < 0x100; ++lead)
            if (!isJapanese || (lead != 0xED && lead != 0xEE)) addRow(lead);
        if (isJapanese) {
            addRow(0xED);
            addRow(0xEE);
        }
    }

  private:
    char32_t takeCharacter(std::string_view& bytes) const override {
        const unsigned lead = static_cast<unsigned char>(bytes[0]);
        if (isLead_[lead] && bytes.size() > 1) {
            const unsigned trail = static_cast<unsigned char>(bytes[1]);
            if (const char32_t character = table_[lead << 8 | trail]) {
                bytes.remove_prefix(2);
                return character;
            }
        }
        bytes.remove_prefix(1);
        return lead == 0 || table_[lead] != 0 ? table_[lead] : kReplacementCharacter;
    }

    bool appendEncoded(char32_t character, std::string& bytes) const override {
        if (character == 0) {
            bytes += '\0';
            return true;
        }
        const auto found = reverse_.find(character);
        if (found == reverse_.end()) return false;
        if (found->second >= 0x100) bytes += static_cast<char>(found->second >> 8);
        bytes += static_cast<char>(found->second);
        return true;
    }

    std::vector<char32_t> table_;
    std::unordered_map<char32_t, char16_t> reverse_;
    std::array<bool, 256> isLead_{};
};

struct DoubleBytePage {
    std::string_view name;
    unsigned codePage;
};
constexpr DoubleBytePage kDoubleBytePages[] = {
    {"ANSI_932", 932}, {"ANSI_936", 936}, {"ANSI_949", 949}, {"ANSI_950", 950}, {"ANSI_1361", 1361},
};

// Other spellings found in drawings.
struct Alias {
    std::string_view name;
    std::string_view standard;
};
constexpr Alias kAliases[] = {
    {"dos932", "ANSI_932"},  {"dos936", "ANSI_936"}, {"dos949", "ANSI_949"},    {"dos950", "ANSI_950"},
    {"dos874", "ANSI_874"},  {"johab", "ANSI_1361"}, {"big5", "ANSI_950"},      {"gb2312", "ANSI_936"},
    {"ksc5601", "ANSI_949"}, {"ascii", "ANSI_1252"}, {"us_ascii", "ANSI_1252"}, {"macintosh", "mac-roman"},
};

std::unique_ptr<CodePage> makeCodePage(std::string_view name) {
    for (std::size_t i = 0; i < kSingleBytePageCount; ++i)
        if (equalsNoCase(name, kSingleBytePages[i].name))
            return std::make_unique<SingleByteCodePage>(kSingleBytePages[i]);
    for (const DoubleBytePage& page : kDoubleBytePages) {
        if (equalsNoCase(name, page.name)) {
            std::vector<char32_t> table = doubleByteTable(page.codePage);
            return table.empty() ? nullptr : std::make_unique<DoubleByteCodePage>(page.name, std::move(table));
        }
    }
    return nullptr;
}

}  // namespace

const CodePage* CodePage::byName(std::string_view name) {
    for (const Alias& alias : kAliases)
        if (equalsNoCase(name, alias.name)) name = alias.standard;
    static std::mutex mutex;
    static std::map<std::string, std::unique_ptr<CodePage>> pages;
    const std::lock_guard lock(mutex);
    std::string key(name);
    for (char& c : key) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    const auto found = pages.find(key);
    if (found != pages.end()) return found->second.get();
    // Unknown names are not kept: a damaged file may hold any number of them.
    std::unique_ptr<CodePage> page = makeCodePage(name);
    return page ? pages.emplace(std::move(key), std::move(page)).first->second.get() : nullptr;
}

const CodePage* CodePage::byMultiByteNumber(int number) {
    static constexpr const char* kPages[] = {"ANSI_932", "ANSI_950", "ANSI_949", "ANSI_1361", "ANSI_936"};
    return number >= 1 && number <= 5 ? byName(kPages[number - 1]) : nullptr;
}

const CodePage& CodePage::standard() { return *byName("ANSI_1252"); }

std::wstring CodePage::decode(std::string_view bytes) const {
    std::wstring text;
    text.reserve(bytes.size());
    while (!bytes.empty()) appendCharacter(text, takeCharacter(bytes));
    return text;
}

std::string CodePage::encode(std::wstring_view text, const Replace& replace) const {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char32_t character = nextCharacter(text, i);
        if (!appendEncoded(character, bytes)) replace(character, bytes);
    }
    return bytes;
}

bool CodePage::holds(char32_t character) const {
    std::string bytes;
    return appendEncoded(character, bytes);
}

}  // namespace base
