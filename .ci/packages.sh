# Sourced by run.sh and test.sh: quiet commands, and the Debian packages that are missing.

# Runs a command and shows what it printed, on standard error, only when it fails.
quietly() {
    local log
    if ! log=$("$@" 2>&1); then
        echo "$log" >&2
        return 1
    fi
}

# Arguments: WHAT=PACKAGE, where WHAT is a command or the absolute path of a file that the package
# brings. Installs the packages whose WHAT is not there; says so on standard error.
install_missing() {
    local entry what missing=() as_root=()
    for entry in "$@"; do
        what=${entry%%=*}
        case $what in
        /*) compgen -G "$what" >/dev/null || missing+=("${entry#*=}") ;;
        *) command -v "$what" >/dev/null || missing+=("${entry#*=}") ;;
        esac
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return 0
    fi
    echo "Installing ${missing[*]}" >&2
    if [ "$(id -u)" -ne 0 ]; then
        as_root=(sudo)
    fi
    quietly "${as_root[@]}" apt-get update &&
        quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends "${missing[@]}"
}

BUILD_PACKAGES=(cmake=cmake ninja=ninja-build g++=g++
    /usr/include/toml++/toml.h=libtomlplusplus-dev /usr/include/pcap/pcap.h=libpcap-dev
    /usr/share/javascript/dygraphs/dygraph.min.js=libjs-dygraphs
    /usr/include/editline/readline.h=libedit-dev)
