#!/usr/bin/env python3
"""Measures which lines of the core the native tests and seeds run, file by file, and holds them against the
table of lines that are known not to run, under "Coverage" in CONTRIBUTING.md."""
import json
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/core-coverage"
LEAST = 95  # per cent of the lines of each file
ROW = re.compile(r"^\| `(?P<file>[^`]+)` \| `(?P<line>[^`]+)` \|")


def measured():
    """{file: [(text of the line, times it ran)]}, of the lines that hold code."""
    subprocess.run(["gcovr", "--root", ROOT, "--object-directory", BUILD, "--json", BUILD / "coverage.json",
                    "--exclude", "(tests|fuzz|build)/", BUILD], check=True)
    files = {}
    for file in json.loads((BUILD / "coverage.json").read_text())["files"]:
        text = (ROOT / file["file"]).read_text().splitlines()
        files[file["file"]] = [(text[line["line_number"] - 1].strip(), line["count"])
                               for line in file["lines"] if not line["gcovr/noncode"]]
    return files


def first_lines_not_run(lines):
    """The first line of each run of lines that do not run."""
    return [text for (text, count), (_, before) in zip(lines, [("", 1)] + lines) if count == 0 and before > 0]


def main():
    known = {(row["file"], row["line"].replace("\\|", "|"))
             for row in map(ROW.match, (ROOT / "CONTRIBUTING.md").read_text().splitlines()) if row}
    found, failed, total, ran = set(), False, 0, 0
    for file, lines in sorted(measured().items()):
        count = sum(1 for _, times in lines if times)
        total, ran = total + len(lines), ran + count
        found |= {(file, text) for text in first_lines_not_run(lines)}
        if count < len(lines):
            print(f"{100 * count / len(lines):5.1f} %  {count:4} of {len(lines):4}  {file}")
        failed |= 100 * count < LEAST * len(lines)
    print(f"{100 * ran / total:5.1f} %  {ran} of {total}  all files; those not named: 100 %")
    for file, text in sorted(found - known):
        print(f"not run and not in the table: {file}: {text}")
    for file, text in sorted(known - found):
        print(f"in the table, but it runs or is gone: {file}: {text}")
    sys.exit(failed or found != known)


main()
