#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <initializer_list>
#include <new>
#include <QApplication>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/console.h"
#include "base/text.h"
#include "dialogs/qt/screen.h"

namespace dialogs {
namespace {

// QApplication keeps what it is given here.
int argumentCount = 1;
char programName[] = "torvelhost";
char* arguments[] = {programName, nullptr};

// What Qt remarks on is for its developers; only the reason why it ends the process is for a user.
void takeMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtFatalMsg) base::writeTo(base::Stream::kError, message.toStdString() + "\n");
}

void dropMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

// In a process of its own, which Qt may end.
bool answersInChild() {
    const pid_t child = fork();
    if (child == 0) {
        const rlimit noCore = {0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        constexpr unsigned kPatience = 20;  // seconds, for a screen that neither answers nor refuses
        alarm(kPatience);
        qInstallMessageHandler(dropMessage);
        const QGuiApplication application(argumentCount, arguments);
        _exit(QGuiApplication::screens().isEmpty() ? 1 : 0);
    }
    int status = -1;  // as of a child that cannot be waited for
    while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return child > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// "DISPLAY=:0", and the like: what names a screen.
std::wstring screenNames() {
    std::wstring names;
    for (const char* variable : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"}) {
        const char* const value = std::getenv(variable);
        if (!value || *value == '\0') continue;
        names += (names.empty() ? L"" : L", ") + base::fromUtf8(variable) + L"=" + base::fromUtf8(value);
    }
    return names;
}

}  // namespace

bool openScreen(std::wstring& reason) {
    if (qApp) return true;
    const std::wstring names = screenNames();
    if (names.empty()) {
        reason = L"there is no screen: neither DISPLAY nor WAYLAND_DISPLAY is set";
        return false;
    }
    if (!answersInChild()) {
        reason = L"the screen does not answer (" + names + L")";
        return false;
    }
    qInstallMessageHandler(takeMessage);
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    // It stays to the end of the process: Qt cannot be unloaded.
    new QApplication(argumentCount, arguments);
    std::setlocale(LC_ALL, locale.c_str());  // numbers are written as before
    QApplication::setQuitOnLastWindowClosed(false);
    return true;
}

}  // namespace dialogs
