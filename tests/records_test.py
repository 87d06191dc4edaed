#!/usr/bin/env python3
"""The records, their tables and their reference. Arguments: source folder, build folder."""
import csv, glob, importlib.machinery, importlib.util, io, json, os, re, shutil, subprocess, sys, tempfile, unittest

try:
    import jsonschema
except ImportError:
    jsonschema = None

SOURCE, BUILD = (os.path.abspath(path) for path in sys.argv[1:3])
QUILLINV = os.path.join(BUILD, "quillinv")


# A snapshot's head, or what stands below it; where the record has it; and what it is there.
VALUES = [
    ("timestamp=20260102030405.000000+60", ".scanned_at", "2026-01-02T02:04:05Z"),
    ("timestamp=20251231203000.000000-480", ".scanned_at", "2026-01-01T04:30:00Z"),
    ("timestamp=20260230030405.000000+60", ".scanned_at", None),
    ("scan-time=42999", ".scan_seconds", 42), ("scan-time=", ".scan_seconds", None), ("scan-time=4e9", ".scan_seconds", None),
    ("hostname=MAC\r\r", ".hostname", "MAC"), ("hostname=a\rb", ".hostname", "a\rb"), ("hostname=\r", ".hostname", None),
    ("+OS=\n*os:1=\nuptime=00000012032741.000000:000\n-", ".os.uptime_seconds", 1049261),
    ("+OS=\n*os:1=\nuptime=99999999999999999999.0\n-", ".os.uptime_seconds", None),
    ("+OS=\n*os:1=\nname=Jaguar\nversion=S 12.6 (21G115)\n-", ".os.name", "macOS 12.6"),
    ("+OS=\n*os:1=\nname=Jaguar\nversion=S 12.6 (21G115)\narchitecture=32-bit\n-", ".os.architecture", None),
    ("+OS=\n*os:1=\nname=macOS 12 (Monterey)\nversion=12.6 (21G115)\n-", ".os.name", "macOS 12 (Monterey)"),
    ("+Processors=\n*Processor:1=CPU #1\ncore-count=0\nl2-cache-size=9223372036854775807\n-", ".cpu",
     {"model": None, "packages": 1, "cores": None, "speed_mhz": None, "l2_bytes": None, "l3_bytes": None}),
    ("+Storage=\n+Logical-disks=\n*partition:1=\nfree=112.3\n~base-value=117756723\n~units=MB\nsize=2.5\n~units=MB\n-\n-",
     ".volumes[0]|[.free_bytes,.size_bytes,.name]", [117756723, 2621440, None]),
    ("+Storage=\n+Physical-disks=\n*HDD:1=\npartitions=1\n*CD:1=\n*Removable:1=\npartitions=1\n-\n+Logical-disks=\n*partition:1=\n"
     "*partition:2=\n*partition:3=\n-\n-", "[.volumes[].disk]", [0, None, 2]),
    ("+Storage=\n+Physical-disks=\n*HDD:1=\npartitions=9\n-\n+Logical-disks=\n*partition:1=\n-\n-", "[.volumes[].disk]", [None]),
    ("+Video=\n+Monitors=\n*Monitor:1=\ngamma=2.00\nmanuf=?DEL\nvideo-input=128\nmax-resolution=2048 x 1280\n-\n-",
     ".monitors[0]|[.gamma,.maker,.digital,.max_height_pixels]", [2.0, "DEL", True, 1280]),
    ("+Software=\n*Soft:a=a\ninst-date=20160229\n64bit-app=1\n*Soft:b=b\ninst-date=20150229\n64bit-app=1\n~type=unknown\n*Soft:c=c\n-",
     "[.software[]|[.modified,.is_64bit]]", [["2016-02-29", True], [None, None], [None, False]]),
    ("+Peripherals=\n+USB=\n*Device:1=\ndevice-speed=5\n~units=Gbit-s\nvendor-id=0x046d  (Logitech (x))\nbus-power=500\n-\n-",
     ".usb_devices[0]|[.speed_bits_per_second,.vendor_id,.vendor_name,.bus_power_ma]", [5000000000, "0x046d", "Logitech (x)", 500]),
    ("+Network=\n+Adapters=\n*net-adapter:1=\nip-address=10.0.0.1, 10.0.0.2\n-\n-", ".network_adapters[0].ip_addresses", ["10.0.0.1", "10.0.0.2"]),
]


def run(*arguments, status=0):
    done = subprocess.run([QUILLINV, *arguments], capture_output=True)
    assert done.returncode == status, (arguments, done)
    return done.stdout.decode()


def records(*arguments, status=0):
    return [json.loads(line) for line in run("records", *arguments, status=status).splitlines()]


def read(*path):
    with open(os.path.join(SOURCE, *path), encoding="utf-8") as file:
        return file.read()


def base(name):
    """"HDD:1" as "HDD:"."""
    return re.sub(":.*", ":", name)


def names_in(path):
    """{(tag path, attribute)} of a zXML text; properties of tags as "~name"."""
    found, stack, attribute = set(), [], ""
    with open(path, "rb") as file:
        lines = file.read().decode().split("\n")[1:-1]
    for line in lines:
        name = line.split("=")[0]
        if stack and stack[-1][0] == "*" and (line[0] in "+*" or line == "-"):
            stack.pop()
        if line == "-":
            stack.pop()
            continue
        if line[0] in "+*":
            stack.append(name[0] + base(name[1:]))
        elif line[0] == "~":
            name = attribute + name
        place = "/".join(tag[1:] for tag in stack)
        attribute = "" if line[0] in "+*" else attribute if line[0] == "~" else base(name)
        found.add((place, "" if line[0] in "+*" else base(name)))
    return found


def vocabulary():
    """{(tag path, attribute)} that docs/vocabulary.md has a row for, and the record fields that it names."""
    rows, fields, tag = set(), set(), ""
    for line in read("docs", "vocabulary.md").splitlines():
        cells = [cell.strip() for cell in line.split("|")[1:-1]]
        if not line.startswith("| ") or len(cells) != 5 or cells[0] in ("tag", "---"):
            continue
        tag = re.sub(r":\w[\w ]*", ":", cells[0].strip("`")) or tag
        root = tag if tag.startswith(("AssetInfo", "Snapshot")) else "Snapshot/" + tag
        names = re.findall("`([^`]+)`", cells[1])
        rows |= {(root, base(name)) for name in names} | {(root, "")}
        rows |= {(root, base(name) + prop) for name in names for prop in re.findall("`(~[^`]+)`", cells[2])}
        fields |= set(re.findall("`([^`]+)`", cells[4]))
    return rows, fields


class Records(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="quillinv records ")
        self.addCleanup(folder.cleanup)
        os.chdir(folder.name)

    def fleet(self, *options):
        subprocess.run([os.path.join(SOURCE, "tests", "generate_fleet"), *options, "fleet"], check=True)
        known = json.loads(read(os.path.abspath("fleet/fleet.json")))
        return known, [os.path.join("fleet", mac["file"]) for mac in known]

    def test_documents_are_what_the_table_says(self):
        for form, path in (("reference", "docs/records.md"), ("json", "schema/record.schema.json"),
                           *((engine, f"schema/record.{engine}.sql") for engine in ("duckdb", "spark", "clickhouse", "trino"))):
            with self.subTest(form):  # differs? cmake --build build/dev --target reference
                self.assertEqual(run("schema", form), read(path))

    def test_vocabulary_has_every_name_and_every_source(self):
        rows, fields = vocabulary()
        missing = set()
        for path in glob.glob(os.path.join(SOURCE, "recordings", "*", "expected*", "*.zxml")):
            for tag, name in names_in(path):
                announces = name.rsplit("~", 1)[-1] in ("complex", "field-source")
                holds = name == "" and any(row[0].startswith(tag + "/") for row in rows)
                missing |= set() if (tag, name) in rows or announces or holds else {(tag, name)}
        self.assertEqual(missing, set())
        reference = set(re.findall(r"^\| `(\w+)` \|", read("docs", "records.md"), re.M))
        self.assertEqual({field.split(".")[-1] for field in fields} - reference, set())

    def test_records_say_what_the_files_say(self):
        known, files = self.fleet("--count", "60", "--debug", "2", "--before", "8")
        for mac, record in zip(known, records(*files), strict=True):
            debug = mac["kind_of_file"] == "debug"
            self.assertEqual((record["file"], record["scanned_at"], record["computer_name"]),
                             ("fleet/" + mac["file"], mac["scanned_at"], mac["computer_name"]))
            self.assertEqual(record["error_message"], "Debug scan" if debug else None)
            if debug:
                self.assertEqual(record["software"] + record["volumes"] + [record["os"]["name"]], [None])
                continue
            newer = mac["version"].startswith("S ")
            self.assertEqual((record["mac_key"], record["mac_key_kind"]), (mac["key"], mac["kind"]))
            self.assertEqual((record["os"]["name"], record["os"]["version"] + " (" + record["os"]["build"] + ")"),
                             ("macOS 12.6", "12.6 (21G115)") if newer else (mac["os"], mac["version"]))
            self.assertEqual([record["cpu"][key] for key in ("model", "cores", "speed_mhz", "l2_bytes")],
                             [None] * 4 if newer else ["Intel Core M", 2, 1100, 524288])
            self.assertEqual([[v["name"], v["mount_point"], v["size_bytes"], v["free_bytes"], v["disk"]] for v in record["volumes"]],
                             [[*volume, 0] for volume in mac["volumes"]])
            self.assertEqual([s["capacity_bytes"] for s in record["memory_slots"]], [size << 20 or None for size in mac["slots"]])
            self.assertEqual([(s["name"], s["version"]) for s in record["software"]], [tuple(s) for s in mac["software"]])
            self.assertEqual(record["firewall"]["state"], {"0": "off", "1": "limited", "2": "block_all"}.get(mac["firewall"]))
            self.assertEqual([m["serial_number"] for m in record["monitors"]], [m[5] for m in mac["monitors"]])

    @unittest.skipUnless(shutil.which("jq"), "jq is missing")
    def test_values_become_what_their_field_wants(self):
        path = os.path.join(SOURCE, "tests", "generate_fleet")
        generator = importlib.util.module_from_spec(importlib.util.spec_from_loader("fleet", importlib.machinery.SourceFileLoader("fleet", path)))
        generator.__loader__.exec_module(generator)
        for text, query, expected in VALUES:
            with open("one.inv", "wb") as file:
                file.write(generator.container([("snapshot\ntimestamp=" + (re.findall("^timestamp=(.*)", text) or [""])[0] + "\nsnaptype=mac:1",
                                                 generator.saved(f"+Snapshot=\n{text}\n*x=\n-\n"))]))
            found = subprocess.run(["jq", "-c", query], input=run("records", "one.inv"), capture_output=True, text=True, check=True)
            self.assertEqual(json.loads(found.stdout), expected, text)
        self.assertIn('"gamma":2.2,', run("records", *self.fleet("--count", "9")[1]))

    def test_hostile_files_keep_the_types(self):
        known, files = self.fleet("--count", "80", "--hostile", "--damaged", "3")
        lines = run("records", "--with", "processes,environment,modes", *files, status=2)
        self.assertEqual(len(lines.splitlines()), len(known) - 3)
        for line in lines.splitlines():
            whole = json.loads(line, parse_int=lambda digits: int(digits) if abs(int(digits)) < 1 << 63 else self.fail(digits))
            self.assertIn(whole["os"]["kernel"], ("Darwin 15.6.0", None))
            self.assertTrue(whole["monitors"] == [] or '"gamma":2.2,' in line)
        if not jsonschema:
            self.skipTest("python3-jsonschema is missing: the records are not held against their schema")
        validator = jsonschema.Draft202012Validator(json.loads(run("schema")))
        for line in lines.splitlines():
            validator.validate(json.loads(line))

    def test_a_table_is_the_lists_of_the_records(self):
        _, files = self.fleet("--count", "12", "--hostile")
        for name in ("software", "volumes", "firewall_apps", "macs", "modes"):
            rows = list(csv.DictReader(io.StringIO(run("table", name, *files), newline="")))
            lines = [json.loads(line) for line in run("table", "--json", name, *files).splitlines()]
            text = {None: "", True: "true", False: "false"}
            self.assertEqual(rows, [{k: text[v] if v is None or isinstance(v, bool) else str(v) for k, v in line.items()} for line in lines])
        self.assertEqual(sum(len(r["software"]) for r in records(*files)), len(run("table", "--json", "software", *files).splitlines()))
        self.assertIn("\nsoftware: Applications\n", run("table"))
        run("table", "os", *files, status=2)
        run("records", "--with", "nothing", *files, status=2)


if not os.path.exists(QUILLINV):
    print("quillinv was not built; nothing to test")
    sys.exit(0)
unittest.main(argv=sys.argv[:1])
