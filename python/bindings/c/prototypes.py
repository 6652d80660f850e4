"""Prints what C++ cannot know of the prototypes in nuqi.h: for each, its section and its parameters' names."""

import re
import sys

header = open(sys.argv[1], encoding="utf-8").read()
pattern = r"/\* ---- (?P<section>.*?) -+(?: \*/)?$|^NUQI_API StatusCode (?P<name>\w+)\((?P<parameters>[^;]*)\);"
section = ""
for match in re.finditer(pattern, header, re.MULTILINE):
    if match["section"]:
        section = match["section"]
        continue
    names = [re.findall(r"\w+", re.sub(r"\[\d+\]", "", one))[-1] for one in match["parameters"].split(",")]
    print(f'{{"{match["name"]}", "{section}", "{" ".join(names)}"}},')
