"""Scans with the built agent while something goes wrong: each ends with status 0 and either a whole file or the one
error line. docs/faults.md says what is lost in each case.
"""
import os
import random
import re
import resource
import shutil
import subprocess
import tempfile
from concurrent.futures import ThreadPoolExecutor
from xml.sax.saxutils import escape

from agent import BUILD, SOURCE, expect, finish, read_inv

HEAD = ('<?xml version="1.0" encoding="UTF-8"?>\n<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" '
        '"http://www.apple.com/DTDs/PropertyList-1.0.dtd">\n<plist version="1.0">\n<array>\n')
TAIL = "</array>\n</plist>\n"
NOISE = random.Random(8).randbytes(5000).hex()  # deflated it takes more than one block of the file
SPECIAL = "".join(map(chr, range(33, 127))) + "‘’‛ é\tx"
TOOLS = {"User-accounts", "Processes", "Environment"}
ALL = TOOLS | {"System", "Processors", "OS", "Software"}
BIN = os.path.join(SOURCE, "replay", "bin")
NAME = "FAULT MAC_.inv"
ANSWER = f'exec "{BIN}/system_profiler" "$@"'


def document(name, item):
    """One data type as the profiler prints it, with one item; a text that is no element becomes a string."""
    keys = "".join(f"<key>{key}</key>" + (value if value[0] == "<" else f"<string>{value}</string>")
                   for key, value in item.items())
    return (f"{HEAD}<dict><key>_dataType</key><string>{name}</string><key>_items</key><array><dict>{keys}</dict>"
            f"</array></dict>\n{TAIL}").encode()


MAIL = document("SPApplicationsDataType", {"_name": "Mail", "info": NOISE})
RECORDING = {
    "computer-name.txt": b"Fault Mac\n", "users.txt": b"ann\n", "env.txt": b"LANG=C\n",
    "dscl/ann.txt": b"\nNFSHomeDirectory: /Users/ann\nRecordName: ann\nRecordType: users\n",
    "system_profiler/SPApplicationsDataType.xml": MAIL,
    "system_profiler/SPSoftwareDataType.xml": document("SPSoftwareDataType", {"os_version": "OS X 10.9.5 (13F34)"}),
    "system_profiler/SPHardwareDataType.xml": document("SPHardwareDataType", {"machine_model": "iMac11,1"}),
}


def write(path, content, mode=0o644):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(content)
    os.chmod(path, mode)


def sections(snapshot):
    """The names of the root's children."""
    names, depth = set(), 0
    for line in snapshot.decode("latin-1").split("\n"):
        if line[:1] in ("+", "*") and depth == 1:
            names.add(line[1:].partition("=")[0])
        depth += (line[:1] == "+") - (line == "-")
    return names


def attempt(name, want, script='exec "$AGENT"', apps=None, tool="", files=None, prepare=None, planted=(), **more):
    """All bodies, joined, of a scan by way of `script`; `apps` is the applications' document, `tool` what the profiler
    does before it answers. Wanted is a file with the sections `want`, or for None the error line, and nothing else but
    what `script` planted.
    """
    with tempfile.TemporaryDirectory() as top:
        top = os.path.realpath(top)
        os.chmod(top, 0o755)
        recorded = {**RECORDING, **(files or {})}
        if apps is not None:
            recorded["system_profiler/SPApplicationsDataType.xml"] = apps
        for path, content in recorded.items():
            write(os.path.join(top, "recording", path), content)
        write(os.path.join(top, "bin", "system_profiler"), f"#!/bin/sh\n{tool}\n{ANSWER}\n".encode(), 0o755)
        agent = shutil.copy(os.path.join(BUILD, "quillagent"), top)
        env = dict(os.environ, AGENT=agent, QUILL_RECORDING=f"{top}/recording", TOP=top,
                   PATH=f"{top}/bin:{BIN}:{os.environ['PATH']}", **more.pop("env", {}))
        work = os.path.join(top, "work")
        os.mkdir(work)
        if "user" in more:
            os.chown(work, more["user"], more["group"])
        with subprocess.Popen(["sh", "-c", script], cwd=work, env=env, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, **more) as child:
            if prepare:
                child.stdout.readline()
                prepare(child)
            errors = child.communicate(b"y\n")[1].decode(errors="replace")
        expect(f"{name}: status", (child.returncode, "Sanitizer" in errors), (0, False))
        left = set(os.listdir(work) if os.path.isdir(work) else ()) - set(planted)
        found = [os.path.join(work, file) for file in left]
        expect(f"{name}: someone else's file", os.path.lexists(os.path.join(top, "victim")), False)
        expect(f"{name}: number of files", len(found), 0 if want is None else 1)
        if want is None or not found:
            folder = work if os.path.isdir(work) else r"\."
            line = re.search(rf"(?:^|\n)Cannot create file :{folder}/[^/]*_\.inv\n$", errors)
            expect(f"{name}: error line at the end of {errors[-300:]!r}", line is not None, True)
            return b""
        bodies = dict(read_inv(found[0]))
        expect(f"{name}: sections", sections(bodies.get("snapshot", b"")), want)
        return b"".join(bodies.values())


def at_most(kind, number):
    return {"preexec_fn": lambda: resource.setrlimit(kind, (number, number))}


def open_files(number):
    return {"prepare": lambda child: resource.prlimit(child.pid, resource.RLIMIT_NOFILE, (number, number)),
            "env": {"ASAN_OPTIONS": "detect_leaks=0"}}  # the leak check opens files


ONLY_APPS = 'APPS=$QUILL_RECORDING/system_profiler/SPApplicationsDataType.xml; [ "$4" = SPApplicationsDataType ] || '
attempt("nothing wrong", ALL)
# Where the result goes.
for size in (0, 1, 4095, 4096, 5000):
    attempt(f"a disk that is full after {size} bytes", None, **at_most(resource.RLIMIT_FSIZE, size))
FULL = "mount -t tmpfs -o size=8k none . && cd \"$PWD\" && head -c 4096 /dev/zero >some"
if subprocess.call(["sh", "-c", f"exec unshare -m sh -c '{FULL}'"], cwd="/tmp", stderr=subprocess.DEVNULL) == 0:
    attempt("a file system that is full", None, f"exec unshare -m sh -c '{FULL}; exec \"$AGENT\"'")
NOBODY = {"user": 65534, "group": 65534} if os.geteuid() == 0 else {}
attempt("a folder without write permission", None, 'chmod 555 .; exec "$AGENT"', **NOBODY)
attempt("a folder that is gone", None, 'rmdir "$PWD" && exec "$AGENT"')
attempt("a folder that goes while the scan runs", None, tool='rmdir "$TOP/work" 2>/dev/null')
attempt("a computer name of 4 KB", ALL, files={"computer-name.txt": b"N" * 4096})
DEEP = "D" * 200
attempt("a folder with a path of 5000 bytes", ALL, f'for i in $(seq 25); do mkdir {DEEP}; cd -P {DEEP}; done; '
        '"$AGENT" -silent; mv ./*.inv "$TOP/work"', planted=[DEEP])
for what, plant in (("link to nothing", 'ln -s "$TOP/victim"'), ("loop of links", f'ln -s "{NAME}"'), ("pipe", "mkfifo"),
                    ("folder", "mkdir"), ("file that cannot be read", "umask 777; touch")):
    attempt(f"a {what} of the result's name", ALL, f'({plant} "{NAME}"); exec "$AGENT"', planted=[NAME],
            **(NOBODY if "read" in what else {}))
attempt("a file system without hard links", ALL, 'echo "int link() { return -1; }" | c++ -shared -fPIC -x c - -o ../x.so; '
        f'ln -s "$TOP/victim" "{NAME}"; LD_PRELOAD="$TOP/x.so" exec "$AGENT"', planted=[NAME],
        env={"ASAN_OPTIONS": "verify_asan_link_order=0"})
# Standard streams and file descriptors.
for streams in ("<&-", ">&-", "2>&-", "<&- >&- 2>&-", ">/dev/full", "2>/dev/full"):
    attempt(f"standard streams {streams}", ALL, f'exec "$AGENT" {"-silent" * ("<" in streams)} {streams}',
            tool="true >&2 || exit")
attempt("a reader that goes away", ALL, prepare=lambda child: child.stdout.close())
attempt("no file descriptor left", None, **open_files(3))
attempt("file descriptors for files but not for tools", {"Processes"}, **open_files(4))
# Tools.
got = attempt("a tool that takes its time", ALL, tool='[ "$4" != SPPowerDataType ] || sleep 1')
expect("scan time in milliseconds", bool(re.search(rb"\nscan-time=[1-9]\d?000\n", got)), True)
attempt("no tool at all", {"Processes"}, 'PATH=/nowhere exec "$AGENT"')
attempt("a tool that dies", TOOLS, '"$AGENT"; test $(grep -c SPPower ../runs) = 5', tool='echo $4 >>"$TOP/runs"; kill -9 $$')
attempt("a tool that dies in the middle", ALL - {"Software"}, tool=f'{ONLY_APPS}{ANSWER}\nhead -c 5000 "$APPS"; kill -9 $$')
attempt("a tool that only complains", TOOLS, tool="echo trouble >&2; exit 1")
attempt("200 MB of output", ALL, tool=f'{ONLY_APPS}{ANSWER}\nhead -c 172 "$APPS"; head -c 200000000 /dev/zero | '
        'tr "\\0" " "; tail -c +173 "$APPS"; exit')
attempt("output without end", ALL - {"Software"}, tool='[ "$4" != SPApplicationsDataType ] || exec yes')
# One document of the 23, or each.
for name, apps in (("cut", MAIL[:len(MAIL) // 2]), ("text", b"x" * 300), ("bytes", random.Random(1).randbytes(999)),
                   ("zero bytes", bytes(999)), ("nested 100,000 deep", MAIL.replace(b"<dict>", b"<dict>" * 100000)),
                   ("empty", b""), ("shorter than its frame", b"x" * 189), ("empty inside", (HEAD + TAIL).encode())):
    attempt(f"a document that is {name}", ALL - {"Software"}, apps=apps)
attempt("a document that is in UTF-16", ALL, apps=MAIL.decode().encode("utf-16"))
attempt("documents that are all cut", TOOLS, tool=f"{ANSWER.replace('exec', '')} | head -c 300; exit")
NOISE_LINE = {"tool": r"printf 'caf\351 <dict>\n'", "files": {"system_profiler/SPNetworkDataType.xml": document(
    "SPNetworkDataType", {"interface": "en0", "ip_address": "<array><string>10.9.8.7</string></array>"})}}
attempt("a line of another program before each document", ALL | {"Network"}, **NOISE_LINE)
got = attempt("the same in a debug scan", set(), 'exec "$AGENT" -debug', **NOISE_LINE)
expect("the address in it", (b"\nip-address=10.9.8.7\n" in got, b"caf\xe9 <dict>\n<?xml" in got), (True, True))
# Contents.
attempt("a plug-in whose description is broken", ALL, '"$AGENT" 2>&1 >/dev/null | grep -v "^tag >>"; test $? = 1',
        files={"Library/Internet Plug-Ins/A.plugin/Contents/Info.plist": b"<plist><dict>"})
for name in (b"Caf\xe9", b"N" * 4096, SPECIAL.encode()):
    escaped = escape(name.decode("latin-1")).encode("latin-1")
    got = attempt(f"an application called {name[:9]}", ALL, apps=MAIL.replace(b"Mail", escaped))
    expect(f"the name {name[:9]}", b"=" + name.decode(errors="replace").encode() + b"\n" in got, True)
READER = os.path.join(BUILD, "quillinv")
attempt("names that hold zero bytes", ALL, f'"$AGENT" && {{ [ ! -x "{READER}" ] || "{READER}" check ./*.inv; }}', files={
    "env.txt": b"A\0b=c\0d\n", "dscl/ann.txt": b"\nNFSHomeDirectory: /Users/ann\nRecordName: a\0nn\nRecordType: users\n"})
key = escape(SPECIAL)
got = attempt("keys with special characters", ALL | {"Security"}, files={
    "system_profiler/SPPowerDataType.xml": document("SPPowerDataType", {
        "_name": "sppower_information", key: "<dict><key>Wake On LAN</key><string>Yes</string></dict>"}),
    "system_profiler/SPFirewallDataType.xml": document("SPFirewallDataType", {
        "spfirewall_services": f"<dict><key>{key}</key><string>spfirewall_block_all</string></dict>"})})
for name in (SPECIAL, re.sub("[', /‘’‛]", "_", SPECIAL)):
    expect(f"the key {name}", f":1={name}\n".encode() in got, True)


def bare(top):
    """How to run the agent in a folder of its own with a profiler that says nothing, for many scans in a short time."""
    write(os.path.join(top, "processes.txt"), b"")
    write(os.path.join(top, "system_profiler"), b"#!/bin/sh\necho", 0o755)
    work = os.path.join(top, "work")
    os.mkdir(work)
    return {"args": [os.path.join(BUILD, "quillagent"), "-silent"], "cwd": work, "capture_output": True,
            "env": dict(os.environ, QUILL_RECORDING=top, PATH=f"{top}:/nowhere"), "check": False}


def race(number, meddle):
    """The console texts of `number` scans in one folder, two at a time, while `meddle` is called again and again."""
    with tempfile.TemporaryDirectory() as top, ThreadPoolExecutor(2) as pool:
        how = bare(top)
        scans = [pool.submit(subprocess.run, **how) for _ in range(number)]
        while not all(scan.done() for scan in scans):
            meddle(how["cwd"])
        meddle(how["cwd"])
        return [scan.result().stdout for scan in scans]


def look(folder):
    for entry in set(os.listdir(folder)) - seen:
        if entry.endswith(".inv") and entry[0] != ".":
            read_inv(os.path.join(folder, entry))
            seen.add(entry)


def swap(folder):
    path = os.path.join(folder, "_.inv")
    try:
        os.symlink(victim.name, path)
        os.unlink(path)
    except FileExistsError:
        os.unlink(path)


seen = set()
results = race(200, look)
expect("200 scans, two at a time", (len(seen), len(set(results))), (200, 200))
with tempfile.NamedTemporaryFile() as victim:
    victim.write(b"precious")
    victim.flush()
    race(100, swap)
    expect("a file behind a link that comes and goes", open(victim.name, "rb").read(), b"precious")
# Memory, from none at all up to enough.
with tempfile.TemporaryDirectory() as top:
    how, size, ends = bare(top), 4 << 20, []
    while ends.count(0) < 12 and "Sanitizer" not in str(ends):
        done = subprocess.run(**how, **at_most(resource.RLIMIT_AS, size))
        left = [name for name in os.listdir(how["cwd"]) if name != "panic.log"]
        whole = [len(read_inv(os.path.join(how["cwd"], name))) for name in left]
        expect(f"files of a scan with {size} bytes, status {done.returncode}", whole, [2] * (done.returncode == 0))
        for name in left:
            os.unlink(os.path.join(how["cwd"], name))
        ends.append(done.stderr if b"Sanitizer" in done.stderr else done.returncode)
        size += 32 << 10
    if "Sanitizer" not in str(ends):
        apps = document("SPApplicationsDataType", {"a": "<array>" + "<dict/>" * 300000 + "</array>"})
        write(os.path.join(top, "apps"), apps)
        write(os.path.join(top, "system_profiler"), f"#!/bin/sh\n[ $4 != SPApplicationsDataType ] || exec /bin/cat {top}/apps\necho"
              .encode(), 0o755)
        with subprocess.Popen(how["args"], cwd=how["cwd"], env=how["env"], stdout=subprocess.DEVNULL) as child:
            peak = os.wait4(child.pid, 0)[2].ru_maxrss * 1024
        expect(f"{peak} bytes for {len(apps)} of tiny dictionaries", peak < 32 * len(apps) + (4 << 20), True)
    expect(f"out of memory ends with status 2: {ends}", 2 in ends and -6 not in ends or "Sanitizer" in str(ends), True)
# A limit for the whole scan.
for arguments, status in ((["1", "sh", "-c", "sleep 79.5 & trap '' TERM; sleep 79.5; sleep 79.5"], 124),
                          (["79.5", "true"], 125), (["79", "sh", "-c", "(sleep 79.5 &) ; exit 3"], 3)):
    done = subprocess.run(["sh", os.path.join(SOURCE, "packaging", "macos", "run-with-limit"), *arguments],
                          capture_output=True, check=False, timeout=30)  # until no child holds the streams any more
    expect(f"run-with-limit {arguments}", (done.returncode, b"ended after" in done.stderr), (status, status == 124))
finish()
