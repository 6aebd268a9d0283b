# Completion of orvosky for bash. What there is to complete comes from the program's own help.
_orvosky() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} program=${COMP_WORDS[0]} sub= word
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in -*) ;; *) sub=$word; break ;; esac
  done
  COMPREPLY=()
  if [ -z "$sub" ] || { [ "$sub" = help ] && [ "$prev" = help ]; }; then
    case $cur in
      -*) COMPREPLY=($(compgen -W "$("$program" --help 2>/dev/null | grep -o -- '--[a-z-]*')" -- "$cur")) ;;
      *) COMPREPLY=($(compgen -W "$("$program" --help 2>/dev/null |
          sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p')" -- "$cur")) ;;
    esac
    return
  fi
  if [ "$sub" = nodes ] && [[ $cur != -* ]]; then
    COMPREPLY=($(compgen -W "$("$program" nodes 2>/dev/null | sed 's/ .*//')" -- "$cur"))
    return
  fi
  case $cur in
    -*) COMPREPLY=($(compgen -W "$("$program" help "$sub" 2>/dev/null | grep -o -- '--[a-z-]*' | sort -u)" -- "$cur")) ;;
    *) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -- "$cur")) ;;
  esac
}
complete -F _orvosky orvosky
