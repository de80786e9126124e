#include "dialogs/qt/control_widget.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTabWidget>
#include <QTextEdit>
#include <QTreeView>

#include "base/resources.h"
#include "base/text.h"
#include "dialogs/dialog.h"
#include "dialogs/qt/items_model.h"
#include "dialogs/qt/qt_text.h"
#include "dialogs/styles.h"
#include "dialogs/text_editing.h"

namespace dialogs {
namespace {

constexpr int kLineHeight = 8;  // of text, in dialog units

LineEnds lineEndsOf(const Control& field) {
    return field.kind() == ControlKind::kEdit && field.isMultiLine() ? LineEnds::kOneCharacter : LineEnds::kKept;
}

// With LF for line ends. (toPlainText turns blanks that do not break into others.)
template <class Edit>
QString textOf(const Edit& edit) {
    QString text = edit.document()->toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n').replace(QChar::LineSeparator, u'\n');
    return text;
}

// ---- making

QWidget* makeLabel(const Control& control, QWidget* parent) {
    auto* const label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(control.design->place.height >= 2 * kLineHeight);
    constexpr std::uint32_t kTypeMask = 0x1F, kCentered = 1, kRight = 2;
    const std::uint32_t type = control.design->style & kTypeMask;
    label->setAlignment(Qt::AlignTop | (type == kCentered ? Qt::AlignHCenter
                                        : type == kRight  ? Qt::AlignRight
                                                          : Qt::AlignLeft));
    return label;
}

QWidget* makeFrame(const Control& control, QWidget* parent) {
    auto* const frame = new QFrame(parent);
    constexpr std::uint32_t kTypeMask = 0x1F, kHorizontalLine = 0x10, kVerticalLine = 0x11;
    const std::uint32_t type = control.design->style & kTypeMask;
    frame->setFrameStyle(QFrame::Sunken | (type == kHorizontalLine ? QFrame::HLine
                                           : type == kVerticalLine ? QFrame::VLine
                                                                   : QFrame::Box));
    return frame;
}

QWidget* makeEdit(const Control& control, QWidget* parent) {
    if (!control.isMultiLine()) {
        auto* const edit = new QLineEdit(parent);
        edit->setMaxLength(std::numeric_limits<int>::max());
        edit->setAcceptDrops(false);  // which would change a field without the focus
        return edit;
    }
    auto* const edit = new QPlainTextEdit(parent);
    edit->setTabChangesFocus(true);
    edit->setAcceptDrops(false);
    return edit;
}

// With the title in the frame's upper edge, where templates leave room for it; styles put it above.
class GroupBox final : public QGroupBox {
  public:
    using QGroupBox::QGroupBox;

  private:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const int line = fontMetrics().height(), indent = line / 2;
        const QSize size = fontMetrics().size(Qt::TextShowMnemonic, title());
        const QRect place(indent, 0, title().isEmpty() ? 0 : size.width() + indent, line);
        painter.setPen(palette().color(QPalette::Mid));
        painter.setClipRegion(QRegion(rect()) - place);
        // Not at the very edge, which is cut off where the screen's scale is no whole number.
        painter.drawRect(rect().adjusted(1, line / 2, -2, -2));
        painter.setClipping(false);
        style()->drawItemText(&painter, place, Qt::AlignCenter | Qt::TextShowMnemonic, palette(), isEnabled(), title(),
                              QPalette::WindowText);
    }
};

// It only shows the text and the selection; every key is the view's.
// Framed as a field of one line is; a frame of its own is lost where the screen's scale is no whole number.
class RichTextField final : public QTextEdit {
  public:
    explicit RichTextField(QWidget* parent) : QTextEdit(parent) {
        setFrameStyle(QFrame::NoFrame);
        document()->setDocumentMargin(kMargin);
    }

  private:
    static constexpr int kFrame = 2, kMargin = 1;

    // The line stands in the middle.
    void resizeEvent(QResizeEvent* event) override {
        const int above = (height() - fontMetrics().height()) / 2 - kMargin;
        setViewportMargins(kFrame, std::max(above, kFrame), kFrame, kFrame);
        QTextEdit::resizeEvent(event);
    }

    bool event(QEvent* event) override {
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
        if (event->type() != QEvent::Paint) return QTextEdit::event(event);
        QPainter painter(this);
        QStyleOptionFrame frame;
        frame.initFrom(this);
        frame.lineWidth = 1;
        frame.state |= QStyle::State_Sunken;
        style()->drawPrimitive(QStyle::PE_PanelLineEdit, &frame, &painter, this);
        return true;
    }
};

QWidget* makeRichEdit(QWidget* parent) {
    auto* const edit = new RichTextField(parent);
    edit->setReadOnly(true);
    edit->setUndoRedoEnabled(false);
    edit->setLineWrapMode(QTextEdit::NoWrap);
    edit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    edit->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    edit->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    edit->setAttribute(Qt::WA_InputMethodEnabled);
    edit->setAcceptDrops(false);
    return edit;
}

QWidget* makeCombo(const Control& control, QWidget* parent) {
    auto* const combo = new QComboBox(parent);
    combo->setModel(new ItemsModel(control, combo));
    if (control.kind() == ControlKind::kEditCombo) {
        combo->setEditable(true);
        combo->setInsertPolicy(QComboBox::NoInsert);
        combo->setCompleter(nullptr);
        combo->lineEdit()->setAcceptDrops(false);
    }
    return combo;
}

QWidget* makeList(const Control& control, QWidget* parent) {
    auto* const list = new QListView(parent);
    list->setModel(new ItemsModel(control, list));
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setUniformItemSizes(true);
    return list;
}

QWidget* makeListView(const Control& control, QWidget* parent) {
    auto* const list = new QTreeView(parent);
    list->setModel(new ItemsModel(control, list));
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setRootIsDecorated(false);
    list->setItemsExpandable(false);
    list->setUniformRowHeights(true);
    list->setAllColumnsShowFocus(true);
    list->header()->setSectionsMovable(false);
    list->header()->setStretchLastSection(false);
    list->header()->setMinimumSectionSize(1);
    return list;
}

QWidget* makePushButton(QWidget* parent) {
    auto* const button = new QPushButton(parent);
    button->setAutoDefault(false);
    return button;
}

// ---- the aspects

bool isLabelOf(const Control& control, std::uint32_t style) {
    return control.kind() == ControlKind::kLabel && (control.design->style & style) != 0;
}

QString captionOf(const Control& control, const QWidget& widget) {
    QString caption = toQt(control.text);
    if (isLabelOf(control, kEndEllipsisStyle))
        caption = widget.fontMetrics().elidedText(caption, Qt::ElideRight, widget.width());
    return isLabelOf(control, kNoPrefixStyle) ? caption.replace(u'&', QStringLiteral("&&")) : caption;
}

void showSelection(const Control& field, QWidget* widget) {
    const auto position = [&](std::size_t units) { return toQtPosition(field.text, units, lineEndsOf(field)); };
    const int anchor = position(field.selection.anchor), caret = position(field.selection.caret);
    if (QLineEdit* const line = lineOf(widget)) {
        if (anchor == caret) {
            line->setCursorPosition(caret);  // keeps what is selected when the caret is there already
            line->deselect();
        } else {
            line->setSelection(anchor, caret - anchor);
        }
        return;
    }
    const auto select = [&](auto* edit) {
        QTextCursor cursor = edit->textCursor();
        cursor.setPosition(anchor);
        cursor.setPosition(caret, QTextCursor::KeepAnchor);
        edit->setTextCursor(cursor);
    };
    if (auto* const plain = qobject_cast<QPlainTextEdit*>(widget)) select(plain);
    if (auto* const rich = qobject_cast<QTextEdit*>(widget)) select(rich);
}

// The runs of a rich edit are shaded a fifth of the way from the paper's colour to the ink's, so that they are seen in
// every colour scheme.
void showRuns(const Control& field, QTextEdit* edit) {
    const QColor paper = edit->palette().color(QPalette::Base), ink = edit->palette().color(QPalette::Text);
    const auto mix = [](int a, int b) { return (4 * a + b) / 5; };
    QList<QTextEdit::ExtraSelection> shaded;
    for (const RichText::Run& run : field.richText ? field.richText->runs() : std::vector<RichText::Run>()) {
        QTextEdit::ExtraSelection shade;
        shade.cursor = QTextCursor(edit->document());
        shade.cursor.setPosition(toQtPosition(field.text, run.begin, LineEnds::kKept));
        shade.cursor.setPosition(toQtPosition(field.text, run.end, LineEnds::kKept), QTextCursor::KeepAnchor);
        shade.format.setBackground(
            QColor(mix(paper.red(), ink.red()), mix(paper.green(), ink.green()), mix(paper.blue(), ink.blue())));
        shaded.append(shade);
    }
    edit->setExtraSelections(shaded);
}

void showFieldText(const Control& field, QWidget* widget) {
    const QString text = toQt(field.text);
    if (QLineEdit* const line = lineOf(widget)) {
        if (line->text() != text) line->setText(text);
    } else if (auto* const plain = qobject_cast<QPlainTextEdit*>(widget)) {
        QString lines = text;
        lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        if (textOf(*plain) != lines) plain->setPlainText(lines);
    } else if (auto* const rich = qobject_cast<QTextEdit*>(widget)) {
        if (textOf(*rich) != text) rich->setPlainText(text);
        showRuns(field, rich);
    }
    showSelection(field, widget);
}

// The choice, row or page selected.
void showItem(const Control& control, QWidget* widget) {
    if (auto* const combo = qobject_cast<QComboBox*>(widget)) {
        combo->setCurrentIndex(control.selected);
        if (QLineEdit* const line = combo->lineEdit(); line && line->text() != toQt(control.text))
            line->setText(toQt(control.text));
    } else if (auto* const tabs = qobject_cast<QTabWidget*>(widget)) {
        tabs->setCurrentIndex(control.selected);
    } else if (QAbstractItemView* const items = itemsOf(widget)) {
        const QModelIndex index = itemIndex(*items, control.selected);
        items->selectionModel()->setCurrentIndex(index,
                                                 QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        if (!index.isValid()) return items->selectionModel()->clear();
        items->scrollTo(index);
    }
}

void showText(const Control& control, QWidget* widget) {
    if (control.isTyped()) return showFieldText(control, widget);
    if (control.kind() == ControlKind::kCombo) return showItem(control, widget);
    if (auto* const label = qobject_cast<QLabel*>(widget)) label->setText(captionOf(control, *label));
    if (auto* const box = qobject_cast<QGroupBox*>(widget)) box->setTitle(captionOf(control, *box));
    if (auto* const button = qobject_cast<QAbstractButton*>(widget)) button->setText(captionOf(control, *button));
}

// What can only be read looks like the dialog, not like a sheet to write on.
void showReadOnly(const Control& control, QWidget* widget) {
    if (QLineEdit* const line = lineOf(widget)) line->setReadOnly(control.readOnly);
    if (auto* const edit = qobject_cast<QPlainTextEdit*>(widget)) edit->setReadOnly(control.readOnly);
    QPalette palette;
    if (control.readOnly) palette.setColor(QPalette::Base, palette.color(QPalette::Window));
    widget->setPalette(palette);
}

void showItems(const Control& control, QWidget* widget) {
    QAbstractItemModel* model = nullptr;
    if (auto* const combo = qobject_cast<QComboBox*>(widget)) model = combo->model();
    if (QAbstractItemView* const items = itemsOf(widget)) model = items->model();
    if (!model) return;
    static_cast<ItemsModel*>(model)->refresh();
    showItem(control, widget);
}

void showColumns(const Control& control, QWidget* widget) {
    auto* const list = qobject_cast<QTreeView*>(widget);
    if (!list) return;
    showItems(control, widget);
    for (std::size_t i = 0; i < control.columns.size(); ++i)
        list->header()->resizeSection(static_cast<int>(i), control.columns[i].width);
}

void showPages(const Control& control, QWidget* widget) {
    auto* const tabs = qobject_cast<QTabWidget*>(widget);
    if (!tabs) return;
    for (std::size_t i = 0; i < control.choices.size(); ++i) {
        const int page = static_cast<int>(i);
        if (page == tabs->count()) tabs->addTab(new QWidget, QString());
        tabs->setTabText(page, toQt(control.choices[i].text));
    }
    showItem(control, widget);
}

// An icon is a directory of pictures of several sizes, each a resource of its own: a bitmap's header, which counts the
// rows twice for the mask behind them, and the rows from the lowest up, blue, green, red and opacity.
QIcon iconOf(const Control& control) {
    constexpr std::size_t kHead = 6, kEntry = 14, kCountPlace = 4, kIdPlace = 12, kBitsPlace = 40;
    constexpr std::size_t kWidthPlace = 4, kDepthPlace = 14;
    const auto find = [&](std::uint16_t type, std::uint16_t id) {
        return base::findResource(control.dialog->resources(), type, id);
    };
    const auto number = [](base::ResourceBytes bytes, std::size_t place) {
        const auto* const at = reinterpret_cast<const unsigned char*>(bytes.data()) + place;
        return static_cast<std::uint16_t>(at[0] | at[1] << 8);
    };
    QIcon icon;
    const base::ResourceBytes directory = find(base::kIconGroupResource, static_cast<std::uint16_t>(control.picture));
    if (directory.size() < kHead) return icon;
    for (std::size_t i = 0; i < number(directory, kCountPlace) && kHead + (i + 1) * kEntry <= directory.size(); ++i) {
        const base::ResourceBytes picture = find(base::kIconResource, number(directory, kHead + i * kEntry + kIdPlace));
        if (picture.size() < kBitsPlace || number(picture, kDepthPlace) != 32) continue;
        const int side = number(picture, kWidthPlace);
        QImage image(side, side, QImage::Format_ARGB32);
        const auto row = static_cast<std::size_t>(image.bytesPerLine());
        if (picture.size() < kBitsPlace + row * static_cast<std::size_t>(side)) continue;
        for (int y = 0; y < side; ++y)
            std::memcpy(image.scanLine(side - 1 - y), picture.data() + kBitsPlace + row * static_cast<std::size_t>(y),
                        row);
        icon.addPixmap(QPixmap::fromImage(image));
    }
    return icon;
}

void showExtras(const Control& control, QWidget* widget) {
    const QString tip = toQt(control.tooltip);
    widget->setToolTip(Qt::mightBeRichText(tip) ? tip.toHtmlEscaped() : tip);
    auto* const button = qobject_cast<QAbstractButton*>(widget);
    if (!button || control.picture == 0) return;
    constexpr int kSmallIcon = 16, kUsualResolution = 96;
    const int side = kSmallIcon * button->logicalDpiX() / kUsualResolution;
    button->setIcon(iconOf(control));
    button->setIconSize({side, side});
    button->setText({});
    button->setAccessibleName(toQt(control.tooltip));
}

}  // namespace

QWidget* makeWidget(Control& control, QWidget* parent) {
    switch (control.kind()) {
        case ControlKind::kLabel:
            return makeLabel(control, parent);
        case ControlKind::kPicture:
            return makeFrame(control, parent);
        case ControlKind::kGroup:
            return new GroupBox(parent);
        case ControlKind::kButton:
        case ControlKind::kPictureButton:
            return makePushButton(parent);
        case ControlKind::kCheck:
            return new QCheckBox(parent);
        case ControlKind::kRadio: {
            auto* const button = new QRadioButton(parent);
            button->setAutoExclusive(false);  // the template tells the groups
            return button;
        }
        case ControlKind::kEdit:
            return makeEdit(control, parent);
        case ControlKind::kRichEdit:
            return makeRichEdit(parent);
        case ControlKind::kListBox:
            return makeList(control, parent);
        case ControlKind::kCombo:
        case ControlKind::kEditCombo:
            return makeCombo(control, parent);
        case ControlKind::kListView:
            return makeListView(control, parent);
        case ControlKind::kTab:
            return new QTabWidget(parent);
        case ControlKind::kOther:
            break;
    }
    return new QWidget(parent);
}

int heightOf(const Control& control, const QWidget* widget, int templateHeight) {
    const bool combo = control.kind() == ControlKind::kCombo || control.kind() == ControlKind::kEditCombo;
    return combo ? widget->sizeHint().height() : templateHeight;
}

void showAspect(const Control& control, QWidget* widget, Aspect aspect) {
    switch (aspect) {
        case Aspect::kText:
            return showText(control, widget);
        case Aspect::kChecked:
            if (auto* const button = qobject_cast<QAbstractButton*>(widget); button && control.isCheckable())
                button->setChecked(control.checked);
            return;
        case Aspect::kEnabled:
            return widget->setEnabled(control.enabled);
        case Aspect::kVisible:
            return widget->setVisible(control.visible);
        case Aspect::kReadOnly:
            return control.isText() ? showReadOnly(control, widget) : void();
        case Aspect::kSelection:
            showItem(control, widget);
            return control.isTyped() ? showSelection(control, widget) : void();
        case Aspect::kChoices:
        case Aspect::kRows:
            return showItems(control, widget);
        case Aspect::kColumns:
            return showColumns(control, widget);
        case Aspect::kPages:
            return showPages(control, widget);
        case Aspect::kExtras:
            return showExtras(control, widget);
    }
}

QLineEdit* lineOf(QWidget* widget) {
    if (auto* const combo = qobject_cast<QComboBox*>(widget)) return combo->lineEdit();
    return qobject_cast<QLineEdit*>(widget);
}

QAbstractItemView* itemsOf(QWidget* widget) { return qobject_cast<QAbstractItemView*>(widget); }

QModelIndex itemIndex(const QAbstractItemView& items, int item) {
    return item < 0 ? QModelIndex() : items.model()->index(item, 0);
}

// ---- from the widget into the control

// Of what was typed, letters become capitals where the field wants that, and one line takes what stands before the
// first line end.
void noteText(Control& field, QWidget* widget) {
    if (auto* const edit = qobject_cast<QPlainTextEdit*>(widget)) {
        field.text = base::replaceAll(fromQt(textOf(*edit)), L"\n", L"\r\n");
        return noteSelection(field, widget);
    }
    QLineEdit* const line = lineOf(widget);
    const std::wstring shown = fromQt(line->text());
    const std::size_t begin = std::min(field.selection.begin(), shown.size());
    const std::size_t end = std::max(begin, fromQtPosition(shown, line->cursorPosition(), LineEnds::kKept));
    std::wstring typed = shown.substr(begin, end - begin);
    if (field.upperCase) typed = base::toUpper(typed);
    typed.resize(std::min(typed.find_first_of(L"\r\n"), typed.size()));
    field.text = shown.substr(0, begin) + typed + shown.substr(end);
    if (field.text == shown) return noteSelection(field, widget);
    field.selection = {begin + typed.size(), begin + typed.size()};
    showFieldText(field, widget);
}

void noteSelection(Control& field, QWidget* widget) {
    const auto position = [&](int units) { return fromQtPosition(field.text, units, lineEndsOf(field)); };
    if (const QLineEdit* const line = lineOf(widget)) {
        const int caret = line->cursorPosition();
        const int begin = line->hasSelectedText() ? line->selectionStart() : caret;
        const int end = line->hasSelectedText() ? line->selectionEnd() : caret;
        field.selection = {position(caret == begin ? end : begin), position(caret)};
        return;
    }
    const auto note = [&](const QTextCursor& cursor) {
        field.selection = {position(cursor.anchor()), position(cursor.position())};
    };
    if (const auto* const plain = qobject_cast<QPlainTextEdit*>(widget)) note(plain->textCursor());
    if (const auto* const rich = qobject_cast<QTextEdit*>(widget)) {
        note(rich->textCursor());
        snapSelection(field);
    }
}

void noteColumns(Control& list, QWidget* widget) {
    const QHeaderView* const header = static_cast<QTreeView*>(widget)->header();
    for (std::size_t i = 0; i < list.columns.size(); ++i)
        list.columns[i].width = header->sectionSize(static_cast<int>(i));
}

// ---- as a hand would

void typeInto(QWidget* widget, const QString& text) {
    if (QLineEdit* const line = lineOf(widget)) {
        // Nothing in the place of nothing is told all the same.
        if (!text.isEmpty() || line->hasSelectedText()) line->insert(text);
    } else if (auto* const plain = qobject_cast<QPlainTextEdit*>(widget)) {
        plain->insertPlainText(text);
    }
}

}  // namespace dialogs
