# Completion of torvelhost for bash.
_torvelhost() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    case $before in
        -s | --script | -o | --output | -p | --plot | --profile | --events | --record)
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            compopt -o filenames
            return
            ;;
        --paper)
            mapfile -t COMPREPLY < <(compgen -W "$(echo {A{0..5},ANSI-{A..E}}{,-portrait,-landscape})" -- "$word")
            return
            ;;
        --colors)
            mapfile -t COMPREPLY < <(compgen -W "color mono dark" -- "$word")
            return
            ;;
        --scale)
            mapfile -t COMPREPLY < <(compgen -W "fit" -- "$word")
            return
            ;;
        -c | --command | --size | --set | --layout) return ;;
    esac
    case $word in
        -*)
            local options
            options=$("${COMP_WORDS[0]}" --help 2>/dev/null | grep -oE '(^|[ ,])--?[a-z]+' | tr -d ' ,')
            mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
            ;;
        *)
            local path
            while IFS= read -r path; do
                if [ -d "$path" ] || [[ ${path,,} == *.dxf ]]; then COMPREPLY+=("$path"); fi
            done < <(compgen -f -- "$word")
            compopt -o filenames
            ;;
    esac
}
complete -F _torvelhost torvelhost
