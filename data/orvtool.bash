# Completion for orvtool in bash.
_orvtool()
{
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]:-}
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "$(orvtool --help | sed -n 's/^  \([a-z]*\) .*/\1/p') --help" -- "$word")
        return
    fi
    case $command:$before in
    import:import) mapfile -t COMPREPLY < <(compgen -W "labels ctc" -- "$word") ;;
    export:export) mapfile -t COMPREPLY < <(compgen -W "ctc geff trackmate csv" -- "$word") ;;
    *:--rule) mapfile -t COMPREPLY < <(compgen -W "nearest overlap" -- "$word") ;;
    *:--format) mapfile -t COMPREPLY < <(compgen -W "text json" -- "$word") ;;
    *:--range) mapfile -t COMPREPLY < <(compgen -W "auto" -- "$word") ;;
    *)
        if [[ $word == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "$(orvtool "$command" --help 2>/dev/null | grep -oE '^  --[a-z-]+')" -- "$word")
        else
            compopt -o default 2>/dev/null    # files
        fi
        ;;
    esac
}
complete -F _orvtool orvtool
