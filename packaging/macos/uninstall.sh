#!/bin/sh
# Removes what the installer package put on this Mac. Inventories and launchd jobs of your own stay. Run it with sudo.

if [ "$(id -u)" -ne 0 ]; then
  echo "uninstall.sh: run it with sudo" >&2
  exit 2
fi
rm -f /usr/local/bin/quillagent /usr/local/share/man/man1/quillagent.1 || exit 2
if pkgutil --pkg-info example.quillon.quillagent >/dev/null 2>&1; then
  pkgutil --forget example.quillon.quillagent
fi
echo "quillagent is removed"
