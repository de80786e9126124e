// What a click means: presses, moves and releases of the mouse become lines of the script language.
//
//   point                  a press is the point
//   entity, nested         a press is a pick, or "none"
//   set, command prompt    a click on an entity picks it; one beside all begins a window that the next click ends; so
//   do
//                          press, move and release. To the right: what lies wholly inside; to the left: what it meets.
//                          Shift takes away. At the command prompt they make the set that the next command finds
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "torvelhost/lines/question.h"
#include "torvelhost/session/application.h"
#include "torvelhost/window/overlay.h"
#include "torvelhost/window/view_map.h"

namespace host {

class Gestures {
  public:
    using Reply = std::function<void(const std::wstring& line)>;
    explicit Gestures(Reply reply) : reply_(std::move(reply)) {}

    /// Of the drawing that is worked at; null: nothing is done.
    void use(Application::Session* session) { session_ = session; }
    void setScale(double scale) { scale_ = scale; }
    /// What is asked for from now on: a window that was begun is given up.
    void expect(Expected::Kind kind);

    void pressed(CanvasPoint at);
    void moved(CanvasPoint at);
    void released(CanvasPoint at, bool shift);
    void doubleClicked(CanvasPoint at);
    /// The line, where a place in it picks something: by name, as a click says it, so that it means the same with any
    /// other view.
    std::wstring named(const std::wstring& line) const;
    /// False when there was nothing to give up.
    bool giveUp();

    /// A selection's window that is being drawn.
    std::optional<Overlay::Window> window() const;
    /// What a click would pick.
    OdDbObjectId under(CanvasPoint at) const;
    bool picks() const { return kind_ == Expected::kEntity || kind_ == Expected::kNested || selects(); }

  private:
    bool selects() const { return kind_ == Expected::kSet || kind_ == Expected::kCommand; }
    bool isFar(CanvasPoint from, CanvasPoint to) const;
    ViewMap map() const { return {session_->document, session_->view}; }
    void select(OdDbObjectId entity, bool takesAway);
    void selectWindow(CanvasPoint from, CanvasPoint to, bool takesAway);
    void setPickFirst(const std::vector<OdDbObjectId>& added);
    void enterViewport(CanvasPoint at);

    Reply reply_;
    Application::Session* session_ = nullptr;
    double scale_ = 1;
    Expected::Kind kind_ = Expected::kAnswer;
    std::optional<CanvasPoint> press_;   // of a button that is held
    std::optional<CanvasPoint> corner_;  // of a window that waits for its second click
    CanvasPoint cursor_;
};

}  // namespace host
