// The dialog of AttExt: which template and output it offers, what each button does, and what OK refuses.
#include "torvelcmd2/extract/att_ext_dialog.h"

#include "base/paths.h"
#include "base/text.h"
#include "dialogs/boxes.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

constexpr wchar_t kSection[] = L"AttExtDlg";
constexpr wchar_t kFolderKey[] = L"folder";
constexpr wchar_t kOutputKey[] = L"outputFileName";

constexpr wchar_t kTextFilter[] = L"Text files/Templates/Output files (*.txt)|*.txt|All Files (*.*)|*.*||";
constexpr wchar_t kDxxFilter[] = L"Output files (*.dxx)|*.dxx|All Files (*.*)|*.*||";

// The place of the last separator, unless it is the path's first character.
std::size_t lastSeparator(const OdString& path) {
    std::size_t at = path.size();
    while (at > 0 && !base::isPathSeparator(path[at - 1])) --at;
    return at <= 1 ? OdString::npos : at - 1;
}

OdString documentsFolder() {
    OdString folder;
    if (IStdDirs* const folders = hostObject(hostapi::getStdDirs)) folders->documentsFolder(folder);
    return folder;
}

}  // namespace

CAttExtDlg::CAttExtDlg(OdString drawingPath)
    : ModuleDialog(IDD_ATTEXT, nullptr, L"IDH_AttExt"), drawingPath_(std::move(drawingPath)) {}

OdString CAttExtDlg::templatePath() const { return text(IDC_ATTEXT_TEMPLATE); }

OdString CAttExtDlg::outputPath() const { return text(IDC_ATTEXT_OUTPUT); }

void CAttExtDlg::setNumberFound(int count) { numberFound_ = count; }

// ---- opening

void CAttExtDlg::onInit() {
    setTexts();
    setChecked(format_ == ExtractFormat::commaDelimited   ? IDC_ATTEXT_CDF
               : format_ == ExtractFormat::spaceDelimited ? IDC_ATTEXT_SDF
                                                          : IDC_ATTEXT_DXX);
    // After a selection the paths are those that the user left.
    if (!opened_) {
        setText(IDC_ATTEXT_OUTPUT, firstOutputPath());
        opened_ = true;
    }
    // Also when it was left in DXX: only the button is disabled then, until a format is clicked.
    enable(IDC_ATTEXT_TEMPLATE_BUTTON);
    enable(IDC_ATTEXT_TEMPLATE);
    applyExtensionRule();
    setText(IDC_ATTEXT_NUMBER, std::to_wstring(numberFound_));
}

// The template carries the captions of another language.
void CAttExtDlg::setTexts() {
    static constexpr struct {
        int control;
        unsigned text;
    } kTexts[] = {
        {IDC_ATTEXT_FORMAT, IDS_ATTEXT_FORMAT},
        {IDC_ATTEXT_CDF, IDS_ATTEXT_CDF},
        {IDC_ATTEXT_SDF, IDS_ATTEXT_SDF},
        {IDC_ATTEXT_DXX, IDS_ATTEXT_DXX},
        {IDC_ATTEXT_SELECT, IDS_ATTEXT_SELECT},
        {IDC_ATTEXT_TEMPLATE_BUTTON, IDS_ATTEXT_TEMPLATE},
        {IDC_ATTEXT_OUTPUT_BUTTON, IDS_ATTEXT_OUTPUT},
        {IDC_ATTEXT_NUMBER_LABEL, IDS_ATTEXT_NUMBER_FOUND},
    };
    setTitle(loadText(IDS_ATTEXT_TITLE));
    for (const auto& [control, textId] : kTexts) setText(control, loadText(textId));
}

// The file used last; else the drawing's name in the folder used last, or in the user's documents.
OdString CAttExtDlg::firstOutputPath() const {
    OdString remembered = readSetting(kSection, kOutputKey).value_or(L"");
    if (!remembered.empty()) return remembered;
    const std::optional<OdString> usedLast = readSetting(kSection, kFolderKey);
    const OdString folder = usedLast ? *usedLast : documentsFolder();
    const std::size_t separator = lastSeparator(drawingPath_);
    return folder.empty() || separator == OdString::npos ? drawingPath_ : folder + drawingPath_.substr(separator);
}

// ---- the controls

// Only ".dwg" is replaced: going from one format to another leaves ".txt" and ".dxx" as they are.
void CAttExtDlg::applyExtensionRule() {
    const bool dxx = format_ == ExtractFormat::dxf;
    setText(IDC_ATTEXT_OUTPUT, base::replaceAll(outputPath(), L".dwg", dxx ? L".dxx" : L".txt"));
    if (dxx) enable(IDC_ATTEXT_TEMPLATE_BUTTON, false);
}

void CAttExtDlg::onCommand(int control, dialogs::Event event) {
    if (event != dialogs::Event::kPressed) return;
    switch (control) {
        case IDC_ATTEXT_CDF:
            return chooseFormat(ExtractFormat::commaDelimited);
        case IDC_ATTEXT_SDF:
            return chooseFormat(ExtractFormat::spaceDelimited);
        case IDC_ATTEXT_DXX:
            return chooseFormat(ExtractFormat::dxf);
        case IDC_ATTEXT_SELECT:
            return end(kSelectObjects);
        case IDC_ATTEXT_TEMPLATE_BUTTON:
            return chooseTemplate();
        case IDC_ATTEXT_OUTPUT_BUTTON:
            return chooseOutput();
        default:
            break;
    }
}

void CAttExtDlg::chooseFormat(ExtractFormat format) {
    format_ = format;
    const bool usesTemplate = format != ExtractFormat::dxf;
    enable(IDC_ATTEXT_TEMPLATE_BUTTON, usesTemplate);
    enable(IDC_ATTEXT_TEMPLATE, usesTemplate);
    applyExtensionRule();
    rememberOutput();
}

void CAttExtDlg::chooseTemplate() {
    dialogs::FileRequest request;
    request.fileName = L"*.txt";
    request.filter = kTextFilter;
    request.mustExist = true;
    if (const auto path = dialogs::askFile(request)) setText(IDC_ATTEXT_TEMPLATE, *path);
}

void CAttExtDlg::chooseOutput() {
    const bool dxx = format_ == ExtractFormat::dxf;
    dialogs::FileRequest request;
    request.save = true;
    request.fileName = outputPath();
    request.defaultExtension = dxx ? L"*.dxx" : L"*.txt";
    request.filter = dxx ? kDxxFilter : kTextFilter;
    request.askOverwrite = true;
    if (const auto path = dialogs::askFile(request)) {
        setText(IDC_ATTEXT_OUTPUT, *path);
        applyExtensionRule();
    }
}

// ---- OK

void CAttExtDlg::onOk() {
    if (numberFound_ < 1) {
        showBox(hostapi::kErrorBox, loadText(IDS_ATTEXT_NOT_SELECTED));
        return focus(IDC_ATTEXT_SELECT);
    }
    if (format_ != ExtractFormat::dxf && !checkFiles()) return;
    const OdString output = outputPath();
    if (const std::size_t separator = lastSeparator(output); separator != OdString::npos)
        writeSetting(kSection, kFolderKey, output.substr(0, separator));
    rememberOutput();
    end(dialogs::kOkButton);
}

// The field that the message speaks of.
bool CAttExtDlg::refuse(int field) {
    focus(field);
    selectAll(field);
    return false;
}

bool CAttExtDlg::checkFiles() {
    if (!base::isFile(templatePath())) {
        // A notification, where the others are boxes.
        notifyUser(loadText(IDS_ATTEXT_TEMPLATE_NOT_FOUND));
        return refuse(IDC_ATTEXT_TEMPLATE);
    }
    if (outputPath().empty()) {
        // The text speaks of the template although it is the output that is missing; users know it so.
        showBox(hostapi::kErrorBox, loadText(IDS_ATTEXT_NO_OUTPUT));
        return refuse(IDC_ATTEXT_OUTPUT);
    }
    if (templatePath() == outputPath()) {
        showBox(hostapi::kErrorBox, loadText(IDS_ATTEXT_SAME_FILE));
        return refuse(IDC_ATTEXT_OUTPUT);
    }
    return true;
}

void CAttExtDlg::rememberOutput() {
    if (!outputPath().empty()) writeSetting(kSection, kOutputKey, outputPath());
}

}  // namespace torvel
