#include "dialogs/dialog_template.h"

#include <stdexcept>

#include "base/text.h"
#include "dialogs/styles.h"

namespace dialogs {
namespace {

class Reader {
  public:
    explicit Reader(base::ResourceBytes bytes) : bytes_(bytes) {}

    std::uint8_t takeByte() { return std::to_integer<std::uint8_t>(take(1)[0]); }
    std::uint16_t takeU16() {
        const base::ResourceBytes two = take(2);
        return static_cast<std::uint16_t>(std::to_integer<unsigned>(two[0]) | std::to_integer<unsigned>(two[1]) << 8);
    }
    std::uint32_t takeU32() {
        const std::uint32_t low = takeU16();
        return low | static_cast<std::uint32_t>(takeU16()) << 16;
    }
    UnitRect takeRect() {
        UnitRect rect;
        for (int* number : {&rect.x, &rect.y, &rect.width, &rect.height})
            *number = static_cast<std::int16_t>(takeU16());
        return rect;
    }
    // A text, or a number behind 0xFFFF.
    base::ResourceName takeName() {
        if (peekU16() == 0xFFFF) {
            takeU16();
            return takeU16();
        }
        const std::size_t start = position_;
        while (takeU16() != 0) {
        }
        return std::wstring_view(base::fromUtf16Bytes(bytes_.subspan(start, position_ - start - 2)));
    }
    void skip(std::size_t size) { take(size); }
    void align() { position_ = (position_ + 3) / 4 * 4; }

  private:
    base::ResourceBytes take(std::size_t size) {
        if (position_ > bytes_.size() || bytes_.size() - position_ < size)
            throw std::runtime_error("a dialog template is cut short");
        position_ += size;
        return bytes_.subspan(position_ - size, size);
    }
    std::uint16_t peekU16() {
        const std::uint16_t value = takeU16();
        position_ -= 2;
        return value;
    }

    base::ResourceBytes bytes_;
    std::size_t position_ = 0;
};

// The classes of the system by number.
enum : std::uint16_t { kButtonClass = 0x80, kEditClass, kStaticClass, kListBoxClass, kScrollBarClass, kComboBoxClass };

std::uint16_t classNumber(const base::ResourceName& name) {
    if (name.isNumber()) return name.number();
    static const struct {
        const wchar_t* name;
        std::uint16_t number;
    } kNames[] = {{L"Button", kButtonClass},
                  {L"Edit", kEditClass},
                  {L"Static", kStaticClass},
                  {L"ListBox", kListBoxClass},
                  {L"ComboBox", kComboBoxClass}};
    for (const auto& known : kNames)
        if (base::equalsNoCase(name.text(), known.name)) return known.number;
    return 0;
}

ControlKind buttonKind(std::uint32_t style) {
    switch (style & kButtonTypeMask) {
        case 2:
        case 3:
        case 5:
        case 6:
            return ControlKind::kCheck;
        case 4:
        case 9:
            return ControlKind::kRadio;
        case 7:
            return ControlKind::kGroup;
        case 11:  // drawn by the owner
            return ControlKind::kPictureButton;
        default:
            return (style & kButtonPictureMask) != 0 ? ControlKind::kPictureButton : ControlKind::kButton;
    }
}

ControlKind staticKind(std::uint32_t style) {
    const std::uint32_t type = style & 0x1F;
    const bool isText = type <= 2 || type == 0x0B || type == 0x0C;
    return isText ? ControlKind::kLabel : ControlKind::kPicture;
}

ControlKind kindOf(const base::ResourceName& className, std::uint32_t style) {
    switch (classNumber(className)) {
        case kButtonClass:
            return buttonKind(style);
        case kEditClass:
            return ControlKind::kEdit;
        case kStaticClass:
            return staticKind(style);
        case kListBoxClass:
            return ControlKind::kListBox;
        case kComboBoxClass:
            return (style & 3) == 3 ? ControlKind::kCombo : ControlKind::kEditCombo;
        default:
            break;
    }
    if (base::equalsNoCase(className.text(), L"RichEdit20W")) return ControlKind::kRichEdit;
    if (base::equalsNoCase(className.text(), L"SysListView32")) return ControlKind::kListView;
    if (base::equalsNoCase(className.text(), L"SysTabControl32")) return ControlKind::kTab;
    return ControlKind::kOther;
}

ControlTemplate takeControl(Reader& reader) {
    ControlTemplate control;
    reader.align();
    reader.takeU32();
    reader.takeU32();
    control.style = reader.takeU32();
    control.place = reader.takeRect();
    control.id = static_cast<std::int32_t>(reader.takeU32());
    control.kind = kindOf(reader.takeName(), control.style);
    control.caption = reader.takeName().text();
    reader.skip(reader.takeU16());
    return control;
}

}  // namespace

DialogTemplate readDialogTemplate(base::ResourceBytes bytes) {
    Reader reader(bytes);
    if (reader.takeU16() != 1 || reader.takeU16() != 0xFFFF)
        throw std::runtime_error("a dialog template is not an extended one (DIALOGEX)");
    DialogTemplate dialog;
    reader.takeU32();
    reader.takeU32();
    dialog.style = reader.takeU32();
    const std::uint16_t count = reader.takeU16();
    dialog.place = reader.takeRect();
    reader.takeName();  // menu
    reader.takeName();  // class
    dialog.caption = reader.takeName().text();
    if ((dialog.style & kSetFontStyle) != 0) {
        reader.takeU16();
        reader.takeU16();
        reader.takeByte();
        reader.takeByte();
        reader.takeName();
    }
    for (int i = 0; i < count; ++i) dialog.controls.push_back(takeControl(reader));
    return dialog;
}

}  // namespace dialogs
