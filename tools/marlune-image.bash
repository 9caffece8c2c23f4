# Completion of marlune-image for bash: commands and options as the tool's own help lists them, then file names.
_marlune_image() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} tool=${COMP_WORDS[0]} help
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        help=$("$tool" --help 2> /dev/null | sed -n '/^Subcommands:/,$s/^  \([a-z]\+\) .*/\1/p')
        mapfile -t COMPREPLY < <(compgen -W "$help --help --version" -- "$current")
        return
    fi
    help=$("$tool" "${COMP_WORDS[1]}" --help 2> /dev/null)
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(grep -o -- '--[a-z-]\+' <<< "$help")" -- "$current")
    elif [[ $previous == --* ]] && grep -q -- "$previous [A-Z]*:{" <<< "$help"; then
        help=$(sed -n "s/.*$previous [A-Z]*:{\([a-z,]*\)}.*/\1/p" <<< "$help")
        mapfile -t COMPREPLY < <(compgen -W "${help//,/ }" -- "$current")
    elif [[ $previous != -* || $previous == --json || $previous == --all || $previous == --svg ||
        $previous == -o || $previous == --output ]]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -F _marlune_image marlune-image
