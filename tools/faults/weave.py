"""Draws a sample of places, puts all of them into a copy of the tree, each one switched off, and builds its tests."""
import os
import random
import re
import shutil
import subprocess
from pathlib import Path

HERE = Path(__file__).parent


def component_of(name):
    for line in (HERE / "components.txt").read_text().splitlines():
        if line and not line.startswith("#"):
            component, pattern = line.split(maxsplit=1)
            if re.search(pattern, name):
                return component
    return "other"


def draw(places, seed, sample, wanted, taken_out):
    """The places in an order that the seed gives; of each wanted component as many as it wants, then from all until the sample is full."""
    order = list(range(len(places)))
    random.Random(seed).shuffle(order)
    drawn, spans = [], {}

    def take(index):
        place = places[index]
        others = spans.setdefault(place["file"], [])
        if index in taken_out or any(a < place["end"] and place["start"] < b for a, b in others):
            return False  # one place within another one would never be reached when that is changed
        others.append((place["start"], place["end"]))
        drawn.append(index)
        return True

    for names, least in wanted.items():
        left = least
        for index in order:
            if left > 0 and component_of(places[index]["file"]) in names.split("+"):
                left -= take(index)
    for index in order:
        if len(drawn) < sample:
            take(index)
    return sorted(drawn, key=order.index)  # what is measured first stands for all


def woven(text, places):
    """The file with these places (numbers and places), and the lines that each of them is on now."""
    parts, at, lines = [b'#include "kv_fault.h"\n'], 0, {}
    line = 2
    for number, place in sorted(places, key=lambda each: each[1]["start"]):
        original = text[place["start"]:place["end"]]
        assert original.decode("utf-8", "replace") == place["original"], place
        if place["cast"]:
            original = b"static_cast<" + place["cast"].encode() + b">(" + original + b")"
        changed = place["changed"].encode()
        if place["cast"] == "bool":
            changed = b"static_cast<bool>(" + changed + b")"
        change = b"(kv_fault(%d) ? %s : %s)" % (number, changed, original)
        before = text[at:place["start"]]
        line += before.count(b"\n")
        lines[number] = range(line, line + change.count(b"\n") + 1)
        line += change.count(b"\n")
        parts += [before, change]
        at = place["end"]
    return b"".join(parts) + text[at:], lines


def write(path, content):
    """Only what changed, so that no more than that is compiled."""
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_bytes() != content:
        path.write_bytes(content)


def copy(tree, folder):
    for name in subprocess.check_output(["git", "-C", tree, "ls-files", "-z"]).decode().split("\0"):
        if name and (tree / name).is_file():
            (folder / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(tree / name, folder / name)
    if (tree / "build/unpacked").exists():
        shutil.copytree(tree / "build/unpacked", folder / "build/unpacked", dirs_exist_ok=True)


def configure(tree, build):
    linker = ["-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=mold"] if shutil.which("mold") else []
    subprocess.run(["cmake", "-S", tree, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Quick",
                    "-DCMAKE_CXX_FLAGS_QUICK=-O0 -g0", *linker], check=True, stdout=subprocess.DEVNULL)


def weave(folder, places, drawn):
    """Writes the files with the drawn places, all others as they were; returns which place is on which line."""
    by_file, where = {}, {}
    for index in drawn:
        by_file.setdefault(places[index]["file"], []).append((index, places[index]))
    for name in sorted({place["file"] for place in places}):
        text, lines = (folder / "original" / name).read_bytes(), {}
        if name in by_file:
            text, lines = woven(text, by_file[name])
            text = text.replace(b"kv_fault.h", str(HERE / "kv_fault.h").encode(), 1)
        write(folder / "tree" / name, text)
        where[name] = lines
    return where


def build_all(build, jobs, log):
    with open(log, "w", encoding="utf-8") as out:
        ended = subprocess.run(["ninja", "-C", build, "-k", "0", f"-j{jobs}", "tests/all"], stdout=out, stderr=subprocess.STDOUT,
                               env={**os.environ, "LC_ALL": "C"})
    return ended.returncode == 0


def refused(log, where):
    """The places that the compiler does not take; where it names another line of the file, all places of the file."""
    found = set()
    for name, line in re.findall(r"((?:src|libs|apps|simulator)/[\w/]+\.cpp):(\d+):\d+: +(?:error|required|fatal)", log.read_text()):
        places = where.get(name, {})
        found |= {number for number, lines in places.items() if int(line) in lines} or set(places)
    return found


def build_sample(folder, places, options):
    """Draws, weaves and builds until everything compiles. Returns what is in and what had to be taken out."""
    taken_out, log = set(), folder / "build.log"
    while True:
        drawn = draw(places, options.seed, options.sample, options.component, taken_out)
        where = weave(folder, places, drawn)
        if build_all(folder / "tree/build/fast", options.jobs, log):
            return drawn, taken_out
        more = refused(log, where)
        if not more:
            raise SystemExit(f"The copy does not build, and no fault explains it: {log}")
        print(f"{len(more)} places do not compile; others are drawn for them", flush=True)
        taken_out |= more
