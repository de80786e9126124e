// What changed since somebody last asked. Every change is a step of the undo log, so the steps behind the place where
// it ended then say it all; only what was taken back from before that place must be noted for whoever asks.
#include <algorithm>

#include "drawingdb/src/core/core.h"

OdDbTouchMark::OdDbTouchMark(OdDbDatabase& database) : core_(database.core()), position_(0) { core_.addMark(*this); }

OdDbTouchMark::~OdDbTouchMark() { core_.removeMark(*this); }

namespace drawingdb {

void Core::addMark(OdDbTouchMark& mark) {
    flushAll();
    mark.position_ = log_.size();
    touchMarks_.push_back(&mark);
}

void Core::removeMark(OdDbTouchMark& mark) { std::erase(touchMarks_, &mark); }

OdDbTouched Core::takeTouched(OdDbTouchMark& mark) {
    flushAll();
    std::vector<std::uint32_t> touched = std::move(mark.undone_);
    mark.undone_.clear();
    for (std::size_t i = mark.position_; i < log_.size(); ++i)
        if (log_[i].kind < Step::record) touched.push_back(log_[i].stub);
    mark.position_ = log_.size();

    OdDbTouched result;
    // Attributes and vertices stand for what they are part of.
    for (std::uint32_t& index : touched) {
        for (const Stub* stub = &stubs[index]; stub->owner; stub = &stubs[index]) {
            const std::uint16_t owner = stubs[stub->owner].type;
            if (owner != rtInsert && owner != rtPolyline) break;
            index = stub->owner;
        }
    }
    std::ranges::sort(touched);
    touched.erase(std::unique(touched.begin(), touched.end()), touched.end());
    for (const std::uint32_t index : touched) {
        Stub& stub = stubs[index];
        if (&stub == section(Section::header)) {
            result.header = true;
        } else if (isEntity(stub)) {
            result.entities.emplace_back(&stub);
        } else {
            Stub* const record = stub.type == rtBlock ? recordOfBlock(stub) : nullptr;
            result.others.emplace_back(record ? record : &stub);
        }
    }
    std::ranges::sort(result.others);
    result.others.erase(std::unique(result.others.begin(), result.others.end()), result.others.end());
    return result;
}

}  // namespace drawingdb
