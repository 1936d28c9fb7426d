"""The fields of the corpus' forms as varnpdf and qpdf list them, and every form filled: the old bytes are a prefix, qpdf
finds no more than before, the values read back, and signatures stay valid. Usage: fields.py PROGRAM CORPUS"""
import json
import subprocess
import sys
import tempfile
from pathlib import Path

PROGRAM, CORPUS = sys.argv[1], Path(sys.argv[2])
KINDS = {"/Tx": {"text"}, "/Btn": {"push button", "radio buttons", "check box"}, "/Ch": {"combo box", "list box"},
         "/Sig": {"signature"}, "": {"unknown"}}
# docs/fields.md explains them.
EXPLAINED = {"pdfjs/poppler-395-0-fuzzed.pdf", "qpdf/rotated-shared-annotations-1.pdf"}


def output(*command, codes=(0,)):
    done = subprocess.run([str(part) for part in command], capture_output=True, check=False)
    return done.stdout if done.returncode in codes else None


def listed(path):
    out = output(PROGRAM, "fields", path, "--json")
    return None if out is None else json.loads(out)["fields"]


def by_qpdf(path):
    out = output("qpdf", "--json=1", "--json-key=acroform", path, codes=(0, 3))
    if out is None:
        return None
    fields = {}
    for widget in json.loads(out)["acroform"]["fields"]:
        fields.setdefault(widget["fullname"], []).append(widget)
    return fields


def text_of(value):
    if not isinstance(value, str) or value.endswith(" R"):
        return None
    return value.removeprefix("/")


def differences(ours, theirs):
    # qpdf lists widgets on pages; a field without one it does not see.
    mine = {}
    for field in ours:
        mine.setdefault(field["name"], []).append(field)
    for name in mine.keys() ^ theirs.keys():
        if name in theirs or mine[name][0]["page"] is not None:
            yield f"{name!r} is listed by one only"
    for name in mine.keys() & theirs.keys():
        field, widgets = mine[name][0], theirs[name]
        if field["type"] not in KINDS[widgets[0]["fieldtype"]] or field["flag_bits"] != widgets[0]["fieldflags"]:
            yield f"{name!r} has another type or other flags"
        value = text_of(widgets[0]["value"])
        if value is not None and value != (field["value"] or ""):
            yield f"{name!r} has another value"
        if field["page"] not in {widget["pageposfrom1"] for widget in widgets}:
            yield f"{name!r} stands on another page"
        if sum(part["widgets"] for part in mine[name]) != len(widgets):
            yield f"{name!r} has another number of widgets"


def value_for(field):
    value = "Erste Zeile (1)\nund eine zweite \\" if "multiline" in field["flags"] else "Grüße (ß) \\"
    return value[:field["max_length"]]


def valid_signatures(path):
    return (output("pdfsig", "-nocert", path, codes=range(256)) or b"").count(b"Signature is Valid")


def check(path):
    """qpdf's exit code for the file."""
    return subprocess.run(["qpdf", "--check", str(path)], capture_output=True, check=False).returncode


def faults_of_filling(path, ours, out):
    fillable = {field["name"]: value_for(field) for field in ours
                if field["type"] == "text" and "read-only" not in field["flags"] and not field["locked"]}
    if not fillable:
        return None
    sets = [part for name, value in fillable.items() for part in ("--set", f"{name}={value}")]
    if output(PROGRAM, "fill", path, "-o", out, *sets) is None:
        return ["cannot be filled"]
    faults = []
    if not out.read_bytes().startswith(path.read_bytes()):
        faults.append("the old bytes changed")
    if check(out) > check(path):
        faults.append("qpdf finds more than before")
    again = {field["name"]: field["value"] for field in listed(out) or []}
    faults += [f"{name!r} reads {again.get(name)!r}" for name in fillable if again.get(name) != fillable[name]]
    if valid_signatures(out) != valid_signatures(path):
        faults.append("signatures became invalid")
    return faults


def main():
    forms = filled = bad = 0
    explained = set()
    rows = (CORPUS / "facts.tsv").read_text().splitlines()[1:]
    with tempfile.TemporaryDirectory() as work:
        for name in (row.split("\t")[0] for row in rows):
            ours = listed(CORPUS / name)
            theirs = by_qpdf(CORPUS / name) if ours is not None else None
            if not ours and not theirs:
                continue
            forms += 1
            found = list(differences(ours, theirs)) if theirs is not None else []
            if found and name in EXPLAINED:
                explained.add(name)
                found = []
            faults = faults_of_filling(CORPUS / name, ours, Path(work) / "out.pdf")
            filled += faults is not None
            for fault in found + (faults or []):
                bad += 1
                print(f"{name}: {fault}")
    for name in EXPLAINED - explained:
        bad += 1
        print(f"{name}: explained, but there is no difference")
    print(f"{forms} forms, {filled} filled, {bad} faults")
    return 1 if bad or not forms or not filled else 0


sys.exit(main())
