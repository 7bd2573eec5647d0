# Runs the demo's commands in its folder. Sourced by samples/demo.sh.

# The command as a user would type it.
command_line() {
    local word line=
    for word; do
        case $word in
        '' | *[!A-Za-z0-9_.,/=+@%:-]*) line+=" '${word//\'/\'\\\'\'}'" ;;
        *) line+=" $word" ;;
        esac
    done
    printf '%s' "${line# }"
}

# Runs a command, bvutil and the samples under Wine; bvutil tells what its work took.
execute() {
    local environment=()
    while [[ $1 == *=* ]]; do
        environment+=("$1")
        shift
    done
    case $1 in
    bvutil) set -- "$root/cmake/run-wine.sh" "$root/build/dll/bvutil.exe" "${@:2}" --time ;;
    regsvr32) set -- "$root/cmake/run-wine.sh" "$@" ;;
    *) [ ! -e "$root/build/dll/samples/$1.exe" ] ||
        set -- "$root/cmake/run-wine.sh" "$root/build/dll/samples/$1.exe" "${@:2}" ;;
    esac
    cd "$out" && env "${environment[@]}" "$@" 2>&1
}

microseconds() { printf '%s' "${EPOCHREALTIME/[.,]/}"; }

# Runs a command and leaves its line, what it printed, its exit code, and two times in microseconds: what it took
# in all, and what bvutil says that its work took (or nothing).
measure() {
    local begin seconds
    ran_line=$(command_line "$@") ran_code=0 ran_work=
    begin=$(microseconds)
    # Into a file: a pipe would stay open as long as Wine's server, which outlives the program.
    (execute "$@") >"$printed" || ran_code=$?
    ran_total=$(($(microseconds) - begin))
    ran_output=$(tr -d '\r' <"$printed")
    if [[ $ran_output =~ (^|$'\n')'bvutil: time: '([0-9]+\.[0-9]+)' s'$ ]]; then
        seconds=${BASH_REMATCH[2]}
        ran_work=$((10#${seconds/./} * 100)) # four decimals
        ran_output=${ran_output%"${BASH_REMATCH[0]}"}
    fi
}

print_run() {
    printf '\n$ %s\n' "$ran_line"
    [ -z "$ran_output" ] || printf '%s\n' "$ran_output"
}

# A command of the story, on the console and on the page. Its exit code is the command's.
run() {
    measure "$@"
    print_run
    page_run
    return "$ran_code"
}

# The same for a command that makes a picture:  picture FILE CAPTION COMMAND...
picture() {
    measure "${@:3}"
    print_run
    [ "$ran_code" -eq 0 ] || return "$ran_code"
    page_picture "$1" "$2"
}
