# What the stand-ins in bin/ share, read by each with its own arguments still in "$@": an answer out of the recording,
# or the call handed on to the real tool. Variables are set in subshells only, because the real env would print them.

# The tool behind the last place in PATH that is the stand-ins' own folder: no call can come back to the stand-in.
RealTool() (
  unset CDPATH
  own=$(cd -P -- "${0%/*}" && pwd -P)
  rest=${PATH-}:
  behind=$rest
  while [ -n "$rest" ]; do
    dir=${rest%%:*}
    rest=${rest#*:}
    [ "$(cd -P -- "${dir:-.}" 2>/dev/null && pwd -P)" != "$own" ] || behind=$rest
  done
  tool=/usr/bin/${0##*/}
  while [ -n "$behind" ]; do
    dir=${behind%%:*}
    behind=${behind#*:}
    [ -f "${dir:-.}/${0##*/}" ] && [ -x "${dir:-.}/${0##*/}" ] && tool=${dir:-.}/${0##*/} && break
  done
  printf '%s' "$tool"
)

HandOn() {
  exec "$(RealTool)" "$@"
}

# Ends the stand-in with that file of the recording as its output; comes back with 1 when there is no such file.
Answer() {
  [ -f "$QUILL_RECORDING/$1" ] && exec cat "$QUILL_RECORDING/$1"
}

[ -n "${QUILL_RECORDING-}" ] || HandOn "$@"
