// HostEdInput: prompts and messages on the command line.
#pragma once

#include <cstdint>

#include "drawingdb/entity.h"

class HostEdInputTracker;

namespace hostapi {

/// What a prompt returns. A keyword gives kFirstKeyword plus its place in the list.
constexpr int kValue = -1;  ///< a value of the kind asked for
constexpr int kCancel = -2;
constexpr int kEmpty = 1;  ///< Enter
constexpr int kFirstKeyword = 2;

/// Flags of prompts; others are the host's business and have no effect.
constexpr int kPlainPrompt = 4;  ///< every prompt has it, and it asks for nothing more
constexpr int kNotNegative = 8;  ///< a distance below 0 is refused

/// What HostEdInput::setCurrentEntity announces.
constexpr int kNoEntity = 0;
constexpr int kNewEntity = 1;

}  // namespace hostapi

/// The command line of a document.
///
/// Prompts are shown as they are, except that their last "[%s]" is filled with the keywords joined by "/". A keyword
/// list is one text of keywords separated by blanks; "local _ global" lists give each keyword a second name that is not
/// shown. Any unique abbreviation of a keyword is taken. Null prompts and keyword lists are empty ones. Points are
/// world coordinates, angles radians, distances drawing units. The out value is written when the result is kValue and
/// left alone otherwise.
class HostEdInput {
  public:
    /// Slot 0. A rubber band is drawn from `base` unless it is null. A relative reply counts from the last point
    /// entered. The tracker, if any, follows the cursor until the prompt ends.
    virtual int getPoint(const OdGePoint3d* base, OdGePoint3d& point, const wchar_t* prompt, const wchar_t* keywords,
                         int flags, std::uintptr_t reserved, HostEdInputTracker* tracker) = 0;
    /// Slot 1. From the user coordinate system's X axis, counter-clockwise. A point given instead of a number is where
    /// the direction goes, from `base`, the address of an OdGePoint3d; with 0 a second point is asked for.
    virtual int getAngle(double& radians, const wchar_t* prompt, const wchar_t* keywords, int flags,
                         std::uintptr_t base) = 0;
    /// Slot 2. With `textOut`, the address of an OdString, any other text is a reply too and gives kValue.
    virtual int getKeyword(const wchar_t* prompt, const wchar_t* keywords, int flags, std::uintptr_t textOut,
                           std::uintptr_t reserved) = 0;
    virtual void reserved3() {}
    /// Slot 4. Writes a line by printf's rules; "%s" is a wide text.
    virtual void printMessage(const wchar_t* format, ...) = 0;
    virtual void reserved5() {}
    /// Slot 6. True when a text was entered, an empty one included; false when the prompt was cancelled.
    virtual bool getString(OdString& text) = 0;
    /// Slot 7. A point given instead of a number is measured from `base`, or from a second point asked for.
    virtual int getDistance(const OdGePoint3d* base, double& distance, const wchar_t* prompt, const wchar_t* keywords,
                            int flags, std::uintptr_t reserved) = 0;
    virtual void reserved8() {}
    virtual int getInteger(int& value, const wchar_t* prompt, const wchar_t* keywords, int flags,
                           std::uintptr_t reserved) = 0;  // slot 9
    virtual void reserved10() {}
    virtual void reserved11() {}
    virtual void reserved12() {}
    virtual void reserved13() {}
    virtual void reserved14() {}
    virtual void reserved15() {}
    virtual void reserved16() {}
    virtual void reserved17() {}
    /// Slot 18. Announces the entity that the next point prompt places; null when there is none. No reference is kept.
    virtual void setCurrentEntity(int kind, OdDbEntity* entity) = 0;

  protected:
    ~HostEdInput() = default;
};
