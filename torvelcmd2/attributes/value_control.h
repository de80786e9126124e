// The value fields of the attribute dialogs: rich edits that show fields among plain text.
#pragma once

#include "dialogs/rich_text.h"
#include "torvelcmd2/attributes/values/field_edit.h"
#include "torvelcmd2/attributes/values/text_transfer.h"

namespace torvel {

/// The contents of one such rich edit; bind it with Dialog::setRichText, and refresh the control after load().
class CFEdCtrl final : public dialogs::RichText {
  public:
    /// Fields are evaluated for this drawing.
    explicit CFEdCtrl(OdDbDatabase* database = nullptr) : value_(database) {}

    FieldEdit& value() { return value_; }
    /// The menu of a control that can only be read changes nothing.
    void setReadOnly(bool on) { readOnly_ = on; }
    /// Shows the entity's value; a control that is disabled shows fields as plain text.
    void load(const OdDbEntity& entity, bool enabled = true) { value_.load(entity, enabled); }
    /// Shows a value that cannot be edited here: without fields, and a multi-line one without escapes.
    void loadForReading(const OdDbEntity& entity) { value_.loadForReading(entity); }
    /// What would be saved.
    CapturedText captured() const;
    /// The user finds the value as it is now.
    void markFound();
    /// Whether it is another since. A field that was only updated has the same code, but another text.
    bool isChanged() const;
    /// Makes this the entity's value; returns what the entity shows afterwards.
    OdString save(OdDbEntity& entity) const;

    std::wstring text() const override { return value_.text(); }
    std::vector<Run> runs() const override;
    void replace(std::size_t begin, std::size_t end, std::wstring_view plain) override;
    std::wstring copy(std::size_t begin, std::size_t end) override;
    /// Text that was copied here brings its fields back.
    void paste(std::size_t begin, std::size_t end, std::wstring_view copied) override;
    std::vector<dialogs::MenuEntry> menu(const dialogs::TextSelection& selection) const override;
    bool onMenu(int command, dialogs::TextSelection& selection) override;

  private:
    FieldEdit value_;
    OdString foundText_;
    CapturedText found_;
    bool readOnly_ = false;
};

}  // namespace torvel
