"""Ways to measure: our benches, whole programs in turn, and what is kept of them."""
import json
import os
import pathlib
import re
import shutil
import statistics
import subprocess
import time

TREE = pathlib.Path(__file__).resolve().parents[2]
RELEASE = TREE / "build/release"


def build():
    """Nothing is measured that could not be built: an older program's figures would be taken for this one's."""
    subprocess.run(["cmake", "--preset", "bench"], cwd=TREE, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", "--preset", "bench", "--target", "korvo", "korvo-decoder", "benches"], cwd=TREE,
                   check=True)


def commit():
    """What is measured: the commit, and whether something beside the pages was changed since."""
    def git(*arguments):
        return subprocess.run(["git", *arguments], cwd=TREE, check=True, text=True, stdout=subprocess.PIPE).stdout
    changed = git("status", "--porcelain", "--untracked-files=no", "--", ".", ":!docs")
    return git("rev-parse", "--short", "HEAD").strip() + (" and changes" if changed else "")


class Measuring:
    """One step's results. What fails is told and has none."""

    def __init__(self, work, quick):
        self.work, self.quick = work, quick
        self.comparisons = {}  # seconds by title and contender
        self.figures = {}  # single numbers
        self.failed = []

    def step(self, work):
        """Does the work of one step; returns its results."""
        self.comparisons, self.figures = {}, {}
        begun, load = time.monotonic(), os.getloadavg()[0]
        work(self)
        return {"comparisons": self.comparisons, "figures": self.figures, "seconds": time.monotonic() - begun,
                "load": load, "date": time.strftime("%Y-%m-%d %H:%M")}

    def fail(self, what):
        print(f"FAILED: {what}", flush=True)
        self.failed.append(what)

    def bench(self, name, *arguments, **settings):
        """Runs one of our benches; its comparisons are taken up, its text returned. Nothing is, if it fails."""
        results = self.empty("scratch") / "results"
        environment = dict(os.environ, KORVO_BENCH_RESULTS=str(results), TMPDIR=str(results.parent), **settings)
        said = subprocess.run([self.program(name), *map(str, arguments)], env=environment, text=True,
                              stdout=subprocess.PIPE)
        print(said.stdout, flush=True)
        kept = results.read_text().splitlines() if results.exists() else []
        shutil.rmtree(results.parent)
        if said.returncode:
            self.fail(f"bench_{name} ended with {said.returncode}")
            return ""
        self.comparisons.update((line["title"], line["seconds"]) for line in map(json.loads, kept))
        return said.stdout

    def program(self, name):
        return next(RELEASE.glob(f"bench/*/bench_{name}"))

    def programs(self, title, contenders, rounds=5):
        """Whole programs in turn: for each how many units one run does, and its calls, which run at once. A program
        that is not installed is left out, and so is one that fails, were it in one round only."""
        taken = {name: [] for name, (_, calls) in contenders.items() if all(shutil.which(call[0]) for call in calls)}
        for _ in range(2 if self.quick else rounds):
            for name in list(taken):
                units, calls = contenders[name]
                begun = time.monotonic()
                running = [subprocess.Popen([str(part) for part in call], stdout=subprocess.DEVNULL,
                                            stderr=subprocess.DEVNULL) for call in calls]
                codes = [process.wait() for process in running]
                taken[name].append((time.monotonic() - begun) / units)
                if any(codes):
                    self.fail(f"{title}: {name} ended with {codes}")
                    del taken[name]
        self.comparisons[title] = {name: statistics.median(times) for name, times in taken.items()}
        print(title, *(f"\n  {name:30}{seconds:12.6f} s" for name, seconds in self.comparisons[title].items()),
              flush=True)

    def figure(self, key, pattern, text, of=statistics.median):
        """Keeps one number of all that the pattern finds."""
        found = [float(number) for number in re.findall(pattern, text)]
        if found:
            self.figures[key] = of(found)

    def empty(self, name):
        """An empty folder."""
        folder = self.work / name
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        return folder
