// A window that is on no screen: a script of events works it, and its clock goes as the script says.
#pragma once

#include <functional>
#include <vector>

#include "torvelhost/window/event_script.h"

namespace host {

class CanvasView;

class HeadlessFrame final : public ViewFrame {
  public:
    explicit HeadlessFrame(std::vector<WindowEvent> events) : script_(std::move(events)) {}

    /// The view is looked at beyond what it hands to frames: it is the one that is opened.
    void work(CanvasView& view) { view_ = &view; }
    /// Of the event that is under way.
    const std::wstring& place() const { return place_; }
    /// The line of the next event, when it is one for a dialog.
    std::optional<std::wstring> peekDialogLine() const;

    void open(ViewEvents& events) override;
    /// One event. Throws ScriptError for one that does not fit.
    void waitForEvents(std::optional<std::int64_t> until) override;
    std::int64_t now() override { return now_; }
    bool breathe() override { return false; }

    void showPicture(const PixelBuffer& picture) override;
    void setCursor(Cursor) override {}
    void setTip(const std::wstring&, CanvasPoint) override {}
    void setTitle(const std::wstring& title) override { title_ = title; }
    void setStatus(const std::wstring& text) override { status_ = text; }
    void setProgress(double) override {}
    void setMenus(const std::vector<Menu>& menus) override { menus_ = menus; }
    void setTabs(const std::vector<std::wstring>& names, std::size_t current) override;
    void setPrompt(const std::wstring& prompt, const std::vector<std::wstring>& words) override;
    void setCommandText(const std::wstring& text) override { commandText_ = text; }
    void addHistory(const std::wstring& text) override { history_ += text; }
    void* nativeWindow() override { return nullptr; }
    void activate() override {}

  private:
    [[noreturn]] void refuse(const std::wstring& why) const;
    void perform(const WindowEvent& event);
    void setSize(const WindowEvent& event);
    void mouse(const WindowEvent& event);
    void type(const std::wstring& text);
    void key(const std::wstring& name);
    void menu(const std::wstring& path);
    void expect(const WindowEvent& event);
    void require(const wchar_t* what, const std::wstring& is, const std::wstring& wanted) const;
    CanvasPoint placeOf(const EventPlace& place) const;

    std::vector<WindowEvent> script_;
    std::size_t done_ = 0;
    std::optional<WindowEvent> secondClick_;  // of a double one, which comes to the next that waits
    std::wstring place_;
    std::int64_t now_ = 0;
    CanvasView* view_ = nullptr;
    ViewEvents* events_ = nullptr;
    int width_ = 1280, height_ = 760;
    double scale_ = 1;
    const PixelBuffer* picture_ = nullptr;  // the view keeps it as it was shown
    std::wstring title_, status_, prompt_, commandText_, history_;
    std::vector<std::wstring> words_, tabs_;
    std::vector<Menu> menus_;
};

}  // namespace host
