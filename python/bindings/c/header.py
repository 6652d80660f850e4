"""What the package takes from nuqi.h and operations.tsv as text: header.py nuqi.h operations.tsv INC PY

INC, for C++, holds each function's name and those of its parameters. PY, nuqi/_header.py, holds what help() says of
them: SECTIONS, the contract of each family as paragraphs and labelled parts, and FUNCTIONS, by name the section,
the line above the prototype and the operation of nuqi that does the same.
"""

import csv
import fnmatch
import pathlib
import re
import sys

HEADER, OPERATIONS, INC, PY = map(pathlib.Path, sys.argv[1:])
LABELLED = re.compile(r"(\S.{0,10}?)\s{2,}(\S.*)")


def section_of(comment: str) -> dict[str, str]:
    """The parts of a section's comment by their labels; what comes before the first one has none."""
    parts = {"": ""}
    label = ""
    for line in comment.splitlines():
        text = line[3:].rstrip()
        match = LABELLED.fullmatch(text)
        if match and not text.startswith(" ") and len(text) - len(match[2]) == 12:
            label = match[1]
            parts[label] = match[2]
        else:
            if text and label and not text.startswith(" " * 12):
                label = ""
            parts[label] += "\n" + text[12 if label else 0 :]
    return {label: text.strip("\n") for label, text in parts.items()}


def operations() -> dict[str, str]:
    """Operations by the patterns of the functions that they are made of."""
    with OPERATIONS.open(encoding="utf-8") as file:
        rows = list(csv.DictReader(file, delimiter="\t"))
    return {pattern: row["operation"] for row in rows for pattern in row["functions"].split()}


header = HEADER.read_text(encoding="utf-8")
pattern = (
    r"/\* ---- (?P<section>.*?) -+\n(?P<comment>(?: \*(?!/).*\n)*) \*/"
    r"|^/\*\* (?P<line>.*) \*/\nNUQI_API StatusCode (?P<name>\w+)\((?P<parameters>[^;]*)\);"
)
by_pattern = operations()
sections: dict[str, dict[str, str]] = {}
functions: dict[str, tuple[str, str, str]] = {}
rows = []
for match in re.finditer(pattern, header, re.MULTILINE):
    if match["section"]:
        section = match["section"]
        sections[section] = section_of(match["comment"])
        continue
    parameters = [re.findall(r"\w+", re.sub(r"\[\d+\]", "", one))[-1] for one in match["parameters"].split(",")]
    rows.append(f'{{"{match["name"]}", "{" ".join(parameters)}"}},')
    reached = [operation for glob, operation in by_pattern.items() if fnmatch.fnmatchcase(match["name"], glob)]
    functions[match["name"]] = (section, match["line"], reached[0] if reached else "")

INC.write_text("\n".join(rows) + "\n", encoding="utf-8")
PY.parent.mkdir(parents=True, exist_ok=True)
PY.write_text(
    "\n".join(
        ['"""The text of nuqi.h, for help()."""', "", "SECTIONS = {"]
        + [f"    {name!r}: {parts!r}," for name, parts in sections.items()]
        + ["}", "FUNCTIONS = {"]
        + [f"    {name!r}: {text!r}," for name, text in functions.items()]
        + ["}", ""]
    ),
    encoding="utf-8",
)
