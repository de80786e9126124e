#include "torvelcmd2/slides/vslide.h"

#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"
#include "dialogs/boxes.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/frame/module_dialog.h"
#include "torvelcmd2/resources/resource.h"
#include "torvelcmd2/slides/slide_decoder.h"
#include "torvelcmd2/slides/slide_draw.h"
#include "torvelcmd2/slides/slide_file.h"

namespace torvel {
namespace {

constexpr std::size_t kLongestFolder = 260;

// A slide beside the drawing and of its name; none for a drawing that has no file.
OdString defaultName(const OdDbDatabase& database) {
    const OdString& drawing = database.fileName();
    return drawing.substr(0, drawing.size() - base::extensionOf(drawing).size());
}

std::int64_t variable(const wchar_t* name) { return hostVariable(hostapi::getIntegerVariable, name, 0); }

bool asksByDialog() {
    constexpr std::int64_t kScript = 4;
    constexpr std::int64_t kProgram = 32;
    return variable(L"FILEDIA") != 0 && (variable(L"CMDACTIVE") & (kScript | kProgram)) == 0;
}

OdString chooseFile(const OdString& standard) {
    dialogs::FileRequest request;
    request.title = loadText(IDS_VSLIDE_SELECT_FILE);
    request.fileName = standard;
    request.filter = L"SLD File (*.sld)|*.sld||";
    request.mustExist = true;
    return dialogs::askFile(request).value_or(OdString());
}

OdString askName(HostEdInput& input, const OdString& standard) {
    const OdString prompt = standard.empty()
                                ? loadText(IDS_VSLIDE_SELECT_FILE)
                                : base::format(loadText(IDS_VSLIDE_SELECT_FILE_DEFAULT).c_str(), standard.c_str());
    OdString name;
    switch (askText(input, prompt, name)) {
        case hostapi::kValue:
            return name;
        case hostapi::kEmpty:
            return standard;
        default:
            return {};
    }
}

OdString fileNotFoundText(const OdString& name) {
    OdString text = base::format(loadText(IDS_VSLIDE_NOT_FOUND).c_str(), name.c_str());
    const OdString folder = base::currentFolder();
    text += base::format(loadText(IDS_VSLIDE_CURRENT_FOLDER).c_str(),
                         OdString(base::prefix(folder, kLongestFolder)).c_str());
    for (const OdString& searched : supportFolders()) text += searched + L"\r\n";
    return text;
}

OdString messageOf(const CXException& error) {
    switch (error.code()) {
        case CXException::kFileNotFound:
            return fileNotFoundText(error.subject());
        case CXException::kInvalidSlideName:
            return base::format(loadText(IDS_VSLIDE_INVALID_NAME).c_str(), error.subject().c_str());
        case CXException::kSlideNotInLibrary:
            return loadText(IDS_VSLIDE_NOT_IN_LIBRARY);
        case CXException::kUndefinedRecord:
            return base::formatPositional(loadText(IDS_VSLIDE_UNDEFINED_RECORD), error.subject());
        case CXException::kNotASlide:
            break;
    }
    // The string table has no such text, and never had one.
    return loadText(IDS_VSLIDE_NOT_A_SLIDE);
}

HostSlideView* currentView() {
    auto* const view = reinterpret_cast<hostapi::SlideViewFunction*>(GetHostFunction(hostapi::kSlideViewFunction));
    return view != nullptr ? view() : nullptr;
}

}  // namespace

CMD_RUNSTATUS VSlideCmd::run() {
    setRunStatus(kCommandRunning);
    const RunFrame frame = reachDocument();
    const ModuleResources resources;
    const OdString standard = defaultName(*frame.database);
    // Empty when the user cancelled, or entered nothing where there is no default.
    const OdString name = asksByDialog() ? chooseFile(standard) : askName(*frame.input, standard);
    HostSlideView* const view = currentView();
    if (name.empty() || !view) return setRunStatus(kCommandCancelled);
    try {
        slideDraw painter(*view, slideBackground(*frame.database));
        loadAndDrawVSlide(name, &painter);
    } catch (const CXException& error) {
        printLine(messageOf(error));
        return setRunStatus(kCommandCancelled);
    }
    return setRunStatus(kCommandFinished);
}

}  // namespace torvel
