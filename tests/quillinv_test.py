#!/usr/bin/env python3
"""quillinv end to end, on files that this script lays out byte by byte. Arguments: source folder, build folder."""
import contextlib, csv, io, json, os, resource, socket, struct, subprocess, sys, tempfile, unittest, zlib

SOURCE, BUILD = (os.path.abspath(path) for path in sys.argv[1:3])
QUILLINV = os.path.join(BUILD, "quillinv")
HEAD = b"\xef\xbb\xbf?zxml\n"
SNAPSHOT = (b"+Snapshot=\ntimestamp=20260102030405.000000+60\nclient-version=15.11.18.0\n+OS=\n*os:1=OS X v10.11\n~kind=mac\n"
            b"name=a\rb \xff\"c\"\nuptime=%s\n-\n+Processes=\n*process:1=p\npid=%s\n-\n-\n")
ASSET = b"+AssetInfo=\nhostname=%s\nserial-number=W8,0\rx\xff\n*control=\nos-name=OS \"X\"\ndisk:1=465.63\n~free=%s\n-\n"
PLIST_HEAD = (b'<?xml version="1.0" encoding="UTF-8"?>\n<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" '
              b'"http://www.apple.com/DTDs/PropertyList-1.0.dtd">\n<plist version="1.0">\n<array>\n')
PLIST_TAIL = b"</array>\n</plist>\n"


def saved(text):
    return zlib.compress(HEAD + text, 9) + b"\0\1ZXML"


def container(*sections):
    index = b"[H]\ncount=%d\nsnapshotcount=%d\n" % (len(sections), sum(b"snap" in kind for kind, _ in sections))
    bodies = b""
    for number, (kind, body) in enumerate(sections):
        index += b"[%d]\noffset=%d\nlength=%d\ntype=%s" % (number, len(bodies), len(body), kind)
        bodies += body
    return bodies + zlib.compress(index) + struct.pack(">QBB", len(bodies), 3, 1) + b"INV!"


def scan(host=b"MAC", uptime=b"1", free=b"2"):
    return container((b"snapshot\ntimestamp=20260102030405.000000+60\nsnaptype=mac:1\n", saved(SNAPSHOT % (uptime, uptime))),
                     (b"assetinfo\n", saved(ASSET % (host, free))))


def plist(*types):
    return PLIST_HEAD + b"".join(types) + PLIST_TAIL


def data_type(name):
    return (b"\t<dict>\n\t\t<key>_properties</key>\n\t\t<dict>\n\t\t\t<key>_dataType</key>\n\t\t\t<string>no</string>\n\t\t</dict>\n"
            b"\t\t<key>_dataType</key>\n\t\t<string>%s</string>\n\t\t<key>t</key>\n\t\t<string>a\n\xff b\\</string>\n\t</dict>\n" % name)


def run(*arguments, status=0, program=QUILLINV):
    done = subprocess.run([program, *arguments], capture_output=True, env={**os.environ, "QUILLINV": QUILLINV})
    assert done.returncode == status, (arguments, done)
    return done.stdout, done.stderr.decode()


def write(name, data):
    with open(name, "wb") as file:
        file.write(data)
    return name


class Quillinv(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="quillinv test ")
        self.addCleanup(folder.cleanup)
        os.chdir(folder.name)
        self.a, self.b = write("a.inv", scan()), write("b.inv", scan(uptime=b"9", free=b"9"))
        self.other = write("c.inv", scan(host=b"MAC2"))
        self.bad = write("bad.inv", scan()[:-1])
        self.raw = plist(data_type(b"SPHardwareDataType"), data_type(b"../../x"), data_type(b"SPPowerDataType"))
        self.debug = write("d.inv", container((b"assetinfo\n", saved(b"*AssetInfo=\nint-name=Ann's \\ Mac\n")),
                                              (b"customdata\nID=rawdata\n", zlib.compress(self.raw))))

    def test_trouble_with_one_file_does_not_stop_the_others(self):
        for command in ("list", "json", "csv"):
            out, err = run(command, self.bad, self.a, "none.inv", status=2)
            self.assertIn(b"a.inv", out)
            self.assertEqual([line.split(": ")[:2] for line in err.splitlines()],
                             [["quillinv", "bad.inv"], ["quillinv", "none.inv"]])
        for arguments in ([], ["list"], ["nothing"], ["csv", "--columns", "x", self.a], ["diff", self.a]):
            run(*arguments, status=2)

    def test_names_of_files(self):
        os.makedirs("fleet/below")
        def scanned(name, serial, day, *more):
            text = b"+AssetInfo=\nhostname=H\nserial-number=%s\nlast-scan=202601%02d000000.000000+60\n-\n" % (serial, day)
            return write("fleet/" + name, container((b"assetinfo\n", saved(text)), *more))
        new, old, other = scanned("b.inv", b"S1", 9), scanned("below/a.inv", b"S1", 2), scanned("c.inv", b"S2", 1)
        debug = scanned("below/d.inv", b"S2", 30, (b"customdata\nID=rawdata\n", zlib.compress(self.raw)))
        write("fleet/below/a.txt", b"")
        os.symlink("..", "fleet/below/loop")
        def names(*arguments, status=0, text=None):
            done = subprocess.run([QUILLINV, "csv", "--columns", "file", "--no-header", *arguments], capture_output=True, input=text)
            self.assertEqual(done.returncode, status, done)
            return done.stdout.decode().split("\r\n")[:-1]
        write("list", f"{other}\n\n{self.a}\n".encode())
        self.assertEqual(names("fleet"), [new, old, debug, other])
        self.assertEqual(names("--latest", "fleet", self.a), [new, other, self.a])
        self.assertEqual(names("--files-from", "list", new), [new, other, self.a])
        self.assertEqual(names("--files-from", "-", text=f"{new}\0".encode()), [new])
        self.assertEqual(names("-", text=scan()), ["-"])
        self.assertEqual(run("show", "--files-from", "list", "AssetInfo/hostname")[0], b"H\nMAC\n")
        os.mkdir("empty")
        for arguments in (["--files-from", "none"], ["empty"], []):
            names(*arguments, status=2)

    def test_one_file_never_empties_the_others(self):
        bomb = write("bomb.inv", container((b"assetinfo\n", saved(b"*AssetInfo=\n" + b"~=\n" * 999998))))
        with open("sparse.inv", "wb") as file:
            file.truncate(2 << 30)
        with open("large.inv", "wb") as file:
            file.seek((2 << 30) - len(scan()))
            file.write(scan())
        def limit():
            resource.setrlimit(resource.RLIMIT_AS, (64 << 20, 64 << 20))
        if subprocess.run([QUILLINV, "--version"], capture_output=True, preexec_fn=limit).returncode:
            self.skipTest("a sanitizer takes more memory than that")
        done = subprocess.run([QUILLINV, "csv", "--columns", "file,hostname", "--no-header", bomb, "sparse.inv", "large.inv", self.a],
                              capture_output=True, preexec_fn=limit)
        self.assertEqual((done.returncode, done.stdout), (2, b"a.inv,MAC\r\n"), done)
        self.assertEqual(done.stderr.decode().splitlines(),
                         ["quillinv: bomb.inv: there is not enough memory for this file",
                          "quillinv: sparse.inv: has 2147483648 bytes and does not end like an INV file",
                          "quillinv: large.inv: has 2147483648 bytes, more than the 268435456 bytes allowed (see --limit)"])

    def test_list_and_show(self):
        self.assertRegex(run("list", self.debug)[0], rb"\n  0  assetinfo  +0 +\d+ +deflated zXML, 42 bytes: AssetInfo, 1 tag\n")
        self.assertEqual(run("show", self.a, "Snapshot/OS")[0].decode(),
                         'OS\n  os:1  OS X v10.11  (kind mac)\n    name    a\\rb \ufffd"c"\n    uptime  1\n')
        self.assertEqual(run("show", "--raw", self.a, "Snapshot")[0], HEAD + SNAPSHOT % (b"1", b"1"))
        self.assertTrue(run("show", self.debug)[0].endswith(self.raw))
        self.assertIn("holds nothing", run("show", self.a, "Snapshot/OS/os:2", status=2)[1])

    def test_find(self):
        self.assertEqual(run("find", "OS X", self.a, self.debug)[0].decode(),
                         'W8,0\\rx\ufffd: Snapshot/OS/os:1: OS X v10.11\n')
        self.assertEqual(run("find", "-i", "mac", self.a, self.debug)[0].decode().splitlines()[1:],
                         ["W8,0\\rx\ufffd: AssetInfo/hostname: MAC", "d.inv: AssetInfo/int-name: Ann's \\ Mac"])
        self.assertEqual(json.loads(run("find", "--json", "mac", self.a)[0]),
                         {"mac_key": "W8,0\rx\ufffd", "file": "a.inv", "path": "Snapshot/OS/os:1~kind", "value": "mac"})
        run("find", "hostname", self.a, status=1)
        run("find", "x", status=2)

    def test_json_reads_back(self):
        files = [self.a, self.debug] * 20
        lines = [json.loads(line) for line in run("json", "--lines", *files)[0].decode().splitlines()]
        self.assertEqual([line["file"] for line in lines], files)
        self.assertEqual(json.loads(run("json", self.a)[0]), lines[0])
        tags = lines[0]["sections"][0]["tags"]
        self.assertEqual([(tag["path"], tag["parent"]) for tag in tags],
                         [("Snapshot", -1), ("Snapshot/OS", 0), ("Snapshot/OS/os:1", 1), ("Snapshot/Processes", 0),
                          ("Snapshot/Processes/process:1", 3)])
        self.assertEqual(tags[2]["attributes"][0], {"name": "name", "value": 'a\rb \ufffd"c"', "properties": []})
        self.assertEqual(tags[2]["properties"], [{"name": "kind", "text": "mac"}])
        self.assertEqual(lines[0]["computer"]["os-name"], 'OS "X"')
        self.assertEqual(lines[1]["sections"][1]["raw"], self.raw.decode(errors="replace"))

    def test_csv_reads_back(self):
        for options in ([], ["--columns", "file,serial-number,Snapshot/OS/os:1/name,os-name,last-scan"]):
            out = run("csv", *options, self.a, self.debug)[0]
            rows = list(csv.DictReader(io.StringIO(out.decode(), newline="")))
            self.assertEqual([row["file"] for row in rows], [self.a, self.debug])
            self.assertEqual([row["serial-number"] for row in rows], ["W8,0\rx\ufffd", ""])
            self.assertEqual((rows[0]["os-name"], rows[0]["last-scan"]), ('OS "X"', ""))
        self.assertEqual(rows[0]["Snapshot/OS/os:1/name"], 'a\rb \ufffd"c"')
        name = write("line\nfeed", scan())
        formula = write("=f.inv", scan())
        self.assertEqual(run("csv", "--safe-csv", "--columns", "file", "--no-header", formula)[0], b"'=f.inv\r\n")
        self.assertIn("holds anything at Snapshot/OS/os:1/kernal",
                      run("csv", "--columns", "Snapshot/OS/os:1/kernal,file", self.a, status=2)[1])
        rows = csv.reader(io.StringIO(run("csv", "--columns", "file,hostname", name)[0].decode(), newline=""))
        self.assertEqual(list(rows), [["file", "hostname"], [name, "MAC"]])

    def test_diff_answers_like_diff(self):
        self.assertEqual(run("diff", self.a, self.b)[0], b"")
        self.assertIn(b"! Snapshot/OS/os:1/uptime: 1 -> 9\n", run("diff", "--all", self.a, self.b, status=1)[0])
        self.assertEqual(run("diff", self.a, self.other, status=1)[0],
                         b"--- a.inv\n+++ c.inv\n! AssetInfo/hostname: MAC -> MAC2\n")
        run("diff", self.a, self.bad, status=2)
        run("diff", "--fleet", self.a, status=2)
        self.assertEqual(json.loads(run("diff", "--json", self.a, self.other, status=1)[0]),
                         {"mac_key": "W8,0\rx\ufffd", "change": "changed", "path": "AssetInfo/hostname", "before": "MAC",
                          "after": "MAC2", "file_before": "a.inv", "file_after": "c.inv"})

    def test_diff_of_fleets(self):
        def put(name, serial, name_in_it):
            text = b"+AssetInfo=\nserial-number=%s\nint-name=%s\n-\n" % (serial, name_in_it)
            os.makedirs(os.path.dirname(name), exist_ok=True)
            return write(name, container((b"assetinfo\n", saved(text))))
        for folder in ("old", "new"):
            put(folder + "/same.inv", b"S0", b"n")
            put(folder + "/changed.inv", b"S1", folder.encode())
            put(folder + "/only.inv", folder.encode(), b"n")
        self.assertEqual(run("diff", "--fleet", "old", "new", status=1)[0].decode(),
                         "2 Macs in both, 1 changed; 1 new, 1 gone\n  AssetInfo  1 difference on 1 Mac\n\n"
                         "+ new (n): new/only.inv\n- old (n): old/only.inv\n\n=== S1 (new)\n--- old/changed.inv\n"
                         "+++ new/changed.inv\n! AssetInfo/int-name: old -> new\n")
        lines = [json.loads(line) for line in run("diff", "--fleet", "--json", "old", "new", status=1)[0].splitlines()]
        self.assertEqual([(line["mac_key"], line["change"], line["path"]) for line in lines],
                         [("S1", "changed", "AssetInfo/int-name"), ("new", "appeared", None), ("old", "vanished", None)])
        run("diff", "--fleet", "old", "old")
        put("new/nobody.inv", b"", b"n")
        self.assertIn("nobody.inv: does not tell which Mac", run("diff", "--fleet", "old", "new", status=2)[1])

    def test_output_is_whole_lines_that_steer_no_terminal(self):
        name = write("\x1b[2J\u202e.inv", scan(host=b"\x1b]0;x\xc2\x9b"))
        master, terminal = os.openpty()
        for command in (["list"], ["csv"], ["json", "--lines"], ["find", "]0;x"]):
            subprocess.run([QUILLINV, *command, name], stdout=terminal, stderr=terminal)
        os.close(terminal)
        shown = b""
        with contextlib.suppress(OSError):
            while chunk := os.read(master, 65536):
                shown += chunk
        self.assertIn(b"]0;x", shown)
        for steering in (b"\x1b", "\u202e".encode(), b"\xc2\x9b"):
            self.assertNotIn(steering, shown)
        ours, theirs = socket.socketpair(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        long = write("long.inv", container((b"assetinfo\n", saved(b"*AssetInfo=\n" + b"~property=text\n" * 999))))
        with ours, subprocess.Popen([QUILLINV, "show", "--raw", long], stdout=theirs), theirs:
            theirs.close()
            pieces = list(iter(lambda: ours.recv(1 << 20), b""))
        self.assertEqual([len(pieces) > 2, max(map(len, pieces)) <= 4096, {piece[-1:] for piece in pieces}], [True, True, {b"\n"}])

    def test_check_answers_by_its_status(self):
        self.assertEqual(run("check", self.a, self.debug)[0], b"a.inv: sound\nd.inv: sound\n")
        self.assertIn(b"bad.inv: byte ", run("check", self.a, self.bad, status=1)[0])
        run("check", self.bad, "none.inv", status=2)
        run("check", write("bomb.inv", container((b"customdata\nID=rawdata\n", zlib.compress(bytes(3 << 20))))))
        self.assertIn(b"the 2097152 bytes allowed", run("check", "--limit", "2MB", "bomb.inv", status=1)[0])
        self.assertEqual(run("extract", "--limit", "2MB", "bomb.inv", status=2)[0], b"")

    def test_extract_never_writes_into_an_inv_file(self):
        self.assertEqual(run("extract", self.debug)[0], self.raw)
        run("extract", self.debug, "--section", "0", "-o", "out")
        with open("out", "rb") as file:
            self.assertEqual(file.read(), HEAD + b"*AssetInfo=\nint-name=Ann's \\ Mac\n")
        for target in (self.debug, self.a):
            self.assertIn("is not written over", run("extract", self.debug, "-o", target, status=2)[1])
        for target in ("/dev/full", "none/out"):
            self.assertIn(f"{target}: No s", run("extract", self.debug, "-o", target, status=2)[1])
        for command in ("extract", "list"):
            with open("/dev/full", "wb") as full:
                self.assertEqual(subprocess.run([QUILLINV, command, self.debug], stdout=full, stderr=-1).returncode, 2)
        self.assertIn("no section 2", run("extract", self.debug, "--section", "2", status=2)[1])

    def test_from_debug_makes_a_recording(self):
        program = os.path.join(SOURCE, "replay", "from-debug")
        run(self.debug, "a \\b", program=program)
        made = {"all": self.raw, **{name: plist(data_type(name.encode())) for name in ("SPHardwareDataType", "SPPowerDataType")}}
        self.assertEqual(sorted(os.listdir("a \\b/system_profiler")), sorted(name + ".xml" for name in made))
        for name, document in made.items():
            with open(f"a \\b/system_profiler/{name}.xml", "rb") as file:
                self.assertEqual(file.read(), document)
        with open("a \\b/computer-name.txt", encoding="utf-8") as file:
            self.assertEqual(file.read(), "Ann's \\ Mac\n")
        for arguments in ([self.debug, "a \\b"], [self.a, "new"], [self.debug]):
            self.assertIn("from-debug: ", run(*arguments, status=2, program=program)[1])


if not os.path.exists(QUILLINV):
    print("quillinv was not built; nothing to test")
    sys.exit(0)
unittest.main(argv=sys.argv[:1])
