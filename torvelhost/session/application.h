// The running host: everything that a module can reach through the exported functions.
#pragma once

#include <memory>

#include "hostapi/application.h"
#include "hostapi/settings.h"
#include "torvelhost/plot/slide_view.h"
#include "torvelhost/session/document.h"
#include "torvelhost/session/document_view.h"
#include "torvelhost/session/input.h"
#include "torvelhost/session/options.h"
#include "torvelhost/session/profile.h"
#include "torvelhost/session/selection.h"
#include "torvelhost/session/variables.h"

namespace host {

class Application final : public HostApplication {
  public:
    Application(const Options& options, Terminal& terminal);
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// The one that runs; null before and after.
    static Application* current();

    HostDocument* activeDocument() override { return session_ ? &session_->document : nullptr; }
    HostEdInput* applicationInput() override { return &messages_; }

    /// An open drawing with what belongs to it.
    struct Session {
        Session(OdDbDatabasePtr database, ReplySource& replies, Terminal& terminal, const Options& options);

        Document document;
        DocumentView view;
        Input input;
        Selection selection;
        Variables variables;
        std::wstring command;  // under way; empty: none

        // Whether what a screen would show while a command runs is told in words: trackers, highlighted entities.
        void tellPreview(bool on);
    };
    void open(OdDbDatabasePtr database, ReplySource& replies);
    Session* session() { return session_.get(); }

    Terminal& terminal() { return terminal_; }
    Profile& profile() { return profile_; }
    IHelpServiceEx& help() { return help_; }
    IStdDirs& folders() { return folders_; }

    /// Evaluates the drawing's fields and shows it anew.
    void regenerate(OdDbDatabase& database);
    /// Host function 12: the picture is drawn again as it stands.
    void refresh();
    /// An entity is to be shown as it is now.
    void redraw(OdDbObjectId entity);
    /// Draws what the view shows, the slide shown last or else the drawing, into a file, and tells what could not be
    /// drawn. Throws base::FileError.
    void plot(const PlotSettings& settings, const std::wstring& path);
    /// Is told when a screen is to show the drawing as it is. Empty: there is none.
    void watchScreen(std::function<void()> watcher) { screen_ = std::move(watcher); }
    /// Host function 17: the view that slides are drawn into.
    SlideView* slideView() { return session_ ? &slideView_ : nullptr; }

  private:
    class Help final : public IHelpServiceEx {
      public:
        explicit Help(Terminal& terminal) : terminal_(terminal) {}
        void showTopic(const wchar_t* topic, void* owner) override;

      private:
        Terminal& terminal_;
    };
    class Folders final : public IStdDirs {
      public:
        explicit Folders(Application& application) : application_(application) {}
        void supportPath(CXStringW& folders) override;
        void documentsFolder(CXStringW& folder) override;
        void temporaryFolder(CXStringW& folder) override;

      private:
        Application& application_;
    };

    const Options& options_;
    Terminal& terminal_;
    Profile profile_;
    MessageInput messages_;
    Help help_;
    Folders folders_;
    SlideView slideView_;
    std::unique_ptr<Session> session_;
    std::function<void()> screen_;
};

}  // namespace host
