# Completion for bash: the programs' options, and what their values can be.

# Of each program its options; behind "=" what the value is: a kind of file, a command, or words.
_tarvel_table() {
    cat <<'TABLE'
tarvel-bench --scenario=*.toml --replay=*.pcap* --record=* --control=* --extended --help
TarvelWiMAXMonitor --fields --json --raw --summary --follow --type= --subtype= --direction=sent,received --from= --to= --result=ok,failed --scrub=* --page=*.html --help
simctl --watch --check --help
tarvel-session --speed= --repeat= --set= --limit= --junit=*.xml --record=*/ --keep --programs=*/ --scenario=*.toml --replay=*.pcap* --device=*/ --scripted --help
TABLE
}

# What simctl takes behind the socket: commands, kinds of events, and kinds of faults behind "fault".
_tarvel_commands="fault state stations advance until time-scale seed save load help
    fade vanish appear link-loss dreg reset paging complete-wake-up firmware-shutdown
    half-mini-card-shutdown half-mini-card-wake-up flow-deleted handover traffic-waits crash
    ip-filter-status device-unload message flow-added flow-changed move request"
_tarvel_faults="fail drop delay repeat reorder truncate corrupt on off"

# Files that fit a pattern, and directories.
_tarvel_files() {
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -d -- "$2"; compgen -f -X "!$1" -- "$2")
}

_tarvel_words() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2"); }

_tarvel_simctl() {
    local word=$1 previous=${COMP_WORDS[COMP_CWORD - 1]}
    case $COMP_CWORD:$previous in
    *:--check) _tarvel_files '*.toml' "$word" ;;
    *:--watch | 1:*) _tarvel_files '*' "$word" ;;
    2:*) [[ ${COMP_WORDS[1]} == --* ]] || _tarvel_words "$_tarvel_commands" "$word" ;;
    3:fault) _tarvel_words "$_tarvel_faults" "$word" ;;
    3:until) _tarvel_words idle "$word" ;;
    3:save | 3:load) _tarvel_files '*' "$word" ;;
    esac
}

_tarvel() {
    local program=${1##*/} word=$2 previous=$3 options option value
    options=$(_tarvel_table | sed -n "s/^$program //p")
    # The shell takes "--option=value" for three words.
    [ "$word" != = ] || word=
    [ "$previous" != = ] || previous=${COMP_WORDS[COMP_CWORD - 2]}
    for option in $options; do
        [ "${option%%=*}" = "$previous" ] && [[ $option == *=* ]] || continue
        value=${option#*=}
        case $value in
        *\**) _tarvel_files "$value" "$word" ;;
        *) _tarvel_words "${value//,/ }" "$word" ;;
        esac
        return
    done
    if [[ $word == -* ]]; then
        _tarvel_words "$(sed 's/=[^ ]*//g' <<<"$options")" "$word"
    elif [ "$program" = simctl ]; then
        _tarvel_simctl "$word"
    elif [ "$program" = tarvel-session ]; then
        _tarvel_files '*.session' "$word"
    else
        _tarvel_files '*.pcap*' "$word"
    fi
}

complete -F _tarvel tarvel-bench TarvelWiMAXMonitor simctl tarvel-session
