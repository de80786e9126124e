// Picking entities: one, one inside references, or a set; and what was picked before a command began.
#pragma once

#include <functional>
#include <optional>
#include <set>

#include "hostapi/selection.h"
#include "torvelhost/session/document_view.h"
#include "torvelhost/session/entity_grid.h"
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
    int pickSet(const wchar_t* prompt, OdDbObjectIdArray& entities);

    /// What a handle picks: an entity, also the one that holds an attribute. Nothing, and a reason, when it names none.
    std::optional<hostapi::Pick> pickByHandle(OdDbHandle handle, std::wstring& reason) const;

    /// What a reply at a pick prompt picks: a handle, a handle and a point, a point (null where nothing lies). Nothing,
    /// and a reason where there is one, when the text is no pick.
    std::optional<hostapi::Pick> pickByText(std::wstring_view text, std::wstring& reason);

    /// ---- the pick-first set
    const OdDbObjectIdArray& pickFirst() const { return pickFirst_; }
    void setPickFirst(OdDbObjectIdArray entities);
    /// From a line of handles; false, and a reason, when one names nothing.
    bool setPickFirst(const std::vector<OdDbHandle>& handles, std::wstring& reason);
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

    std::optional<hostapi::Pick> toPick(const TypedPick& typed, std::wstring& reason);
    OdDbObjectId entityAt(const Rectangle& box);
    std::vector<NestedHit> candidates(const hostapi::Pick& pick);
    /// False when the reply is no selection.
    bool addToSet(const Reply& reply, Entities& entities, std::wstring& reason);
    const EntityGrid& grid();
    Entities entitiesIn(const Rectangle& rectangle, bool crossing);
    Entities allEntities();
    Entities lastEntity();
    Rectangle pickRectangle(const OdGePoint3d& center);

    Input& input_;
    Document& document_;
    DocumentView& view_;
    OdDbObjectIdArray pickFirst_;
    bool pickFirstChanged_ = false;
    bool offersPickFirst_ = false;
    std::optional<hostapi::Pick> startingPick_;
    std::set<OdDbObjectId> highlighted_;
    HighlightWatcher highlightWatcher_;
    std::set<OdDbObjectId> hidden_;  // while the command runs
    RedrawWatcher redrawWatcher_;
    std::optional<EntityGrid> grid_;  // of that space, as it was at that revision of the drawing
    OdDbObjectId gridSpace_;
    std::uint64_t gridRevision_ = 0;
};

}  // namespace host
