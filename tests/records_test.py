#!/usr/bin/env python3
"""The records, their tables and their reference. Arguments: source folder, build folder."""
import csv, glob, io, json, os, re, subprocess, sys, tempfile, unittest

try:
    import jsonschema
except ImportError:
    jsonschema = None

SOURCE, BUILD = (os.path.abspath(path) for path in sys.argv[1:3])
QUILLINV = os.path.join(BUILD, "quillinv")


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
