"""Runs vrc-panel on one script and checks its answer lines against the script's expected ones.

A line of the .expected file is compared as it stands, or, when it starts with "~ ", matched as a
regular expression against the whole answer line.
Usage: run_script.py VRC_PANEL SCRIPT EXPECTED [OPTION ...]
"""
import os
import re
import subprocess
import sys


def main(panel, script, expected_path, *options):
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen")
    run = subprocess.run([panel, *options, "--script", script], capture_output=True, text=True,
                         env=environment, timeout=120)
    if run.returncode != 0:
        sys.exit(f"vrc-panel ended with {run.returncode}\n{run.stderr}")
    got = run.stdout.splitlines()
    with open(expected_path, encoding="utf-8") as expected_file:
        wanted = expected_file.read().splitlines()
    if len(got) != len(wanted):
        sys.exit(f"{len(got)} answer lines, {len(wanted)} expected:\n" + "\n".join(got))
    for number, (line, want) in enumerate(zip(got, wanted), 1):
        matches = re.fullmatch(want[2:], line) if want.startswith("~ ") else line == want
        if not matches:
            sys.exit(f"answer line {number}: {line}\nexpected: {want}")


if __name__ == "__main__":
    main(*sys.argv[1:])
