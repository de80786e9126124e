#include "drawingdb/object_id.h"

#include "base/number.h"
#include "drawingdb/src/core/core.h"

using drawingdb::coreOf;
using drawingdb::Stub;

std::string OdDbHandle::ascii() const { return base::hexToText(value_); }
OdString OdDbHandle::text() const {
    const std::string digits = ascii();
    return OdString(digits.begin(), digits.end());
}

bool OdDbObjectId::isErased() const { return stub_ && stub_->gone(); }
OdDbHandle OdDbObjectId::handle() const { return stub_ ? stub_->handle : 0; }
OdDbDatabase* OdDbObjectId::database() const { return stub_ ? &coreOf(stub_).database : nullptr; }
const OdRxClass* OdDbObjectId::objectClass() const {
    return stub_ ? coreOf(stub_).classOf(*stub_) : OdRxObject::desc();
}

OdDbObjectId OdDbObjectId::containerId() const {
    if (!stub_ || !stub_->owner) return {};
    drawingdb::Core& core = coreOf(stub_);
    Stub& owner = core.at(stub_->owner);
    switch (owner.type) {
        case drawingdb::rtBlock:
        case drawingdb::rtSection:
            return OdDbObjectId(core.blockOf(*stub_));
        default:
            return OdDbObjectId(&owner);
    }
}

OdSmartPtr<OdDbObject> OdDbObjectId::open(OdDb::OpenMode mode, bool erasedToo) const {
    return stub_ ? coreOf(stub_).open(*stub_, mode, erasedToo) : OdSmartPtr<OdDbObject>();
}

OdSmartPtr<OdDbObject> OdDbObjectId::openOrThrow(OdDb::OpenMode mode, bool erasedToo) const {
    if (!stub_) throw OdError(OdResult::nullObjectId, "no object is named");
    OdSmartPtr<OdDbObject> object = open(mode, erasedToo);
    if (!object)
        throw OdError(OdResult::wasErased, coreOf(stub_).typeName(*stub_) + " #" + handle().ascii() + " was erased");
    return object;
}

std::strong_ordering operator<=>(OdDbObjectId a, OdDbObjectId b) {
    if (a.stub_ == b.stub_) return std::strong_ordering::equal;
    if (!a.stub_) return std::strong_ordering::less;
    if (!b.stub_) return std::strong_ordering::greater;
    if (a.stub_->handle != b.stub_->handle) return a.stub_->handle <=> b.stub_->handle;
    if (&coreOf(a.stub_) != &coreOf(b.stub_)) return std::compare_three_way()(a.stub_, b.stub_);
    return coreOf(a.stub_).indexOf(a.stub_) <=> coreOf(b.stub_).indexOf(b.stub_);
}

OdDbObjectIdRange::Iterator OdDbObjectIdRange::begin() const {
    Iterator it;
    it.container_ = container_;
    it.following_ = following_;
    it.block_ = block_;
    it.skipErased_ = skipErased_;
    if (!container_) return it;
    it.current_ = it.step();
    it.settle();
    return it;
}

Stub* OdDbObjectIdRange::Iterator::step() const { return coreOf(container_).nextChild(*container_, current_); }

OdDbObjectIdRange::Iterator& OdDbObjectIdRange::Iterator::operator++() {
    current_ = step();
    settle();
    return *this;
}

void OdDbObjectIdRange::Iterator::settle() {
    for (;;) {
        while (!current_) {
            if (!following_) return;
            container_ = std::exchange(following_, nullptr);
            current_ = step();
        }
        const bool wanted =
            !current_->has(Stub::unborn) && !(skipErased_ && current_->has(Stub::erased)) &&
            current_->type != drawingdb::rtSeqend &&
            (!block_ || container_->type != drawingdb::rtSection || coreOf(current_).blockOf(*current_) == block_);
        if (wanted) return;
        current_ = step();
    }
}
