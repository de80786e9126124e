// The frame without a screen: events from a script, in the order in which a real window would hand them over.
#include "torvelhost/window/headless_frame.h"

#include <algorithm>
#include <array>

#include "base/files.h"
#include "base/text.h"
#include "dialogs/process.h"
#include "torvelhost/lines/reply_source.h"
#include "torvelhost/plot/picture.h"
#include "torvelhost/window/canvas_view.h"

namespace host {
namespace {

struct NamedKey {
    const wchar_t* name;
    Key key;
};
constexpr std::array kKeys = {
    NamedKey{L"Enter", Key::kEnter},   NamedKey{L"Escape", Key::kEscape}, NamedKey{L"Space", Key::kSpace},
    NamedKey{L"Tab", Key::kTab},       NamedKey{L"Up", Key::kUp},         NamedKey{L"Down", Key::kDown},
    NamedKey{L"Delete", Key::kDelete}, NamedKey{L"F1", Key::kHelp},
};

std::wstring quoted(const std::wstring& text) { return L"\"" + text + L"\""; }

}  // namespace

void HeadlessFrame::refuse(const std::wstring& why) const { throw ScriptError(base::toUtf8(place_ + L": " + why)); }

void HeadlessFrame::open(ViewEvents& events) {
    events_ = &events;
    // The size that the script begins with is that of the window.
    for (; done_ < script_.size(); ++done_) {
        const WindowEvent& event = script_[done_];
        if (event.kind == WindowEvent::kSize)
            setSize(event);
        else if (event.kind == WindowEvent::kDpi)
            scale_ = event.number / 96;
        else
            break;
    }
    events.resized(width_, height_, scale_);
}

void HeadlessFrame::setSize(const WindowEvent& event) {
    width_ = static_cast<int>(event.number);
    height_ = static_cast<int>(event.second);
}

void HeadlessFrame::waitForEvents(std::optional<std::int64_t>) {
    // The view has looked at the drawing, and does so again at each event.
    if (const OdDbObjectId open = view_->openForWrite())
        refuse(L"the " + base::widen(open.objectClass()->name()) + L" #" + open.handle().text() +
               L" is open for write where the window waits for the user");
    if (const auto second = std::exchange(secondClick_, std::nullopt)) {
        const CanvasPoint at = placeOf(second->places.front());
        events_->mouseDoubleClicked(second->button, at, second->shift);
        return events_->mouseReleased(second->button, at, second->shift);
    }
    if (done_ == script_.size()) return view_->finish();
    const WindowEvent& event = script_[done_++];
    place_ = event.place;
    perform(event);
}

std::optional<std::wstring> HeadlessFrame::peekDialogLine() const {
    const bool isNext = done_ < script_.size() && script_[done_].kind == WindowEvent::kDialog;
    return isNext ? std::optional(script_[done_].text) : std::nullopt;
}

void HeadlessFrame::showPicture(const PixelBuffer& picture) { picture_ = &picture; }

void HeadlessFrame::setTabs(const std::vector<std::wstring>& names, std::size_t) { tabs_ = names; }

void HeadlessFrame::setPrompt(const std::wstring& prompt, const std::vector<std::wstring>& words) {
    prompt_ = prompt;
    words_ = words;
}

CanvasPoint HeadlessFrame::placeOf(const EventPlace& place) const {
    return place.point ? view_->placeOf(*place.point) : place.pixel;
}

void HeadlessFrame::perform(const WindowEvent& event) {
    const bool looks = event.kind == WindowEvent::kExpect || event.kind == WindowEvent::kWait ||
                       event.kind == WindowEvent::kPicture || event.kind == WindowEvent::kSize ||
                       event.kind == WindowEvent::kDpi || event.kind == WindowEvent::kDialog;
    if (!looks && view_->isInDialog()) refuse(quoted(dialogs::openTitle()) + L" is open: a line with dialog is wanted");
    switch (event.kind) {
        case WindowEvent::kSize:
            setSize(event);
            return events_->resized(width_, height_, scale_);
        case WindowEvent::kDpi:
            scale_ = event.number / 96;
            return events_->resized(width_, height_, scale_);
        case WindowEvent::kType:
            commandText_ = event.text;
            events_->commandTextChanged(commandText_);
            return key(L"Enter");
        case WindowEvent::kKeys:
            return type(event.text);
        case WindowEvent::kKey:
            return key(event.text);
        case WindowEvent::kMenu:
            return menu(event.text);
        case WindowEvent::kTab:
        case WindowEvent::kWord: {
            const std::vector<std::wstring>& names = event.kind == WindowEvent::kTab ? tabs_ : words_;
            const auto found = std::find_if(names.begin(), names.end(), [&](const std::wstring& name) {
                return base::equalsNoCase(name, event.text);
            });
            if (found == names.end())
                refuse(quoted(event.text) +
                       (event.kind == WindowEvent::kTab ? L" is no tab" : L" is no word of the prompt"));
            const auto index = static_cast<std::size_t>(found - names.begin());
            return event.kind == WindowEvent::kTab ? events_->tabChosen(index) : events_->wordChosen(index);
        }
        case WindowEvent::kDrop:
            return events_->fileDropped(event.text);
        case WindowEvent::kClose:
            return events_->closeAsked();
        case WindowEvent::kDialog:
            if (!view_->answerDialog(event.text)) refuse(L"no dialog is open");
            return;
        case WindowEvent::kExpect:
            return expect(event);
        case WindowEvent::kWait:
            now_ += static_cast<std::int64_t>(event.number);
            return;
        case WindowEvent::kPicture:
            if (event.exact) view_->settle();
            return base::writeFile(event.text, pngBytes(picture_ ? *picture_ : PixelBuffer()));
        default:
            return mouse(event);
    }
}

void HeadlessFrame::mouse(const WindowEvent& event) {
    const CanvasPoint at = placeOf(event.places.front());
    const MouseButton button = event.kind == WindowEvent::kRight ? MouseButton::kRight : event.button;
    const bool shift = event.shift;
    events_->mouseMoved(at, shift);
    switch (event.kind) {
        case WindowEvent::kWheel:
            return events_->wheelTurned(event.number, at);
        case WindowEvent::kClick:
        case WindowEvent::kRight:
            events_->mousePressed(button, at, shift);
            return events_->mouseReleased(button, at, shift);
        case WindowEvent::kDouble:
            secondClick_ = event;
            events_->mousePressed(button, at, shift);
            return events_->mouseReleased(button, at, shift);
        case WindowEvent::kDown:
            return events_->mousePressed(button, at, shift);
        case WindowEvent::kUp:
            return events_->mouseReleased(button, at, shift);
        case WindowEvent::kDrag: {
            const CanvasPoint to = placeOf(event.places.back());
            events_->mousePressed(button, at, shift);
            events_->mouseMoved(to, shift);
            return events_->mouseReleased(button, to, shift);
        }
        default:
            return;
    }
}

// A blank that the view takes does not come into the line.
void HeadlessFrame::type(const std::wstring& text) {
    for (const wchar_t character : text) {
        if (character == L' ' && events_->keyPressed(Key::kSpace)) continue;
        commandText_ += character;
        events_->commandTextChanged(commandText_);
    }
}

void HeadlessFrame::key(const std::wstring& name) {
    for (const NamedKey& known : kKeys) {
        if (!base::equalsNoCase(name, known.name)) continue;
        if (events_->keyPressed(known.key) || known.key != Key::kSpace) return;
        commandText_ += L' ';
        return events_->commandTextChanged(commandText_);
    }
    if (base::equalsNoCase(name, L"Backspace")) {
        if (commandText_.empty()) return;
        commandText_ = base::prefix(commandText_, commandText_.size() - 1);
        return events_->commandTextChanged(commandText_);
    }
    for (const Menu& menu : menus_)
        for (const MenuEntry& entry : menu.entries)
            if (!entry.shortcut.empty() && base::equalsNoCase(name, entry.shortcut))
                return events_->menuChosen(entry.path);
    refuse(quoted(name) + L" is no key");
}

void HeadlessFrame::menu(const std::wstring& path) {
    for (const Menu& menu : menus_)
        for (const MenuEntry& entry : menu.entries)
            if (!entry.path.empty() && base::equalsNoCase(path, entry.path)) return events_->menuChosen(entry.path);
    refuse(quoted(path) + L" is in no menu");
}

void HeadlessFrame::require(const wchar_t* what, const std::wstring& is, const std::wstring& wanted) const {
    if (is.find(wanted) == is.npos)
        refuse(std::wstring(what) + L" does not hold " + quoted(wanted) + L", but is " + quoted(is));
}

void HeadlessFrame::expect(const WindowEvent& event) {
    if (event.word == L"selected") {
        const auto count = static_cast<double>(view_->selectedCount());
        if (count != event.number) refuse(std::to_wstring(view_->selectedCount()) + L" are selected");
        return;
    }
    if (event.word == L"prompt") return require(L"the prompt", prompt_, event.text);
    if (event.word == L"title") return require(L"the title", title_, event.text);
    if (event.word == L"status") return require(L"the status", status_, event.text);
    if (event.word == L"dialog") return require(L"what is open", dialogs::openTitle(), event.text);
    // Only the end is told: a history may be long.
    if (history_.find(event.text) == history_.npos) {
        constexpr std::size_t kTold = 300;
        const std::size_t begin = history_.size() > kTold ? history_.size() - kTold : 0;
        refuse(L"the history does not hold " + quoted(event.text) + L"; it ends in " + quoted(history_.substr(begin)));
    }
}

}  // namespace host
