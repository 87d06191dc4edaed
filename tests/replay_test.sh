#!/bin/sh
# Tests the stand-ins, replay and record on a small recording made here. Prints "ok" or "FAIL" and a name per check.
# shellcheck disable=SC1112,SC3045 # a typographic apostrophe is meant; every shell has ulimit -t

root=$(cd -P -- "$(dirname -- "$0")/.." && pwd -P)
work=$(mktemp -d "${TMPDIR:-/tmp}/replay test.XXXXXX") && work=$(cd -P -- "$work" && pwd -P) || exit 2
trap 'rm -rf "$work"' EXIT
ulimit -t 10 # a stand-in that calls itself ends here
failed=0 bin=$root/replay/bin
rec="$work/it's \"my\" \$1 Mac"
documents=$rec/system_profiler
unset QUILL_RECORDING QUILLAGENT TZ
mkdir -p "$documents" "$rec/dscl" "$rec/ps" "$rec/diskutil" "$work/real" "$work/extra" "$work/a b"
cd "$work/a b" || exit 2

Check() { # NAME EXPECTED GOT
  [ "$2" != "$3" ] || { echo "ok $1" && return; }
  failed=1 && printf 'FAIL %s\n  expected: %s\n  got:      %s\n' "$1" "$2" "$3"
}
Script() { # FILE TEXT
  printf '#!/bin/sh\n%s\n' "$2" >"$1" && chmod 755 "$1"
}
Play() { # TOOL|ARGUMENT|...
  (export "QUILL_RECORDING=${2-$rec}" "PATH=$bin:$work/link:$bin:$work/real:$PATH" && IFS='|' && set -f && $1)
}
Head() {
  printf '%s\n' '<?xml version="1.0" encoding="UTF-8"?>' '<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN"' \
    '"http://www.apple.com/DTDs/PropertyList-1.0.dtd">' '<plist version="1.0">' '<array>' | sed '2{N;s/\n/ /;}'
}
Tail() { printf '</array>\n</plist>\n'; }
Document() { # TYPE KEY VALUE KEY VALUE...
  type=$1 && shift
  printf '\t<dict>\n%s\n\t</dict>\n' "$(printf '\t\t<key>%s</key>\n\t\t<string>%s</string>\n' "$@")" >"$work/$type.body"
  { Head && cat "$work/$type.body" && Tail; } >"$documents/SP${type}DataType.xml"
}

for tool in system_profiler ioreg ls dscl env ps diskutil; do
  Script "$work/real/$tool" "[ \"\$1\" != status ] || exit 7; printf 'real $tool'; [ \$# = 0 ] || printf '|%s' \"\$@\""
done && ln -s "$bin" "$work/link"
edid=$(printf '00ffffffffffff00061e123478563412%076d000000ff004d4f4e49544f52390a20202020%0112d' 0 0)
Document Hardware serial_number C02QM3FSFVH8 platform_UUID CE3A2773-AF9E-515B-918B-5EE5C09372D7
Document Network 'MAC Address' 00:1e:c2:aa:bb:cc ip_address 10.11.240.7 Router fe80::21e:c2ff:feaa:bbcc
Document Software local_host_name Zaphods-Mac user_name 'Zaphod Ünal &amp; Co (zaphod)' version 10.11.240.1
Document Bluetooth 'Zaphod’s iPhone' 00-1E-C2-AA-BB-CC version 00000000
Document Displays spdisplays_display-serial-number MONITOR9 _spdisplays_edid "0x$edid"
Document USB bsd_name disk2 removable_media yes '</string><dict><key>bsd_name' 'disk2s1</string></dict><string>'
printf '<data>\nAQID\n</data>\n' >"$work/NVMe.body"
{ Head && cat "$work/NVMe.body" && Tail; } >"$documents/SPNVMeDataType.xml"
: >"$documents/SPAudioDataType.xml" && printf '%0100d' 7 >"$documents/SPMemoryDataType.xml"
printf '    "IOPlatformSerialNumber" = "C02QM3FSFVH8"\n    "serial-number" = <433032514d>\n' >"$rec/ioreg.txt"
printf 'Shared\nzaphod\nAnn "O" Lee\nversion\n' >"$rec/users.txt"
printf '%s\n' 'hint: Secret1' 'NFSHomeDirectory: /Users/zaphod' RealName: ' Zaphod Ünal' 'RecordName: zaphod zb9' \
  >"$rec/dscl/zaphod.txt"
printf 'RealName: Trillian' >"$rec/dscl/Ann \"O\" Lee.txt"
printf 'LOGNAME=zaphod\nTOKEN=Ab1\nPATH=/usr/bin:/Users/zaphod/bin\n' >"$rec/env.txt"
printf 'zaphod           /Applications/Tool  -u zaphod\n' >"$rec/ps/12.txt"
printf '1 0 launchd\n12 1 My  Tool\n' >"$rec/processes.txt"
printf '   Device / Media Name:      Flash Disk\n' >"$rec/diskutil/disk2.txt"
echo "Zaphod's Mac" >"$rec/computer-name.txt" && echo Europe/Berlin >"$rec/time-zone.txt"

# Every call of the agent prints its file, or what stands for a missing one; any other call reaches the real tool.
all='system_profiler|-detailLevel|full|-xml'
for call in 'users.txt|ls|-1|/Users/' 'dscl/zaphod.txt|dscl|.|-read|/users/zaphod' 'env.txt|env' \
  'dscl/Ann "O" Lee.txt|dscl|.|-read|/users/Ann "O" Lee' 'ioreg.txt|ioreg|-rd1|-c|IOPlatformExpertDevice' \
  'ps/12.txt|sh|-c|ps -p12 -o user="" -o command=""' \
  'diskutil/disk2.txt|diskutil|info|/dev/disk2' "system_profiler/SPUSBDataType.xml|$all|SPUSBDataType"; do
  Check "answered: $call" 0 "$(Play "${call#*|}" | cmp -s - "$rec/${call%%|*}"; echo $?)"
done
Check "no document" "$(Head && Tail)" "$(Play "$all|SPAirPortDataType")"
for call in 'ps|-p13|-o|user=|-o|command=' 'dscl|.|-read|/users/ann' 'dscl|.|-read|/users/../users' \
  'dscl|.|-read|/users/..' 'diskutil|info|/dev/disk9' 'diskutil|info|/dev/../users'; do
  Check "nothing: $call" "" "$(Play "$call")"
done
Check "no users" "Shared" "$(Play 'ls|-1|/Users/' /nowhere)"
Check "no platform" "real env" "$(Play 'ioreg|-rd1|-c|IOPlatformExpertDevice' /nowhere; Play env /nowhere)"
Check "no recording" "real ls|-1|/Users/" "$(Play 'ls|-1|/Users/' '')"
for call in 'ls|-1' 'ls|-1 /Users/' 'ls|-1|/Users/|x y' 'ps|-p12' 'ps|-p1x|-o|user=|-o|command=' 'env|A=1' \
  'ps|-p|-o|user=|-o|command=' 'dscl' 'dscl|.|-read|/groups/x' 'diskutil|list' 'diskutil|info|disk2' 'ioreg|-l' \
  "$all|SPUSBDataType|SPNVMeDataType" "$all|../users"; do
  Check "handed on: $call" "real $call" "$(Play "$call")"
done
Check "status of the real tool" 7 "$(Play 'ls|status'; echo $?)"
Check "nothing behind the stand-ins" 127 "$(PATH=$work/link:$bin QUILL_RECORDING=$rec "$bin/dscl" 2>/dev/null; echo $?)"
Spliced() { Head && for type in "$@"; do cat "$work/$type.body"; done && Tail; }
Check "spliced" "$(Spliced Hardware Network Software Bluetooth Displays USB NVMe)" "$(Play "$all")"
mv "$documents/SPHardwareDataType.xml" "$work/kept" && Document Power a b
Check "spliced, no first type" "$(Spliced Network Software Bluetooth Displays USB NVMe Power)" "$(Play "$all")"
mv "$work/kept" "$documents/SPHardwareDataType.xml"
Play "$all" >"$work/all" && mv "$work/all" "$documents/all.xml"

# replay, in a checkout with an odd name and from a working directory with a blank.
copy="$work/check 'out' \$x"
mkdir -p "$copy/build/dev" "$copy/build/release" && cp -R "$root/replay" "$copy/"
Replay() { "$copy/replay/replay" "$@" 2>"$work/out"; echo $? "$(grep -Ec 'no (agent|recording) ' "$work/out")"; }
Check "no agent built" "2 1" "$(Replay "$rec")"
Script "$copy/build/dev/quillagent" 'echo dev'
Check "dev agent" "dev
0 0" "$(Replay "$rec")"
# shellcheck disable=SC2016
Script "$copy/build/release/quillagent" 'echo "$QUILL_RECORDING|$TZ|$(pwd)|$#|$2|$(ls -1 /Users/ | sed 1q)"; exit 5'
Check "played" "$rec|Europe/Berlin|$work/a b|2|/login:a b|Shared
5 0" "$(Replay "../${rec##*/}" -silent '/login:a b')"
Check "QUILLAGENT" "-x" "$(QUILLAGENT='echo' "$root/replay/replay" "$rec" -x)"
for missing in nowhere '' "$rec/users.txt"; do
  Check "no recording \"$missing\"" "2 1" "$(Replay "$missing")"
done

# record gives back what the stand-ins answer; masked, every file keeps its length and no original is left.
Script "$work/extra/scutil" "echo \"Zaphod's Mac\"" && Script "$work/extra/readlink" 'echo /x/zoneinfo/Europe/Berlin'
Script "$work/extra/sysctl" 'echo iMac11,2' && Script "$work/extra/sw_vers" 'echo 10.6.8'
Script "$work/extra/ps" "[ \"\$1\" = -ax ] || exec '$bin/ps' \"\$@\"
sed 's/^/  /;s/\$/   /' \"\$QUILL_RECORDING/processes.txt\""
plugins='Library/Internet Plug-Ins'
mkdir -p "$work/mac/$plugins/A b.plugin/Contents"
printf 'bplist00\000\377' >"$work/mac/$plugins/A b.plugin/Contents/Info.plist"
mkdir -p "$work/mac/$plugins/.hidden/Support Files"
echo '<plist/>' | tee "$work/mac/$plugins/.hidden/Info.plist" >"$work/mac/$plugins/.hidden/Support Files/Info.plist"
cp -R "$work/mac/Library" "$rec/"
Record() {
  QUILL_ROOT=$work/mac QUILL_RECORDING=$rec PATH=$work/extra:$bin:$PATH "$root/replay/record" "$@" 2>/dev/null; echo $?
}
Check "record" "0 0 2" "$(Record "new one") $(Record --mask masked) $(Record "new one")"
Files() { (cd "$1" && find . -type f ! -name README.md -exec wc -c {} + | sed 's/ \..*//' | sort); }
Check "recorded as it was" "Only in new one: README.md" "$(diff -r "$rec" "new one" | grep -v '^Only in new.*SP.*xml')"
Check "masked lengths" "$(Files "new one")" "$(Files masked)"
Check "nothing left" "" "$(find masked -name '*zaphod*' -o -name 'Ann*'; grep -raioF -e C02QM3 -e 433032514d \
  -e CE3A2773 -e 5EE5C09372D7 -e aa:bb:cc -e AA-BB-CC -e 10.11.240.7 -e feaa -e zaphod -e Ünal -e 'Ann "O"' \
  -e Trillian -e MONITOR9 -e 4d4f4e49544f -e 78563412 -e Ab1 -e AQID -e Secret1 masked)"
Value() { sed -n "/<key>$2</{n;s/.*<string>//;s/<.*//;p;}" "masked/system_profiler/SP$1DataType.xml"; }
Check "same mask" "\"$(Value Hardware serial_number)\"" "$(sed -n 's/.*SerialNumber" = //p' masked/ioreg.txt)"
Check "same mask in other letters" "$(Value Network 'MAC Address' | tr a-f: A-F-)" "$(Value Bluetooth '.*’s iPhone')"
user=$(sed -n 2p masked/users.txt)
Check "user by masked name" "RecordName: $user" "$(grep -ao "RecordName: $user" "masked/dscl/$user.txt")"
Check "kept" "10.11.240.1 00000000" "$(Value Software version) $(Value Bluetooth version)"
edid=$(Value Displays _spdisplays_edid) serial=$(Value Displays spdisplays_display-serial-number)
Check "EDID serial number" "$(printf '%s' "$serial" | od -An -tx1 | tr -d ' \n')" "$(echo "$edid" | cut -c121-136)"
Check "EDID checksum" 0 "$(($(echo "${edid#0x}" | fold -w 2 | sed 's/^/+0x/' | tr -d '\n') & 255))"
exit $failed
