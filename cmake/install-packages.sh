# Shared by run-demo.sh and run-tests.sh: installs what they need from the distribution, with apt-get, if it is missing.
#
#   need_packages "what for" COMMAND_OR_FILE PACKAGE...   notes the packages when the command (or the file, a name that
#                                                         begins with "/" and may be a pattern) is not there
#   install_packages                                      installs what was noted, all in one go; when it may not or
#                                                         cannot, says what to install and why, and returns 1
#
# With everything in place neither of them touches the network.

missing_packages=()
missing_reasons=()

need_packages() {
    local why=$1 wanted=$2
    shift 2
    case $wanted in
    /*) compgen -G "$wanted" > /dev/null && return 0 ;;
    *) command -v "$wanted" > /dev/null && return 0 ;;
    esac
    missing_packages+=("$@")
    missing_reasons+=("$* ($why)")
}

install_packages() {
    ((${#missing_packages[@]} == 0)) && return 0
    echo "Missing packages:"
    printf '  %s\n' "${missing_reasons[@]}"
    if ! command -v apt-get > /dev/null; then
        echo "There is no apt-get here: install what these packages hold by your system's own means." >&2
        return 1
    fi
    local log status=0
    log=$(mktemp)
    if ((EUID != 0)); then
        echo "Only root may install them. Run:  apt-get install ${missing_packages[*]}" >&2
        status=1
    else
        echo "Installing them with apt-get ..."
        if ! { apt-get update && DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends "${missing_packages[@]}"; } > "$log" 2>&1; then
            tail -n 5 "$log" >&2
            echo "apt-get failed (no network?). Install by hand:  apt-get install ${missing_packages[*]}" >&2
            status=1
        fi
    fi
    rm -f "$log"
    ((status)) || missing_packages=() missing_reasons=()
    return "$status"
}
