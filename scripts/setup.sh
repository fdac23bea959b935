# shellcheck shell=bash
# Sourced by the other scripts: what a build needs, installed where it is missing, and the build.
# Runs in bash 3.2, which macOS has. Messages go to standard error: standard output is the program's.

project_directory="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

# So that what was compiled in one clone serves the next, precompiled headers included.
export CCACHE_BASEDIR="$project_directory" CCACHE_NOHASHDIR=1
export CCACHE_SLOPPINESS=pch_defines,time_macros

say() {
    printf '%s\n' "$*" >&2
}

fail() {
    say "$(basename "$0"): $*"
    exit 1
}

# Names of packages for one purpose: build, desktop, tests, metrics, checks, packages, package-checks.
debian_packages() {
    case "$1" in
    build) echo "cmake ninja-build g++ ccache pkg-config nlohmann-json3-dev libre2-dev libicu-dev
                 libcli11-dev libsdbus-c++-dev libsystemd-dev expect" ;;
    desktop) echo "qt6-base-dev qt6-qpa-plugins libxcb1-dev" ;;
    tests) echo "libgtest-dev libgmock-dev libbenchmark-dev zsh fish dbus procps xvfb xauth xdotool xterm
                 imagemagick dunst xfce4-panel fonts-inter git mandoc x11-utils qt6-wayland sway grim
                 wtype wl-clipboard mako-notifier qt6-translations-l10n" ;;
    metrics) echo "prometheus python3" ;;
    checks) echo "clang-16 llvm-16 libc++-16-dev libc++abi-16-dev libclang-rt-16-dev gobjc++
                  libgnustep-gui-dev libblocksruntime-dev" ;;
    packages) echo "dpkg-dev file rpm git" ;;
    package-checks) echo "debootstrap lintian appstream desktop-file-utils systemd xvfb xdotool" ;;
    esac
}

homebrew_packages() {
    case "$1" in
    build) echo "cmake ninja ccache pkgconf nlohmann-json re2 icu4c cli11" ;;
    desktop) echo "qt" ;;
    tests) echo "googletest google-benchmark" ;;
    metrics) echo "prometheus python3" ;;
    checks) echo "" ;;
    esac
}

# install_packages PURPOSE...: installs what is missing and says so; does nothing else.
install_packages() {
    case "$(uname -s)" in
    Darwin) install_with_homebrew "$@" ;;
    *) install_with_apt "$@" ;;
    esac
}

missing_debian_packages() {
    local purpose package installed
    installed=" $(dpkg-query -W -f '${db:Status-Status} ${Package}\n' 2>/dev/null |
        sed -n 's/^installed //p' | tr '\n' ' ') "
    for purpose in "$@"; do
        for package in $(debian_packages "$purpose"); do
            case "$installed" in
            *" $package "*) ;;
            *) echo "$package" ;;
            esac
        done
    done
}

install_with_apt() {
    local missing purpose as_root=""
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        say "No apt-get here: expecting what Debian packages as" \
            $(for purpose in "$@"; do debian_packages "$purpose"; done)
        return 0
    fi
    missing="$(missing_debian_packages "$@" | tr '\n' ' ')"
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "missing packages; as root: apt-get install $missing"
        as_root="sudo"
    fi
    say "Installing: $missing"
    {
        $as_root apt-get -qq update &&
            $as_root env DEBIAN_FRONTEND=noninteractive \
                apt-get -qq -y -o Dpkg::Use-Pty=0 install --no-install-recommends $missing
    } >&2 || fail "could not install: $missing"
}

install_with_homebrew() {
    local purpose package missing="" prefix
    xcode-select -p >/dev/null 2>&1 ||
        fail "Apple's command line tools are missing; install them with: xcode-select --install"
    command -v brew >/dev/null || fail "Homebrew is missing; see https://brew.sh"
    prefix="$(brew --prefix)"
    for purpose in "$@"; do
        for package in $(homebrew_packages "$purpose"); do
            [ -e "$prefix/opt/$package" ] || missing="$missing $package"
        done
    done
    if [ -n "$missing" ]; then
        say "Installing:$missing"
        brew install --quiet $missing >&2 || fail "could not install:$missing"
    fi
    # Homebrew keeps ICU out of the default search path, because the system has one of its own.
    export PKG_CONFIG_PATH="$prefix/opt/icu4c/lib/pkgconfig${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}"
    export CMAKE_PREFIX_PATH="$prefix/opt/qt${CMAKE_PREFIX_PATH:+:$CMAKE_PREFIX_PATH}"
}

# configure PRESET [-DNAME=VALUE...]: only if the build directory is configured differently.
configure() {
    local preset="$1" cache setting configured=yes messages
    shift
    cache="$project_directory/build/$preset/CMakeCache.txt"
    for setting in "$@"; do
        setting="${setting#-D}"
        grep -q "^${setting%%=*}:[A-Z]*=${setting#*=}\$" "$cache" 2>/dev/null || configured=no
    done
    [ -e "$project_directory/build/$preset/build.ninja" ] || configured=no
    [ "$configured" = no ] || return 0
    messages="$(cd "$project_directory" && cmake --preset "$preset" "$@" 2>&1)" || {
        say "$messages"
        fail "could not configure the $preset build"
    }
}

# first_settings PRESET SETTING...: these, and what makes a build of everything faster, unless that is
# set up already: whoever works on it may have chosen otherwise. Not on a Mac, where nobody has tried
# which files go together.
first_settings() {
    local preset="$1"
    shift
    [ ! -e "$project_directory/build/$preset/build.ninja" ] || return 0
    echo "$@"
    [ "$(uname -s)" = Darwin ] ||
        echo "-DVELLMARK_PRECOMPILED_HEADERS=ON -DVELLMARK_UNITY_BUILD=ON"
}

# build PRESET [TARGET...]: silent when everything is up to date.
build() {
    local directory="$project_directory/build/$1"
    shift
    ninja -C "$directory" "$@" 2>&1 | without_idle_lines >&2
    [ "${PIPESTATUS[0]}" -eq 0 ] || fail "could not build"
}

# What ninja says when there is nothing to do.
without_idle_lines() {
    local line
    while IFS= read -r line; do
        case "$line" in
        "ninja: Entering directory"* | *"Re-checking globbed directories"*) ;;
        "ninja: no work to do"*) ;;
        *) printf '%s\n' "$line" ;;
        esac
    done
}

has_target() {
    ninja -C "$project_directory/build/$1" -t query "$2" >/dev/null 2>&1
}
