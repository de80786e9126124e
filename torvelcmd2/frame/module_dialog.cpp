#include "torvelcmd2/frame/module_dialog.h"

namespace torvel {
namespace {

constexpr wchar_t kPlacementKey[] = L"Placement";

}  // namespace

std::optional<OdString> readSetting(const wchar_t* section, const wchar_t* key) {
    IProfile* const profile = hostObject(hostapi::getProfile);
    OdString value;
    if (!profile || !profile->readText(section, key, value)) return std::nullopt;
    return value;
}

void writeSetting(const wchar_t* section, const wchar_t* key, const OdString& value) {
    if (IProfile* const profile = hostObject(hostapi::getProfile)) profile->writeText(section, key, value.c_str());
}

int readIntegerSetting(const wchar_t* section, const wchar_t* key, int standard) {
    IProfile* const profile = hostObject(hostapi::getProfile);
    std::int32_t value = 0;
    return profile && profile->readInteger(section, key, value) ? value : standard;
}

void writeIntegerSetting(const wchar_t* section, const wchar_t* key, int value) {
    if (IProfile* const profile = hostObject(hostapi::getProfile)) profile->writeInteger(section, key, value);
}

int showBox(hostapi::MessageKind kind, const OdString& text) {
    auto* const box = hostService(hostapi::messageBox);
    return box ? box(text.c_str(), nullptr, kind) : hostapi::kAnswerCancel;
}

void notifyUser(const OdString& text) {
    if (auto* const notify = hostService(hostapi::notify)) notify(text.c_str());
}

OdString translate(const wchar_t* text) {
    OdString translated = text;
    if (auto* const translateText = hostService(hostapi::translateText)) translateText(text, translated);
    return translated;
}

void ModuleDialog::onHelp() {
    IHelpServiceEx* const help = hostObject(hostapi::getHelpService);
    if (help && helpTopic_) help->showTopic(helpTopic_, window());
}

std::wstring ModuleDialog::savedPlacement() {
    return settingsSection_ != nullptr ? readSetting(settingsSection_, kPlacementKey).value_or(L"") : L"";
}

void ModuleDialog::savePlacement(const std::wstring& placement) {
    if (settingsSection_) writeSetting(settingsSection_, kPlacementKey, placement);
}

}  // namespace torvel
