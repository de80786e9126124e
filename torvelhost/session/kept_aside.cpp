#include "torvelhost/session/kept_aside.h"

#include <filesystem>
#include <random>
#include <utility>

#include "base/exact_utf8.h"
#include "base/files.h"
#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"
#include "drawingdb/error.h"

namespace host {
namespace {

constexpr std::wstring_view kRecordExtension = L".window";

void removeFile(const std::wstring& path) {
    std::error_code error;
    std::filesystem::remove(base::toPath(path), error);
}

// Of a record, its two lines; nothing where that is none.
std::optional<LeftCopy> readRecord(const std::wstring& path) {
    const std::vector<std::wstring> lines = base::split(base::fromUtf8Exact(base::readFile(path).view()), L'\n');
    if (lines.size() < 2 || lines[1].empty()) return std::nullopt;
    return LeftCopy{lines[0], lines[1]};
}

}  // namespace

KeptAside::KeptAside(std::wstring folder)
    : folder_(std::move(folder)), extension_(base::format(L".kept-%08x", std::random_device()())) {
    std::error_code error;
    std::filesystem::create_directories(base::toPath(folder_), error);
    if (error) throw base::FileError(folder_, base::fromUtf8(error.message()));
    for (unsigned number = 1; !record_; ++number) {
        auto hold = std::make_unique<base::FileHold>(
            base::joinPath(folder_, std::to_wstring(number) + std::wstring(kRecordExtension)));
        // One that was left behind keeps its number until its copy is dropped.
        if (hold->isHeld() && !readRecord(hold->path()))
            record_ = std::move(hold);
        else if (hold->isHeld())
            hold->leaveFile();
    }
    writeRecord();
}

KeptAside::~KeptAside() {
    if (isLeft_ && hasCopy())
        record_->leaveFile();
    else
        drop();
    for (const Taken& taken : taken_) taken.record->leaveFile();
}

std::vector<LeftCopy> KeptAside::takeLeft() {
    std::vector<LeftCopy> all;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(base::toPath(folder_), error)) {
        const std::wstring path = base::fromPath(entry.path());
        if (base::extensionOf(path) != kRecordExtension || path == record_->path()) continue;
        auto record = std::make_unique<base::FileHold>(path);
        if (!record->isHeld()) continue;
        const std::optional<LeftCopy> left = readRecord(path);
        if (!left || !base::isFile(left->copy)) continue;  // the record goes
        all.push_back(*left);
        taken_.push_back({std::move(record), *left});
    }
    return all;
}

void KeptAside::dropLeft(const LeftCopy& left) {
    removeFile(left.copy);
    std::erase_if(taken_, [&](const Taken& taken) { return taken.left.copy == left.copy; });
}

void KeptAside::show(const std::wstring& drawing) {
    drop();
    drawing_ = drawing.empty() ? drawing : base::absolutePath(drawing);
    writeRecord();
}

void KeptAside::keep(OdDbDatabase& database) {
    const std::wstring name = drawing_.empty() ? L"new.dxf" : base::fileNameOf(drawing_);
    const std::wstring own = L"." + name + extension_;
    std::vector<std::wstring> places;
    if (!drawing_.empty()) places.push_back(base::joinPath(base::folderOf(drawing_), own));
    places.push_back(base::joinPath(folder_, own));
    if (copy_ == places.back()) places = {copy_};
    for (std::size_t i = 0; i < places.size(); ++i) {
        try {
            database.writeFile(places[i]);
        } catch (const OdError& error) {
            if (i + 1 == places.size() || error.code() != OdResult::fileError) throw;
            continue;
        }
        const std::wstring before = std::exchange(copy_, places[i]);
        if (before == copy_) return;
        writeRecord();
        if (!before.empty()) removeFile(before);
        return;
    }
}

void KeptAside::drop() {
    if (copy_.empty()) return;
    removeFile(copy_);
    copy_.clear();
    writeRecord();
}

void KeptAside::writeRecord() { record_->write(base::toUtf8Exact(drawing_ + L"\n" + copy_ + L"\n")); }

DrawingHold::DrawingHold(const std::wstring& drawing) {
    const std::wstring path = base::absolutePath(drawing);
    try {
        hold_ = std::make_unique<base::FileHold>(
            base::joinPath(base::folderOf(path), L"." + base::fileNameOf(path) + L".open"));
    } catch (const base::FileError&) {
    }
}

}  // namespace host
