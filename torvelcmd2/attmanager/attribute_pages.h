// The pages that edit an attribute of a reference, or an attribute definition of a block, while it is seen: what the
// user changes is in the drawing at once.
// The pages work on what attributes and definitions have in common. An editor is the dialog around them: it says which
// attribute is current, and hears of every write.
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
};

/// Text style, justification, mirrored bits, and the five numbers. Each number is checked and written when its field is
/// left.
class TextOptionsPage final : public AttributePage {
  public:
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
class PropertiesPage final : public AttributePage {
  public:
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

/// Under the names that they have in the two editors.
using CEAttRefEditTextOptPage = TextOptionsPage;
using CEAttRefEditPropertiesPage = PropertiesPage;
using CAttDefEditTextOptPage = TextOptionsPage;
using CAttDefEditPropertiesPage = PropertiesPage;

}  // namespace torvel
