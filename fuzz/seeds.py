"""Makes the seeds of the fuzz targets from the recordings.

seeds.py SOURCE BUILD: seeds and dictionary go to BUILD/corpus/TARGET and BUILD/words.dict; BUILD holds the agent.
"""
import hashlib
import os
import plistlib
import re
import subprocess
import sys
import tempfile

SOURCE, BUILD = (os.path.abspath(p) for p in sys.argv[1:3])
RECORDINGS = os.path.join(SOURCE, "recordings")
HEAD, TAIL = 172, 18
WORDS = ["<dict>", "</dict>", "<array>", "</array>", "<key>", "</key>", "<string>", "</string>", "<real>", "</real>",
         "<integer>", "</integer>", "<date>", "</date>", "<true/>", "<data>", "</data>", "&amp;", "&#10;", "<![CDATA[",
         "]]>", "<!--", "-->", "bplist00", "INV!", "\0\1ZXML", "offset=", "length=", "[H]\n", "?zxml\n", "\x1e", "\r\n",
         "OS X 10.", " GB", " TB", "1e999", "NaN", "-9223372036854775808", "18446744073709551615", "0x"]


def read(path):
    with open(path, "rb") as file:
        return file.read()


def read_all(folder):
    return [read(os.path.join(folder, name)) for name in sorted(os.listdir(folder))] if os.path.isdir(folder) else []


def save(target, seed):
    folder = os.path.join(BUILD, "corpus", target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, hashlib.sha1(seed).hexdigest()), "wb") as file:
        file.write(seed)


def save_scan(recording):
    """What the agent writes for the recording: the file, and its texts as the recording expects them."""
    for option in ("-silent", "-debug"):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([os.path.join(SOURCE, "replay", "replay"), recording, "-silent", option], cwd=folder,
                           env=dict(os.environ, QUILLAGENT=os.path.join(BUILD, "quillagent")), check=True,
                           stdout=subprocess.DEVNULL)
            for inv in read_all(folder):
                save("inv", inv)
    for text in read_all(os.path.join(recording, "expected")):
        save("inv", text)


def answers(recording):
    """What stands_ins.cpp hands out, in its order."""
    place = lambda *names: os.path.join(recording, *names)
    plugins = place("Library", "Internet Plug-Ins")
    names = sorted(os.listdir(plugins)) if os.path.isdir(plugins) else []
    bundles = (place(plugins, name, "Contents", "Info.plist") for name in names)
    return [read(place("ioreg.txt")), read(place("users.txt")), read_all(place("dscl"))[0], read(place("env.txt")),
            read_all(place("ps"))[0], read_all(place("diskutil"))[0], next((read(b) for b in bundles if os.path.exists(b)), b""),
            read(place("computer-name.txt"))]


def save_documents(recording, words):
    documents = read_all(os.path.join(recording, "system_profiler"))
    tools = b"".join(b"\x1e" + answer for answer in answers(recording))
    parts = [d[HEAD:-TAIL] for d in documents if len(d) < 20000]
    for document in documents + [documents[0][:HEAD] + b"".join(parts) + documents[0][-TAIL:]]:
        save("plist", document)
        save("plist", plistlib.dumps(plistlib.loads(document), fmt=plistlib.FMT_BINARY))
        save("scan", document + tools)
        words.update(re.findall(rb"<key>([\w. -]{3,40})</key>", document))
        for text in re.findall(rb"<string>([^<]{1,40})</string>", document):
            save("text", text)
        for edid in re.findall(rb"0x[0-9a-f]{200,}", document):
            save("edid", edid)


found = set()
for each in sorted(os.listdir(RECORDINGS)):
    save_documents(os.path.join(RECORDINGS, each), found)
    save_scan(os.path.join(RECORDINGS, each))
with open(os.path.join(BUILD, "words.dict"), "w", encoding="ascii") as dictionary:
    for word in [word.encode() for word in WORDS] + sorted(found):
        dictionary.write('"' + "".join(f"\\x{byte:02x}" for byte in word) + '"\n')
