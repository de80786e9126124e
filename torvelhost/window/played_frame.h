// A window on the screen that a script of events works, with the keys and the mouse of its toolkit.
#pragma once

#include <memory>

#include "torvelhost/window/headless_frame.h"
#include "torvelhost/window/window_hand.h"

namespace host {

/// The headless frame goes through the script, and what it would tell the view is done in the window, which tells it.
/// The clock is the script's. The resolution is the screen's, whatever the script says.
class PlayedFrame final : public ViewFrame {
  public:
    /// Null where that window cannot be worked by scripts.
    static std::unique_ptr<PlayedFrame> make(std::unique_ptr<ViewFrame> window, HeadlessFrame& script);

    void open(ViewEvents& events) override;
    void waitForEvents(std::optional<std::int64_t> until) override;
    std::int64_t now() override { return script_.now(); }
    bool breathe() override { return window_->breathe(); }

    void showPicture(const PixelBuffer& picture) override;
    void setCursor(Cursor cursor) override { window_->setCursor(cursor); }
    void setTip(const std::wstring& text, CanvasPoint at) override { window_->setTip(text, at); }
    void setTitle(const std::wstring& title) override;
    void setStatus(const std::wstring& text) override;
    void setProgress(double part) override { window_->setProgress(part); }
    void setMenus(const std::vector<Menu>& menus) override;
    void setTabs(const std::vector<std::wstring>& names, std::size_t current) override;
    void setPrompt(const std::wstring& prompt, const std::vector<std::wstring>& words) override;
    void setCommandText(const std::wstring& text) override;
    void addHistory(const std::wstring& text) override;
    void* nativeWindow() override { return window_->nativeWindow(); }
    void activate() override { window_->activate(); }

  private:
    /// What the script tells of, done by a hand.
    class Deeds final : public ViewEvents {
      public:
        Deeds(WindowHand& hand, HeadlessFrame& script) : hand_(hand), script_(script) {}

        void keepSize() { hand_.resizeCanvas(width_, height_); }
        void resized(int width, int height, double scale) override;
        void mouseMoved(CanvasPoint at, bool shift) override;
        void mouseLeft() override { hand_.leaveCanvas(); }
        void mousePressed(MouseButton button, CanvasPoint at, bool shift) override;
        void mouseReleased(MouseButton button, CanvasPoint at, bool shift) override;
        void mouseDoubleClicked(MouseButton button, CanvasPoint at, bool shift) override;
        void wheelTurned(double notches, CanvasPoint at) override { hand_.turnWheel(notches, at); }
        bool keyPressed(Key key) override;
        void commandTextChanged(const std::wstring& text) override;
        void menuChosen(const std::wstring& path) override { hand_.chooseEntry(path); }
        void tabChosen(std::size_t index) override { hand_.clickTab(index); }
        void wordChosen(std::size_t index) override { hand_.clickWord(index); }
        void fileDropped(const std::wstring& path) override { hand_.dropFile(path); }
        void closeAsked() override { hand_.clickClose(); }

      private:
        WindowHand& hand_;
        HeadlessFrame& script_;
        int width_ = 0, height_ = 0;
    };

    PlayedFrame(std::unique_ptr<ViewFrame> window, WindowHand& hand, HeadlessFrame& script)
        : window_(std::move(window)), script_(script), deeds_(hand, script) {}

    std::unique_ptr<ViewFrame> window_;
    HeadlessFrame& script_;
    Deeds deeds_;
};

}  // namespace host
