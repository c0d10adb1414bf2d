# Completion of the command ovi for bash: commands, options, cameras, features and their values, files.
_ovi() {
  local line=${COMP_LINE:0:COMP_POINT} candidates=() word head
  COMPREPLY=()
  mapfile -t candidates < <("${COMP_WORDS[0]}" complete -- "$line" 2>/dev/null)
  case ${candidates[0]-} in
    '') return ;;
    *:files) compopt -o default 2>/dev/null; return ;;
    *:folders) compopt -o dirnames 2>/dev/null; return ;;
  esac
  candidates=("${candidates[@]%%$'\t'*}")
  # bash takes "Feature=Value" for several words, and replaces the last one only.
  word=${line##*[[:space:]]}
  head=${word%"${word##*[=:]}"}
  if [[ -n $head && $COMP_WORDBREAKS == *"${head: -1}"* ]]; then
    candidates=("${candidates[@]#"$head"}")
  fi
  [[ ${candidates[0]} == *= ]] && compopt -o nospace 2>/dev/null
  COMPREPLY=("${candidates[@]}")
}
complete -F _ovi ovi
