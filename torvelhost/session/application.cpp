#include "torvelhost/session/application.h"

#include "base/paths.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/field.h"
#include "drawingdb/mtext.h"
#include "drawingdb/symbol_table.h"
#include "drawingdb/text.h"
#include "torvelhost/lines/help_text.h"
#include "torvelhost/lines/progress.h"
#include "torvelhost/plot/plot.h"
#include "torvelhost/session/preview.h"

namespace host {
namespace {

Application* g_current = nullptr;

}  // namespace

Application::Application(const Options& options, Terminal& terminal)
    : options_(options),
      terminal_(terminal),
      profile_(Profile::of(options.profile)),
      messages_(terminal),
      help_(terminal),
      folders_(*this),
      slideView_(options.width, options.height, profile_,
                 [this] { return session_ && !session_->document.isModelSpaceActive(); }) {
    g_current = this;
}

Application::~Application() { g_current = nullptr; }

Application* Application::current() { return g_current; }

Application::Session::Session(OdDbDatabasePtr database, ReplySource& replies, Terminal& terminal,
                              const Options& options)
    : document(std::move(database)),
      view(document, options.width, options.height),
      input(document, replies, terminal),
      selection(input, view),
      variables(document) {
    document.setInput(&input);
    variables.add(
        L"CMDACTIVE",
        [this, &replies] {
            constexpr std::int64_t kCommand = 1, kScript = 4;
            return replies.isScript() ? kScript : command.empty() ? 0 : kCommand;
        });
    variables.add(L"VIEWSIZE", [this] { return view.current().height; });
    variables.add(L"VIEWCTR", [this] {
        const OdGePoint2d center = view.current().center;
        return OdGePoint3d(center.x, center.y, 0);
    });
    const auto dragMode = std::make_shared<std::int64_t>(0);
    variables.add(
        L"DRAGMODE", [dragMode] { return *dragMode; },
        [this, dragMode](const VariableValue& value) -> std::wstring {
            const std::int64_t mode = std::get<std::int64_t>(value);
            if (mode != 0 && mode != 1) return L"0 or 1 is wanted";
            *dragMode = mode;
            tellPreview(mode == 1);
            return L"";
        });
    variables.add(
        L"PICKBOX", [this] { return std::int64_t{selection.pickBox}; },
        [this](const VariableValue& value) -> std::wstring {
            const std::int64_t pixels = std::get<std::int64_t>(value);
            if (pixels < 0 || pixels > 50) return L"an integer between 0 and 50 is wanted";
            selection.pickBox = static_cast<int>(pixels);
            return L"";
        });
}

void Application::Session::tellPreview(bool on) {
    input.watchPreview(nullptr);
    selection.watchHighlight(nullptr);
    selection.watchRedraw(nullptr);
    if (!on) return;
    const auto tell = [this](const std::wstring& what) { input.terminal().notice(L"[preview] " + what); };
    input.watchPreview([tell](const std::vector<OdDbEntity*>& shown) {
        for (const OdDbEntity* entity : shown) tell(previewText(*entity));
    });
    selection.watchHighlight([tell](OdDbObjectId entity, bool highlighted) {
        tell(L"#" + entity.handle().text() + (highlighted ? L" highlighted" : L" as before"));
    });
    selection.watchRedraw([tell](OdDbObjectId entity, Selection::Redrawn how) {
        static constexpr const wchar_t* kWords[] = {L" hidden", L" shown", L" redrawn"};
        tell(L"#" + entity.handle().text() + kWords[static_cast<int>(how)]);
    });
}

void Application::open(OdDbDatabasePtr database, ReplySource& replies) {
    session_ = std::make_unique<Session>(std::move(database), replies, terminal_, options_);
}

// Texts of all kinds may have fields; nothing else is opened.
void Application::regenerate(OdDbDatabase& database) {
    slideView_.showDrawing();
    const auto evaluate = [&database](OdDbObjectId id) {
        if (!id.isKindOf(OdDbText::desc()) && !id.isKindOf(OdDbMText::desc())) return;
        const auto text = id.openIf<OdDbEntity>();
        if (!text || !text->extensionDictionary()) return;
        if (text->getField(L"TEXT")) text->getField(L"TEXT", OdDb::forWrite)->evaluate(OdDbField::kOnRegen, &database);
    };
    const auto blocks = database.blockTableId().openIf<OdDbSymbolTable>();
    if (!blocks) return;
    for (OdDbObjectId blockId : blocks->records()) {
        const auto block = blockId.openIf<OdDbBlockTableRecord>();
        if (!block) continue;
        for (OdDbObjectId id : block->entities()) {
            evaluate(id);
            if (!id.isKindOf(OdDbBlockReference::desc())) continue;
            for (OdDbObjectId attribute : id.openAs<OdDbBlockReference>()->attributes()) evaluate(attribute);
        }
    }
    if (screen_) screen_();
}

// A slide that was shown makes room for the drawing.
void Application::refresh() {
    slideView_.showDrawing();
    if (screen_) screen_();
}

void Application::plot(const PlotSettings& settings, const std::wstring& path) {
    onFile(
        terminal_, L"Plotting", L"draw the picture", path,
        [&] {
            if (const Picture* const slide = slideView_.slide(); slide && !settings.layout)
                return plotPicture(*slide, settings, path);
            for (const std::wstring& warning : plotToFile(session_->document, session_->view, settings, path))
                terminal_.warning(warning);
        });
}

void Application::redraw(OdDbObjectId entity) {
    session_->selection.redraw(entity);
    if (screen_) screen_();
}

void Application::Help::showTopic(const wchar_t* topic, void*) {
    std::wstring_view name = topic ? topic : L"";
    if (name.empty()) return terminal_.notice(helpOverview());
    terminal_.notice(L"[help] " + std::wstring(name));
    constexpr std::wstring_view kPrefix = L"IDH_";
    if (name.starts_with(kPrefix)) name.remove_prefix(kPrefix.size());
    if (const auto text = helpOn(name)) terminal_.notice(*text);
}

void Application::Folders::supportPath(CXStringW& folders) {
    folders.clear();
    if (Session* session = application_.session())
        if (const auto path = session->variables.get(L"SUPPORTPATH")) folders = variableText(*path);
}

void Application::Folders::documentsFolder(CXStringW& folder) {
    const auto home = base::environmentVariable(L"HOME");
    const auto profile = base::environmentVariable(L"USERPROFILE");
    folder = home ? *home : profile ? *profile : base::currentFolder();
    if (const std::wstring documents = base::joinPath(folder, L"Documents"); base::isFolder(documents))
        folder = documents;
}

void Application::Folders::temporaryFolder(CXStringW& folder) { folder = base::temporaryFolder(); }

}  // namespace host
