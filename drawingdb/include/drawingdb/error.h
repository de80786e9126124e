// Result codes and exceptions of the drawing database.
#pragma once

#include <stdexcept>
#include <string>

#include "drawingdb/api.h"

/// Numeric result codes. The numbers are part of the interface: callers compare with 9 and 137.
enum class OdResult : int {
    ok = 0,
    invalidInput = 3,
    outOfMemory = 9,  ///< an internal array could not grow
    notInDatabase = 12,
    nullObjectId = 13,
    wasErased = 14,
    notOpenForWrite = 15,     ///< a change was tried on an object that is open for read
    notThatKindOfClass = 16,  ///< an opened object is of another class than asked for
    duplicateName = 17,
    keyNotFound = 18,
    badFile = 30,            ///< the file is no drawing, or is damaged beyond reading
    fileError = 31,          ///< the operating system refused to read or write
    readOnly = 32,           ///< the drawing was opened read-only because it is damaged
    notHeldByVersion = 33,   ///< the drawing's file version cannot hold the object
    transformRefused = 137,  ///< the entity cannot take that transform (a circle scaled unequally)
};

/// Base of every exception that the database throws. `what()` is UTF-8 and says what, where and, if known, the remedy.
class DRAWINGDB_API OdError : public std::runtime_error {
  public:
    OdError(OdResult code, const std::string& message) : std::runtime_error(message), code_(code) {}
    ~OdError() override;
    OdResult code() const { return code_; }

  private:
    OdResult code_;
};

/// An object was opened as, or cast to, a class that it is not.
class DRAWINGDB_API OdError_NotThatKindOfClass : public OdError {
  public:
    /// `found` and `wanted` are class names.
    OdError_NotThatKindOfClass(const std::string& found, const std::string& wanted);
    ~OdError_NotThatKindOfClass() override;
};
