"""Scans the recorded Macs with the built agent and compares results and console texts exactly.

scan_test.py SOURCE BUILD [--update]: with --update the expected results are written anew, to be read as a change.
"""
import difflib
import os
import re
import subprocess
import sys
import tempfile

from agent import BUILD, CLOCK, RECORDINGS, SOURCE, expect, finish, failures, read_inv, replay, scan

UPDATE = "--update" in sys.argv
SILENT = "".join(f"{n}0%\n" for n in range(1, 11))
PROMPT = "Quillon scanner for MacOS X (version 15.11.18)\nDo you want to start the scan of local computer?(y/n)\n"
LOG = ("Agent version: 15.11.18\n------Start Log------\nI. Collecting Data....\ndone\nII. Parsing Data....done\n"
       "III. Get Data For AssetInfo....33% 66% 100% done\nIV. PostProcess>>>\n" +
       "".join(f"{n}...done\n" for n in range(1, 16)) +
       "IV. PostProcess End.\nV. Creating AssetInfo Section....done\nVI. Generating File name....done\n"
       "VII. Saving to file....")
LOG_END = "done\n------End Log------\n"


def check_recording(name, args=(), folder="expected"):
    recording = os.path.join(RECORDINGS, name)
    file_name, sections, _ = scan(recording, ["-silent", *args])
    again = scan(recording, ["/silent", *args])[1]
    expect(f"{name}: sections", [kind for kind, _ in sections], ["snapshot", "assetinfo"])
    texts = {kind: CLOCK.sub(r"\1=", body.decode()) for kind, body in sections}
    expect(f"{name}: second scan", {k: CLOCK.sub(r"\1=", b.decode()) for k, b in again}, texts)
    stamps = set(re.findall(r"^(?:timestamp|first-scan|last-scan|snapshot-list)=(.*)$",
                            "".join(body.decode() for _, body in sections), re.M))
    expect(f"{name}: one timestamp", [bool(re.fullmatch(r"\d{14}\.000000[+-]\d+", s)) for s in stamps], [True])
    texts["file-name"] = file_name + "\n"
    for stem, suffix in (("snapshot", "zxml"), ("assetinfo", "zxml"), ("file-name", "txt")):
        compare(os.path.join(recording, folder, f"{stem}.{suffix}"), texts[stem])


def compare(path, text):
    if UPDATE:
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(text)
        return
    with open(path, encoding="utf-8", newline="") as file:
        wanted = file.read()
    if text != wanted:
        failures.append(path)
        print(f"FAIL {path}")
        print("\n".join(difflib.unified_diff(wanted.split("\n"), text.split("\n"), "expected", "scanned", "", "", 1)))


def check_console(recording, result):
    first_free = os.path.splitext(result)[0]
    with tempfile.TemporaryDirectory(prefix="quill scan ") as folder:
        folder = os.path.realpath(folder)

        def finished(name):
            return f'\nScan finished. Results saved to file "{folder}/{name}"\n'

        numbered = [f"{first_free}({n}).inv" for n in range(1, 9)]
        cases = [
            (["-?"], "", None, 0),
            (["/debug", "/silent", "--help"], "", None, 0),
            ([], "n\n", PROMPT + "Scan canceled.\n", 0),
            (["/Silent", "-Debug", "-log:", "silent"], " n", PROMPT + "Scan canceled.\n", 0),
            ([], "Y\n", PROMPT + "Incorrect input. Application terminated.\n", 1),
            ([], "yes\n", PROMPT + "Incorrect input. Application terminated.\n", 1),
            ([], "", PROMPT + "Incorrect input. Application terminated.\n", 1),
            ([], "y" * 300, PROMPT + "Incorrect input. Application terminated.\n", 1),
            (["-silent"], "", SILENT + f">>>{result}\n", 0),
            (["/silent", "-ip:"], "", SILENT + f">>>{numbered[0]}\n", 0),
            (["/ip:", "/login:/log:b"], "y or n", PROMPT + "Scan started...\n" + finished(numbered[1]), 0),
            (["/log"], "y", PROMPT + "Scan started...\n" + LOG + finished(numbered[2]) + LOG_END, 0),
            (["/log", "/silent"], "", None, 0),
            (["/debug", "-log"], "y", PROMPT + "Scan started...\n" + finished(numbered[4]), 0),
            (["/debug", "/silent"], "", f">>>{numbered[5]}\n", 0),
        ]
        for args, answer, out, status in cases:
            done = replay(recording, args, folder, answer)
            expect(f"{args} status", done.returncode, status)
            expect(f"{args} standard error", done.stderr.decode(), "")
            if out is not None:
                expect(f"{args} console", done.stdout.decode(), out)
            elif "/log" in args:
                merged = LOG.replace("I. Collecting Data....\n", "I. Collecting Data....\n" + SILENT)
                expect(f"{args} console", done.stdout.decode(), merged + f">>>{numbered[3]}\n" + LOG_END)
            else:
                expect(f"{args} help", [line.split("\t")[0] for line in done.stdout.decode().split("\n")[1:8]],
                       ["Usage: quillagent [OPTION...]", "-ip:[ipaddr],", "--help,", "-debug,", "-silent,", "", ""])
        os.remove(os.path.join(folder, result))
        expect("a name that is free again", replay(recording, ["-silent"], folder).stdout.decode(),
               SILENT + f">>>{result}\n")
        expect("login", b"\nlogin=/log:b\n" in dict(read_inv(os.path.join(folder, numbered[1])))["assetinfo"], True)


def check_debug(recording):
    with open(os.path.join(recording, "expected", "assetinfo.zxml"), encoding="utf-8") as file:
        names = re.search(r"\nhostname=(.*)\n(?:.*\n)*int-name=(.*)\n", file.read()).groups()
    for args in (["/debug", "-silent"], ["-debug", "-silent", "/ip:9.9.9.9"]):
        name, sections, _ = scan(recording, args)
        expect("debug sections", [kind for kind, _ in sections], ["assetinfo", "customdata"])
        pieces = sections[1][1].decode()
        expect("raw document", (pieces[:38], pieces.count("\t\t<key>_dataType</key>"), pieces[-18:]),
               ('<?xml version="1.0" encoding="UTF-8"?>', 23, "</array>\n</plist>\n"))
        text = CLOCK.sub(r"\1=", sections[0][1].decode())
        known = len(args) == 2
        lines = re.match(r"\ufeff\?zxml\n\*AssetInfo=\nhostname=(.*)\nip-address=(.*)\nstatic-ip=[01]\nint-name=\1\nalias=\1\n"
                         r"description=\ncomment=\ninv-number=\nasset-type=natMacOS\nvirtual-type=nvtPhysical\n"
                         r"scan-type=nstNone\nscan-subtype=sstNone\nauto-icon-type=nitMacDesktop\n"
                         r"icon-type=nitMacDesktop\nscan-attempt=\nmac-address=(.*)\nasset-tag=1234567890000\n"
                         r"error-message=Debug scan\n$", text)
        expect("debug tree", bool(lines), True)
        if lines:
            expect("debug identity", (lines[1], lines[2] == "9.9.9.9", lines[3] == "", name.endswith("_.inv")),
                   (names[0 if known else 1], not known, not known, not known))


def check_recipes(recording, result):
    """What scan.sh and the manual page make of the agent's console, the log included, is the result's name."""
    with open(os.path.join(SOURCE, "man", "quillagent.1"), encoding="utf-8") as page:
        recipe = re.search(r"\nfile=\$\((.*)\)\n", page.read())[1].replace("\\-", "-").replace("\\(aq", "'")
    env = dict(os.environ, QUILLAGENT=os.path.join(BUILD, "quillagent"))
    with tempfile.TemporaryDirectory() as root:
        os.mkdir(os.path.join(root, ".ci"))
        for name in ("replay", "recordings", "scan.sh"):
            os.symlink(os.path.join(SOURCE, name), os.path.join(root, name))
        for name in ("build", "install-missing"):
            os.symlink("/bin/true", os.path.join(root, ".ci", name))
        for script, want in ((f"./scan.sh {recording} -log", f"\nThe result is build/scan/{result}\n"),
                             (f'quillagent() {{ replay/replay {recording} -log "$@"; }}; {recipe}', result + "\n")):
            done = subprocess.run(["sh", "-c", script], cwd=root, env=env, stdout=subprocess.PIPE, text=True, check=True)
            expect(script, done.stdout[-len(want):], want)


names = sorted(n for n in os.listdir(RECORDINGS) if UPDATE or os.path.isdir(os.path.join(RECORDINGS, n, "expected")))
expect("recordings", len(names) >= 2, True)
for each in names:
    check_recording(each)
    newer = os.path.isdir(os.path.join(RECORDINGS, each, "expected-modern"))
    if newer or not UPDATE:  # an older system gives the same with the option
        check_recording(each, ["/modern"], "expected-modern" if newer else "expected")
if not UPDATE:
    chosen = os.path.join(RECORDINGS, names[0])
    check_console(chosen, scan(chosen)[0])
    check_recipes(chosen, scan(chosen)[0])
    check_debug(os.path.join(RECORDINGS, "macbook-2015-10.11.6"))
finish()
