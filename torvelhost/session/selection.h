// Picking entities: one, one inside references, or a set; and what was picked before a command began.
#pragma once

#include <functional>
#include <optional>
#include <set>

#include "hostapi/selection.h"
#include "torvelhost/session/document_view.h"
#include "torvelhost/session/input.h"
#include "torvelhost/session/strokes.h"

namespace host {

class Selection {
  public:
    Selection(Input& input, DocumentView& view) : input_(input), document_(input.document()), view_(view) {}

    /// One entity of the active space. kValue with a null entity: nothing lay under the cursor.
    int pickEntity(const wchar_t* prompt, const wchar_t* keywords, hostapi::Pick& pick);
    /// The innermost object, or the first candidate that the reactor takes. With `at` nothing is asked.
    int pickNested(const wchar_t* prompt, const hostapi::Pick* at, HostGsSelectionReactor* reactor,
                   hostapi::Pick& pick);
    int pickSet(const wchar_t* prompt, OdDbObjectIdArray& entities, const wchar_t* keywords = nullptr);

    /// What a handle picks: an entity, also the one that holds an attribute. Nothing, and a reason, when it names none.
    std::optional<hostapi::Pick> pickByName(const TypedObject& name, std::wstring& reason) const;

    /// What a reply at a pick prompt picks: a handle, a handle and a point, a point (null where nothing lies), none.
    /// Nothing, and a reason where there is one, when the text is no pick.
    std::optional<hostapi::Pick> pickByText(std::wstring_view text, std::wstring& reason);

    /// ---- what a window shows and says

    /// As pickByText, with what the prompt that is open takes of what lies there.
    std::optional<hostapi::Pick> pickTyped(std::wstring_view text, std::wstring& reason);
    /// What a click at a point meets, as the prompt that is open goes into references.
    hostapi::Pick pickAt(const OdGePoint3d& point);
    OdDbObjectId entityAt(const OdGePoint3d& point);
    /// What a reply calls an entity: "#1F", or "#?12" for one whose handle does not lead to it.
    std::wstring nameOf(OdDbObjectId entity) const;
    /// A reply that picks that object again, whatever the view then is; without its point.
    std::wstring nameOf(const hostapi::Pick& pick) const;
    /// The set that is being made at a prompt; null at others.
    const OdDbObjectIdArray* setInTheMaking() const { return making_; }
    std::vector<OdDbObjectId> entitiesInWindow(const OdGePoint3d& a, const OdGePoint3d& b, bool crossing);

    /// ---- the pick-first set
    const OdDbObjectIdArray& pickFirst() const { return pickFirst_; }
    void setPickFirst(OdDbObjectIdArray entities);
    /// From a line at the command prompt: a selection becomes the set, one behind "-" is taken away from it. False, and
    /// a reason, when it is none.
    bool setPickFirst(const Reply& reply, std::wstring& reason);
    /// A command uses up the set that was there when it began, unless it made one of its own. One that uses the
    /// pick-first set gets it from pickSet, the first time, without being asked.
    void beginCommand(bool usesPickFirst) {
        pickFirstChanged_ = false;
        offersPickFirst_ = usesPickFirst;
    }
    void endCommand();

    /// ---- the pick that started the command
    const std::optional<hostapi::Pick>& startingPick() const { return startingPick_; }
    void setStartingPick(std::optional<hostapi::Pick> pick) { startingPick_ = std::move(pick); }

    void highlight(OdDbObjectId entity, bool on);
    bool isHighlighted(OdDbObjectId entity) const { return highlighted_.contains(entity); }
    const std::set<OdDbObjectId>& highlighted() const { return highlighted_; }
    /// What is not shown while a command works on it.
    const std::set<OdDbObjectId>& hidden() const { return hidden_; }
    /// Is told each change that a screen would show.
    using HighlightWatcher = std::function<void(OdDbObjectId entity, bool on)>;
    void watchHighlight(HighlightWatcher watcher) { highlightWatcher_ = std::move(watcher); }

    /// An entity is to be shown as it is now.
    void redraw(OdDbObjectId entity);
    /// Is told what a screen would show of it: whether it goes, comes back, or is drawn anew.
    enum class Redrawn { kHidden, kShown, kRedrawn };
    using RedrawWatcher = std::function<void(OdDbObjectId entity, Redrawn how)>;
    void watchRedraw(RedrawWatcher watcher) { redrawWatcher_ = std::move(watcher); }

    /// The half side of the pick box in pixels.
    int pickBox = 3;

  private:
    using Entities = std::vector<OdDbObjectId>;

    OdDbObjectId find(const TypedObject& name, std::wstring& reason) const;
    OdDbObjectId findIn(OdDbObjectId reference, const TypedObject& name, std::wstring& reason) const;
    std::optional<hostapi::Pick> toPick(const TypedPick& typed, std::wstring& reason);
    int askPick(const wchar_t* prompt, const wchar_t* keywords, Expected::Kind kind, hostapi::Pick& pick);
    OdDbObjectId entityIn(const Rectangle& box);
    void goInto(hostapi::Pick& pick, const Rectangle& box);
    std::vector<NestedHit> candidates(const hostapi::Pick& pick);
    void choose(hostapi::Pick& pick, HostGsSelectionReactor& reactor);
    /// False when the text is no selection.
    bool select(std::wstring_view text, Entities& entities, std::wstring& reason);
    EntityGrids& grids();
    Entities entitiesIn(const Rectangle& rectangle, bool crossing);
    Entities allEntities();
    Entities lastEntity();
    Entities fitting(const TypedFilter& filter);
    Rectangle pickRectangle(const OdGePoint3d& center);

    Input& input_;
    Document& document_;
    DocumentView& view_;
    HostGsSelectionReactor* reactor_ = nullptr;  // of the prompt that is open
    const OdDbObjectIdArray* making_ = nullptr;  // likewise
    OdDbObjectIdArray pickFirst_;
    bool pickFirstChanged_ = false;
    bool offersPickFirst_ = false;
    std::optional<hostapi::Pick> startingPick_;
    std::set<OdDbObjectId> highlighted_;
    HighlightWatcher highlightWatcher_;
    std::set<OdDbObjectId> hidden_;  // while the command runs
    RedrawWatcher redrawWatcher_;
};

}  // namespace host
