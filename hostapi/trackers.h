// Trackers: what moves with the cursor while a point is asked for. These classes are compiled into the module.
#pragma once

#include <cstdint>

#include "drawingdb/entity.h"

/// The entities that the host shows for a tracker.
class HostDrawableList {
  public:
    virtual int add(OdDbEntity* entity, int kind, int flags, int reserved1, int reserved2) = 0;  // slot 0
    virtual void reserved1() {}
    virtual int remove(OdDbEntity* entity) = 0;  // slot 2

  protected:
    ~HostDrawableList() = default;
};

struct HostInputEvent {
    static constexpr std::int32_t kPointMoved = 512;
    static constexpr std::int32_t kButtonDown = 513;
    static constexpr std::int32_t kKeyDown = 256;

    std::int32_t kind = 0;
    OdGePoint3d cursor;  ///< world coordinates
};

class HostEdMessageFilter {
  public:
    /// Slot 0. True when the tracked entity has changed and is to be drawn again. `point` is the event's cursor point.
    virtual bool filterEvent(const HostInputEvent& event, const OdGePoint3d& point) = 0;
    virtual int addDrawables(HostDrawableList& list) = 0;      // slot 1
    virtual void removeDrawables(HostDrawableList& list) = 0;  // slot 2
    virtual bool query3() = 0;                                 // slot 3
    virtual bool query4() = 0;                                 // slot 4
    virtual bool cursorKind(std::int32_t& kind) = 0;           // slot 5; false: the host's own cursor

  protected:
    ~HostEdMessageFilter() = default;
};

/// Dimensions shown beside the cursor; the values say that there are none.
class HostEdJigDimData {
  public:
    virtual int dimensions() { return 0; }       // slot 0
    virtual int dimensionState1() { return 3; }  // slot 1
    virtual int dimensionState2() { return 3; }  // slot 2

  protected:
    ~HostEdJigDimData() = default;
};

/// A tracker that shows one entity and keeps a reference to it.
class HostEdInputTracker : public HostEdMessageFilter, public HostEdJigDimData {
  public:
    explicit HostEdInputTracker(OdDbEntityPtr entity) : entity_(std::move(entity)) {}
    HostEdInputTracker(const HostEdInputTracker&) = delete;
    HostEdInputTracker& operator=(const HostEdInputTracker&) = delete;

    bool filterEvent(const HostInputEvent&, const OdGePoint3d&) override { return false; }
    int addDrawables(HostDrawableList& list) override {
        list.add(entity_.get(), 1, 512, 0, 0);
        return 1;
    }
    void removeDrawables(HostDrawableList& list) override { list.remove(entity_.get()); }
    bool query3() override { return false; }
    bool query4() override { return false; }
    bool cursorKind(std::int32_t&) override { return false; }

  protected:
    ~HostEdInputTracker() = default;

    OdDbEntity* entity() const { return entity_.get(); }

  private:
    OdDbEntityPtr entity_;
};

/// A tracker of a point prompt: derived classes say in filterEvent what a moved point does.
class HostEdPointTracker : public HostEdInputTracker {
  public:
    using HostEdInputTracker::HostEdInputTracker;

  protected:
    ~HostEdPointTracker() = default;
};
