# shellcheck shell=bash
# Sourced first by each script in this folder and by .ci/run. Answers --help, changes to the checkout's
# root, and defines how scripts report errors.
#
# The comment at the top of a script is its help text. Its first line is the usage.
set -euo pipefail

script=${0##*/}

# fail MESSAGE: reports an error and exits.
fail() {
    echo "$script: $*" >&2
    exit 1
}

# usage_error MESSAGE: reports wrong arguments and exits.
usage_error() {
    echo "$script: $*; see $0 --help" >&2
    exit 2
}

# expect_at_most COUNT ARGUMENT...: refuses more arguments than COUNT.
expect_at_most() {
    local count=$1
    shift
    (($# <= count)) || usage_error "unexpected argument '${*:count+1:1}'"
}

# expect_one_of WHAT VALUE ALLOWED...: refuses a value that is not among the allowed ones.
expect_one_of() {
    local what=$1 value=$2 allowed
    shift 2
    for allowed in "$@"; do
        [[ $value != "$allowed" ]] || return 0
    done
    usage_error "unknown $what '$value', expected one of: $*"
}

# create_folder FOLDER: creates a folder of the checkout that this script can write to.
create_folder() {
    if ! mkdir -p "$1" 2>/dev/null || [[ ! -w $1 ]]; then
        fail "cannot write to $PWD/$1; the checkout must be writable"
    fi
}

if [[ " $* " == *" --help "* ]]; then
    sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"
    exit
fi
cd "$(dirname "$0")/.."
