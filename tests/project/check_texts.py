#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Compares what the project's texts quote with what they quote from, and follows their links.

A code block that stands under `<!-- from: PATH -->` must be that file, without its licence line. A link to a file
of the project must lead to one.
"""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
faults = []


def check_quotes(text, where):
    quotes = re.findall(r"<!-- from: (\S+) -->\n+```\w*\n(.*?)```", text, re.S)
    if len(quotes) != text.count("<!-- from: "):
        faults.append(f"{where}: a 'from' mark without a code block")
    for path, quoted in quotes:
        lines = (root / path).read_text().splitlines(keepends=True)
        if quoted != "".join(line for line in lines if "SPDX-License-Identifier" not in line):
            faults.append(f"{where}: the quoted text differs from {path}")
    return len(quotes)


def check_links(text, where):
    for target in re.findall(r"\]\(([^)#\s]+)", text):
        if "://" not in target and not (where.parent / target).exists():
            faults.append(f"{where}: no such file: {target}")


texts = [*root.glob("*.md"), *root.glob("docs/**/*.md"), *root.glob("examples/*.md")]
quotes = 0
for path in texts:
    text = path.read_text()
    quotes += check_quotes(text, path)
    check_links(text, path)
if quotes == 0:
    faults.append("no text quotes an example any more")
print("\n".join(faults) or f"{len(texts)} texts, {quotes} quotes: as they should be")
sys.exit(1 if faults else 0)
