#!/usr/bin/env python3
"""Makes each call of the program to the system fail once, a run for each, and looks at what is left.

Usage: scripts/inject_faults.py [--program FILE] [--jobs N] [--once] [OPERATION...]

Operations (all of them when none is named): export, render, library (clouds into a library), save (a scene).
A file call fails with EIO, ENOSPC, ENOMEM and EMFILE in turn, a request for memory with ENOMEM, for a thread with EAGAIN.
With --once each call fails in one run only, the errors taking turns. Needs strace.

After each run has to hold:
  - the program ended by itself within 20 seconds: no signal, no hang (drivers of OpenGL and libraries of images may
    abort or hang where they get no memory or thread, and libgcrypt aborts where it cannot read what the kernel says of
    itself; then the targets have to be as before);
  - with status 0, the targets hold byte for byte what an undisturbed run writes;
  - with another status it said why, and the targets are all as before, or all new and it said that they are in place;
  - nothing else lies beside the targets, but for what a failed call should have taken away.
Exit status: 0 when all of that held, 1 when not, 2 when it could not be tried.
"""
import argparse
import collections
import concurrent.futures
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile

ERRORS = ["EIO", "ENOSPC", "ENOMEM", "EMFILE"]
FILE_CALLS = """openat read pread64 write newfstatat fstat statx lstat stat close lseek readlink mkdirat mkdir renameat
    rename renameat2 linkat link unlinkat unlink rmdir fsync fdatasync fchmod fchown ftruncate flock fcntl faccessat2
    access getcwd getdents64""".split()
# No brk: it has no error to answer with.
OTHER_CALLS = {"mmap": ["ENOMEM"], "clone3": ["EAGAIN"], "clone": ["EAGAIN"]}
CLEARING = {"unlinkat", "unlink", "rmdir"}


# A sky, a fog and a cloud, so that an export has something to say and a picture something to show.
MAKE_SCENE = """
createNode transform -n "OrvoSkyData";
string $types[] = {"orvosky_SkySceneSettings", "orvosky_BasicSkyLocator", "orvosky_ExpHeightFog",
                   "orvosky_ParticleCloudShadingParams"};
for ($type in $types) {
    string $parent = `createNode transform -n ($type + "_at") -p "OrvoSkyData"`;
    createNode $type -n ($type + "_shape") -p $parent;
}
setAttr "orvosky_ParticleCloudShadingParams_shape.shadingTexture" -type "string" "build\\\\clouds\\\\cloud_sprite.dds";
createNode transform -n "puffs" -p "OrvoSkyData";
createNode transform -n "cloudAt" -p "puffs";
createNode orvosky_ParticleCloud -n "cloud" -p "cloudAt";
createNode transform -n "puffAt" -p "puffs";
setAttr "puffAt.s" -type "double3" 2000 1000 2000;
createNode orvosky_ParticleCloudSphere -n "puff" -p "puffAt";
createNode transform -n "rendererAt";
createNode orvosky_SkyRenderer -n "renderer" -p "rendererAt";
file -rename "scenes/faults.ma";
file -save -type "mayaAscii";
"""

OPERATIONS = {
    "export": (["export", "scenes/faults.ma", "out/sky.atmos"], ["sky.atmos", "sky.cdata"]),
    "render": (["render", "scenes/faults.ma", "out/sky.png", "--size", "32x18"], ["sky.png"]),
    "library": (["run", "-e", 'file -f -open "scenes/faults.ma";'
                 ' orvosky_ParticleCloud_ExportDataCommand "out/library.xml" "cloud";'],
                ["library.xml"]),
    "save": (["run", "-e", 'file -f -open "scenes/faults.ma"; file -rename "out/saved.ma";'
              ' file -save -type "mayaAscii";'], ["saved.ma"]),
}
EARLIER = "what was there before\n"


class Bench:
    """A copy of the project to work in, one for each worker."""

    def __init__(self, program, project, words, targets):
        self.program, self.project, self.words, self.targets = program, project, words, targets
        self.out = project / "out"

    def run(self, *trace):
        shutil.rmtree(self.out, ignore_errors=True)
        self.out.mkdir()
        for name in self.targets:
            (self.out / name).write_text(EARLIER)
        done = subprocess.Popen([*trace, str(self.program), *self.words], cwd=self.project, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
                                start_new_session=True)
        status = None
        try:
            said, _ = done.communicate(timeout=20)
            status = done.returncode
        except subprocess.TimeoutExpired:
            os.killpg(done.pid, signal.SIGKILL)  # the program too: strace leaves it behind
            said, _ = done.communicate()
        return status, said, {p.name: p.read_bytes() for p in self.out.iterdir()}


def calls_of(bench, scratch):
    """How often each call is made, as the injection counts it: by each thread for itself."""
    log = scratch / "calls"
    bench.run("strace", "-f", "-o", str(log), "-e", "trace=" + ",".join("?" + c for c in [*FILE_CALLS, *OTHER_CALLS]))
    counts = collections.Counter()
    by_thread = collections.Counter()
    for line in log.read_text(errors="replace").splitlines():
        made = re.match(r"(\d+) +(\w+)\(", line)
        if made:
            by_thread[made.groups()] += 1
            counts[made[2]] = max(counts[made[2]], by_thread[made.groups()])
    return counts


def judge(bench, wanted, call, status, said, left):
    """What is wrong with how a run ended; None when nothing is. No status stands for one that did not end."""
    earlier = {name: EARLIER.encode() for name in bench.targets}
    mine = {name: data for name, data in left.items() if name in bench.targets}
    if status is None or status < 0 or status > 128:
        outside = call in OTHER_CALLS or "in libgcrypt" in said
        if bench.words[0] == "render" and outside and left == earlier:
            return None
        return "did not end" if status is None else f"ended by signal {-status if status < 0 else status - 128}"
    if set(left) - set(mine) and call not in CLEARING:
        return "left " + ", ".join(sorted(set(left) - set(mine)))
    if status == 0:
        return None if mine == wanted else "status 0, but the targets are not what they should be"
    if not said.strip():
        return f"status {status} without a word"
    if mine == earlier or (mine == wanted and "in place" in said):
        return None
    return "status %d, and the targets are %s: %s" % (status, "new" if mine == wanted else "a mixture", said.strip()[-200:])


def attempt(bench, wanted, call, number, error):
    trace = ["strace", "-f", "-o", "/dev/null", "-e", f"trace={call}", "-e", f"inject={call}:error={error}:when={number}"]
    wrong = judge(bench, wanted, call, *bench.run(*trace))
    return wrong and f"{call} number {number} fails with {error}: {wrong}"


def main():
    options = argparse.ArgumentParser(usage=__doc__)
    options.add_argument("--program", type=pathlib.Path, default=pathlib.Path("build/release/bin/orvosky"))
    options.add_argument("--jobs", type=int, default=os.cpu_count())
    options.add_argument("--once", action="store_true")
    options.add_argument("operations", nargs="*", metavar="OPERATION")
    given = options.parse_args()
    names = given.operations or list(OPERATIONS)
    program = given.program.resolve()
    if not shutil.which("strace") or not program.exists() or set(names) - set(OPERATIONS):
        print("strace, the program or an operation is not there; --help tells more.", file=sys.stderr)
        return 2
    in_memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    found = []
    with tempfile.TemporaryDirectory(prefix="orvo-faults-", dir=in_memory) as name:
        scratch = pathlib.Path(name)
        project = scratch / "project"
        subprocess.run([str(program), "new", str(project), "--preset", "dusk"], check=True, stdout=subprocess.DEVNULL)
        subprocess.run([str(program), "run", "-e", MAKE_SCENE], cwd=project, check=True)
        for operation in names:
            benches = []
            for worker in range(given.jobs):
                copy = scratch / f"{operation}{worker}"
                shutil.copytree(project, copy)
                benches.append(Bench(program, copy, *OPERATIONS[operation]))
            status, said, wanted = benches[0].run()
            if status != 0 or set(wanted) != set(benches[0].targets):
                print(f"{operation} does not run undisturbed: {said}", file=sys.stderr)
                return 2
            plan = []
            for call, count in sorted(calls_of(benches[0], scratch).items()):
                errors = OTHER_CALLS.get(call, ERRORS)
                # The first map is the loader's, which dies without it.
                for n in range(2 if call == "mmap" else 1, count + 1):
                    plan += [(call, n, e) for e in ([errors[n % len(errors)]] if given.once else errors)]
            free = list(benches)

            def work(step):
                bench = free.pop()
                try:
                    return attempt(bench, wanted, *step)
                finally:
                    free.append(bench)

            with concurrent.futures.ThreadPoolExecutor(given.jobs) as pool:
                wrong = []
                for w in filter(None, pool.map(work, plan)):
                    wrong.append(w)
                    print(f"{operation}: {w}", file=sys.stderr, flush=True)
            kinds = len({call for call, _, _ in plan})
            print(f"{operation}: {len(plan)} runs over {kinds} kinds of calls, {len(wrong)} wrong", flush=True)
            found += wrong
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
