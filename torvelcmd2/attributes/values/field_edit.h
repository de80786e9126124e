// The text of a value field that shows fields among its characters, without any window.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "drawingdb/entity.h"
#include "drawingdb/field.h"

namespace torvel {

/// What a value control holds: the visible text, where each field is a run of characters that shows the field's value,
/// and the caret with the selection.
///
/// A run is one thing to whoever edits: neither caret nor selection ends inside it, and it goes as a whole. Two runs
/// side by side stay two. Positions count units of the text (UTF-16 on Windows) and never split a character; those
/// beyond the text mean its end.
class FieldEdit {
  public:
    static constexpr std::int32_t kNoField = -1;

    struct FieldEntry {
        std::int32_t first, last;  ///< positions of the run's first and last character
        std::int32_t number;       ///< what the owners of its characters say
        OdDbFieldPtr field;        ///< in no database
        bool takenOut = false;     ///< shown, but left out of the saved code
    };

    /// Fields are evaluated for this drawing.
    explicit FieldEdit(OdDbDatabase* database = nullptr) : database_(database) {}
    void setDatabase(OdDbDatabase* database) { database_ = database; }

    // ---- text and fields

    const OdString& text() const { return text_; }
    /// One for each unit of the text: kNoField, or the number of the field that it belongs to.
    const std::vector<std::int32_t>& owners() const { return owners_; }
    /// In the order in which they were placed.
    const std::vector<FieldEntry>& entries() const { return entries_; }
    void takeOut(std::int32_t number, bool out);
    void clear();
    /// Plain text in place of everything; the caret stands at its end.
    void setText(const OdString& text);

    // ---- entities: single-line and multi-line texts, attributes, attribute definitions

    /// Shows the entity's value. A control that is disabled shows fields as plain text.
    void load(const OdDbEntity& entity, bool enabled = true);
    /// Shows the entity's value as plain text, a multi-line one without escapes; for a value that is not saved from
    /// here.
    void loadForReading(const OdDbEntity& entity);
    /// Makes this the entity's value, upgrading it to write. `shown` becomes what the entity shows afterwards.
    void save(OdDbEntity& entity, OdString& shown) const;
    /// The text with index markers in place of the runs, and new fields for the markers in their order. Where the text
    /// itself reads like the beginning of a code, a field that is plain text keeps it from being one.
    std::pair<OdString, std::vector<OdDbFieldPtr>> code() const;

    // ---- caret and selection

    struct Range {
        std::size_t begin = 0, end = 0;
        bool isEmpty() const { return begin == end; }
    };
    std::size_t caret() const { return caret_; }
    std::size_t anchor() const { return anchor_; }
    Range selection() const { return {std::min(anchor_, caret_), std::max(anchor_, caret_)}; }
    /// Grows to whole runs; a caret alone goes to the nearer end of a run.
    void select(std::size_t anchor, std::size_t caret);
    void selectAll() { select(0, text_.size()); }
    /// One character or run to the left or right, taking the anchor along unless `selecting`.
    void moveCaret(bool forward, bool selecting);

    // ---- editing. Each replaces the selection and leaves the caret behind what is new.

    /// Line ends become blanks: a value is one line.
    void type(const OdString& text);
    /// The selection, or else the character or run beside the caret.
    void deleteBack();
    void deleteForward();
    /// The selected text, for other programs; a paste of the same text brings its fields back, in this value and in any
    /// other.
    OdString copy();
    void paste(const OdString& text);
    void insertField(const OdDbFieldPtr& field);

    // ---- the context menu

    enum Command {
        kCopy,
        kPaste,
        kClear,
        kEditField,
        kUpdateField,
        kConvertFieldToText,
        kInsertField,
        kSelectAll,
        kCommands
    };
    /// The entry as the menu shows it, not translated.
    static const wchar_t* commandText(Command command);
    bool isAvailable(Command command) const;
    /// `clipboard` is the text to paste, or takes the text copied.
    void run(Command command, OdString& clipboard);

  private:
    struct Fragment {
        OdString text;
        std::vector<std::int32_t> owners;  // kNoField, or an index of `fields`
        std::vector<OdDbFieldPtr> fields;
    };

    /// What was copied last, in whichever control.
    static Fragment& copied();
    void loadFields(const OdDbField& parent);
    void appendRun(const OdDbFieldPtr& field, std::int32_t number);
    void replace(Range range, const Fragment& with);
    Fragment fragmentAt(Range range) const;
    void findRuns();
    void showAgain(std::int32_t number, const OdDbFieldPtr& field);
    Range runAt(std::size_t position) const;
    std::size_t stepFrom(std::size_t position, bool forward) const;
    const FieldEntry& entryOf(std::int32_t number) const;
    std::vector<std::int32_t> fieldsToWorkOn() const;

    bool holdsFields() const;
    void editField();
    void updateFields();
    void convertFieldsToText();
    void insertNewField();

    OdDbDatabase* database_;
    OdString text_;
    std::vector<std::int32_t> owners_;
    std::vector<FieldEntry> entries_;
    std::int32_t nextNumber_ = 0;
    std::size_t anchor_ = 0, caret_ = 0;
};

}  // namespace torvel
