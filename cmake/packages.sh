# For ./torvel and ./test: what is missing of the tools and libraries, and its installation. Sourced, not run.
#
#   need PACKAGE COMMAND_OR_FILE    notes the package when there is neither such a command nor such a file
#   install_needed LOG              installs what was noted; names what cannot be installed and goes on

needed_packages=()

need() {
    case $2 in
        /*) compgen -G "$2" >/dev/null && return ;;
        *) command -v "$2" >/dev/null && return ;;
    esac
    needed_packages+=("$1")
}

install_needed() {
    [ ${#needed_packages[@]} -gt 0 ] || return 0
    if [ "$(id -u)" -eq 0 ] && command -v apt-get >/dev/null; then
        echo "Installing ${needed_packages[*]}" >&2
        mkdir -p "$(dirname "$1")"
        if {
            apt-get update &&
                DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=600 install -y \
                    --no-install-recommends "${needed_packages[@]}"
        } >"$1" 2>&1 </dev/null; then
            needed_packages=()
            return 0
        fi
    fi
    echo "Missing packages, please install: ${needed_packages[*]}" >&2
    return 1
}

# What the program itself is built with; without the last two everything but shaping.
harfbuzz_file=/usr/include/harfbuzz/hb-ot.h
need_for_program() {
    need cmake cmake
    need ninja-build ninja
    need g++ g++
    need ccache ccache
    need llvm llvm-rc
    need libboost-dev /usr/include/boost/format.hpp
    need libagg-dev /usr/include/agg2/agg_basics.h
    need libedit-dev /usr/include/histedit.h
    need libstb-dev /usr/include/stb/stb_truetype.h
    need zlib1g-dev /usr/include/zlib.h
    need libharfbuzz-dev "$harfbuzz_file"
    need libfribidi-dev /usr/include/fribidi/fribidi.h
}

# What its windows are shown with. Without it everything else is built all the same.
qt_file='/usr/include/*/qt6/QtWidgets/QWidget'
need_for_windows() { need qt6-base-dev "$qt_file"; }
