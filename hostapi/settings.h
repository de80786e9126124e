// Services of the host that are objects: the settings store, help, and the standard folders. They live as long as the
// host.
#pragma once

#include <cstdint>

#include "hostapi/text.h"

/// The settings store: one file a user. Sections and keys are compared without case.
class IProfile {
  public:
    /// False, and `value` untouched, when there is no such key.
    virtual bool readText(const wchar_t* section, const wchar_t* key, CXStringW& value) = 0;
    virtual void writeText(const wchar_t* section, const wchar_t* key, const wchar_t* value) = 0;
    /// False also for a value that is no integer.
    virtual bool readInteger(const wchar_t* section, const wchar_t* key, std::int32_t& value) = 0;
    virtual void writeInteger(const wchar_t* section, const wchar_t* key, std::int32_t value) = 0;
    virtual void removeKey(const wchar_t* section, const wchar_t* key) = 0;
    virtual void removeSection(const wchar_t* section) = 0;

  protected:
    ~IProfile() = default;
};

class IHelpServiceEx {
  public:
    /// Shows a topic such as "IDH_AttDef". `owner` is the window that asks, or null.
    virtual void showTopic(const wchar_t* topic, void* owner) = 0;

  protected:
    ~IHelpServiceEx() = default;
};

class IStdDirs {
  public:
    /// Folders separated by ";".
    virtual void supportPath(CXStringW& folders) = 0;
    /// Where the user keeps documents.
    virtual void documentsFolder(CXStringW& folder) = 0;
    virtual void temporaryFolder(CXStringW& folder) = 0;

  protected:
    ~IStdDirs() = default;
};
