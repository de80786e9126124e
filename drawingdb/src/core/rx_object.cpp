#include "drawingdb/rx_object.h"

#include <algorithm>
#include <vector>

OdError::~OdError() = default;
OdError_NotThatKindOfClass::~OdError_NotThatKindOfClass() = default;
OdError_NotThatKindOfClass::OdError_NotThatKindOfClass(const std::string& found, const std::string& wanted)
    : OdError(OdResult::notThatKindOfClass, "the object is an " + found + ", not an " + wanted) {}

namespace {
std::vector<const OdRxClass*>& registry() {
    static std::vector<const OdRxClass*> classes;
    return classes;
}
}  // namespace

OdRxClass::OdRxClass(const char* name, const OdRxClass* parent, Factory factory)
    : name_(name), parent_(parent), factory_(factory) {
    registry().push_back(this);
}
OdRxClass::~OdRxClass() { std::erase(registry(), this); }
OdRxObjectPtr OdRxClass::create() const { return factory_ ? OdRxObjectPtr(factory_()) : OdRxObjectPtr(); }
const OdRxClass* OdRxClass::find(std::string_view name) {
    for (const OdRxClass* c : registry())
        if (name == c->name()) return c;
    return nullptr;
}

OdRxObject::~OdRxObject() = default;
const OdRxClass* OdRxObject::desc() {
    static const OdRxClass record("OdRxObject", nullptr, nullptr);
    return &record;
}
const OdRxClass* OdRxObject::isA() const { return desc(); }
void OdRxObject::lastReferenceGone() { delete this; }
