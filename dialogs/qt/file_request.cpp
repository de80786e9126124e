#include "dialogs/qt/file_request.h"

#include <QFileDialog>
#include <QFileInfo>

#include "base/text.h"
#include "dialogs/qt/qt_text.h"

namespace dialogs {

QStringList nameFilters(const std::wstring& filter) {
    QStringList filters;
    const std::vector<std::wstring> parts = base::split(filter, L'|');
    for (std::size_t i = 0; i + 1 < parts.size(); i += 2) {
        if (parts[i].empty()) break;
        const std::wstring name(base::trimmed(std::wstring_view(parts[i]).substr(0, parts[i].find(L'('))));
        // Every file is meant, also one without a dot in its name.
        const std::wstring patterns = base::replaceAll(base::replaceAll(parts[i + 1], L"*.*", L"*"), L";", L" ");
        filters.append(toQt(name + L" (" + patterns + L")"));
    }
    return filters;
}

void prepareFileDialog(QFileDialog& dialog, const FileRequest& request) {
    dialog.setAcceptMode(request.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(!request.save && request.mustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, !request.askOverwrite);
    if (!request.title.empty()) dialog.setWindowTitle(toQt(request.title));
    if (const QStringList filters = nameFilters(request.filter); !filters.isEmpty()) dialog.setNameFilters(filters);
    QString extension = toQt(request.defaultExtension);
    if (extension.startsWith(QStringLiteral("*."))) extension.remove(0, 2);
    dialog.setDefaultSuffix(extension);
    // A pattern says which files to list, and is no file's name.
    if (request.fileName.empty() || request.fileName.find_first_of(L"*?") != std::wstring::npos) return;
    const QFileInfo file(toQt(request.fileName));
    if (file.absoluteDir().exists()) dialog.setDirectory(file.absolutePath());
    dialog.selectFile(file.fileName());
}

}  // namespace dialogs
