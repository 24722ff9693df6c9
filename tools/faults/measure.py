"""Runs the tests with one fault after the other and keeps the tables."""
import csv
import json
import os
import re
import resource
import signal
import subprocess
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from threading import Lock

from weave import component_of

COLUMNS = ["number", "component", "place", "operator", "original", "changed", "verdict", "by"]


def programs_of(build):
    """Name, command and environment of each test program, as ctest has them."""
    listed = json.loads(subprocess.check_output(["ctest", "--test-dir", build, "-LE", "bench|fuzz", "--show-only=json-v1"]))
    result = {}
    for test in listed["tests"]:
        properties = {each["name"]: each["value"] for each in test.get("properties", [])}
        environment = dict(each.split("=", 1) for each in properties.get("ENVIRONMENT", []))
        result[test["name"]] = {"command": test["command"], "folder": properties["WORKING_DIRECTORY"], "environment": environment}
    return result


def within_limits():
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))       # a fault may well ask for all there is
    resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 30, 1 << 30))


def end_leftovers(mark):
    """Programs that the test started and left behind know its folder from their environment."""
    for process in Path("/proc").glob("[0-9]*"):
        try:
            if mark.encode() in (process / "environ").read_bytes():
                os.kill(int(process.name), signal.SIGKILL)
        except OSError:
            pass


def run(program, limit, more):
    """One test program in folders of its own: seconds, and why it failed or ""."""
    with tempfile.TemporaryDirectory(prefix="fault", ignore_cleanup_errors=True) as folder:
        private = {name: os.path.join(folder, name.lower()) for name in ("HOME", "TMPDIR", "XDG_RUNTIME_DIR")}
        for path in private.values():
            os.mkdir(path, 0o700)
        kept = {k: v for k, v in os.environ.items() if not k.startswith(("XDG_", "KV"))}
        environment = {**kept, **private, **program["environment"], "QT_QPA_PLATFORM": "offscreen", "GTEST_FAIL_FAST": "1", **more}
        begin = time.monotonic()
        with open(os.path.join(folder, "output"), "w+b") as output:
            process = subprocess.Popen(program["command"], cwd=program["folder"], env=environment, stdin=subprocess.DEVNULL,
                                       stdout=output, stderr=output, start_new_session=True, preexec_fn=within_limits)
            try:
                code = process.wait(timeout=limit)
                why = "" if code == 0 else f"exit {code}" if code > 0 else signal.Signals(-code).name
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
                why = "no end"
            seconds = time.monotonic() - begin
            end_leftovers(private["HOME"])
            output.seek(0)
            case = re.search(rb"\[  FAILED  \] ([\w./]+)", output.read(50 << 20)) if why else None
        return seconds, f"{why} {case[1].decode()}" if case else why


def cases_of(program):
    listed = subprocess.check_output([program["command"][0], "--gtest_list_tests"], cwd=program["folder"], text=True,
                                     env={**os.environ, **program["environment"], "QT_QPA_PLATFORM": "offscreen"})
    cases, suite = [], ""
    for line in listed.splitlines():
        if re.match(r"[\w/]+\.( |$)", line):
            suite = line.split()[0]
        elif line.startswith("  "):
            cases.append(suite + line.split()[0])
    return cases


def only(program, cases):
    """The program with these of its cases."""
    return {**program, "command": [*program["command"], "--gtest_filter=" + ":".join(cases)]}


def baseline(folder, programs, jobs):
    """Every case by itself, without a fault: its time, and which places it passes."""
    kept = folder / "baseline.json"
    if kept.exists():
        return json.loads(kept.read_text())

    def learn(test):
        name, case = test
        seen = folder / f"seen.{name}.{case.replace('/', '-')}"
        seconds, why = run(only(programs[name], [case]), 900, {"KV_FAULT_SEEN": str(seen)})
        if why:
            print(f"{name} {case} fails without a fault and is left out: {why}", flush=True)
        passed = sorted({int(line) for line in seen.read_text().split()}) if seen.exists() else []
        seen.unlink(missing_ok=True)
        return {"program": name, "case": case, "seconds": seconds, "passed": [] if why else passed}

    tests = [(name, case) for name in sorted(programs) for case in cases_of(programs[name])]
    with ThreadPoolExecutor(jobs) as pool:
        result = list(pool.map(learn, tests))
    kept.write_text(json.dumps(result))
    return result


def failure(program, tests, fault):
    """Which of these cases notices the fault. One that fails now and then does not count: it has to fail again, by itself."""
    tests = list(tests)
    while tests:
        limit = 4 * sum(test["seconds"] for test in tests) + 10
        _, why = run(only(program, [test["case"] for test in tests]), limit, fault)
        blamed = [test for test in tests if why.endswith(" " + test["case"])] or tests
        if not why or run(only(program, [test["case"] for test in blamed]), limit, fault)[1]:
            return why
        print(f"{blamed[0]['program']} {blamed[0]['case']} has failed once and not again", flush=True)
        tests = [test for test in tests if test not in blamed]
    return ""


def verdict(number, programs, known):
    """Who finds this fault: of the programs with cases that pass its place, the quickest that fails."""
    passing = {}
    for test in known:
        if number in test["passed"]:
            passing.setdefault(test["program"], []).append(test)
    for name in sorted(passing, key=lambda name: sum(test["seconds"] for test in passing[name])):
        why = failure(programs[name], passing[name], {"KV_FAULT": str(number)})
        if why:
            return "found", f"{name}: {why}"
    cases = sum(len(tests) for tests in passing.values())
    return "missed", f"passed by {cases} cases of {', '.join(sorted(passing))}" if cases else "passed by no case"


def one_line(text):
    return re.sub(r"\s+", " ", text)


def read_table(path):
    with open(path, newline="", encoding="utf-8") as table:
        return list(csv.DictReader(table, delimiter="\t", quoting=csv.QUOTE_NONE, quotechar=None))


def write_table(path, rows):
    lines = ["\t".join(str(row[c]) for c in COLUMNS) for row in rows]
    path.write_text("\n".join(["\t".join(COLUMNS), *lines]) + "\n", encoding="utf-8")


def measure(folder, places, drawn, options):
    """One row for each place in results.tsv, and those of the missed in missed.tsv; what is there is not measured again."""
    programs = programs_of(folder / "tree/build/fast")
    known = baseline(folder, programs, options.jobs)
    results = folder / "results.tsv"
    rows = read_table(results) if results.exists() else []

    one_writes = Lock()

    def judge(number):
        place = places[number]
        how, by = verdict(number, programs, known)
        with one_writes:
            rows.append({"number": number, "component": component_of(place["file"]), "place": f"{place['file']}:{place['line']}",
                         "operator": place["operator"], "original": one_line(place["original"]), "changed": one_line(place["changed"]),
                         "verdict": how, "by": by})
            write_table(results, rows)
            write_table(folder / "missed.tsv", [row for row in rows if row["verdict"] == "missed"])

    done = {int(row["number"]) for row in rows}
    with ThreadPoolExecutor(options.jobs) as pool:
        list(pool.map(judge, [number for number in drawn if number not in done]))
    return rows


def shares(places, rows):
    """The share that is found, by component and over all; over all each component counts by the places that it has."""
    total, text, sum_found, sum_places = {}, [], 0.0, 0
    for place in places:
        component = component_of(place["file"])
        total[component] = total.get(component, 0) + 1
    for component in sorted(total):
        mine = [row for row in rows if row["component"] == component]
        found = sum(row["verdict"] == "found" for row in mine)
        if mine:
            sum_found, sum_places = sum_found + total[component] * found / len(mine), sum_places + total[component]
        share = f"{100 * found / len(mine):5.1f} %" if mine else "      -"
        text.append(f"{component:15} {total[component]:6} places {len(mine):5} tried {found:5} found {share}")
    text.append(f"{'all':15} {len(places):6} places {len(rows):5} tried {sum(r['verdict'] == 'found' for r in rows):5} found "
                f"{100 * sum_found / max(sum_places, 1):5.1f} % by weight")
    return "\n".join(text)
