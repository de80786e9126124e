// A host made of bare slot tables, as any compiler could have built it: what the tests of the module put around it.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "drawingdb/database.h"
#include "hostapi/command.h"
#include "hostapi/trackers.h"

namespace fake {

/// The function in a slot of an interface's table.
template <class Signature>
Signature* slot(void* object, std::size_t number) {
    return reinterpret_cast<Signature*>((*static_cast<void***>(object))[number]);
}

/// A reply to a point prompt. `whileAsked` is called with the tracker (or null) before the reply is given.
struct PointReply {
    int result = 0;
    OdGePoint3d point;
    std::function<void(void* tracker)> whileAsked;
};

/// A reply to a keyword prompt; the text goes with hostapi::kValue.
struct KeywordReply {
    int result = 0;
    std::wstring text;
};

struct Registration {
    std::string name;
    CommandCreator creator;
    std::wstring group;  // and with it
    int flags = 0;
};

/// What the module did, and what it is answered. One for the process.
struct Host {
    std::vector<Registration> registrations;
    int factoryReferences = 0;
    OdDbDatabasePtr database;
    std::vector<std::wstring> messages;
    std::deque<PointReply> points;
    std::vector<std::wstring> pointPrompts;
    std::deque<KeywordReply> keywords;  // none left: the prompt is cancelled
    std::vector<std::wstring> keywordPrompts;
    std::deque<double> distances;  // none left: the prompt is cancelled
    std::vector<std::wstring> distancePrompts;
    std::deque<std::wstring> texts;  // none left: the prompt is cancelled
    std::vector<int> announcedKinds;
    int applicationRequests = 0;
};
Host& host();

/// Exported by the test programs as the host's entry points of those names.
void newCommandFactory(ICmdFactory** factory);
using HostFunction = void (*)();
HostFunction hostFunction(int id);

}  // namespace fake
