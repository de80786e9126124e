#include "torvelhost/window/played_frame.h"

namespace host {

std::unique_ptr<PlayedFrame> PlayedFrame::make(std::unique_ptr<ViewFrame> window, HeadlessFrame& script) {
    auto* const hand = dynamic_cast<WindowHand*>(window.get());
    return std::unique_ptr<PlayedFrame>(hand ? new PlayedFrame(std::move(window), *hand, script) : nullptr);
}

void PlayedFrame::open(ViewEvents& events) {
    window_->open(events);
    script_.open(deeds_);
}

// The window paints before each event. A menu that came, say, may have taken from the canvas.
void PlayedFrame::waitForEvents(std::optional<std::int64_t> until) {
    window_->waitForEvents(window_->now());
    deeds_.keepSize();
    script_.waitForEvents(until);
}

// ---- what the script tells of

void PlayedFrame::Deeds::resized(int width, int height, double) {
    width_ = width;
    height_ = height;
    keepSize();
}

void PlayedFrame::Deeds::mouseMoved(CanvasPoint at, bool shift) {
    hand_.mouse(WindowHand::Mouse::kMove, MouseButton::kLeft, at, shift);
}

void PlayedFrame::Deeds::mousePressed(MouseButton button, CanvasPoint at, bool shift) {
    hand_.mouse(WindowHand::Mouse::kPress, button, at, shift);
}

void PlayedFrame::Deeds::mouseReleased(MouseButton button, CanvasPoint at, bool shift) {
    hand_.mouse(WindowHand::Mouse::kRelease, button, at, shift);
}

void PlayedFrame::Deeds::mouseDoubleClicked(MouseButton button, CanvasPoint at, bool shift) {
    hand_.mouse(WindowHand::Mouse::kDoubleClick, button, at, shift);
}

// The window has looked after the rest of the key.
bool PlayedFrame::Deeds::keyPressed(Key key) {
    hand_.pressKey(key);
    script_.setCommandText(hand_.commandText());
    return true;
}

void PlayedFrame::Deeds::commandTextChanged(const std::wstring& text) {
    const std::wstring before = hand_.commandText();
    if (text.size() == before.size() + 1 && text.starts_with(before)) return hand_.type(text.back());
    if (text.size() < before.size() && before.starts_with(text)) return hand_.pressBackspace();
    hand_.enterText(text);
}

// ---- what is shown is shown in the window, and looked at by the script

void PlayedFrame::showPicture(const PixelBuffer& picture) {
    window_->showPicture(picture);
    script_.showPicture(picture);
}

void PlayedFrame::setTitle(const std::wstring& title) {
    window_->setTitle(title);
    script_.setTitle(title);
}

void PlayedFrame::setStatus(const std::wstring& text) {
    window_->setStatus(text);
    script_.setStatus(text);
}

void PlayedFrame::setMenus(const std::vector<Menu>& menus) {
    window_->setMenus(menus);
    script_.setMenus(menus);
}

void PlayedFrame::setTabs(const std::vector<std::wstring>& names, std::size_t current) {
    window_->setTabs(names, current);
    script_.setTabs(names, current);
}

void PlayedFrame::setPrompt(const std::wstring& prompt, const std::vector<std::wstring>& words) {
    window_->setPrompt(prompt, words);
    script_.setPrompt(prompt, words);
}

void PlayedFrame::setCommandText(const std::wstring& text) {
    window_->setCommandText(text);
    script_.setCommandText(text);
}

void PlayedFrame::addHistory(const std::wstring& text) {
    window_->addHistory(text);
    script_.addHistory(text);
}

}  // namespace host
