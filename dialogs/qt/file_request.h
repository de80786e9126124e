// A file dialog of Qt as a request wants it.
#pragma once

#include <QStringList>
#include <string>

#include "dialogs/boxes.h"

class QFileDialog;

namespace dialogs {

/// "Texts (*.txt)|*.txt;*.asc|All files|*.*||" is "Texts (*.txt *.asc)" and "All files (*)".
QStringList nameFilters(const std::wstring& filter);
void prepareFileDialog(QFileDialog& dialog, const FileRequest& request);

}  // namespace dialogs
