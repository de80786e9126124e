#include "torvelhost/session/drawing_files.h"

#include <chrono>
#include <iomanip>
#include <sstream>

#include "base/files.h"
#include "base/format.h"
#include "base/paths.h"
#include "base/process.h"
#include "base/temporary_folder.h"
#include "base/text.h"
#include "drawingdb/drawing_file.h"
#include "drawingdb/error.h"
#include "drawingdb/layer.h"
#include "drawingdb/symbol_table.h"

namespace host {
namespace {

constexpr wchar_t kSection[] = L"Converters", kKey[] = L"dwg", kLimitKey[] = L"seconds";
constexpr std::int32_t kSeconds = 120;

// Words between blanks; what stands in quotes is one.
std::vector<std::wstring> wordsOf(const std::wstring& command) {
    std::vector<std::wstring> words;
    std::wistringstream text(command);
    constexpr wchar_t kNoEscape = 1;  // backslashes are folders' on Windows
    for (std::wstring word; text >> std::quoted(word, L'"', kNoEscape);) words.push_back(word);
    return words;
}

// Where it is named.
std::wstring placeIn(const Profile& profile) {
    return L"in the settings, " + profile.fileName() + L": below [Converters] a line dwg=COMMAND %in %out";
}

// Empty: there is none.
std::vector<std::wstring> converterOf(Profile& profile) {
    CXStringW command;
    profile.readText(kSection, kKey, command);
    std::vector<std::wstring> words = wordsOf(command);
    // A quote that is not closed takes all of it.
    if (words.empty() && !base::trimmed(command).empty()) words.emplace_back(command);
    return words;
}

std::wstring nameOf(const std::vector<std::wstring>& command) { return L"the converter " + command[0]; }

// What a failed converter said last.
std::wstring lastLine(const std::wstring& fileName) {
    const std::wstring text = base::fromUtf8(base::readTextFile(fileName));
    const std::wstring_view printed = base::trimmed(text);
    const std::wstring_view line = base::trimmed(printed.substr(printed.find_last_of(L"\r\n") + 1));
    return line.empty() ? std::wstring(L" and said nothing") : L": " + std::wstring(line.substr(0, 500));
}

void convert(std::vector<std::wstring> command, const std::wstring& drawing, const std::wstring& output,
             const std::wstring& printed, Profile& profile) {
    bool takesDrawing = false, takesOutput = false;
    for (std::wstring& word : command) {
        takesDrawing |= word.find(L"%in") != word.npos;
        takesOutput |= word.find(L"%out") != word.npos;
        word = base::replaceAll(base::replaceAll(word, L"%out", output), L"%in", base::absolutePath(drawing));
    }
    if (!takesDrawing || !takesOutput)
        throw base::FileError(drawing,
                              L"its converter is not told what to read and where to write " + placeIn(profile));
    std::int32_t seconds = kSeconds;
    if (CXStringW text; profile.readText(kSection, kLimitKey, text) &&
                        (!profile.readInteger(kSection, kLimitKey, seconds) || seconds < 1))
        throw base::FileError(drawing, L"the time of its converter, seconds=" + text +
                                           L", is no number from 1 on in the settings, " + profile.fileName());
    const std::wstring name = nameOf(command);
    std::optional<int> status;
    try {
        status = base::runProgram(command, printed, std::chrono::seconds(seconds));
    } catch (const base::FileError& error) {
        throw base::FileError(drawing, name + L" cannot be started: " + error.reason());
    }
    if (!status)
        throw base::FileError(drawing, name + base::format(L" was ended after %d seconds; seconds=NUMBER below "
                                                           L"[Converters] in the settings allows it more",
                                                           seconds));
    if (*status != 0)
        throw base::FileError(drawing, name + base::format(L" ended with status %d", *status) + lastLine(printed));
    if (!base::isFile(output)) throw base::FileError(drawing, name + L" wrote no drawing" + lastLine(printed));
}

// Some converters write most layers as off.
void warnOfLayersOff(OdDbDatabase& database) {
    int off = 0, all = 0;
    const auto table = database.layerTableId().openIf<OdDbSymbolTable>();
    if (!table) return;
    for (OdDbObjectId id : table->records()) {
        ++all;
        off += id.openAs<OdDbLayerTableRecord>()->isOff() ? 1 : 0;
    }
    if (2 * off > all)
        database.addWarning(
            0, base::toUtf8(database.fileName() + base::format(L": the converter wrote %d of %d layers as off; the "
                                                               L"command LAYER, with ON and *, shows them",
                                                               off, all)));
}

}  // namespace

bool isDwgName(std::wstring_view path) { return base::equalsNoCase(base::extensionOf(path), L".dwg"); }

OdDbDatabasePtr readDrawingFile(const std::wstring& path, bool recover, Profile& profile) {
    const auto readPlain = [&] { return recover ? OdDbDatabase::recoverFile(path) : OdDbDatabase::readFile(path); };
    // Some files are called so and are none.
    if (!isDwgName(path) || !base::isFile(path) || drawingdb::isDrawingFile(path)) return readPlain();
    const std::vector<std::wstring> converter = converterOf(profile);
    if (converter.empty()) {
        try {
            return readPlain();
        } catch (const OdError& error) {
            throw OdError(error.code(), error.what() + base::toUtf8(L", or name a converter " + placeIn(profile)));
        }
    }
    const base::TemporaryFolder folder;
    const std::wstring output = folder / L"drawing.dxf";
    convert(converter, path, output, folder / L"printed", profile);
    const std::string bytes(base::readFile(output).view());
    OdDbDatabasePtr database;
    try {
        database = recover ? OdDbDatabase::recoverBytes(bytes, path) : OdDbDatabase::readBytes(bytes, path);
    } catch (const OdError& error) {
        throw OdError(error.code(), error.what() + base::toUtf8(L"; that is what " + nameOf(converter) + L" wrote"));
    }
    warnOfLayersOff(*database);
    return database;
}

}  // namespace host
