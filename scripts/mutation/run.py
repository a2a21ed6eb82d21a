"""Makes the changes of scripts/mutate; see there. Arguments: COUNT (0 for all) and the files."""

import collections
import concurrent.futures
import contextlib
import hashlib
import json
import os
import pathlib
import queue
import re
import shutil
import subprocess
import sys
import time

from changes import EQUIVALENT, changes_of, key_of, read_equivalent
from switches import place, switched

ROOT = pathlib.Path("build/mutate").resolve()
MEMORY_KB = 8 << 20
RUNNING = set()  # tests
DIAGNOSTIC = re.compile(r"^(/\S+?):(\d+):\d+: (?:fatal )?(error|note): (.*)", re.MULTILINE)
# Notes on an error in a constant expression; they are about the declarations of what it uses.
NO_CONSTANT = re.compile(r"initializer of .* is not a constant expression|.* declared here")


def end(pid):
    with contextlib.suppress(ProcessLookupError):
        os.killpg(pid, 9)  # children as well


class Test:
    def __init__(self, entry):
        properties = {each["name"]: each["value"] for each in entry["properties"]}
        self.name = entry["name"]
        self.command = entry["command"]
        self.folder = properties["WORKING_DIRECTORY"]
        self.of_library = "library" in properties.get("LABELS", [])
        self.skipped = properties.get("SKIP_RETURN_CODE")
        self.max_seconds = 600.0
        self.reached = set()

    def passes(self, **environment):
        limited = 'ulimit -v %d; exec "$@"' % MEMORY_KB
        process = subprocess.Popen(
            ["bash", "-c", limited, "test", *self.command], cwd=self.folder, start_new_session=True,
            env={**os.environ, **environment}, stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        RUNNING.add(process.pid)
        try:
            return process.wait(self.max_seconds) in (0, self.skipped)
        except subprocess.TimeoutExpired:
            return False  # an endless loop, or a deadlock
        finally:
            end(process.pid)
            process.wait()
            RUNNING.discard(process.pid)


class Copy:
    """A copy of the checkout with a build of its own, without optimisation."""

    def __init__(self, number):
        self.source = ROOT / str(number) / "source"
        self.build = ROOT / str(number) / "build"
        self.tests = []
        listed = subprocess.check_output(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], text=True)
        files = [file for file in listed.split("\0")[:-1] if pathlib.Path(file).exists()]
        for file in files:
            self.write(file, pathlib.Path(file).read_bytes())
            shutil.copymode(file, self.source / file)
        for path in set(self.source.rglob("*")) - {self.source / file for file in files}:
            if path.is_file():
                path.unlink()  # deleted since the last run
        subprocess.run(
            ["cmake", "-S", self.source, "-B", self.build, "-G", "Ninja",
             "-DCMAKE_C_COMPILER=clang", "-DCMAKE_CXX_COMPILER=clang++",
             "-DCMAKE_CXX_FLAGS=-stdlib=libc++ -O0 -Werror=thread-safety -ferror-limit=0 -include %s"
             % (self.source / "scripts/mutation/switch.h"), "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=",
             "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"], check=True, stdout=subprocess.DEVNULL)

    def write(self, file, content):
        path = self.source / file
        path.parent.mkdir(parents=True, exist_ok=True)
        if not path.exists() or path.read_bytes() != content:
            path.write_bytes(content)

    def compile(self, target, jobs):
        """Returns true and the output if the target builds."""
        result = subprocess.run(
            ["cmake", "--build", self.build, "--target", target, "-j", str(jobs), "--", "-k0"],
            capture_output=True, text=True)
        return result.returncode == 0, result.stdout

    def find_tests(self, count):
        """Runs each test without a change, and records which changes it reaches."""
        listed = subprocess.check_output(["ctest", "--test-dir", self.build, "--show-only=json-v1"])
        file = self.build / "reached"
        for test in map(Test, json.loads(listed)["tests"]):
            file.write_bytes(bytes(count + 1))
            start = time.monotonic()
            if not test.passes(MUTATION_REACHED=str(file)):
                sys.exit("mutate: without a change, the test '%s' in %s fails" % (test.name, self.build))
            test.max_seconds = 10 + 10 * (time.monotonic() - start)
            test.reached = {number for number, byte in enumerate(file.read_bytes()) if byte}
            self.tests.append(test)
        self.tests.sort(key=lambda test: test.max_seconds)


def build_with_switches(copy, changes, jobs):
    """Builds with as many changes as possible; returns the files' contents and the changes left."""
    files = {change.file for change in changes.values()}
    lines = {file: pathlib.Path(file).read_text().split("\n") for file in files}
    alone = set()
    while True:
        contents, owners = {}, {}
        for file in files:
            placed, left = place(lines[file], {number: change for number, change in changes.items()
                                               if change.file == file and number not in alone})
            alone |= left
            output, owners[file] = switched(lines[file], placed)
            contents[file] = "\n".join(output).encode()
            copy.write(file, contents[file])
        for target in ("library_tests", "all"):  # the first one is quick
            built, output = copy.compile(target, jobs)
            if not built:
                break
        else:
            return contents, alone
        faulty = collections.defaultdict(set)
        for path, line, kind, text in DIAGNOSTIC.findall(output):
            file = os.path.relpath(path, copy.source)
            if file in files:
                above = owners[file][:int(line)]
                faulty["constant" if NO_CONSTANT.match(text) else kind].update(above[-1])
                faulty["above"].update(next(filter(None, reversed(above)), ()))
                # The initializer of an error's declaration follows it.
                faulty["below"].update(next(filter(None, owners[file][int(line):]), ()))
        moved = (faulty["constant"] or faulty["error"] or faulty["note"] or faulty["above"]
                 or faulty["below"])
        if not moved:
            sys.exit("mutate: the build in %s fails:\n%s" % (copy.build, output))
        alone |= moved


def result_of_build(copy, change, contents):
    """Makes a change that has no switch; returns "noticed", "survived" or "does not build"."""
    lines = pathlib.Path(change.file).read_text().split("\n")
    lines[change.first:change.last + 1] = [change.new]
    copy.write(change.file, "\n".join(lines).encode())
    try:
        for target, of_library in (("library_tests", True), ("all", False)):
            if of_library and not change.file.startswith("brevold/"):
                continue
            if not copy.compile(target, 1)[0]:
                return "does not build"
            if not all(test.passes() for test in copy.tests if test.of_library == of_library):
                return "noticed"
        return "survived"
    finally:
        copy.write(change.file, contents[change.file])


def result_of_switch(copy, number):
    for test in copy.tests:
        if number in test.reached and not test.passes(MUTATION=str(number)):
            return "noticed"
    return "survived"


def selected_changes(count, files):
    """Returns the changes by number, from 1."""
    changes = [change for file in files for change in changes_of(file)]
    listed = read_equivalent()
    stale = {entry for entry in listed if entry[0] in files} - {key_of(each) for each in changes}
    if stale:
        sys.exit("mutate: %s lists changes that this script does not make:\n%s" % (EQUIVALENT, sorted(stale)))
    changes = [each for each in changes if key_of(each) not in listed]
    if count:
        # Most changes stay in the sample when others are added or listed.
        hash_of = lambda change: hashlib.sha256("\n".join(key_of(change)).encode()).digest()
        changes = sorted(sorted(changes, key=hash_of)[:count])
    return dict(enumerate(changes, 1))


def main():
    count, files = int(sys.argv[1]), sys.argv[2:]
    changes = selected_changes(count, files)
    processors = len(os.sched_getaffinity(0))
    copies = [Copy(number) for number in range(processors)]
    contents, alone = build_with_switches(copies[0], changes, processors)
    for copy in copies[1:]:
        for file, content in contents.items():
            copy.write(file, content)
        if not copy.compile("all", processors)[0]:
            sys.exit("mutate: the build in %s fails" % copy.build)

    results = collections.Counter()
    with concurrent.futures.ThreadPoolExecutor(processors) as pool:
        list(pool.map(lambda copy: copy.find_tests(len(changes)), copies))
        unused = queue.Queue()
        for copy in copies:
            unused.put(copy)

        def run(number):
            copy = unused.get()
            try:
                if number in alone:
                    return number, result_of_build(copy, changes[number], contents)
                return number, result_of_switch(copy, number)
            finally:
                unused.put(copy)

        try:
            for number, result in pool.map(run, sorted(changes, key=lambda number: number in alone)):
                change = changes[number]
                results[change.file, result] += 1
                results[number in alone, result] += 1
                if result == "survived":
                    print("%s:%d\n- %s\n+ %s" % ((change.file, change.first + 1) + key_of(change)[1:]),
                          flush=True)
        except KeyboardInterrupt:
            print("interrupted: the table has the changes that were made")
            print_table(files, results)
            sys.stdout.flush()
            for pid in list(RUNNING):
                end(pid)
            os._exit(130)  # without waiting for a build
    print_table(files, results)


def print_table(files, results):
    print("\n%-32s %8s %8s %7s %10s" % ("file", "changes", "noticed", "share", "equivalent"))
    listed, total = read_equivalent(), collections.Counter()
    for file in files + ["total"]:
        row = total if file == "total" else collections.Counter(
            {key[1]: value for key, value in results.items() if key[0] == file})
        if file != "total":
            row["equivalent"] = sum(entry[0] == file for entry in listed)
            total += row
        made = row["noticed"] + row["survived"]
        share = "%.1f %%" % (100 * row["noticed"] / made) if made else "-"
        print("%-32s %8d %8d %7s %10d" % (file, made, row["noticed"], share, row["equivalent"]))
    for alone, title in ((False, "with a switch"), (True, "built one by one")):
        noticed = results[alone, "noticed"]
        print("%-32s %8d %8d" % (title, noticed + results[alone, "survived"], noticed))


main()
