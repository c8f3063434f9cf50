"""What tools/bench and tools/steps/counts share: the trees that are measured, the figures
that do not depend on the machine's mood, their ceilings, and the table of them."""
import os
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BUILD = os.path.join(ROOT, "build", "bench")
PROGRAM = os.path.join(BUILD, "fthsummary")
MAKE_CORPUS = os.path.join(BUILD, "bench", "make_corpus")
MEMORY = "/dev/shm"

TREES = {"SMALL": ["small"], "BIG": ["big"], "MIXED": ["mixed"], "HUGE": ["huge"]}
CANDIDATES = {"SMALL": 20000, "BIG": 400, "MIXED": 10000, "HUGE": 6}
FOLDERS = {"SMALL": 201, "BIG": 21, "MIXED": 101, "HUGE": 2}
LARGEST = {"SMALL": 14 << 10, "BIG": 2250000, "MIXED": 63000, "HUGE": 45 << 20}

INSTRUCTIONS_PER_FILE = {"SMALL": 22000, "MIXED": 46000}
CALLS_PER_CANDIDATE, CALLS_PER_FOLDER, CALLS_BESIDES = 6, 5, 100
BYTES_PER_REPORT, BYTES_BESIDES = 2450, 5_000_000
FAULTS_PER_REPORT = 0.72
# Lower than what is asked for, so that a hint that gets lost is noticed: large pages
# where the kernel gives them, and freed memory that is kept.
FAULTS_WITH_LARGE_PAGES = {"SMALL": 0.25, "MIXED": 0.25, "HUGE": 2000}
FAULTS_COUNT_FROM = 10000  # reports; below that the start of the program dominates


def sh(*command, **options):
    return subprocess.run(command, check=True, cwd=ROOT, **options)


def build(*packages):
    """Builds the program and what measures it, quietly; installs the packages, too."""
    sh("tools/lib/install-packages", "g++", "make", "cmake", "strace", "time", "valgrind", *packages)
    with tempfile.TemporaryFile() as log:
        try:
            sh("cmake", "-S", ".", "-B", BUILD, "-DCMAKE_BUILD_TYPE=Release",
               "-DFTHSUMMARY_BENCH=ON", stdout=log, stderr=log)
            sh("cmake", "--build", BUILD, "-j", str(os.cpu_count()), stdout=log, stderr=log)
        except subprocess.CalledProcessError:
            log.seek(0)
            sys.stderr.buffer.write(log.read())
            raise


def folder_in_memory(size):
    """A folder whose files are in memory and stay there, if so many bytes have room; else
    none. Of a disk's files the system may forget some at any time."""
    has_room = os.path.isdir(MEMORY) and shutil.disk_usage(MEMORY).free > size
    return MEMORY if has_room else None


def make_tree(folder, arguments):
    """The path of a tree in the folder, which is made unless it is there already."""
    path = os.path.join(folder, "-".join(arguments))
    if not os.path.isdir(path):
        unfinished = path + ".unfinished"
        shutil.rmtree(unfinished, ignore_errors=True)
        os.makedirs(unfinished)
        sh(MAKE_CORPUS, *arguments, unfinished)
        os.rename(unfinished, path)
    return path


def gives_large_pages():
    try:
        with open("/sys/kernel/mm/transparent_hugepage/enabled", encoding="ascii") as setting:
            return "[never]" not in setting.read()
    except OSError:
        return False


def memory(command, folder):
    """Peak bytes and minor page faults. A small program has to start the command: what
    this one holds would count as the command's own."""
    figures = os.path.join(folder, "memory")
    subprocess.run(["/usr/bin/time", "-q", "-o", figures, "-f", "%M %R", *command],
                   cwd=ROOT, stdout=subprocess.DEVNULL, check=False)
    with open(figures, encoding="ascii") as text:
        kilobytes, faults = text.read().split()
    return int(kilobytes) * 1024, int(faults)


def program_command(tree, folder):
    return [PROGRAM, "--input", tree, "-o", os.path.join(folder, "out", "summary.html"), "--json"]


def system_calls(tree, folder):
    counts = os.path.join(folder, "strace")
    # On a terminal, the line that tells where the run is would count, too.
    subprocess.run(["strace", "-c", "-o", counts, *program_command(tree, folder)],
                   cwd=ROOT, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    with open(counts, encoding="ascii") as table:
        total = re.search(r"^100\.00 +\S+ +\d* +(\d+) ", table.read(), re.MULTILINE)
    return int(total.group(1))


def instructions(tree, folder):
    result = subprocess.run(
        ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
         *program_command(tree, folder)],
        cwd=ROOT, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False)
    return int(re.search(rb"Collected : (\d+)", result.stderr).group(1))


class Table:
    """Measured figures with their ceilings, a line printed for each as it comes."""

    def __init__(self):
        self.cells = {}  # by measure, then by tree: (value as text, ceiling as text or None, reached)
        self.missed = []
        self.reached = 0

    def add(self, measure, tree, value, ceiling=None, form="{:,.2f}"):
        reached = ceiling is None or value <= ceiling
        limit = None if ceiling is None else form.format(ceiling)
        self.cells.setdefault(measure, {})[tree] = (form.format(value), limit, reached)
        row = f"{tree:12} {measure:40} {form.format(value):>14}"
        if limit is not None:
            row += f"   at most {limit}: {'reached' if reached else 'NOT REACHED'}"
            self.reached += reached
        print(row, flush=True)
        if not reached:
            self.missed.append((measure, tree))

    def summarise(self):
        """Prints the last line; the exit status."""
        for measure, tree in self.missed:
            print(f"not reached: {measure}, {tree}", file=sys.stderr)
        print(f"{self.reached} passed, {len(self.missed)} failed")
        return 1 if self.missed else 0


def measure_counts(table, name, tree, folder):
    candidates, folders = CANDIDATES[name], FOLDERS[name]
    page = os.path.join(folder, "out")
    shutil.rmtree(page, ignore_errors=True)
    allowed = CALLS_PER_CANDIDATE * candidates + CALLS_PER_FOLDER * folders + CALLS_BESIDES
    for state in ("no page yet", "page exists"):
        table.add(f"system calls, {state}", name, system_calls(tree, folder), allowed, "{:,.0f}")
    table.add("instructions per file", name, instructions(tree, folder) / candidates,
              INSTRUCTIONS_PER_FILE.get(name), "{:,.0f}")


def measure_memory(table, name, tree, folder, candidates, largest):
    peak, faults = memory(program_command(tree, folder), folder)
    allowed = BYTES_PER_REPORT * candidates + 1.25 * largest + BYTES_BESIDES
    table.add("peak memory, bytes", name, peak, allowed, "{:,.0f}")
    ceiling = FAULTS_PER_REPORT if candidates >= FAULTS_COUNT_FROM else None
    if gives_large_pages():
        ceiling = FAULTS_WITH_LARGE_PAGES.get(name, ceiling)
    table.add("page faults per report", name, faults / candidates, ceiling)


def replace_section(path, lines):
    """Puts lines, of which the first is a heading of the second level, in the place of
    the document's section of that heading, or behind its end."""
    with open(path, encoding="utf-8") as file:
        document = file.read()
    section = "\n".join(lines).rstrip("\n") + "\n"
    start = document.find(lines[0] + "\n")
    if start < 0:
        document = document.rstrip("\n") + "\n\n" + section
    else:
        end = document.find("\n## ", start)
        document = document[:start] + section + ("" if end < 0 else document[end:])
    with open(path, "w", encoding="utf-8") as file:
        file.write(document)
