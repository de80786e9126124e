// What the dialog "Edit of attributes" has a row each for: the values of a reference's attributes, or those that new
// attributes shall have.
#pragma once

#include <optional>
#include <vector>

#include "drawingdb/block_reference.h"
#include "hostapi/module_functions.h"
#include "torvelcmd2/attributes/multiline_editing.h"
#include "torvelcmd2/attributes/value_control.h"

namespace torvel {

/// A list of values, counted from 0. What is written is in the drawing at once; who calls sees to it that it can be
/// undone.
class ValueRows {
  public:
    virtual ~ValueRows() = default;

    /// The drawing in which values are written; null: none is.
    virtual OdDbDatabase* database() const = 0;
    virtual OdString blockName() const = 0;
    virtual std::size_t count() const = 0;
    /// The prompt, or the tag where there is none.
    virtual OdString label(std::size_t row) const = 0;
    virtual bool isMultiLine(std::size_t row) const = 0;
    /// What keeps the value from being edited, a sentence; empty: nothing does.
    virtual OdString refusal(std::size_t) const { return {}; }

    virtual void show(std::size_t row, CFEdCtrl& control) const = 0;
    virtual void save(std::size_t row, const CFEdCtrl& control) = 0;
    /// Lets the user edit a multi-line value; nothing is written yet.
    virtual MultiLineEdit edit(std::size_t row) const = 0;
    virtual void save(std::size_t row, const MultiLineValue& value) = 0;
};

/// The attributes of a reference that are not constant. Those that cannot be edited, on locked layers say, are
/// shown, and refused.
class AttributeRows final : public ValueRows {
  public:
    explicit AttributeRows(const OdDbBlockReference& reference);

    OdDbDatabase* database() const override { return database_; }
    OdString blockName() const override { return blockName_; }
    std::size_t count() const override { return rows_.size(); }
    OdString label(std::size_t row) const override { return rows_[row].label; }
    bool isMultiLine(std::size_t row) const override;
    OdString refusal(std::size_t row) const override;
    void show(std::size_t row, CFEdCtrl& control) const override;
    void save(std::size_t row, const CFEdCtrl& control) override;
    MultiLineEdit edit(std::size_t row) const override;
    void save(std::size_t row, const MultiLineValue& value) override;

  private:
    struct Row {
        OdDbObjectId attribute;
        OdString label;
    };

    OdDbDatabase* database_;
    OdString blockName_;
    std::vector<Row> rows_;
};

/// Values for attributes that are not there yet. A definition in a drawing takes over what a string cannot hold: a
/// value of several lines, and one with fields.
class DefinitionRows final : public ValueRows {
  public:
    /// None of the definitions is null. `transform` takes the block's coordinates to the world's.
    DefinitionRows(OdString blockName, const hostapi::AttributeValues& values, const OdGeMatrix3d& transform);

    /// The values as they are now.
    const hostapi::AttributeValues& values() const { return values_; }

    OdDbDatabase* database() const override;
    OdString blockName() const override { return blockName_; }
    std::size_t count() const override { return values_.size(); }
    OdString label(std::size_t row) const override;
    bool isMultiLine(std::size_t row) const override;
    void show(std::size_t row, CFEdCtrl& control) const override;
    void save(std::size_t row, const CFEdCtrl& control) override;
    MultiLineEdit edit(std::size_t row) const override;
    void save(std::size_t row, const MultiLineValue& value) override;

  private:
    OdDbAttributeDefinition& definition(std::size_t row) const { return *boost::get<0>(values_[row]); }
    const OdString& text(std::size_t row) const { return boost::get<1>(values_[row]); }
    bool showsDefinition(std::size_t row) const;

    OdString blockName_;
    hostapi::AttributeValues values_;
    std::vector<bool> written_;  // the definitions that were written here
    OdGeMatrix3d transform_;
};

}  // namespace torvel
