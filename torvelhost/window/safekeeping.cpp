#include "torvelhost/window/safekeeping.h"

#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "drawingdb/error.h"

namespace host {
namespace {

constexpr wchar_t kOpenElsewhere[] = L"another window has the drawing open; save it under another name";

}  // namespace

Safekeeping::Safekeeping(const std::wstring& folder, Terminal& terminal) : terminal_(terminal) {
    try {
        kept_ = std::make_unique<KeptAside>(folder);
    } catch (const base::FileError& error) {
        terminal.warning(L"unsaved drawings are not kept aside: " + base::fromUtf8(error.what()));
    }
}

std::vector<LeftCopy> Safekeeping::takeLeft() { return kept_ ? kept_->takeLeft() : std::vector<LeftCopy>(); }

void Safekeeping::dropLeft(const LeftCopy& left) { kept_->dropLeft(left); }

void Safekeeping::show(const std::wstring& drawing, Document& document) {
    drawing_ = drawing;
    due_.reset();
    if (kept_) kept_->show(drawing);
    hold_.reset();
    document.guardSaves([this](const std::wstring& path) {
        const bool isOwn = !drawing_.empty() && base::isSameFile(path, drawing_);
        return isOwn || DrawingHold(path).isHeld() ? std::nullopt : std::optional<std::wstring>(kOpenElsewhere);
    });
    if (drawing.empty()) return;
    hold_.emplace(drawing);
    if (hold_->isHeld()) return;
    document.protectFile(drawing, kOpenElsewhere);
    terminal_.notice(base::fileNameOf(drawing) +
                     L" is open in another window. Here it is for reading alone; save it under another name.");
}

void Safekeeping::work(const std::wstring& drawing, Document& document, std::int64_t now) {
    if (drawing != drawing_) show(drawing, document);  // it was saved under another name
    if (!kept_) return;
    if (!document.isModified()) {
        kept_->drop();
        due_.reset();
        return;
    }
    OdDbDatabase& database = *document.database();
    if (kept_->hasCopy() && keptRevision_ == database.revision()) return due_.reset();
    if (!due_) due_ = adopted_ ? now : now + kInterval;
    if (now < *due_) return;
    due_.reset();
    keptRevision_ = database.revision();
    try {
        kept_->keep(database);
        if (adopted_) dropLeft(*std::exchange(adopted_, std::nullopt));
    } catch (const std::exception& error) {
        terminal_.warning(L"the unsaved drawing is not kept aside: " + base::fromUtf8(error.what()));
        due_ = now + kInterval;
    }
}

bool Safekeeping::leave(Document& document) {
    if (!kept_ || !document.isModified()) return false;
    try {
        kept_->keep(*document.database());
    } catch (const std::exception& error) {
        terminal_.warning(L"the unsaved drawing is not kept aside as it is now: " + base::fromUtf8(error.what()));
    }
    kept_->leaveCopy();
    return kept_->hasCopy();
}

}  // namespace host
