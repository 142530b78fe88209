# Completion of kest-settings-ctl for bash: commands, options, and the paths of the menu that the agent shows.
_kest_settings_ctl() {
    local current=$2 command='' word i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        case $word in
            menu | get | choose | watch) command=${command:-$word} ;;
        esac
    done
    case $command,$current in
        ,* | *,-*)
            local words="menu get choose watch --help --version"
            [ -z "$command" ] || words="--json --paths --yes --timeout --help"
            mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
            return
            ;;
        get,* | choose,*) ;;
        *) return ;;
    esac
    # The typed text without the shell's quoting; only unquoted > and blanks split words.
    local line=${COMP_LINE:0:COMP_POINT} quote='' typed path
    typed=${line#*"$command" }
    while [[ $typed == --*' '* ]]; do # options before the path
        [[ $typed != '--timeout '* ]] || typed=${typed#* }
        typed=${typed#* }
    done
    case $typed in
        \"* | \'*) quote=${typed:0:1} typed=${typed:1} ;;
        *) typed=$(printf '%s' "$typed" | sed 's/\\\(.\)/\1/g') ;;
    esac
    while IFS= read -r path; do
        [[ ${path,,} == "${typed,,}"* ]] || continue
        [ -n "$quote" ] || path=$(printf '%q' "$path")
        COMPREPLY+=("$path")
    done < <(kest-settings-ctl menu --paths --timeout 2 2>/dev/null)
}
complete -F _kest_settings_ctl kest-settings-ctl
