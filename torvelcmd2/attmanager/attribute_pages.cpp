// What the pages show of an attribute or a definition, and how each change is written into it.
#include "torvelcmd2/attmanager/attribute_pages.h"

#include "base/text.h"
#include "drawingdb/plot_style.h"
#include "torvelcmd2/attributes/drawing_lists.h"
#include "torvelcmd2/attributes/justification.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {

// ---- the editor

void AttributeEditor::addPages(EditorPage& attribute, EditorPage& textOptions, EditorPage& properties) {
    const std::pair<EditorPage*, unsigned> pages[] = {
        {&attribute, IDS_PAGE_ATTRIBUTE}, {&textOptions, IDS_PAGE_TEXT_OPTIONS}, {&properties, IDS_PAGE_PROPERTIES}};
    for (const auto& [page, title] : pages) {
        addPage(tab_, loadText(title), *page);
        pages_.push_back(page);
    }
}

void AttributeEditor::reload() { pages_.at(static_cast<std::size_t>(currentPage()))->reload(); }

void AttributeEditor::onPage(int, int) { reload(); }

// ---- every page

void EditorPage::onInit() {
    reload();
    // When the user came by the tab, the focus stays there.
    if (parent()->focused() == 0) focus(firstControl_);
}

void EditorPage::enableUnlessLocked(int control, bool on, const OdString& unheld) {
    const OdString locked = editor_.lockedReason();
    const OdString& reason = locked.empty() ? unheld : locked;
    enable(control, on && reason.empty());
    setTooltip(control, reason);
}

OdString EditorPage::unheldReason(const OdDbAttributeText& attribute) const {
    const bool held = !attribute.isMultiLine() || OdDbAttributeText::canBeMultiLine(editor_.database());
    return held ? OdString() : loadText(IDS_NO_MULTIPLE_LINES);
}

void AttributePage::reload() {
    if (const auto attribute = editor().current().openIf<OdDbAttributeText>()) showAttribute(*attribute);
}

void AttributePage::write(const Change& change) {
    editor().beforeWrite();
    change(*editor().current().openAs<OdDbAttributeText>(OdDb::forWrite));
    editor().attributeChanged();
}

void AttributePage::writeMultiLine(const std::function<void(OdDbMText&, OdDbAttributeText&)>& change) {
    write([&](OdDbAttributeText& attribute) {
        const OdSmartPtr<OdDbMText> lines = attribute.mtextCopy();
        change(*lines, attribute);
        attribute.setMText(*lines);
    });
}

// ---- text options

namespace {

constexpr int kNumbers[] = {IDC_TEXT_HEIGHT, IDC_TEXT_ROTATION, IDC_TEXT_WIDTH_FACTOR, IDC_TEXT_OBLIQUE,
                            IDC_TEXT_BOUNDARY_WIDTH};

double numberOf(const OdDbAttributeText& attribute, int control) {
    switch (control) {
        case IDC_TEXT_HEIGHT:
            return attribute.height();
        case IDC_TEXT_ROTATION:
            return attribute.rotation();
        case IDC_TEXT_WIDTH_FACTOR:
            return attribute.widthFactor();
        case IDC_TEXT_OBLIQUE:
            return attribute.oblique();
        default:
            return attribute.isMultiLine() ? attribute.mtextCopy()->width() : 0;
    }
}

}  // namespace

TextOptionsPage::TextOptionsPage(AttributeEditor& editor)
    : AttributePage(IDD_TEXT_OPTIONS, editor, IDC_TEXT_STYLE),
      numbers_(*this, {{IDC_TEXT_HEIGHT, NumberKind::kLength, NumberRange::kPositive, IDS_INVALID_HEIGHT},
                       {IDC_TEXT_ROTATION, NumberKind::kAngle, NumberRange::kAny, IDS_INVALID_ROTATION},
                       {IDC_TEXT_WIDTH_FACTOR, NumberKind::kFactor, NumberRange::kPositive, IDS_INVALID_WIDTH_FACTOR},
                       // However far it leans.
                       {IDC_TEXT_OBLIQUE, NumberKind::kAngle, NumberRange::kAny, IDS_INVALID_OBLIQUE_ANGLE},
                       {IDC_TEXT_BOUNDARY_WIDTH, NumberKind::kLength, NumberRange::kNotNegative,
                        IDS_INVALID_BOUNDARY_WIDTH}}) {
    fillTextStyles(*this, IDC_TEXT_STYLE, editor.database());
}

// A multi-line text leans, stretches and mirrors nothing of its own; only it has a boundary.
void TextOptionsPage::showAttribute(const OdDbAttributeText& attribute) {
    const bool single = !attribute.isMultiLine();
    selectName(*this, IDC_TEXT_STYLE, attribute.textStyleName());
    showJustification(attribute);
    setChecked(IDC_TEXT_BACKWARDS, attribute.isMirroredInX());
    setChecked(IDC_TEXT_UPSIDE_DOWN, attribute.isMirroredInY());
    for (const int control : kNumbers) numbers_.show(control, numberOf(attribute, control));
    for (const int control : {IDC_TEXT_STYLE, IDC_TEXT_HEIGHT, IDC_TEXT_ROTATION}) enableUnlessLocked(control);
    for (const int control : {IDC_TEXT_BACKWARDS, IDC_TEXT_UPSIDE_DOWN, IDC_TEXT_WIDTH_FACTOR, IDC_TEXT_OBLIQUE})
        enableUnlessLocked(control, single);
    const OdString unheld = unheldReason(attribute);
    enableUnlessLocked(IDC_TEXT_JUSTIFICATION, true, unheld);
    enableUnlessLocked(IDC_TEXT_BOUNDARY_WIDTH, !single, unheld);
}

void TextOptionsPage::showJustification(const OdDbAttributeText& attribute) {
    const Justification* const current = justificationOf(attribute);
    fillJustifications(*this, IDC_TEXT_JUSTIFICATION, attribute.isMultiLine());
    select(IDC_TEXT_JUSTIFICATION, current ? findChoiceData(IDC_TEXT_JUSTIFICATION, current->textId) : -1);
}

// Those that follow from others, as the height of aligned text does; what was typed stays as it was typed.
void TextOptionsPage::showNumbers(const OdDbAttributeText& attribute) {
    for (const int control : kNumbers)
        if (const double number = numberOf(attribute, control); number != numbers_.value(control))
            numbers_.show(control, number);
}

void TextOptionsPage::onCommand(int control, dialogs::Event event) {
    switch (control) {
        case IDC_TEXT_STYLE:
            return event == dialogs::Event::kChosen ? takeTextStyle() : void();
        case IDC_TEXT_JUSTIFICATION:
            return event == dialogs::Event::kChosen ? takeJustification() : void();
        case IDC_TEXT_BACKWARDS:
            return write([this](OdDbAttributeText& text) { text.mirrorInX(isChecked(IDC_TEXT_BACKWARDS)); });
        case IDC_TEXT_UPSIDE_DOWN:
            return write([this](OdDbAttributeText& text) { text.mirrorInY(isChecked(IDC_TEXT_UPSIDE_DOWN)); });
        default:
            break;
    }
}

bool TextOptionsPage::onLeave(int control, int next) {
    // Nobody checks the number when the user comes back from there and goes on elsewhere.
    if (next == dialogs::kHelpButton || next == dialogs::kCancelButton) numbers_.showAgain(control);
    const NumberFields::Left left = numbers_.leave(control, next);
    if (left == NumberFields::Left::kChanged) takeNumber(control);
    return left != NumberFields::Left::kRefused;
}

void TextOptionsPage::takeTextStyle() {
    const OdDbObjectId style = editor().database().findTextStyle(text(IDC_TEXT_STYLE));
    if (style == editor().current().openAs<OdDbAttributeText>()->textStyle()) return;
    write([&](OdDbAttributeText& text) {
        text.setTextStyle(style);
        showNumbers(text);
    });
}

void TextOptionsPage::takeJustification() {
    const auto textId = static_cast<unsigned>(choiceData(IDC_TEXT_JUSTIFICATION, selected(IDC_TEXT_JUSTIFICATION)));
    const Justification& chosen = *findJustification(textId);
    const auto attribute = editor().current().openAs<OdDbAttributeText>();
    if (&chosen == justificationOf(*attribute)) return;
    // They want a second point, which cannot be asked for here.
    if (chosen.isBetweenPoints()) return showJustification(*attribute);
    if (attribute->isMultiLine())
        return writeMultiLine([&](OdDbMText& lines, OdDbAttributeText& text) {
            justify(lines, chosen);
            text.setAlignmentPoint(lines.location());
        });
    write([&](OdDbAttributeText& text) {
        justify(text, chosen);
        text.adjustAlignment();
        showNumbers(text);
    });
}

void TextOptionsPage::takeNumber(int control) {
    const double number = numbers_.value(control);
    // Another text for the same value.
    if (number == numberOf(*editor().current().openAs<OdDbAttributeText>(), control)) return;
    if (control == IDC_TEXT_BOUNDARY_WIDTH)
        return writeMultiLine([number](OdDbMText& lines, OdDbAttributeText&) { lines.setWidth(number); });
    write([&](OdDbAttributeText& text) {
        switch (control) {
            case IDC_TEXT_HEIGHT:
                text.setHeight(number);
                break;
            case IDC_TEXT_ROTATION:
                text.setRotation(number);
                break;
            case IDC_TEXT_WIDTH_FACTOR:
                text.setWidthFactor(number);
                break;
            default:
                text.setOblique(number);
                break;
        }
        showNumbers(text);
    });
}

// ---- properties

namespace {

constexpr wchar_t kStoredByLayer[] = L"BYLAYER";
// Data of the plot style list; those by name come behind.
enum PlotStyleChoice : int { kPlotStyleByLayer = 0, kPlotStyleByBlock = 1, kFirstPlotStyleName = 2 };

std::vector<OdString> hostPlotStyleNames(OdDbDatabase& database) {
    std::vector<OdString> names;
    if (auto* const ask = hostService(hostapi::getPlotStyleNames)) ask(&database, names);
    return names;
}

}  // namespace

PropertiesPage::PropertiesPage(AttributeEditor& editor)
    : AttributePage(IDD_PROPERTIES, editor, IDC_PROPERTIES_LAYER),
      color_(*this, IDC_PROPERTIES_COLOR),
      lineWeight_(*this, IDC_PROPERTIES_LINEWEIGHT) {
    typed_.add(color_);
    typed_.add(lineWeight_);
    OdDbDatabase& database = editor.database();
    fillLayers(*this, IDC_PROPERTIES_LAYER, database);
    fillLinetypes(*this, IDC_PROPERTIES_LINETYPE, database);
    addChoice(IDC_PROPERTIES_PLOT_STYLE, kPlotsByLayer, kPlotStyleByLayer);
    addChoice(IDC_PROPERTIES_PLOT_STYLE, kPlotsByBlock, kPlotStyleByBlock);
    int data = kFirstPlotStyleName;
    for (const OdString& name : hostPlotStyleNames(database)) addChoice(IDC_PROPERTIES_PLOT_STYLE, name, data++);
}

void PropertiesPage::showAttribute(const OdDbAttributeText& attribute) {
    selectName(*this, IDC_PROPERTIES_LAYER, attribute.layer());
    selectName(*this, IDC_PROPERTIES_LINETYPE, attribute.linetype());
    color_.setColor(attribute.color());
    lineWeight_.setLineWeight(attribute.lineweight());
    selectName(*this, IDC_PROPERTIES_PLOT_STYLE, plotStyleText(attribute));
    for (const int control : {IDC_PROPERTIES_LAYER, IDC_PROPERTIES_LINETYPE, IDC_PROPERTIES_COLOR})
        enableUnlessLocked(control);
    const bool held = drawingdb::holdsPlotStyles(editor().database());
    for (const int control : {IDC_PROPERTIES_LINEWEIGHT, IDC_PROPERTIES_PLOT_STYLE})
        enableUnlessLocked(control, true, held ? OdString() : loadText(IDS_NO_LINEWEIGHTS));
}

void PropertiesPage::onCommand(int control, dialogs::Event event) {
    if (event != dialogs::Event::kChosen) return;
    if (typed_.onCommand(control, event)) return takeProperty(control);
    switch (control) {
        case IDC_PROPERTIES_LAYER:
            return takeLayer();
        case IDC_PROPERTIES_LINETYPE:
            return takeLinetype();
        case IDC_PROPERTIES_PLOT_STYLE:
            return takePlotStyle();
        default:
            break;
    }
}

// For Cancel nothing is worth a question of the colour chooser's.
bool PropertiesPage::onLeave(int control, int next) {
    if (next != dialogs::kCancelButton && typed_.onLeave(control)) takeProperty(control);
    return true;
}

void PropertiesPage::takeProperty(int control) { control == IDC_PROPERTIES_COLOR ? takeColor() : takeLineWeight(); }

void PropertiesPage::takeLayer() {
    const OdString name = text(IDC_PROPERTIES_LAYER);
    if (base::equalsNoCase(name, editor().current().openAs<OdDbAttributeText>()->layer())) return;
    write([&](OdDbAttributeText& attribute) { attribute.setLayer(name); });
}

void PropertiesPage::takeLinetype() {
    const OdString name = text(IDC_PROPERTIES_LINETYPE);
    if (base::equalsNoCase(name, editor().current().openAs<OdDbAttributeText>()->linetype())) return;
    write([&](OdDbAttributeText& attribute) {
        attribute.setLinetype(base::equalsNoCase(name, kStoredByLayer) ? OdString(kStoredByLayer) : name);
    });
}

// No entity has no colour at all.
void PropertiesPage::takeColor() {
    const OdCmColor color = color_.color();
    if (color.colorMethod() == OdCmEntityColor::kNone) return reload();
    write([&](OdDbAttributeText& attribute) { attribute.setColor(color); });
}

void PropertiesPage::takeLineWeight() {
    const std::int32_t weight = storableLineWeight(lineWeight_.lineWeight());
    lineWeight_.setLineWeight(weight);
    if (weight == editor().current().openAs<OdDbAttributeText>()->lineweight()) return;
    write([&](OdDbAttributeText& attribute) { attribute.setLineweight(weight); });
}

void PropertiesPage::takePlotStyle() {
    using drawingdb::PlotStyleKind;
    drawingdb::PlotStyle chosen;
    switch (choiceData(IDC_PROPERTIES_PLOT_STYLE, selected(IDC_PROPERTIES_PLOT_STYLE))) {
        case kPlotStyleByLayer:
            break;
        case kPlotStyleByBlock:
            chosen.kind = PlotStyleKind::kByBlock;
            break;
        default:
            chosen = {PlotStyleKind::kByName,
                      drawingdb::findPlotStyle(editor().database(), text(IDC_PROPERTIES_PLOT_STYLE))};
            // The host knows more than the drawing.
            if (chosen.style.isNull()) return reload();
            break;
    }
    if (chosen == drawingdb::plotStyleOf(*editor().current().openAs<OdDbAttributeText>())) return;
    write([&](OdDbAttributeText& attribute) { drawingdb::setPlotStyle(attribute, chosen); });
}

}  // namespace torvel
