# Completes the command line of quillagent in bash. A colon begins a word of its own there: nothing follows it here.
_quillagent() {
  local word=${COMP_WORDS[COMP_CWORD]} option options='-silent -debug -ip: -log -modern -login: --help -?'
  COMPREPLY=()
  case $word in /*) options='/silent /debug /ip: /log /modern /login:' ;; esac
  for option in $options; do
    case $option in "$word"*) COMPREPLY+=("$option") ;; esac
  done
  case ${COMPREPLY[0]} in *:) [ ${#COMPREPLY[@]} -ne 1 ] || compopt -o nospace 2>/dev/null ;; esac
}
complete -F _quillagent quillagent
