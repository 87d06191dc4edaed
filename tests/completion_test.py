#!/usr/bin/env python3
"""Completes command lines in bash as a person would with the Tab key, and holds the agent's options to those that it
reads. Arguments: source folder, build folder."""
import os, re, subprocess, sys, tempfile, unittest

SOURCE, BUILD = (os.path.abspath(path) for path in sys.argv[1:3])
QUILLINV = os.path.join(BUILD, "quillinv")
FILES = os.path.join(SOURCE, "packaging", "completions")
SCRIPT = 'eval "$1"; shift; program=$1; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); "_$program"; printf "%s\\n" "${COMPREPLY[@]}"'


def read(*path):
    with open(os.path.join(SOURCE, *path), encoding="utf-8") as file:
        return file.read()


def completed(script, line, folder):
    """What stands for the last word of the line."""
    words = line.split(" ")
    return subprocess.run(["bash", "-c", SCRIPT, "bash", script, *words], cwd=folder, capture_output=True, check=True, text=True).stdout.split("\n")[:-1]


class Completion(unittest.TestCase):
    def test_quillinv(self):
        script = subprocess.run([QUILLINV, "completion", "bash"], capture_output=True, check=True, text=True).stdout
        help_text = subprocess.run([QUILLINV, "--help"], capture_output=True, check=True, text=True).stdout
        commands = re.findall(r"^  (\w+) ", help_text.split("Subcommands:")[1], re.M)
        with tempfile.TemporaryDirectory() as folder:
            for name in ("a b.inv", "c.inv", "note.txt"):
                open(os.path.join(folder, name), "w").close()
            os.mkdir(os.path.join(folder, "scans"))
            inventories = ["a b.inv", "c.inv", "scans"]
            table = (("quillinv ", commands + ["--help", "--version"]), ("quillinv di", ["diff"]), ("quillinv list ", inventories),
                     ("quillinv table volu", ["volumes"]), ("quillinv table volumes ", inventories), ("quillinv csv --sa", ["--safe-csv"]),
                     ("quillinv csv --columns uuid,os-v", ["uuid,os-ver"]), ("quillinv csv --limit ", [""]),
                     ("quillinv report c.inv -o n", ["note.txt"]), ("quillinv schema due", [""]), ("quillinv schema du", ["duckdb"]),
                     ("quillinv completion ", ["bash", "zsh", "fish"]), ("quillinv nothing --l", [""]))
            for line, expected in table:
                with self.subTest(line):
                    self.assertEqual(completed(script, line, folder), expected)
            for command in commands:  # every option that a command's help names, and no other
                text = subprocess.run([QUILLINV, command, "--help"], capture_output=True, check=True, text=True).stdout
                options = re.findall(r"^  (-[^ ]+)", text.split("Options:")[1], re.M)
                with self.subTest(command):
                    self.assertEqual(set(completed(script, f"quillinv {command} -", folder)), set(",".join(options).split(",")))

    def test_agent(self):
        either = re.findall(r'Either\(argument, "([a-z]+:?)"\)', read("main", "options.cpp"))
        dashed = {"-" + name for name in either} | set(re.findall(r'argument == "([^"]+)"', read("main", "options.cpp")))
        script = read("packaging", "completions", "quillagent.bash")
        self.assertEqual(set(completed(script, "quillagent ", "/")), dashed)
        self.assertEqual(set(completed(script, "quillagent /", "/")), {"/" + name for name in either})
        self.assertEqual(completed(script, "quillagent -silent -m", "/"), ["-modern"])
        self.assertEqual(set(re.findall(r"-a '?(\S+?)'? -d", read("packaging", "completions", "quillagent.fish").replace("\\?", "?"))), dashed)
        self.assertEqual(set(re.findall(r"^  '(-[^:]+:?):", read("packaging", "completions", "quillagent.zsh").replace("\\:", ":"), re.M)), dashed)


unittest.main(argv=sys.argv[:1])
