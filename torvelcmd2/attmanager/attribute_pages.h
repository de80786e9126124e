// The pages that edit an attribute of a reference, or an attribute definition of a block, while it is seen: what the
// user changes is in the drawing at once.
//
//     class CEAttRefEditTextOptPage final : public OfReference<TextOptionsPage> { ... };
//
// The pages work on what attributes and definitions have in common. OfReference and OfDefinition answer the few
// questions in which the two differ. An editor is the dialog around them: it says which attribute is current, and hears
// of every write.
#pragma once

#include <functional>
#include <vector>

#include "drawingdb/attribute.h"
#include "torvelcmd2/attmanager/property_controls.h"
#include "torvelcmd2/attributes/number_field.h"
#include "torvelcmd2/frame/module_dialog.h"

namespace torvel {

class EditorPage;

/// A dialog with the pages "Attribute", "Text Options" and "Properties".
class AttributeEditor : public ModuleDialog {
  public:
    virtual OdDbDatabase& database() const = 0;
    /// The attribute or definition that the pages show.
    virtual OdDbObjectId current() const = 0;
    /// Why it cannot be changed; empty: it can.
    virtual OdString lockedReason() const { return {}; }
    /// A page is about to write to it, and does not hold it open.
    virtual void beforeWrite() {}
    /// A page has written to it.
    virtual void attributeChanged() = 0;

  protected:
    AttributeEditor(int templateId, int tab, const wchar_t* settingsSection, const wchar_t* helpTopic)
        : ModuleDialog(templateId, settingsSection, helpTopic), tab_(tab) {}

    /// To be called in the constructor. The pages must outlive the editor's runs.
    void addPages(EditorPage& attribute, EditorPage& textOptions, EditorPage& properties);
    /// Another attribute is current, or the current one was changed from outside. The page in front shows it; the
    /// others do when they come to the front.
    void reload();
    void onPage(int tab, int page) override;

    int currentPage() const { return selected(tab_); }
    void setCurrentPage(int page) { select(tab_, page); }

  private:
    int tab_;
    std::vector<EditorPage*> pages_;
};

class EditorPage : public dialogs::Dialog {
  public:
    /// Shows the current attribute anew; what was typed and not taken goes.
    virtual void reload() = 0;

  protected:
    /// The editor must outlive the page. It opens with the focus at `firstControl` when it opens on this page.
    EditorPage(int templateId, AttributeEditor& editor, int firstControl)
        : Dialog(templateId), editor_(editor), firstControl_(firstControl) {}

    AttributeEditor& editor() const { return editor_; }
    void onInit() override;
    /// Disables the control when nothing can be changed, or when the drawing's version holds no such thing, and says
    /// why in its tooltip.
    void enableUnlessLocked(int control, bool on = true, const OdString& unheld = {});
    /// Why the form of several lines, which an older drawing may carry from elsewhere, cannot be changed; empty: it
    /// can.
    OdString unheldReason(const OdDbAttributeText& attribute) const;

  private:
    AttributeEditor& editor_;
    int firstControl_;
};

/// A page that writes to the current attribute or definition.
class AttributePage : public EditorPage {
  public:
    void reload() override;

  protected:
    using EditorPage::EditorPage;

    using Change = std::function<void(OdDbAttributeText&)>;
    /// Opens the attribute, changes and closes it, and tells the editor.
    void write(const Change& change);
    /// As write, to the multi-line text of the attribute, which must have one.
    void writeMultiLine(const std::function<void(OdDbMText&, OdDbAttributeText&)>& change);
    virtual void showAttribute(const OdDbAttributeText& attribute) = 0;

    // ---- in which attributes and definitions differ
    virtual OdSmartPtr<OdDbAttributeText> openForWrite(OdDbObjectId id) const = 0;
    /// A copy; null for a single line.
    virtual OdSmartPtr<OdDbMText> multiLineText(const OdDbAttributeText& attribute) const = 0;
    virtual void setMultiLineText(OdDbAttributeText& attribute, const OdDbMText& text) const = 0;
    virtual void updateMultiLineText(OdDbAttributeText& attribute) const = 0;
};

/// Text style, justification, mirrored bits, and the five numbers. Each number is checked and written when its field is
/// left.
class TextOptionsPage : public AttributePage {
  protected:
    explicit TextOptionsPage(AttributeEditor& editor);

  private:
    void showAttribute(const OdDbAttributeText& attribute) override;
    void onCommand(int control, dialogs::Event event) override;
    bool onLeave(int control, int next) override;

    void showJustification(const OdDbAttributeText& attribute);
    void showNumbers(const OdDbAttributeText& attribute);
    void takeTextStyle();
    void takeJustification();
    void takeNumber(int control);

    NumberFields numbers_;
};

/// Layer, linetype, colour, lineweight and plot style. Each choice is written at once.
class PropertiesPage : public AttributePage {
  protected:
    explicit PropertiesPage(AttributeEditor& editor);

  private:
    void showAttribute(const OdDbAttributeText& attribute) override;
    void onCommand(int control, dialogs::Event event) override;
    bool onLeave(int control, int next) override;

    void takeLayer();
    void takeLinetype();
    void takeColor();
    void takeLineWeight();
    void takePlotStyle();
    void takeProperty(int control);

    CColorCtl color_;
    CLineWeightCtl lineWeight_;
    CEditPropContainer typed_;
};

/// A page of attributes of references.
template <class Page>
class OfReference : public Page {
  protected:
    using Page::Page;

  private:
    static OdDbAttribute& attributeOf(OdDbAttributeText& text) { return static_cast<OdDbAttribute&>(text); }
    OdSmartPtr<OdDbAttributeText> openForWrite(OdDbObjectId id) const override {
        return id.openAs<OdDbAttribute>(OdDb::forWrite);
    }
    OdSmartPtr<OdDbMText> multiLineText(const OdDbAttributeText& text) const override {
        return static_cast<const OdDbAttribute&>(text).getMTextAttribute();
    }
    void setMultiLineText(OdDbAttributeText& text, const OdDbMText& lines) const override {
        attributeOf(text).setMTextAttribute(lines);
    }
    void updateMultiLineText(OdDbAttributeText& text) const override { attributeOf(text).updateMTextAttribute(); }
};

/// A page of attribute definitions of blocks.
template <class Page>
class OfDefinition : public Page {
  protected:
    using Page::Page;

  private:
    static OdDbAttributeDefinition& definitionOf(OdDbAttributeText& text) {
        return static_cast<OdDbAttributeDefinition&>(text);
    }
    OdSmartPtr<OdDbAttributeText> openForWrite(OdDbObjectId id) const override {
        return id.openAs<OdDbAttributeDefinition>(OdDb::forWrite);
    }
    OdSmartPtr<OdDbMText> multiLineText(const OdDbAttributeText& text) const override {
        return static_cast<const OdDbAttributeDefinition&>(text).getMTextAttributeDefinition();
    }
    void setMultiLineText(OdDbAttributeText& text, const OdDbMText& lines) const override {
        definitionOf(text).setMTextAttributeDefinition(lines);
    }
    void updateMultiLineText(OdDbAttributeText& text) const override {
        definitionOf(text).updateMTextAttributeDefinition();
    }
};

class CEAttRefEditTextOptPage final : public OfReference<TextOptionsPage> {
  public:
    explicit CEAttRefEditTextOptPage(AttributeEditor& editor) : OfReference(editor) {}
};
class CEAttRefEditPropertiesPage final : public OfReference<PropertiesPage> {
  public:
    explicit CEAttRefEditPropertiesPage(AttributeEditor& editor) : OfReference(editor) {}
};
class CAttDefEditTextOptPage final : public OfDefinition<TextOptionsPage> {
  public:
    explicit CAttDefEditTextOptPage(AttributeEditor& editor) : OfDefinition(editor) {}
};
class CAttDefEditPropertiesPage final : public OfDefinition<PropertiesPage> {
  public:
    explicit CAttDefEditPropertiesPage(AttributeEditor& editor) : OfDefinition(editor) {}
};

}  // namespace torvel
