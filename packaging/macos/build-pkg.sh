#!/bin/sh
# Makes the installer package of the agent on a Mac, out of what was built before, and with it the reader when that was
# built, each with its manual page and completions. Nothing is signed and nothing is sent anywhere unless the credentials
# for it are given.

Usage() {
  cat <<'END'
Usage: build-pkg.sh [OPTION...]
  --binary FILE       the agent (default: build/macos/quillagent of this checkout)
  --reader FOLDER     where the reader was built, "" for a package without it (default: build/macos of this checkout)
  --output FILE       the package (default: quillagent-VERSION.pkg in the current directory)
  --sign-binary NAME  sign the programs with this "Developer ID Application" identity   (or QUILL_SIGN_BINARY)
  --sign-package NAME sign the package with this "Developer ID Installer" identity   (or QUILL_SIGN_PACKAGE)
  --notary PROFILE    notarise with this profile of "notarytool store-credentials"   (or QUILL_NOTARY)
  --help              show this text
END
}

Fail() {
  printf 'build-pkg.sh: %s\n' "$1" >&2
  exit 2
}

unset CDPATH
root=$(cd -P -- "$(dirname -- "$0")/../.." && pwd -P) || exit 2
binary=$root/build/macos/quillagent
reader=$root/build/macos
output=''
while [ $# -gt 0 ]; do
  case $1 in
    --help) Usage && exit ;;
    --binary | --reader | --output | --sign-binary | --sign-package | --notary) [ $# -gt 1 ] || Fail "$1 needs a value" ;;
    *) Fail "unknown option $1; --help shows the usage" ;;
  esac
  case $1 in
    --binary) binary=$2 ;;
    --reader) reader=$2 ;;
    --output) output=$2 ;;
    --sign-binary) QUILL_SIGN_BINARY=$2 ;;
    --sign-package) QUILL_SIGN_PACKAGE=$2 ;;
    --notary) QUILL_NOTARY=$2 ;;
  esac
  shift 2
done

identifier=example.quillon.quillagent
version=$(sed -n 's/^project(quillagent VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
[ -n "$version" ] || Fail "no version in CMakeLists.txt"
[ -n "$output" ] || output=quillagent-$version.pkg
[ -x "$binary" ] || Fail "there is no agent \"$binary\": build it first (cmake --preset macos; cmake --build --preset macos)"
[ -z "${QUILL_NOTARY-}" ] || { [ -n "${QUILL_SIGN_BINARY-}" ] && [ -n "${QUILL_SIGN_PACKAGE-}" ]; } ||
  Fail "only signed programs in a signed package can be notarised"
for tool in pkgbuild productbuild; do
  command -v "$tool" >/dev/null || Fail "there is no $tool here: packages are made on a Mac"
done

work=$(mktemp -d "${TMPDIR:-/tmp}/build-pkg.XXXXXX") || exit 2
trap 'rm -rf "$work"' EXIT
trap 'exit 2' HUP INT TERM
set -e
local=$work/root/usr/local
mkdir -p "$local/bin" "$local/share/man/man1" "$local/share/bash-completion/completions" \
  "$local/share/zsh/site-functions" "$local/share/fish/vendor_completions.d"
install -m 755 "$binary" "$local/bin/quillagent"
sed "1s/@PROJECT_VERSION@/$version/" "$root/man/quillagent.1" >"$work/quillagent.1"
install -m 644 "$work/quillagent.1" "$local/share/man/man1/quillagent.1"
completions=$root/packaging/completions
install -m 644 "$completions/quillagent.bash" "$local/share/bash-completion/completions/quillagent"
install -m 644 "$completions/quillagent.zsh" "$local/share/zsh/site-functions/_quillagent"
install -m 644 "$completions/quillagent.fish" "$local/share/fish/vendor_completions.d/quillagent.fish"
if [ -n "$reader" ] && [ -x "$reader/quillinv" ]; then
  cmake --install "$reader" --component reader --prefix "$local"
fi

if [ -n "${QUILL_SIGN_BINARY-}" ]; then
  for program in "$local/bin"/*; do
    codesign --force --options runtime --timestamp --identifier "${identifier%.*}.${program##*/}" \
      --sign "$QUILL_SIGN_BINARY" "$program"
  done
fi
pkgbuild --root "$work/root" --install-location / --identifier "$identifier" --version "$version" "$work/quillagent.pkg"
if [ -n "${QUILL_SIGN_PACKAGE-}" ]; then
  productbuild --package "$work/quillagent.pkg" --sign "$QUILL_SIGN_PACKAGE" --timestamp "$output"
else
  productbuild --package "$work/quillagent.pkg" "$output"
fi
if [ -n "${QUILL_NOTARY-}" ]; then
  xcrun notarytool submit "$output" --keychain-profile "$QUILL_NOTARY" --wait
  xcrun stapler staple "$output"
fi
printf 'build-pkg.sh: %s\n' "$output"
