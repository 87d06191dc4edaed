#!/usr/bin/env python3
"""Runs the commands of the documents as a reader of them would. Those of docs/fleet.md run with the real engines on two
generated fleets, and their answers are checked against what the generator knows; the others have to end well. A block
"sh macos" is for a Mac; the commands of a block "sh ci" are those of .ci/run and .ci/package. Arguments: source folder,
build folder. What wants an engine that is missing is skipped, unless QUILL_ENGINES is "required"."""
import collections, csv, io, json, os, re, shutil, subprocess, sys, tempfile, time, unittest

SOURCE, BUILD = (os.path.abspath(path) for path in sys.argv[1:3])
DUCKDB = os.path.join(SOURCE, "build", "engines", "node_modules", "@duckdb", "node-api")
MISSING = [name for name in ("jq", "sqlite3", "node") if not shutil.which(name)] + ([] if os.path.isdir(DUCKDB) else ["DuckDB"])
REQUIRED = os.environ.get("QUILL_ENGINES") == "required"
OPTIONS = ["--count", "200", "--before", "40", "--debug", "4", "--damaged", "3"]


FLEET = os.path.join("docs", "fleet.md")
DOCUMENTS = [name for name in ["README.md", "CONTRIBUTING.md", "SECURITY.md", os.path.join("packaging", "README.md")] + sorted(
    os.path.join("docs", name) for name in os.listdir(os.path.join(SOURCE, "docs")) if name.endswith(".md")) if name != FLEET]
MEASURES = os.path.join("docs", "performance.md")  # its commands measure for minutes; .ci/run runs the first of them
COMMAND = re.compile(r"(\./|\.ci/|replay/|packaging/|sudo |quillinv|quillagent|cmake|cpack|ctest|python3|fuzz/|bench/)")


def read(*path):
    with open(os.path.join(SOURCE, *path), encoding="utf-8") as file:
        return file.read()


def blocks(document, kind="sh"):
    """[(heading, text)] of the blocks of a kind, in the document's order; those without a mark, and indented ones, are "".
    """
    found, heading = [], ""
    for part in re.finditer(r"^#+ ([^\n]*)$|^```([^\n]*)\n(.*?)^```$|((?:^    [^\n]+\n)+)", read(document), re.M | re.S):
        if part[1]:
            heading = part[1]
        elif (part[2] or "") == kind:
            found.append((heading, part[4] or part[3]))
    return found


def script(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write("#!/bin/sh\n" + text)
    os.chmod(path, 0o755)


def workplace(folder):
    """Lays out what the documents take for granted; returns the environment."""
    for name in ("schema", "recordings", "replay"):
        os.symlink(os.path.join(SOURCE, name), os.path.join(folder, name))
    os.mkdir(os.path.join(folder, "bin"))
    script(os.path.join(folder, "bin", "duckdb"), f'exec node "{SOURCE}/tests/duckdb.js" "$@"\n')
    script(os.path.join(folder, "bin", "quillagent"),  # a Mac to scan
           f'QUILLAGENT="{BUILD}/quillagent" exec "{SOURCE}/replay/replay" "{SOURCE}/recordings/macbook-2015-10.11.6" "$@"\n')
    return dict(os.environ, PATH=f"{folder}/bin:{BUILD}:{os.environ['PATH']}", QUILL_DUCKDB=DUCKDB,
                QUILLAGENT=f"{BUILD}/quillagent", QUILLINV=f"{BUILD}/quillinv")


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


@unittest.skipIf(MISSING and not REQUIRED, f"not there: {MISSING}")
class Fleet(unittest.TestCase):
    def answer_all(self, *options):
        """Yields (heading, rows, what the generator knows) for each command of the document that answers something."""
        with tempfile.TemporaryDirectory(prefix="quillinv fleet ") as folder:
            subprocess.run([os.path.join(SOURCE, "tests", "generate_fleet"), *OPTIONS, *options, "fleet"], cwd=folder, check=True)
            with open(os.path.join(folder, "fleet", "fleet.json"), encoding="utf-8") as file:
                known = json.load(file)
            env = workplace(folder)
            for heading, command in blocks(FLEET):
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


class Documents(unittest.TestCase):
    def test_every_command_ends_well(self):
        tried = 0
        for document in DOCUMENTS:
            with tempfile.TemporaryDirectory(prefix="quill docs ") as folder:
                env = workplace(folder)
                subprocess.run([os.path.join(SOURCE, "tests", "generate_fleet"), "--count", "20", "fleet"], cwd=folder, check=True)
                for options, name in (["-silent"], None), (["-debug", "-silent"], "DEBUG.inv"):
                    done = subprocess.run(["quillagent", *options], cwd=folder, env=env, capture_output=True, check=True, text=True)
                    if name:
                        os.rename(os.path.join(folder, re.search(">>>(.*)", done.stdout)[1]), os.path.join(folder, name))
                for heading, text in blocks(document):
                    if "jq " in text and "jq" in MISSING and not REQUIRED:
                        continue
                    done = subprocess.run(["sh", "-ec", text], cwd=folder, env=env, capture_output=True)
                    tried += 1
                    with self.subTest(document=document, heading=heading):
                        self.assertEqual((done.returncode, done.stderr), (0, b""), text)
        self.assertGreater(tried, 4)

    def test_no_command_stands_in_an_unmarked_block(self):
        for document in DOCUMENTS:
            lines = [line for _, text in blocks(document, "") for line in text.splitlines() if COMMAND.match(line.strip(" $"))]
            with self.subTest(document):
                self.assertLessEqual(set(re.findall(r"^```(\w.*)$", read(document), re.M)), {"sh", "sh macos", "sh ci"})
                self.assertEqual(lines if document != MEASURES else [], [])

    def test_the_slow_commands_are_those_of_the_checks(self):
        checks = read(".ci", "run") + read(".ci", "package")
        commands = [re.sub("^sudo |\\s+#.*$", "", line) for document in DOCUMENTS for _, text in blocks(document, "sh ci") for line in text.splitlines()]
        self.assertGreater(len(commands), 4)
        self.assertEqual([command for command in commands if command not in checks], [])


if not os.path.exists(os.path.join(BUILD, "quillinv")):
    sys.exit("there is no quillinv")
unittest.main(argv=sys.argv[:1])
