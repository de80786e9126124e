// Values that are edited in a drop-down with free text: colours and lineweights.
//
// A property turns a value into the text shown, and a text typed or chosen back into a value. A control shows a
// property in a drop-down of a dialog. A container gathers the controls of one page and hands them what happens there.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "dialogs/dialog.h"
#include "drawingdb/color.h"
#include "drawingdb/entity.h"

namespace torvel {

/// What a control knows of a property.
class EditableText {
  public:
    virtual OdString text() const = 0;
    /// Built anew at each call.
    virtual std::vector<OdString> choices() const = 0;
    /// Takes a text typed or chosen; false, and nothing changed, when it gives no value.
    virtual bool setText(const OdString& text) = 0;

  protected:
    ~EditableText() = default;
};

template <class Value>
class CTEditableProperty : public EditableText {
  public:
    const Value& value() const { return value_; }
    void setValue(const Value& value) { value_ = value; }

    OdString text() const final { return toText(value_); }
    bool setText(const OdString& text) final {
        const std::optional<Value> value = fromText(text);
        if (value) value_ = *value;
        return value.has_value();
    }

    virtual OdString toText(const Value& value) const = 0;
    /// Nothing when the text gives no value.
    virtual std::optional<Value> fromText(const OdString& text) const = 0;

  protected:
    explicit CTEditableProperty(const Value& value) : value_(value) {}
    ~CTEditableProperty() = default;

  private:
    Value value_;
};

/// A colour: "By Layer", "By Block", the six basic colours by name, any other as the drawing database names it. "More
/// Colors..." asks the host's colour chooser, and gives no value when the user cancels.
class COdColorProperty final : public CTEditableProperty<OdCmColor> {
  public:
    COdColorProperty() : CTEditableProperty(OdCmColor()) {}

    OdString toText(const OdCmColor& color) const override;
    std::optional<OdCmColor> fromText(const OdString& text) const override;
    std::vector<OdString> choices() const override;
};

constexpr std::int32_t kLineWeightByLayer = -1;
constexpr std::int32_t kLineWeightByBlock = -2;
constexpr std::int32_t kLineWeightDefault = -3;

/// A lineweight in hundredths of a millimetre, or one of the three above. Shown and read in the unit that LWUNITS says:
/// 0 inches, else millimetres. A text that is neither a special one nor a number gives the default.
class CTLineWeightProperty final : public CTEditableProperty<std::int32_t> {
  public:
    CTLineWeightProperty() : CTEditableProperty(kLineWeightByLayer) {}

    OdString toText(const std::int32_t& weight) const override;
    std::optional<std::int32_t> fromText(const OdString& text) const override;
    std::vector<OdString> choices() const override;
};

/// What a file may hold: the weight itself, or the nearest of the 24 standard ones.
std::int32_t storableLineWeight(std::int32_t weight);

/// The plot styles that are no style of their own; without the blank that colours and lineweights have.
inline constexpr wchar_t kPlotsByLayer[] = L"ByLayer";
inline constexpr wchar_t kPlotsByBlock[] = L"ByBlock";
/// One of these, or the name of the style.
OdString plotStyleText(const OdDbEntity& entity);

/// A property in an editable drop-down of a dialog.
class CCSComboBoxCtrl {
  public:
    /// The dialog and the property must outlive the control.
    CCSComboBoxCtrl(dialogs::Dialog& dialog, int control, EditableText& property)
        : dialog_(dialog), control_(control), property_(property) {}

    int control() const { return control_; }
    /// Fills the drop-down and shows the property's text.
    void show();
    /// A choice was made, or the field is left: the text becomes the value, and the value's own text is shown. True
    /// when the text was one that the user changed and gave a value.
    bool commit();

  private:
    dialogs::Dialog& dialog_;
    int control_;
    EditableText& property_;
};

class CColorCtl final : public CCSComboBoxCtrl {
  public:
    CColorCtl(dialogs::Dialog& dialog, int control) : CCSComboBoxCtrl(dialog, control, property_) {}
    const OdCmColor& color() const { return property_.value(); }
    void setColor(const OdCmColor& color);

  private:
    COdColorProperty property_;
};

class CLineWeightCtl final : public CCSComboBoxCtrl {
  public:
    CLineWeightCtl(dialogs::Dialog& dialog, int control) : CCSComboBoxCtrl(dialog, control, property_) {}
    std::int32_t lineWeight() const { return property_.value(); }
    void setLineWeight(std::int32_t weight);

  private:
    CTLineWeightProperty property_;
};

/// The property controls of a page.
class CEditPropContainer {
  public:
    void add(CCSComboBoxCtrl& control) { controls_.push_back(&control); }
    /// To be called from the page's onCommand and onLeave. True when the control is one of these and its value was set
    /// by the user: the page then writes it.
    bool onCommand(int control, dialogs::Event event);
    bool onLeave(int control);

  private:
    CCSComboBoxCtrl* find(int control) const;

    std::vector<CCSComboBoxCtrl*> controls_;
};

}  // namespace torvel
