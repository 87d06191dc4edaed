#!/bin/sh
# Removes what the installer package put on this Mac. Inventories and launchd jobs of your own stay. Run it with sudo.

if [ "$(id -u)" -ne 0 ]; then
  echo "uninstall.sh: run it with sudo" >&2
  exit 2
fi
for program in quillagent quillinv; do
  for file in "bin/$program" "share/man/man1/$program.1" "share/bash-completion/completions/$program" \
    "share/zsh/site-functions/_$program" "share/fish/vendor_completions.d/$program.fish"; do
    rm -f "/usr/local/$file" || exit 2
  done
done
rm -rf /usr/local/share/quillinv || exit 2
if pkgutil --pkg-info example.quillon.quillagent >/dev/null 2>&1; then
  pkgutil --forget example.quillon.quillagent
fi
echo "quillagent is removed"
