// The command line of a document: prompts answered by a script or by a person.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "hostapi/input.h"
#include "hostapi/trackers.h"
#include "torvelhost/lines/reply.h"
#include "torvelhost/lines/reply_source.h"
#include "torvelhost/lines/terminal.h"
#include "torvelhost/session/document.h"

namespace host {

class Input final : public HostEdInput {
  public:
    Input(Document& document, ReplySource& replies, Terminal& terminal);

    int getPoint(const OdGePoint3d* base, OdGePoint3d& point, const wchar_t* prompt, const wchar_t* keywords, int flags,
                 std::uintptr_t reserved, HostEdInputTracker* tracker) override;
    int getAngle(double& radians, const wchar_t* prompt, const wchar_t* keywords, int flags,
                 std::uintptr_t base) override;
    int getKeyword(const wchar_t* prompt, const wchar_t* keywords, int flags, std::uintptr_t textOut,
                   std::uintptr_t reserved) override;
    void printMessage(const wchar_t* format, ...) override;
    bool getString(OdString& text) override;
    int getDistance(const OdGePoint3d* base, double& distance, const wchar_t* prompt, const wchar_t* keywords,
                    int flags, std::uintptr_t reserved) override;
    int getInteger(int& value, const wchar_t* prompt, const wchar_t* keywords, int flags,
                   std::uintptr_t reserved) override;
    void setCurrentEntity(int kind, OdDbEntity* entity) override;

    // ---- what every prompt is made of

    /// Looks at a reply that is neither Enter nor cancel nor a keyword. True takes it; false refuses it, with `reason`
    /// saying why unless it is simply not what was asked for.
    using Accept = std::function<bool(const Reply& reply, std::wstring& reason)>;
    /// Asks until a reply suits, and returns an input result. A script's reply that does not suit throws ScriptError.
    /// `wanted` completes the sentence "... is not": "a point". An expected text may be anything, so keywords come
    /// before it. Where a point is expected, "> 3,4" moves the cursor and is no reply.
    int ask(const wchar_t* prompt, const wchar_t* keywords, const wchar_t* wanted, const Accept& accept,
            const Expected& expected = {});
    /// A prompt whose answer a script may leave out: a next line that `suits` does not take stays for what comes after,
    /// and the result is kEmpty.
    int askIfNext(const wchar_t* prompt, const wchar_t* wanted, const Accept& accept,
                  const std::function<bool(const Reply&)>& suits);

    /// Prompts for what the host's own commands need.
    int askText(const wchar_t* prompt, const wchar_t* keywords, OdString& text);
    int askPoint(const wchar_t* prompt, const wchar_t* keywords, OdGePoint3d& point);

    ReplySource& replies() { return replies_; }
    Terminal& terminal() { return terminal_; }
    Document& document() { return document_; }

    /// What trackers show now.
    const std::vector<OdDbEntity*>& drawablesShown() const { return drawables_.shown(); }
    /// Is told a frame of the preview, all that trackers show: when a prompt with a tracker begins, after each event
    /// that changed it, and, with nothing in it, at the end.
    using PreviewWatcher = std::function<void(const std::vector<OdDbEntity*>& shown)>;
    void watchPreview(PreviewWatcher watcher) { previewWatcher_ = std::move(watcher); }

  private:
    /// What trackers show. In a terminal only who watches the preview sees it.
    class Drawables final : public HostDrawableList {
      public:
        int add(OdDbEntity* entity, int kind, int flags, int reserved1, int reserved2) override;
        int remove(OdDbEntity* entity) override;
        const std::vector<OdDbEntity*>& shown() const { return shown_; }

      private:
        std::vector<OdDbEntity*> shown_;
    };
    class TrackerSession;

    void showPreview() {
        if (previewWatcher_) previewWatcher_(drawables_.shown());
    }
    int secondPoint(const OdGePoint3d& first, OdGePoint3d& second);
    bool moveCursor(std::wstring_view text, const Expected& expected, std::wstring& reason);

    Document& document_;
    ReplySource& replies_;
    Terminal& terminal_;
    Drawables drawables_;
    PreviewWatcher previewWatcher_;
};

/// The channel that is there without a document: messages are printed, prompts are cancelled.
class MessageInput final : public HostEdInput {
  public:
    explicit MessageInput(Terminal& terminal) : terminal_(terminal) {}

    int getPoint(const OdGePoint3d*, OdGePoint3d&, const wchar_t*, const wchar_t*, int, std::uintptr_t,
                 HostEdInputTracker*) override {
        return hostapi::kCancel;
    }
    int getAngle(double&, const wchar_t*, const wchar_t*, int, std::uintptr_t) override { return hostapi::kCancel; }
    int getKeyword(const wchar_t*, const wchar_t*, int, std::uintptr_t, std::uintptr_t) override {
        return hostapi::kCancel;
    }
    void printMessage(const wchar_t* format, ...) override;
    bool getString(OdString&) override { return false; }
    int getDistance(const OdGePoint3d*, double&, const wchar_t*, const wchar_t*, int, std::uintptr_t) override {
        return hostapi::kCancel;
    }
    int getInteger(int&, const wchar_t*, const wchar_t*, int, std::uintptr_t) override { return hostapi::kCancel; }
    void setCurrentEntity(int, OdDbEntity*) override {}

  private:
    Terminal& terminal_;
};

}  // namespace host
