#!/usr/bin/env python3
"""Private members of exported classes that the library exports: each ties hosts to what is none of their business.

Usage: private.py DESCRIBED LIBRARY. DESCRIBED has the debug information of all exported classes (see abi.sh). Prints
the readable names, one a line.
"""
import collections
import re
import subprocess
import sys

# Types that have members; are these open to all by default?
TYPES = {"DW_TAG_class_type": False, "DW_TAG_structure_type": True, "DW_TAG_union_type": True}
Class = collections.namedtuple("Class", "level name open hidden")


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def entries(file):
    """(level, tag, attributes) of the debug information; the attributes are those that tell name and access."""
    head = re.compile(r" *<(\d+)><[0-9a-f]+>: Abbrev Number: \d+ \((\w+)\)")
    attribute = re.compile(r" *<[0-9a-f]+> +DW_AT_(linkage_name|accessibility|name) *: (?:\(.*\): )?(\S+)")
    entry = None
    for line in run("readelf", "--debug-dump=info", file).splitlines():
        if found := head.match(line):
            if entry:
                yield entry
            entry = (int(found[1]), found[2], {})
        elif entry and (found := attribute.match(line)):
            entry[2][found[1]] = found[2]
    if entry:
        yield entry


def plain(symbol):
    """Constructors and destructors have one name in a class and several in a library."""
    return re.sub(r"([CD])[0-9](E)", r"\1\2", symbol)


def private_members(file):
    """What is declared private or inside of a private type: linkage names of functions, readable names of the rest."""
    functions, others, classes = set(), set(), []
    for level, tag, attributes in entries(file):
        while classes and classes[-1].level >= level:
            classes.pop()
        outer = classes[-1] if classes else None
        access = attributes.get("accessibility", "1" if outer is None or outer.open else "3")
        hidden = outer is not None and (outer.hidden or access == "3")
        name = "::".join(part for part in (outer and outer.name, attributes.get("name")) if part)
        if hidden and "linkage_name" in attributes:
            functions.add(plain(attributes["linkage_name"]))
        elif hidden:
            others.add(name)
        if tag in TYPES:
            classes.append(Class(level, name, TYPES[tag], hidden))
    return functions, others


def is_private(symbol, readable, functions, others):
    """A type that the headers only declare shows nothing of its members but its name in front of theirs."""
    names = readable.split("(")[0].split("::")
    return plain(symbol) in functions or any("::".join(names[:i]) in others for i in range(2, len(names) + 1))


def main():
    described, library = sys.argv[1:]
    functions, others = private_members(described)
    if not functions and not others:
        sys.exit(f"{described} tells of no private member")
    exported = [line.split()[-1] for line in run("nm", "-D", "--defined-only", library).splitlines()]
    readable = run("c++filt", *exported).splitlines()
    shown = {name for symbol, name in zip(exported, readable) if is_private(symbol, name, functions, others)}
    print("".join(name + "\n" for name in sorted(shown)), end="")


if __name__ == "__main__":
    main()
