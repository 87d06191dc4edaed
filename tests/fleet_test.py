#!/usr/bin/env python3
"""Runs every command of docs/fleet.md with the real engines, on two generated fleets, and checks the answers against
what the generator knows. Arguments: source folder, build folder. Skipped (status 77) where an engine is missing, unless
QUILL_ENGINES is "required"."""
import collections, csv, io, json, os, re, shutil, subprocess, sys, tempfile, time, unittest

SOURCE, BUILD = (os.path.abspath(path) for path in sys.argv[1:3])
DUCKDB = os.path.join(SOURCE, "build", "engines", "node_modules", "@duckdb", "node-api")
MISSING = [name for name in ("jq", "sqlite3", "node") if not shutil.which(name)] + ([] if os.path.isdir(DUCKDB) else ["DuckDB"])
OPTIONS = ["--count", "200", "--before", "40", "--debug", "4", "--damaged", "3"]


def blocks():
    """[(heading, command)] of the document, in its order."""
    with open(os.path.join(SOURCE, "docs", "fleet.md"), encoding="utf-8") as file:
        text = file.read()
    found, heading = [], ""
    for part in re.finditer(r"^#+ ([^\n]*)$|^```sh\n(.*?)^```$", text, re.M | re.S):
        if part[1]:
            heading = part[1]
        else:
            found.append((heading, part[2]))
    return found


def newest(known):
    """What --latest keeps: the newest scan of each Mac, and every scan that does not say whose it is."""
    scans = [mac for mac in known if mac["kind_of_file"] == "scan"]
    best = {}
    for mac in scans:
        key = mac["key"] or mac["file"]
        if key not in best or mac["scanned"] > best[key]["scanned"]:
            best[key] = mac
    return list(best.values())


def version(text):
    return [int(digits) for digits in re.findall("[0-9]+", text)]


def duplicates(known):
    uuids = collections.defaultdict(set)
    for mac in known:
        if mac["kind_of_file"] == "scan" and mac["serial_number"] and mac["uuid"]:
            uuids[mac["serial_number"]].add(mac["uuid"])
    return [[serial, str(len(found))] for serial, found in uuids.items() if len(found) > 1]


def free_slots(known):
    counts = ((mac["computer_name"], mac["slots"].count(0), len(mac["slots"])) for mac in newest(known))
    return [[name, str(free)] for name, free, slots in counts if 0 < free < slots]


def common(known):
    counts = collections.Counter(name for mac in newest(known) for name in {name for name, _ in mac["software"]})
    return [[name, str(count)] for name, count in counts.items() if count > 100]


def changed(known):
    """[[name, difference, ...]] of each Mac that was scanned in both weeks."""
    weeks = [{mac["key"]: mac for mac in newest([m for m in known if m["file"].startswith(week)]) if mac["key"]} for week in ("before", "now")]
    rows = []
    for key, mac in weeks[0].items():
        old, new = mac["software"][0][1], weeks[1][key]["software"][0][1]
        rows.append([weeks[1][key]["computer_name"], f"! Snapshot/Software/Soft:Firefox {old}/version: {old} -> {new}",
                     "+ Snapshot/Software/Soft:Safari 9.1.2: Safari"])
    return rows


def system(mac):
    return "macOS 12.6" if mac["version"].startswith("S ") else mac["os"]


ANSWERS = {  # heading: the rows of the answer
    "Which volumes have less than 10 GB free?": lambda known: [
        [mac["computer_name"], mount, str(free)] for mac in newest(known) for _, mount, _, free in mac["volumes"] if free and free < 10e9],
    "Where is Firefox older than version 100?": lambda known: [
        [mac["computer_name"], v] for mac in newest(known) for name, v in mac["software"] if name == "Firefox" and version(v) < [100]],
    "Whose firewall is off or not there?": lambda known: [
        [mac["computer_name"], "off" if mac["firewall"] else "unknown"] for mac in newest(known) if mac["firewall"] in (None, "0")],
    "Who has not been scanned for 30 days?": lambda known: [
        [mac["computer_name"], mac["scanned_at"]] for mac in newest(known) if mac["scanned"] < time.time() - 30 * 86400],
    "Who has which monitor?": lambda known: [
        [mac["computer_name"], monitor[2], monitor[5]] for mac in newest(known) for monitor in mac["monitors"]],
    "Where is a memory slot free?": free_slots,
    "Which serial numbers are there twice?": duplicates,
    "Which software is on more than 100 Macs?": common,
    "What changed since last week?": changed,
    "How many Macs have which system?": lambda known: [[name, str(count)] for name, count in collections.Counter(map(system, newest(known))).items()],
}


class Fleet(unittest.TestCase):
    def answer_all(self, *options):
        """Yields (heading, rows, what the generator knows) for each command of the document that answers something."""
        with tempfile.TemporaryDirectory(prefix="quillinv fleet ") as folder:
            subprocess.run([os.path.join(SOURCE, "tests", "generate_fleet"), *OPTIONS, *options, "fleet"], cwd=folder, check=True)
            with open(os.path.join(folder, "fleet", "fleet.json"), encoding="utf-8") as file:
                known = json.load(file)
            os.symlink(os.path.join(SOURCE, "schema"), os.path.join(folder, "schema"))
            os.mkdir(os.path.join(folder, "bin"))
            with open(os.path.join(folder, "bin", "duckdb"), "w", encoding="ascii") as file:
                file.write(f'#!/bin/sh\nexec node "{SOURCE}/tests/duckdb.js" "$@"\n')
            os.chmod(os.path.join(folder, "bin", "duckdb"), 0o755)
            env = dict(os.environ, PATH=f"{folder}/bin:{BUILD}:{os.environ['PATH']}", QUILL_DUCKDB=DUCKDB)
            for heading, command in blocks():
                done = subprocess.run(["sh", "-c", command], cwd=folder, env=env, capture_output=True)
                complaints = [line for line in done.stderr.decode().splitlines() if not re.match("quillinv: fleet/now/damaged_|.*does not tell which Mac", line)]
                self.assertEqual((complaints, done.returncode in (0, 1, 2)), ([], True), (heading, command, done))
                yield heading, done.stdout.decode(), known

    def rows(self, heading, text):
        """Lines of tab-separated values, or CSV behind a header."""
        if heading.startswith("What changed"):
            return [[re.search(r"\((.*)\)$", block.split("\n")[0])[1]] + re.findall("^[!+] .*$", block, re.M)
                    for block in text.split("\n=== ")[1:]]
        if "\t" in text and not text.startswith(("computer_name", "serial_number", "name")):
            return [line.split("\t") for line in text.splitlines()]
        return list(csv.reader(io.StringIO(text, newline="")))[1:]

    def test_every_command_gives_what_the_generator_knows(self):
        answered = set()
        for heading, text, known in self.answer_all():
            if heading in ANSWERS and text.strip():
                with self.subTest(heading):
                    expected = sorted(ANSWERS[heading](known))
                    self.assertGreater(len(expected), 2)
                    self.assertEqual(sorted(self.rows(heading, text)), expected)
                    answered.add(heading)
        self.assertEqual(answered, set(ANSWERS))

    def test_hostile_names_lose_and_add_no_row(self):
        for heading, text, known in self.answer_all("--hostile"):
            if heading in ANSWERS and text.strip() and heading not in ("Which software is on more than 100 Macs?", "Where is Firefox older than version 100?"):
                with self.subTest(heading):
                    self.assertEqual(len(self.rows(heading, text)), len(ANSWERS[heading](known)))


if MISSING or not os.path.exists(os.path.join(BUILD, "quillinv")):
    print("not tried, because these are missing:", *MISSING or ["quillinv"], "(.ci/install-engines installs the engines)")
    sys.exit(1 if os.environ.get("QUILL_ENGINES") == "required" else 77)
unittest.main(argv=sys.argv[:1])
