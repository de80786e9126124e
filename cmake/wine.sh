#!/usr/bin/env bash
# wine.sh PREFIX PROGRAM [ARGUMENT...]
#
# Runs a Windows program under Wine without a screen, in a Wine folder of the build's own that is made at first use. With
# ON_SCREEN set it is shown on DISPLAY, which should be another folder's matter than runs without one.
#
# A program and Wine's server, which it asks thousands of times a second, are five to ten times as fast on one processor as
# on two that wake each other. So a folder PREFIX/N belongs to each processor, up to four; tests take turns by WINE_TURN.
set -Eeu
trap 'echo "wine.sh: line $LINENO: $BASH_COMMAND: status $?" >&2' ERR
processors=$(nproc)
processor=$((${WINE_TURN:-0} % (processors < 4 ? processors : 4)))
taskset -pc "$processor" $$ >/dev/null 2>&1 || true
prefix=$(realpath -m "$1")/$processor
shift

export WINEPREFIX=$prefix WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
# Without winedbg a crash ends the program (status 5) instead of waiting for a debugger's window.
export WINEDLLOVERRIDES='mscoree=;mshtml=;winemenubuilder.exe=d;winedbg.exe=d'
[ -n "${ON_SCREEN:-}" ] || unset DISPLAY
unset WAYLAND_DISPLAY

# The 64-bit loader itself: the wrapper named `wine` complains about missing 32-bit parts.
wine=
for candidate in /usr/lib/wine/wine64 /usr/lib/x86_64-linux-gnu/wine/wine64 "$(command -v wine64 || true)"; do
    if [ -n "$candidate" ] && [ -x "$candidate" ]; then
        wine=$candidate
        break
    fi
done
if [ -z "$wine" ]; then
    echo "wine.sh: wine64 is not installed" >&2
    exit 127
fi
server=$(dirname "$wine")/wineserver64
[ -x "$server" ] || server=$(dirname "$wine")/wineserver
[ -x "$server" ] && export WINESERVER=$server

make_prefix() {
    "$wine" wineboot -i >/dev/null 2>&1
    # Dialogs are drawn without an X server; with one, windows are not handed to a window manager.
    "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d x11,null /f >/dev/null
    "$wine" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null
    # These give texts the widths they have on Windows.
    for font in tahoma.ttf tahomabd.ttf marlett.ttf; do
        [ -f "/usr/share/wine/fonts/$font" ] && cp "/usr/share/wine/fonts/$font" "$prefix/drive_c/windows/Fonts/"
    done
    [ -n "${WINESERVER:-}" ] && "$WINESERVER" -w
    touch "$prefix/ready"
}

# What Wine starts beside a program holds that program's pipes, and who reads them waits for it too: the server's services,
# and the desktop, which comes with the first window and goes a second after the last program. So both are started before,
# without pipes, and stay for a while; a command line without input counts as a program. On a screen a desktop would be seen.
keep_server() {
    local age=60 # seconds, of the last one of these command lines
    if "$WINESERVER" -p60; then
        [ -z "${ON_SCREEN:-}" ] || "$wine" wineboot
    elif [ -e "$prefix.desktop" ]; then
        age=$(($(date +%s) - $(stat -c %Y "$prefix.desktop" || echo 0)))
    fi
    if [ -z "${ON_SCREEN:-}" ] && [ "$age" -ge 30 ]; then
        touch "$prefix.desktop"
        sleep 60 | "$wine" cmd &
        [ "$age" -lt 60 ] || "$wine" start explorer.exe /desktop </dev/null
    fi
}

mkdir -p "$prefix"
(
    flock 9
    [ -e "$prefix/ready" ] || make_prefix 9>&-
    if [ -n "${WINESERVER:-}" ]; then
        keep_server </dev/null >/dev/null 2>&1 9>&- || true
    fi
) 9>"$prefix.lock"
exec "$wine" "$@"
