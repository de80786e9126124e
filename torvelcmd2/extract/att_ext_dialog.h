// The dialog of AttExt: format, template and output of an attribute extract.
#pragma once

#include "torvelcmd2/extract/extract.h"
#include "torvelcmd2/frame/module_dialog.h"

namespace torvel {

/// Lives for the whole run of the command and is shown anew after each selection, with what it held.
class CAttExtDlg final : public ModuleDialog {
  public:
    /// The end code of the selection button: the command lets the user select objects.
    static constexpr int kSelectObjects = 10;

    /// `drawingPath` is the full path of the active drawing, or its name alone while it was never saved.
    explicit CAttExtDlg(OdString drawingPath);

    ExtractFormat format() const { return format_; }
    OdString templatePath() const;
    OdString outputPath() const;
    /// The number of objects selected, of any kind.
    void setNumberFound(int count);

  private:
    void onInit() override;
    void onCommand(int control, dialogs::Event event) override;
    void onOk() override;
    /// Kept for the run of the command alone: the window stays where it was while objects are selected.
    std::wstring savedPlacement() override { return placement_; }
    void savePlacement(const std::wstring& placement) override { placement_ = placement; }

    void setTexts();
    OdString firstOutputPath() const;
    void applyExtensionRule();
    void chooseFormat(ExtractFormat format);
    void chooseTemplate();
    void chooseOutput();
    bool checkFiles();
    bool refuse(int field);
    void rememberOutput();

    OdString drawingPath_;
    std::wstring placement_;
    ExtractFormat format_ = ExtractFormat::commaDelimited;
    int numberFound_ = 0;
    bool opened_ = false;
};

}  // namespace torvel
