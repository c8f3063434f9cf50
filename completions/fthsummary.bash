# Completion of fthsummary for bash.

_fthsummary()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    # Without candidates of ours, bash completes directories or files by itself,
    # and knows how to quote them.
    case $previous in
        --input)
            compopt -o dirnames
            return
            ;;
        -o)
            compopt -o default
            return
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W '--input -o --json --version --help -h' -- "$word")
}

complete -F _fthsummary fthsummary
