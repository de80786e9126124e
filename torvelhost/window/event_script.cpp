// Reads event scripts.
//
//   line    event [blank ";" comment]    a ";" between quotes begins none
//   place   X Y | "=" point
#include "torvelhost/window/event_script.h"

#include <algorithm>
#include <array>

#include "base/files.h"
#include "base/number.h"
#include "base/paths.h"
#include "base/text.h"
#include "torvelhost/lines/reply_source.h"

namespace host {
namespace {

// Without the comment at its end.
std::wstring_view withoutComment(std::wstring_view line) {
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == L'"') quoted = !quoted;
        const bool begins = line[i] == L';' && (i == 0 || line[i - 1] == L' ' || line[i - 1] == L'\t');
        if (begins && !quoted) return line.substr(0, i);
    }
    return line;
}

[[noreturn]] void refuse(const std::string& what) { throw std::invalid_argument(what); }

// The words of a line, one after the other.
class Words {
  public:
    explicit Words(std::wstring_view line) : rest_(base::trimmed(line)) {}

    bool empty() const { return rest_.empty(); }
    std::wstring_view rest() const { return rest_; }
    std::wstring_view peek() const { return rest_.substr(0, std::min(rest_.find_first_of(L" \t"), rest_.size())); }
    std::wstring_view take() {
        const std::wstring_view word = peek();
        rest_ = base::trimmed(rest_.substr(word.size()));
        return word;
    }
    bool takeIf(std::wstring_view word) {
        if (!base::equalsNoCase(peek(), word)) return false;
        take();
        return true;
    }

    double number(const char* what) {
        const auto number = base::parseReal(peek());
        if (!number) refuse(what);
        take();
        return *number;
    }
    EventPlace place() {
        static constexpr char kWanted[] = "a place is wanted: two numbers of pixels, or = and a point, as =23.5,10";
        EventPlace place;
        if (peek().starts_with(L'=')) {
            place.point = parsePoint(take().substr(1));
            if (!place.point) refuse(kWanted);
            return place;
        }
        place.pixel.x = number(kWanted);
        place.pixel.y = number(kWanted);
        return place;
    }

  private:
    std::wstring_view rest_;
};

void takeModifiers(Words& words, WindowEvent& event) {
    for (;;)
        if (words.takeIf(L"shift"))
            event.shift = true;
        else if (words.takeIf(L"middle"))
            event.button = MouseButton::kMiddle;
        else
            break;
}

void takeText(Words& words, WindowEvent& event) {
    event.text = words.rest();
    words = Words(L"");
}

void requireText(const WindowEvent& event, const char* wanted) {
    if (event.text.empty()) refuse(wanted);
}

struct Verb {
    const wchar_t* name;
    WindowEvent::Kind kind;
};
constexpr std::array kVerbs = {
    Verb{L"size", WindowEvent::kSize},     Verb{L"dpi", WindowEvent::kDpi},
    Verb{L"move", WindowEvent::kMove},     Verb{L"click", WindowEvent::kClick},
    Verb{L"right", WindowEvent::kRight},   Verb{L"double", WindowEvent::kDouble},
    Verb{L"down", WindowEvent::kDown},     Verb{L"up", WindowEvent::kUp},
    Verb{L"drag", WindowEvent::kDrag},     Verb{L"wheel", WindowEvent::kWheel},
    Verb{L"type", WindowEvent::kType},     Verb{L"keys", WindowEvent::kKeys},
    Verb{L"key", WindowEvent::kKey},       Verb{L"menu", WindowEvent::kMenu},
    Verb{L"tab", WindowEvent::kTab},       Verb{L"word", WindowEvent::kWord},
    Verb{L"drop", WindowEvent::kDrop},     Verb{L"close", WindowEvent::kClose},
    Verb{L"dialog", WindowEvent::kDialog}, Verb{L"expect", WindowEvent::kExpect},
    Verb{L"wait", WindowEvent::kWait},     Verb{L"picture", WindowEvent::kPicture},
};

constexpr int kLargestCanvas = 20000;

void takeExpectation(Words& words, WindowEvent& event) {
    static constexpr const wchar_t* kThings[] = {L"prompt", L"title", L"status", L"history", L"selected", L"dialog"};
    for (const wchar_t* thing : kThings)
        if (words.takeIf(thing)) event.word = thing;
    if (event.word.empty()) refuse("prompt, title, status, history, selected or dialog is wanted behind expect");
    if (event.word == L"selected") {
        event.number = words.number("a number is wanted behind expect selected");
        return;
    }
    takeText(words, event);
    requireText(event, "a text is wanted behind it");
}

void takeRest(Words& words, WindowEvent& event) {
    switch (event.kind) {
        case WindowEvent::kSize: {
            static constexpr char kWanted[] = "width and height in pixels are wanted, from 1 to 20000";
            event.number = words.number(kWanted);
            event.second = words.number(kWanted);
            for (const double side : {event.number, event.second})
                if (!(side >= 1 && side <= kLargestCanvas)) refuse(kWanted);
            return;
        }
        case WindowEvent::kDpi:
            event.number = words.number("dots an inch are wanted, from 48 to 960");
            if (!(event.number >= 48 && event.number <= 960)) refuse("dots an inch are wanted, from 48 to 960");
            return;
        case WindowEvent::kMove:
        case WindowEvent::kClick:
        case WindowEvent::kRight:
        case WindowEvent::kDouble:
        case WindowEvent::kDown:
        case WindowEvent::kUp:
            event.places = {words.place()};
            takeModifiers(words, event);
            if (event.kind == WindowEvent::kRight && event.button == MouseButton::kMiddle)
                refuse("the right button is not the middle one");
            return;
        case WindowEvent::kDrag:
            event.places = {words.place()};
            if (!words.takeIf(L"to")) refuse("it is: drag PLACE to PLACE");
            event.places.push_back(words.place());
            return takeModifiers(words, event);
        case WindowEvent::kWheel:
            event.number = words.number("a number of notches is wanted");
            if (!words.takeIf(L"at")) refuse("it is: wheel 3 at PLACE");
            event.places = {words.place()};
            return;
        case WindowEvent::kWait:
            event.number = words.number("a number of milliseconds is wanted");
            if (!(event.number >= 0 && event.number <= 1e9)) refuse("a number of milliseconds is wanted");
            return;
        case WindowEvent::kClose:
            return;
        case WindowEvent::kExpect:
            return takeExpectation(words, event);
        case WindowEvent::kPicture:
            takeText(words, event);
            if (event.text.size() > 6 &&
                base::equalsNoCase(std::wstring_view(event.text).substr(event.text.size() - 6), L" exact")) {
                event.exact = true;
                event.text = base::trimmed(std::wstring_view(event.text).substr(0, event.text.size() - 6));
            }
            if (!base::equalsNoCase(base::extensionOf(event.text), L".png")) refuse("the name of a PNG file is wanted");
            return;
        case WindowEvent::kType:
        case WindowEvent::kDialog:
            return takeText(words, event);
        default:
            takeText(words, event);
            return requireText(event, "a text is wanted behind it");
    }
}

}  // namespace

std::optional<WindowEvent> parseEvent(std::wstring_view line) {
    Words words(withoutComment(line));
    if (words.empty()) return std::nullopt;
    const std::wstring_view name = words.take();
    const auto* const verb = std::find_if(kVerbs.begin(), kVerbs.end(),
                                          [&](const Verb& known) { return base::equalsNoCase(name, known.name); });
    if (verb == kVerbs.end()) refuse("\"" + base::toUtf8(name) + "\" is no event");
    WindowEvent event;
    event.kind = verb->kind;
    takeRest(words, event);
    if (!words.empty()) refuse("\"" + base::toUtf8(words.rest()) + "\" is too much there");
    return event;
}

std::vector<WindowEvent> parseEvents(std::wstring_view text, const std::wstring& name) {
    std::vector<WindowEvent> events;
    std::size_t number = 0;
    for (std::wstring& line : base::split(text, L'\n')) {
        ++number;
        if (line.ends_with(L'\r')) line.pop_back();
        const std::wstring place = name + L":" + std::to_wstring(number);
        try {
            auto event = parseEvent(line);
            if (!event) continue;
            event->place = place;
            events.push_back(std::move(*event));
        } catch (const std::invalid_argument& error) {
            throw ScriptError(base::toUtf8(place) + ": " + error.what());
        }
    }
    return events;
}

std::vector<WindowEvent> readEvents(const std::wstring& path) {
    return parseEvents(base::fromUtf8(base::readTextFile(path)), path);
}

}  // namespace host
