#include <windows.h>

#include <algorithm>
#include <memory>

#include "base/files.h"
#include "base/process.h"
#include "base/system_error_windows.h"

namespace base {
namespace {

struct CloseHandle_ {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, CloseHandle_>;

// An argument so that the program takes it for one, with its quotes and backslashes: backslashes count twice before a
// quote alone.
std::wstring quoted(const std::wstring& argument) {
    if (!argument.empty() && argument.find_first_of(L" \t\n\v\"") == argument.npos) return argument;
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t character : argument) {
        if (character == L'"') text.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        text += character;
    }
    return text.append(backslashes, L'\\') + L'"';
}

// A file that the program gets.
Handle openInherited(const std::wstring& name, DWORD access, DWORD creation) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    HANDLE const file = CreateFileW(name.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, creation,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) throw FileError(name, systemErrorText(GetLastError()));
    return Handle(file);
}

// What is in it ends when its last handle is closed, and that happens to a killed program's handles too: neither the
// program that is run nor what that has started is left behind.
Handle jobThatEndsWithUs() {
    Handle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

}  // namespace

std::optional<int> runProgram(const std::vector<std::wstring>& command, const std::wstring& printed,
                              std::chrono::milliseconds limit) {
    std::wstring line;
    for (const std::wstring& word : command) line += (line.empty() ? L"" : L" ") + quoted(word);
    const Handle nothing = openInherited(L"NUL", GENERIC_READ, OPEN_EXISTING);
    const Handle output = openInherited(printed, GENERIC_WRITE, CREATE_ALWAYS);
    const Handle job = jobThatEndsWithUs();
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = nothing.get();
    start.hStdOutput = start.hStdError = output.get();
    PROCESS_INFORMATION made = {};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW | CREATE_SUSPENDED, nullptr,
                        nullptr, &start, &made))
        throw FileError(command[0], systemErrorText(GetLastError()));
    const Handle process(made.hProcess), thread(made.hThread);
    AssignProcessToJobObject(job.get(), process.get());
    ResumeThread(thread.get());
    const auto wait = static_cast<DWORD>(std::clamp<std::int64_t>(limit.count(), 0, INFINITE - 1));
    if (WaitForSingleObject(process.get(), wait) != WAIT_OBJECT_0) {
        TerminateJobObject(job.get(), 1);
        WaitForSingleObject(process.get(), INFINITE);
        return std::nullopt;
    }
    DWORD status = 0;
    GetExitCodeProcess(process.get(), &status);
    return static_cast<int>(status);
}

}  // namespace base
