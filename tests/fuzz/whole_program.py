#!/usr/bin/env python3
"""The whole-program loop: mutated designs and configuration files through `vesk-db import`
and `vesk` with the switch sets of the deck tests. A crash, a run over 10 seconds or a
sanitizer report is a finding; its design, configuration and command line are kept in
<bin>/fuzz-work/findings/ and printed.

Usage: whole_program.py --bin build-asan [--seconds 60] [--seed N]
"""
import argparse
import glob
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.dirname(os.path.dirname(HERE))

# The switch sets the deck tests run with, and the design names they give.
SWITCH_SETS = ["", "-h", "-_ -h", "-s -h", "-s", "-z", "-h -z", "-n", "-m", "-m -n", "-m -h", "-v -n",
               "-x", "-r", "-e", "-e -h", "-a", "-q", "-q -h -m", "-_ -__ -7 -h", "-_", "-lSTOP", "-h -lSTOP",
               "-kmy.cfg", "-h -ghdr.inc", "-omyorder", "-oEXT=MYORDER", "-c", "-f", "-i", "-t", "-p", "-d"]

# Words a mutation puts into string values: names that reach paths, markers the passes look
# for, numbers at the edges and expressions.
PALETTE = ["..\\..\\x", "../../x", "/tmp/x", "a\\b", "", " ", "GND", "0", "-1", "1e308", "1/0", "2**", "((((1",
           "PARAMS:", "@", "$", "$1I1", "{W}", "W=1", "*.END", ".SUBCKT X", ".ENDS", "\n", "\r\n+", "%HOME%",
           "1MEG", "1U", "MIL", "x" * 300, "VALUE$", "\"DC\" VALUE$", "@VALUE", "L=1 W=2", "#", "|", "A:B",
           "\u00e9", "\x00", "<", "&amp;", "X1.X2", "TOP", "RES.1", "4294967296", "-2147483649"]


def mutate_value(value, rng):
    if isinstance(value, str):
        choice = rng.randrange(4)
        if choice == 0:
            return rng.choice(PALETTE)
        if choice == 1 and value:
            cut = rng.randrange(len(value) + 1)
            return value[:cut] + rng.choice(PALETTE) + value[cut:]
        if choice == 2:
            return value * rng.randrange(0, 4)
        return value[::-1]
    if isinstance(value, bool):
        return not value
    if isinstance(value, int):
        return rng.choice([0, -1, 1, 2, 7, 65535, 2 ** 31, -(2 ** 31) - 1, 2 ** 63, value + 1])
    if isinstance(value, float):
        return rng.choice([0.0, -1.0, 1e308, value * 2])
    if value is None:
        return rng.choice(["", 0, [], {}])
    return value


def walk(node, visit):
    """Calls visit(container, key) for every member of the tree."""
    if isinstance(node, dict):
        for key in list(node.keys()):
            visit(node, key)
            if key in node:
                walk(node[key], visit)
    elif isinstance(node, list):
        for index in range(len(node)):
            if index < len(node):
                visit(node, index)
                if index < len(node):
                    walk(node[index], visit)


def mutate_design(design, rng):
    """A few structural mutations: values changed, members dropped or doubled, keys renamed."""
    rate = rng.choice([0.02, 0.05, 0.15])

    def visit(container, key):
        if rng.random() >= rate:
            return
        action = rng.randrange(5)
        if action == 0 or not isinstance(container[key], (dict, list)):
            container[key] = mutate_value(container[key], rng)
        elif action == 1 and isinstance(container, list):
            container.append(json.loads(json.dumps(container[key])))
        elif action == 2 and isinstance(container, dict):
            container[rng.choice(PALETTE)] = container.pop(key)
        elif action == 3:
            if isinstance(container, dict):
                del container[key]
            else:
                container[key] = rng.choice([None, {}, [], "x"])
        else:
            container[key] = mutate_value(json.dumps(container[key])[:40], rng)

    walk(design, visit)
    return design


def mutate_text(text, rng):
    """Byte-level mutations of a text: lines swapped, doubled, cut, palette words put in."""
    lines = text.split("\n")
    for _ in range(rng.randrange(1, 6)):
        if not lines:
            break
        i = rng.randrange(len(lines))
        action = rng.randrange(4)
        if action == 0:
            lines.insert(i, lines[rng.randrange(len(lines))])
        elif action == 1:
            del lines[i]
        elif action == 2:
            cut = rng.randrange(len(lines[i]) + 1)
            lines[i] = lines[i][:cut] + rng.choice(PALETTE) + lines[i][cut:]
        else:
            lines[i] = lines[i][: rng.randrange(len(lines[i]) + 1)]
    return "\n".join(lines)


def run(program, args, folder, env, timeout=10):
    start = time.time()
    try:
        done = subprocess.run([program] + args, cwd=folder, env=env, capture_output=True, timeout=timeout)
    except subprocess.TimeoutExpired:
        return "hang over %d s" % timeout, time.time() - start
    errors = done.stderr.decode("utf-8", "replace")
    if done.returncode < 0:
        return "killed by signal %d\n%s" % (-done.returncode, errors[-3000:]), 0
    for mark in ("AddressSanitizer", "LeakSanitizer", "runtime error:", "UndefinedBehaviorSanitizer"):
        if mark in errors:
            return "sanitizer report\n" + errors[-6000:], 0
    return None, time.time() - start


# The absolute names the palette offers: a run that wrote one escaped the project. Files there
# before the loop (another program's) count only when a run changes them.
PALETTE_PATHS = ("/tmp/x", "/tmp/x.cir", "/tmp/x.xrf")


def stamp(path):
    try:
        info = os.stat(path)
        return (info.st_mtime_ns, info.st_size)
    except OSError:
        return None


PALETTE_BEFORE = {p: stamp(p) for p in PALETTE_PATHS}


def outside_files(sandbox, folder):
    """Paths in the sandbox outside the run folder, which sits three levels down in it, and
    the palette's absolute names: what a name that escaped the project wrote."""
    found = []
    for root, dirs, files in os.walk(sandbox):
        if os.path.abspath(root) == os.path.abspath(folder):
            dirs[:] = []
            continue
        for name in files:
            found.append(os.path.join(root, name))
        if not dirs and not files and root != sandbox and not os.path.abspath(folder).startswith(os.path.abspath(root)):
            found.append(root)
    found += [p for p in PALETTE_PATHS if stamp(p) is not None and stamp(p) != PALETTE_BEFORE.get(p)]
    return sorted(found)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--bin", default="build-asan")
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--seed", type=int, default=None)
    options = parser.parse_args()
    bin_dir = os.path.abspath(options.bin)
    seed = options.seed if options.seed is not None else int(time.time())
    rng = random.Random(seed)
    designs = []
    for path in sorted(glob.glob(os.path.join(HERE, "corpus", "json_import", "*"))):
        try:
            with open(path, encoding="utf-8") as f:
                designs.append(json.load(f))
        except (ValueError, UnicodeDecodeError):
            pass
    with open(os.path.join(SOURCE, "examples", "standard", "vesk.cfg"), encoding="utf-8") as f:
        config = f.read()
    findings_dir = os.path.join(bin_dir, "fuzz-work", "findings")
    os.makedirs(findings_dir, exist_ok=True)
    env = dict(os.environ, GALT_HOME="galt", SOURCE_DATE_EPOCH="0",
               ASAN_OPTIONS="detect_leaks=1", UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1")
    env.pop("WDIR", None)
    env.pop("CURRENT_PROJECT_PATH", None)
    sandbox = tempfile.mkdtemp(prefix="vesk-whole-")
    deadline = time.time() + options.seconds
    runs = findings = 0
    try:
        while time.time() < deadline:
            design = mutate_design(json.loads(json.dumps(rng.choice(designs))), rng)
            cfg = mutate_text(config, rng) if rng.random() < 0.3 else config
            switches = rng.choice(SWITCH_SETS)
            names = [b.get("name", "TOP") for b in design.get("blocks", []) if isinstance(b, dict)] \
                if isinstance(design, dict) and isinstance(design.get("blocks"), list) else []
            group = str(rng.choice(names)) if names and rng.random() < 0.9 else rng.choice(PALETTE)
            if names and isinstance(design["blocks"][0], dict) and rng.random() < 0.1:
                # A root block whose name leads out of the project.
                group = rng.choice(["..\\..\\x", "../../x", "/tmp/x"])
                design["blocks"][0]["name"] = group
            folder = os.path.join(sandbox, "a", "b", "run")
            shutil.rmtree(os.path.join(sandbox, "a"), ignore_errors=True)
            os.makedirs(os.path.join(folder, "galt", "standard"))
            with open(os.path.join(folder, "galt", "standard", "vesk.cfg"), "w", encoding="utf-8",
                      errors="surrogatepass") as f:
                f.write(cfg)
            for name, text in (("my.cfg", cfg), ("hdr.inc", ".tran 1n 10n\n")):
                with open(os.path.join(folder, name), "w", encoding="utf-8", errors="surrogatepass") as f:
                    f.write(text)
            with open(os.path.join(folder, "design.json"), "w", encoding="utf-8", errors="surrogatepass") as f:
                json.dump(design, f)
            group = group.replace("\x00", "")
            args = switches.split() + ([group] if group else [])
            problem, _ = run(os.path.join(bin_dir, "vesk-db"), ["import", "design.json"], folder, env)
            what = "vesk-db import design.json"
            if problem is None:
                problem, _ = run(os.path.join(bin_dir, "vesk"), args, folder, env)
                what = "vesk " + " ".join(args)
            if problem is None:
                escaped = outside_files(sandbox, folder)
                if escaped:
                    problem = "wrote outside the project: %s" % escaped
            runs += 1
            if problem:
                findings += 1
                kept = os.path.join(findings_dir, "whole-%d-%d" % (seed, runs))
                shutil.copytree(folder, kept)
                with open(os.path.join(kept, "COMMAND"), "w") as f:
                    f.write(what + "\n")
                print("whole program: FINDING in `%s` (kept in %s):\n%s" % (what, kept, problem))
                if findings >= 3:
                    break
    finally:
        shutil.rmtree(sandbox, ignore_errors=True)
    print("whole program: %d runs, %d findings (seed %d)" % (runs, findings, seed))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
