#!/usr/bin/env python3
"""Puts a certificate into every signed document of the corpus, twice, and reads the store back with qpdf.

usage: store.py PROGRAM CORPUS CERTIFICATE

The old bytes are unchanged; each signature has its entry under the right key; each reference, entry and key of a store
that was there is still there; qpdf and "varnpdf verify" say of the new document what they said of the old one.
"""
import hashlib
import json
import pathlib
import re
import subprocess
import sys
import tempfile

ARRAYS = {"/Certs", "/CRLs", "/OCSPs", "/Cert", "/CRL", "/OCSP"}


def run(*command):
    done = subprocess.run(command, capture_output=True, timeout=120)
    return done.returncode, done.stdout, done.stderr.decode(errors="replace").strip()


class Document:
    def __init__(self, path):
        self.path = path
        out = run("qpdf", "--json=2", "--json-stream-data=none", str(path))[1]
        self.objects = json.loads(out.decode(errors="surrogateescape"))["qpdf"][1]
        self.catalogue = self.get(self.objects["trailer"]["value"]["/Root"])
        self.store = self.get(self.catalogue.get("/DSS")) or {}

    def get(self, value):
        for _ in range(8):
            item = self.objects.get(f"obj:{value}") if isinstance(value, str) else None
            if item is None:
                return None if isinstance(value, str) and re.fullmatch(r"\d+ \d+ R", value) else value
            value = item["value"] if "value" in item else item["stream"]["dict"]
        return None

    def entries(self):
        vri = self.get(self.store.get("/VRI")) or {}
        return {key: self.get(value) for key, value in vri.items()}

    def keys(self):
        """The key of each signature, in the order of the fields: of those that are annotations, if there are any."""
        counted = list(self._keys(lambda field: field.get("/Type") == "/Annot"))
        return counted or list(self._keys(lambda field: True))

    def _keys(self, wanted):
        for item in sorted(self.objects.items(), key=lambda pair: int(re.search(r"\d+|$", pair[0]).group() or 0)):
            field = item[1].get("value")
            if isinstance(field, dict) and field.get("/FT") == "/Sig" and wanted(field) and "/V" in field:
                contents = (self.get(field["/V"]) or {}).get("/Contents", "")
                raw = bytes.fromhex(contents[2:]) if contents.startswith("b:") else contents[2:].encode()
                yield "/" + hashlib.sha1(raw).hexdigest().upper() if contents else None


def kept(old, new, old_value, new_value, where):
    """What of the old dictionary is not in the new one."""
    for key, value in old_value.items():
        if key == "/VRI":
            continue
        if key in ARRAYS:
            before, after = old.get(value) or [], new.get(new_value.get(key)) or []
            if isinstance(before, list) and after[:len(before)] != before:
                yield f"{where} {key}: {before} became {after}"
        elif new_value.get(key) != value:
            yield f"{where} {key}: {value} became {new_value.get(key)}"


def check(program, path, work, certificate):
    out = work / "out.pdf"
    old = Document(path)
    for name in ("first", "second"):
        source = path if name == "first" else work / "first.pdf"
        code, _, err = run(program, "dss", str(source), "-o", str(out), "--cert", certificate)
        if code != 0:
            yield f"{name} run: {err}"
            return
        if not out.read_bytes().startswith(source.read_bytes()):
            yield f"{name} run: old bytes changed"
        out.rename(work / f"{name}.pdf")
    new = Document(work / "second.pdf")
    yield from kept(old, new, old.store, new.store, "store")
    entries = new.entries()
    for key, value in old.entries().items():
        if isinstance(value, dict):
            yield from kept(old, new, value, entries.get(key) or {}, f"entry {key}")
    keys = [key for key in old.keys() if key]
    for key in keys:
        if key not in entries:
            yield f"no entry {key} among {list(entries)}"
    for values, key in ((new.store, "/Certs"), (entries.get(keys[-1]) or {}, "/Cert")):
        before = old.store if key == "/Certs" else old.entries().get(keys[-1]) or {}
        found = len(new.get(values.get(key)) or []) - len(old.get(before.get(key)) or [])
        if found != 2:
            yield f"{found} new references in {key} instead of two"
    if run("qpdf", "--check", str(work / "second.pdf"))[0] > run("qpdf", "--check", str(path))[0]:
        yield "qpdf --check has more to say than before"
    judged = [re.findall(r"^ +result .*", run(program, "verify", str(p))[1].decode(), re.M)
              for p in (path, work / "second.pdf")]
    if judged[0] != judged[1]:
        yield f"verify: {judged[0]} became {judged[1]}"


def main(program, corpus, certificate):
    corpus = pathlib.Path(corpus)
    facts = [line.split("\t") for line in (corpus / "facts.tsv").read_text().splitlines()[1:]]
    checked, with_store, refused, failures = 0, 0, 0, []
    with tempfile.TemporaryDirectory() as name:
        for file in (corpus / row[0] for row in facts if row[3].isdigit() and int(row[3]) > 0):
            code, out, _ = run(program, "info", "--json", str(file))
            known = json.loads(out)
            if code != 0 or not known["signatures"]:
                refused += 1
                continue
            checked += 1
            with_store += known["security_store"] is not None
            for problem in check(program, file, pathlib.Path(name), certificate):
                failures.append(f"{file.relative_to(corpus)}: {problem}")
    for failure in failures:
        print("FAILED", failure[:600])
    print(f"{checked} documents, {with_store} of them with a store; {refused} without a counted signature; "
          f"{len(failures)} failures")
    return 0 if checked > 0 and not failures else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
