// What the module's dialogs have in common: their resources, their place in the settings store, and the host's services
// for telling the user.
#pragma once

#include <optional>

#include "dialogs/dialog.h"
#include "torvelcmd2/frame/command.h"
#include "torvelcmd2/frame/module_instance.h"

namespace torvel {

/// Every function that shows dialogs makes one first: the dialog resources are the module's for as long as it lives.
class ModuleResources {
  private:
    dialogs::ResourceScope scope_{GetModuleResourceHandle()};
};

// ---- the host's settings store

/// Nothing when the setting was never written, or there is no store.
std::optional<OdString> readSetting(const wchar_t* section, const wchar_t* key);
void writeSetting(const wchar_t* section, const wchar_t* key, const OdString& value);
int readIntegerSetting(const wchar_t* section, const wchar_t* key, int standard);
void writeIntegerSetting(const wchar_t* section, const wchar_t* key, int value);

// ---- telling the user

/// An answer of hostapi; cancel when the host has no message boxes.
int showBox(hostapi::MessageKind kind, const OdString& text);
/// By the host's notification service: seen, but not waited for.
void notifyUser(const OdString& text);
/// A literal text in the user's language.
OdString translate(const wchar_t* text);

/// Base of the module's dialogs. The window's place is kept as "Placement" in the settings section, if there is one;
/// the help button shows the topic.
class ModuleDialog : public dialogs::Dialog {
  protected:
    explicit ModuleDialog(int templateId, const wchar_t* settingsSection = nullptr, const wchar_t* helpTopic = nullptr)
        : Dialog(templateId), settingsSection_(settingsSection), helpTopic_(helpTopic) {}

    void onHelp() override;
    std::wstring savedPlacement() override;
    void savePlacement(const std::wstring& placement) override;

  private:
    const wchar_t* settingsSection_;
    const wchar_t* helpTopic_;
};

}  // namespace torvel
