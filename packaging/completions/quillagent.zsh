#compdef quillagent
# Completes the command line of quillagent in zsh, as a file _quillagent in a folder of fpath.
local -a options=(
  '-silent:do not ask; ten percentages and the name of the file'
  '-debug:store the unchanged output of the profiler, for support'
  '-log:show the phases of the scan'
  '-modern:also read what macOS 10.12 and later say in forms of their own'
  '--help:show a short help text'
  '-?:show a short help text'
)
local -a valued=(
  '-ip\::the current address of this computer'
  '-login\::the account that the scan runs for'
)
_describe -o option options -- valued -S ''
