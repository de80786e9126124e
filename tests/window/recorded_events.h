// What a window hands over, as words: "pressed left 10,20 shift", "key Enter", "menu File/Save".
#pragma once

#include <string>
#include <vector>

#include "base/text.h"
#include "torvelhost/window/view_frame.h"

/// Gives a window menus, tabs and a prompt with two words.
inline void fill(host::ViewFrame& frame) {
    frame.setMenus(
        {{L"&File", {{L"&Save", L"File/Save", L"Ctrl+S", L"Saves the drawing", true}, {L"", L"", L"", L"", false}}},
         {L"&Edit", {{L"&Undo", L"Edit/Undo", L"Ctrl+Z", L"", false}}}});
    frame.setTabs({L"Model", L"Layout1"}, 0);
    frame.setPrompt(L"Specify a point <a b> or [Hor/Ver]:", {L"Hor", L"Ver"});
}

/// Takes the keys that are named in `takes`; keeps all it is told in `log`.
class RecordedEvents final : public host::ViewEvents {
  public:
    std::vector<std::string> log;
    std::vector<host::Key> takes;
    int width = 0, height = 0;

    void resized(int newWidth, int newHeight, double) override {
        width = newWidth;
        height = newHeight;
        log.push_back("resized");
    }
    void mouseMoved(host::CanvasPoint at, bool) override { add("moved", at); }
    void mouseLeft() override { log.push_back("left the canvas"); }
    void mousePressed(host::MouseButton button, host::CanvasPoint at, bool shift) override {
        add("pressed " + nameOf(button), at, shift);
    }
    void mouseReleased(host::MouseButton button, host::CanvasPoint at, bool shift) override {
        add("released " + nameOf(button), at, shift);
    }
    void mouseDoubleClicked(host::MouseButton button, host::CanvasPoint at, bool shift) override {
        add("double " + nameOf(button), at, shift);
    }
    void wheelTurned(double notches, host::CanvasPoint at) override {
        add("wheel " + std::to_string(static_cast<int>(notches)), at);
    }
    bool keyPressed(host::Key key) override {
        static constexpr const char* kNames[] = {"Enter", "Escape", "Space", "Tab", "Up", "Down", "Delete", "Help"};
        log.push_back(std::string("key ") + kNames[static_cast<int>(key)]);
        return std::find(takes.begin(), takes.end(), key) != takes.end();
    }
    void commandTextChanged(const std::wstring& text) override { log.push_back("text " + base::toUtf8(text)); }
    void menuChosen(const std::wstring& path) override { log.push_back("menu " + base::toUtf8(path)); }
    void tabChosen(std::size_t index) override { log.push_back("tab " + std::to_string(index)); }
    void wordChosen(std::size_t index) override { log.push_back("word " + std::to_string(index)); }
    void fileDropped(const std::wstring& path) override { log.push_back("dropped " + base::toUtf8(path)); }
    void closeAsked() override { log.push_back("close"); }

  private:
    static std::string nameOf(host::MouseButton button) {
        static constexpr const char* kNames[] = {"left", "middle", "right"};
        return kNames[static_cast<int>(button)];
    }
    void add(const std::string& what, host::CanvasPoint at, bool shift = false) {
        log.push_back(what + " " + std::to_string(static_cast<int>(at.x)) + "," +
                      std::to_string(static_cast<int>(at.y)) + (shift ? " shift" : ""));
    }
};
