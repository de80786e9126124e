// Prompts: what every one of them is made of, the kinds that modules ask for, and the trackers that follow the cursor.
#include "torvelhost/session/input.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <limits>

#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "dialogs/process.h"
#include "torvelhost/lines/progress.h"
#include "torvelhost/lines/units.h"

namespace host {

// ---- trackers

// Shows what a tracker tracks while a prompt is open, and moves it as a cursor would.
class Input::TrackerSession {
  public:
    TrackerSession(HostEdInputTracker* tracker, Input& input) : tracker_(tracker), input_(input) {
        if (!tracker_) return;
        tracker_->addDrawables(input_.drawables_);
        input_.showPreview();
    }
    ~TrackerSession() {
        if (!tracker_) return;
        try {
            tracker_->removeDrawables(input_.drawables_);
            input_.showPreview();
        } catch (...) {
            // The prompt is over either way.
        }
    }
    TrackerSession(const TrackerSession&) = delete;
    TrackerSession& operator=(const TrackerSession&) = delete;

    void follow(const OdGePoint3d& cursor) { send(HostInputEvent::kPointMoved, cursor); }

    // The cursor moves from one point to the other in steps, then its button is pressed there.
    void click(const OdGePoint3d& from, const OdGePoint3d& to) {
        if (!tracker_) return;
        send(HostInputEvent::kKeyDown, from);
        constexpr int kSteps = 4;
        for (int i = 1; i < kSteps; ++i)
            send(HostInputEvent::kPointMoved, from + (to - from) * (static_cast<double>(i) / kSteps));
        send(HostInputEvent::kPointMoved, to);
        send(HostInputEvent::kButtonDown, to);
    }

  private:
    void send(std::int32_t kind, const OdGePoint3d& point) {
        if (tracker_->filterEvent({kind, point}, point)) input_.showPreview();
    }

    HostEdInputTracker* tracker_;
    Input& input_;
};

int Input::Drawables::add(OdDbEntity* entity, int, int, int, int) {
    shown_.push_back(entity);
    return 1;
}

int Input::Drawables::remove(OdDbEntity* entity) {
    const auto found = std::find(shown_.begin(), shown_.end(), entity);
    if (found == shown_.end()) return 0;
    shown_.erase(found);
    return 1;
}

// ---- the dialogue

namespace {

Expected pointFrom(const OdGePoint3d* base) { return {Expected::kPoint, base ? std::optional(*base) : std::nullopt}; }

}  // namespace

Input::Input(Document& document, ReplySource& replies, Terminal& terminal)
    : document_(document), replies_(replies), terminal_(terminal) {}

// "> 3,4". False when it is no such line.
bool Input::moveCursor(std::wstring_view text, const Expected& expected, std::wstring& reason) {
    if (expected.kind != Expected::kPoint || !text.starts_with(L'>')) return false;
    const auto typed = parsePoint(text.substr(1));
    const auto cursor = typed ? document_.toWorld(*typed, reason) : std::nullopt;
    if (cursor && expected.follow) expected.follow(*cursor);
    return cursor.has_value();
}

int Input::ask(const wchar_t* prompt, const wchar_t* keywordList, const wchar_t* wanted, const Accept& accept,
               const Expected& expected) {
    const Keywords keywords(keywordList);
    const std::wstring shown = promptText(prompt, keywords);
    const std::wstring place = L", at the prompt \"" + shown + L"\"";
    const dialogs::HiddenWindows hidden;
    for (;;) {
        std::optional<std::wstring> line;
        {
            const Progress::Pause pause;
            line = replies_.next({shown + L" ", expected, [&keywords] { return keywords.words(); }});
        }
        if (!line) {
            if (replies_.isScript()) replies_.refused(L"the script ends" + place);
            return hostapi::kCancel;
        }
        const Reply reply = parseReply(*line);
        if (reply.kind == Reply::kEnter) return hostapi::kEmpty;
        if (reply.kind == Reply::kCancel) return hostapi::kCancel;

        const Keywords::Match match = reply.quoted ? Keywords::Match() : keywords.find(reply.text);
        const int keyword = hostapi::kFirstKeyword + match.index;
        if (match.kind == Keywords::Match::kExact) return keyword;
        if (match.kind == Keywords::Match::kAbbreviated && expected.kind == Expected::kText) return keyword;
        std::wstring reason;
        if (!reply.quoted && moveCursor(reply.text, expected, reason)) continue;
        if (accept(reply, reason)) return hostapi::kValue;
        if (match.kind == Keywords::Match::kAbbreviated) return keyword;

        if (match.kind == Keywords::Match::kAmbiguous)
            reason = L"\"" + reply.text + L"\" may mean more than one of " + keywords.joined();
        if (reason.empty()) {
            reason = L"\"" + reply.text + L"\" is not " + wanted;
            if (!keywords.empty()) reason += L" and not one of " + keywords.joined();
        }
        replies_.refused(reason + place);
        terminal_.show(reason + L".\n");
    }
}

int Input::askIfNext(const wchar_t* prompt, const wchar_t* wanted, const Accept& accept,
                     const std::function<bool(const Reply&)>& suits) {
    if (replies_.isScript()) {
        const std::optional<std::wstring> line = replies_.peek();
        if (!line) return hostapi::kEmpty;
        const Reply reply = parseReply(*line);
        if (reply.kind == Reply::kText && !suits(reply)) return hostapi::kEmpty;
    }
    return ask(prompt, nullptr, wanted, accept);
}

int Input::getPoint(const OdGePoint3d* base, OdGePoint3d& point, const wchar_t* prompt, const wchar_t* keywords, int,
                    std::uintptr_t, HostEdInputTracker* tracker) {
    TrackerSession session(tracker, *this);
    Expected expected = pointFrom(base);
    if (tracker) expected.follow = [&session](const OdGePoint3d& cursor) { session.follow(cursor); };
    OdGePoint3d picked;
    const auto accept = [&](const Reply& reply, std::wstring& reason) {
        const auto typed = parsePoint(reply.text);
        if (!typed || reply.quoted) return false;
        const auto world = document_.toWorld(*typed, reason);
        if (world) picked = *world;
        return world.has_value();
    };
    const int result = ask(prompt, keywords, L"a point", accept, expected);
    if (result != hostapi::kValue) return result;
    session.click(document_.lastPoint(), picked);
    document_.setLastPoint(picked);
    point = picked;
    return result;
}

int Input::askPoint(const wchar_t* prompt, const wchar_t* keywords, OdGePoint3d& point) {
    return getPoint(nullptr, point, prompt, keywords, 0, 0, nullptr);
}

// The other end of a distance or an angle that began with a point.
int Input::secondPoint(const OdGePoint3d& first, OdGePoint3d& second) {
    return getPoint(&first, second, L"Specify second point", nullptr, 0, 0, nullptr);
}

int Input::getAngle(double& radians, const wchar_t* prompt, const wchar_t* keywords, int, std::uintptr_t base) {
    std::optional<double> angle;
    std::optional<OdGePoint3d> point;
    const auto* const from = reinterpret_cast<const OdGePoint3d*>(base);
    const auto accept = [&](const Reply& reply, std::wstring& reason) {
        if (reply.quoted) return false;
        // A lone "S" is more likely a keyword than south.
        if (reply.text.find_first_of(L"0123456789") != reply.text.npos) angle = textToAngle(reply.text, kDegrees);
        if (angle) return true;
        if (const auto typed = parsePoint(reply.text)) point = document_.toWorld(*typed, reason);
        return point.has_value();
    };
    const int result = ask(prompt, keywords, L"an angle or a point", accept, pointFrom(from));
    if (result != hostapi::kValue) return result;
    if (point) {
        document_.setLastPoint(*point);
        const OdGePoint3d begin = from ? *from : *point;
        if (!from) {
            const int pointResult = secondPoint(begin, *point);
            if (pointResult != hostapi::kValue) return pointResult;
        }
        const OdGeVector3d along = document_.ucs().inverse() * (*point - begin);
        angle = along.xy().angle();
    }
    radians = *angle;
    return result;
}

int Input::getDistance(const OdGePoint3d* base, double& distance, const wchar_t* prompt, const wchar_t* keywords,
                       int flags, std::uintptr_t) {
    std::optional<double> length;
    std::optional<OdGePoint3d> point;
    const auto accept = [&](const Reply& reply, std::wstring& reason) {
        if (reply.quoted) return false;
        length = textToLength(reply.text);
        if (length) {
            if (std::fabs(*length) > kFarthest) reason = L"the distance is too long";
            if (*length < 0 && (flags & hostapi::kNotNegative) != 0) reason = L"a distance is not negative";
            return reason.empty();
        }
        if (const auto typed = parsePoint(reply.text)) point = document_.toWorld(*typed, reason);
        return point.has_value();
    };
    const int result = ask(prompt, keywords, L"a distance or a point", accept, pointFrom(base));
    if (result != hostapi::kValue) return result;
    if (point) {
        document_.setLastPoint(*point);
        OdGePoint3d from = base ? *base : *point;
        if (!base) {
            const int pointResult = secondPoint(from, *point);
            if (pointResult != hostapi::kValue) return pointResult;
        }
        length = from.distanceTo(*point);
    }
    distance = *length;
    return result;
}

// Numbers beyond the limits count as the limits: whoever asks knows what range is wanted, and says so.
int Input::getInteger(int& value, const wchar_t* prompt, const wchar_t* keywords, int, std::uintptr_t) {
    return ask(
        prompt, keywords, L"an integer",
        [&](const Reply& reply, std::wstring&) {
            const bool isWhole = !reply.quoted && reply.text.find_first_not_of(L"+-0123456789") == reply.text.npos;
            const auto number = isWhole ? base::parseReal(std::wstring_view(reply.text)) : std::nullopt;
            if (!number) return false;
            using Limits = std::numeric_limits<int>;
            value = static_cast<int>(std::clamp<double>(*number, Limits::min(), Limits::max()));
            return true;
        });
}

int Input::getKeyword(const wchar_t* prompt, const wchar_t* keywords, int, std::uintptr_t textOut, std::uintptr_t) {
    if (textOut != 0) return askText(prompt, keywords, *reinterpret_cast<OdString*>(textOut));
    return ask(prompt, keywords, L"an answer", [](const Reply&, std::wstring&) { return false; });
}

int Input::askText(const wchar_t* prompt, const wchar_t* keywords, OdString& text) {
    return ask(
        prompt, keywords, L"a text",
        [&](const Reply& reply, std::wstring&) {
            text = reply.text;
            return true;
        },
        {Expected::kText});
}

bool Input::getString(OdString& text) { return askText(L"Enter text", nullptr, text) == hostapi::kValue; }

void Input::printMessage(const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const Progress::Pause pause;
    terminal_.print(base::vformat(format, arguments));
    va_end(arguments);
}

// The entity is shown by its tracker; a screen would use it to choose snap and dimension styles.
void Input::setCurrentEntity(int, OdDbEntity*) {}

void MessageInput::printMessage(const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    terminal_.print(base::vformat(format, arguments));
    va_end(arguments);
}

}  // namespace host
