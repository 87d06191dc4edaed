"""Runs the built agent on a recording and takes its result apart, for the end-to-end tests."""
import os
import re
import subprocess
import sys
import tempfile
import zlib

SOURCE, BUILD = (os.path.abspath(p) for p in sys.argv[1:3])
RECORDINGS = os.path.join(SOURCE, "recordings")
CLOCK = re.compile(r"^(timestamp|scan-time|first-scan|last-scan|snapshot-list|scan-attempt)=.*$", re.M)
failures = []


def expect(name, got, want):
    if got != want:
        failures.append(name)
        print(f"FAIL {name}\n  got  {got!r}\n  want {want!r}")


def finish():
    print(f"{len(failures)} failures")
    sys.exit(1 if failures else 0)


def replay(recording, args, cwd, answer="", agent="quillagent", **more):
    """The finished process; its streams as bytes."""
    env = dict(os.environ, QUILLAGENT=os.path.join(BUILD, agent), **more.pop("env", {}))
    command = [os.path.join(SOURCE, "replay", "replay"), recording, *args]
    return subprocess.run(command, cwd=cwd, env=env, input=answer.encode(), capture_output=True, check=False, **more)


def read_inv(path):
    """[(type, body)] of an INV file, each body as it was before it was deflated."""
    data = open(path, "rb").read()
    assert data[-4:] == b"INV!" and data[-6] == 3, path
    index_at = int.from_bytes(data[-14:-6], "little")
    index = zlib.decompress(data[index_at:-14]).decode()
    bodies = []
    for offset, length, kind in re.findall(r"\[\d+\]\noffset=(\d+)\nlength=(\d+)\ntype=(\w+)\n", index):
        body = data[int(offset):int(offset) + int(length)]
        inflater = zlib.decompressobj()
        text = inflater.decompress(body)
        assert inflater.eof and inflater.unused_data == (b"" if kind == "customdata" else b"\0\1ZXML"), path
        bodies.append((kind, text))
    return bodies


def scan(recording, args=("-silent",)):
    """(file name, sections, finished process) of one scan in a folder of its own."""
    with tempfile.TemporaryDirectory() as folder:
        done = replay(recording, args, folder)
        names = os.listdir(folder)
        return names[0] if names else None, read_inv(os.path.join(folder, names[0])) if names else [], done
