#!/usr/bin/env python3
"""Signs every document of a corpus and lets independent programs judge the results.

A document is signed invisibly, and again visibly; each result is signed a second and a third time, in another corner of
the page. After every signature:

  prefix   the bytes of the document before are the beginning of the result
  qpdf     "qpdf --check" says nothing that it did not say of the document (numbers left aside), and ends no worse
  pdfsig   every signature that was valid is valid, so is the new one, and it covers the whole file
  verify   the same from "varnpdf verify"
  picture  the page looks as before outside of the signature, and the signature stands there upright (pdftoppm)

Failures must be those of the kept list (see --expected). Exit code: 0 all as expected, 1 not, 2 wrong use, 77 nothing
to sign or no tool.
"""
import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import zlib

import matrix_documents

HERE = pathlib.Path(__file__).resolve().parent
TOOLS = ("qpdf", "pdfsig", "pdftoppm", "openssl")
SECONDS = 120
LONG_SIDE = 420  # pixels of a rendered page
SLACK = 2  # pixels, for smoothed edges; at least one point, because fractions of the box are dropped
# The picture of a visible signature: upper left, upper right, lower left, lower right.
QUADRANTS = ((200, 30, 30), (30, 150, 30), (30, 30, 200), (230, 210, 60))

Failure = collections.namedtuple("Failure", "file mode check step detail")


class Failed(Exception):
    def __init__(self, check, detail):
        super().__init__(detail)
        self.check = check


def run(check, *command):
    try:
        done = subprocess.run([str(part) for part in command], capture_output=True, timeout=SECONDS,
                              stdin=subprocess.DEVNULL)
    except subprocess.TimeoutExpired as error:
        raise Failed(check, f"{command[0]} took more than {SECONDS} seconds") from error
    return done.returncode, done.stdout, done.stderr.decode(errors="replace").strip()


# --- what the programs say --------------------------------------------------------------------------------------------

def qpdf(file):
    """Exit code and complaints, without names and numbers."""
    code, out, err = run("qpdf", "qpdf", "--check", file)
    complaints = set()
    for line in (out.decode(errors="replace") + "\n" + err).splitlines():
        if line.startswith(("WARNING:", "ERROR:", "qpdf:")) and "operation succeeded" not in line:
            complaints.add(re.sub(r"-?\d+", "#", line.replace(str(file), "FILE")))
    return code, complaints


def pdfsig(file):
    """Signed range -> (valid, covers the whole file). poppler gives a range by its ends."""
    found = {}
    text = run("pdfsig", "pdfsig", "-nocert", file)[1].decode(errors="replace")
    for block in re.split(r"^Signature #\d+:$", text, flags=re.M)[1:]:
        ranges = re.search(r"Signed Ranges: \[(\d+) - (\d+)\], \[(\d+) - (\d+)\]", block)
        if ranges:
            a, b, c, d = map(int, ranges.groups())
            whole = re.search("^ +- Total document signed", block, re.M) is not None
            found[a, b - a, c, d - c] = ("Signature is Valid" in block, whole)
    return found


def verify(program, file):
    """Signed range -> (intact, covers the whole file)."""
    out = run("verify", program, "verify", "--json", file)[1]
    try:
        signatures = json.loads(out)["signatures"]
    except (ValueError, KeyError) as error:
        raise Failed("verify", "no result") from error
    return {tuple(s["byte_range"]): (s["intact"], s["covers_whole_file"]) for s in signatures if s["byte_range"]}


def check_signatures(check, before, after, new):
    for ranges, (valid, _) in before.items():
        if valid and not after.get(ranges, (False,))[0]:
            raise Failed(check, f"the signature {list(ranges)} was valid before")
    if new not in after:
        raise Failed(check, "the new signature is not found")
    valid, whole = after[new]
    if not valid or not whole:
        raise Failed(check, "the new signature " + ("does not cover the whole file" if valid else "is not valid"))


# --- pictures ---------------------------------------------------------------------------------------------------------

def png(path, size=64):
    row = [b"\0" + b"".join(bytes(QUADRANTS[2 * lower + right]) * (size // 2) for right in (0, 1)) for lower in (0, 1)]
    data = zlib.compress(b"".join(row[lower] * (size // 2) for lower in (0, 1)))
    with open(path, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n")
        header = struct.pack(">IIBBBBB", size, size, 8, 2, 0, 0, 0)
        for kind, body in ((b"IHDR", header), (b"IDAT", data), (b"IEND", b"")):
            out.write(struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body)))


class Picture:
    """A page as poppler paints it: whole media box, turned as a reader sees it."""

    def __init__(self, file, number=1):
        _, out, err = run("picture", "pdftoppm", "-f", number, "-l", number, "-scale-to", LONG_SIDE, file)
        header = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", out)
        if not header:
            raise Failed("picture", "pdftoppm paints nothing: " + err[-80:])
        self.file, self.number = file, number
        self.width, self.height = int(header[1]), int(header[2])
        self.rows = [out[header.end() + y * self.width * 3:][:self.width * 3] for y in range(self.height)]

    def at(self, x, y):
        x, y = min(max(int(x), 0), self.width - 1), min(max(int(y), 0), self.height - 1)
        return tuple(self.rows[y][3 * x:3 * x + 3])

    def is_stable(self):
        """Some pages, fonts with broken outlines above all, are painted differently each time."""
        return Picture(self.file, self.number).rows == self.rows

    def differs_outside(self, other, frame):
        """A pixel outside of the frame (left, top, right, bottom) that is not as it was."""
        left, top, right, bottom = (max(0, round(value)) for value in frame)
        for y, (mine, old) in enumerate(zip(self.rows, other.rows)):
            if mine == old:
                continue
            for x in range(self.width):
                if not (left <= x < right and top <= y < bottom):
                    if any(abs(a - b) > 40 for a, b in zip(mine[3 * x:3 * x + 3], old[3 * x:3 * x + 3])):
                        return x, y
        return None


class Place:
    """Where the n-th visible signature of a page stands: a corner, size and distance by the size of the page."""
    CORNERS = ("lower-left", "upper-right", "upper-left")

    def __init__(self, page, step):
        left, lower, right, upper = page["box"] or (0, 0, 612, 792)
        self.page = (right - left, upper - lower) if page["rotation"] % 180 == 0 else (upper - lower, right - left)
        self.size = [max(1, min(180, int(0.4 * self.page[0]))), max(1, min(90, int(0.3 * self.page[1])))]
        self.away = [min(20, int(0.05 * side)) for side in self.page]
        self.corner = self.CORNERS[step]

    def options(self, image):
        return ("--size", "{},{}".format(*self.size), "--position", "{},{}".format(*self.away), "--corner", self.corner,
                "--image", image)

    def frame(self, picture):
        """Left, top, right, bottom in pixels."""
        scale = picture.width / self.page[0], picture.height / self.page[1]
        x = self.page[0] - self.away[0] - self.size[0] if "right" in self.corner else self.away[0]
        y = self.away[1] if "upper" in self.corner else self.page[1] - self.away[1] - self.size[1]
        return [x * scale[0], y * scale[1], (x + self.size[0]) * scale[0], (y + self.size[1]) * scale[1]]

    def check(self, before, after):
        slack = max(SLACK, *(pixels / points for pixels, points in zip((after.width, after.height), self.page)))
        if (before.width, before.height) != (after.width, after.height):
            raise Failed("picture", "the page has another size than before")
        left, top, right, bottom = frame = self.frame(after)
        pixel = after.differs_outside(before, [left - slack, top - slack, right + slack, bottom + slack])
        if pixel and before.is_stable():
            raise Failed("picture", "outside of the signature the page differs, first at {},{}".format(*pixel))
        for number, colour in enumerate(QUADRANTS):
            x = left + (right - left) * (0.75 if number % 2 else 0.25)
            y = top + (bottom - top) * (0.75 if number // 2 else 0.25)
            if any(abs(a - b) > 60 for a, b in zip(after.at(x, y), colour)):
                raise Failed("picture", f"quadrant {number} of the signature is {after.at(x, y)} in {frame}")


# --- one document -----------------------------------------------------------------------------------------------------

class Chain:
    """A document and what is known of it; sign() makes the next one."""

    def __init__(self, matrix, file, mode, page):
        self.matrix, self.file, self.mode, self.page = matrix, file, mode, page
        self.failures = []
        self.bytes = file.read_bytes()
        self.pdfsig = self.attempt(0, lambda: pdfsig(file)) or {}
        self.verify = self.attempt(0, lambda: verify(matrix.program, file)) or {}
        self.qpdf = self.attempt(0, lambda: qpdf(file))
        self.picture = self.attempt(0, lambda: Picture(file)) if mode == "visible" else None
        self.second = self.attempt(0, lambda: Picture(file, 2)) if self.picture and page["of"] > 1 else None
        self.failures.clear()  # what fails on the document itself says nothing about signing

    def attempt(self, step, action):
        try:
            return action()
        except Failed as error:
            self.failures.append((error.check, step, str(error)))
            return None

    def sign(self, step, out):
        place = Place(self.page, step - 1) if self.mode == "visible" else None
        code, _, err = run("sign", self.matrix.program, "sign", self.file, "-o", out, "--key", self.matrix.key,
                           "--cert", self.matrix.certificate, *(place.options(self.matrix.image) if place else ()))
        if code != 0:
            raise Failed("sign", err.split(": ", 2)[-1])
        result = out.read_bytes()
        if not result.startswith(self.bytes):
            raise Failed("prefix", "the old bytes changed")
        ours = verify(self.matrix.program, out)
        added = [ranges for ranges in ours if ranges not in self.verify]
        if len(added) != 1:
            raise Failed("verify", f"{len(added)} new signatures are found")
        self.attempt(step, lambda: check_signatures("verify", self.verify, ours, added[0]))
        theirs = self.attempt(step, lambda: pdfsig(out)) or {}
        self.attempt(step, lambda: check_signatures("pdfsig", self.pdfsig, theirs, added[0]))
        self.attempt(step, lambda: self.check_qpdf(out))
        self.file, self.bytes, self.verify, self.pdfsig = out, result, ours, theirs
        if place and self.picture:
            picture = Picture(out)
            self.attempt(step, lambda: place.check(self.picture, picture))
            self.picture = picture
            if self.second and step == 1:
                self.attempt(step, lambda: self.check_second(out))

    def check_second(self, out):
        if self.second.differs_outside(Picture(out, 2), (0, 0, 0, 0)) and self.second.is_stable():
            raise Failed("picture", "the second page differs")

    def check_qpdf(self, out):
        if self.qpdf is None:
            return
        code, complaints = qpdf(out)
        rank = {0: 0, 3: 1, 2: 2}
        if rank.get(code, 3) > rank.get(self.qpdf[0], 3):
            raise Failed("qpdf", f"qpdf ends with {code} instead of {self.qpdf[0]}: " + "; ".join(sorted(complaints)))
        if complaints - self.qpdf[1]:
            raise Failed("qpdf", "; ".join(sorted(complaints - self.qpdf[1])))


class Matrix:
    def __init__(self, program, work, keep):
        self.program, self.work, self.keep = program, pathlib.Path(work), keep
        self.key, self.certificate, self.image = (self.work / name for name in ("key.pem", "cert.pem", "image.png"))
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
                        "-keyout", self.key, "-out", self.certificate, "-subj", "/CN=Matrix", "-days", "2"], check=True,
                       capture_output=True)
        png(self.image)

    def examine(self, name, file):
        """What became of the document ("signed" or why not), and its failures."""
        out = run("info", self.program, "info", "--json", file)[1]
        try:
            facts = json.loads(out)
        except ValueError:
            return "refused", [Failure(name, "-", "info", 0, "no result")]
        if facts["code"] != 0:
            return "refused", []
        if facts["locked"]:
            return "locked", []
        if not facts["page_count"]:
            return "without page", []
        failures, page = [], {**facts["pages"][0], "of": facts["page_count"]}
        for mode in ("invisible", "visible"):
            failures += [Failure(name, mode, *failure) for failure in self.chain(name, file, mode, page)]
        return "signed", failures

    def chain(self, name, file, mode, page):
        folder = pathlib.Path(tempfile.mkdtemp(dir=self.work))
        chain = Chain(self, file, mode, page)
        for step in (1, 2, 3):
            out = folder / f"{step}.pdf"
            try:
                chain.sign(step, out)
            except Failed as error:
                chain.failures.append((error.check, step, str(error)))
                break
        if self.keep:
            for step in (1, 2, 3):
                kept = pathlib.Path(self.keep) / f"{name.replace('/', '-')[:-4]}-{mode}-{step}.pdf"
                if (folder / f"{step}.pdf").exists():
                    shutil.copyfile(folder / f"{step}.pdf", kept)
        shutil.rmtree(folder)
        return chain.failures


# --- the kept list ----------------------------------------------------------------------------------------------------

def read_expected(path):
    """(file, mode, check) -> cause."""
    rows = [line.split("\t") for line in path.read_text().splitlines()[1:]]
    return {tuple(row[:3]): row[3] for row in rows}


def report(failures, expected, examined):
    """Prints the failures; the number of those that are not listed, or are listed and did not happen."""
    happened = {}
    for failure in sorted(failures, key=lambda failure: failure.step):
        happened.setdefault(failure[:3], []).append(failure)
    unexpected = 0
    for check, found in sorted(happened.items()):
        cause = expected.get(check)
        unexpected += cause is None
        steps = "signature " + ",".join(str(failure.step) for failure in found)
        print("\t".join((cause or "UNEXPECTED", *check, steps, found[0].detail)))
    for row, cause in sorted(expected.items()):
        if row[0] in examined and row not in happened:
            unexpected += 1
            print("\t".join(("NO LONGER FAILS", *row, cause)))
    return unexpected


def documents(arguments, work):
    found = list(matrix_documents.write(work)) if arguments.own else []
    if arguments.corpus:
        corpus = pathlib.Path(arguments.corpus)
        files = sorted(corpus.rglob("*.pdf"))[arguments.start::arguments.every]
        found += [(str(file.relative_to(corpus)), file) for file in files]
    elif found:
        print("documents of a corpus: skipped, VARNPDF_CORPUS names none")
    else:
        print("skipped: VARNPDF_CORPUS names no corpus")
        sys.exit(77)
    return [(name, file) for name, file in found if re.search(arguments.only, name)]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", default=os.environ.get("VARNPDF", "varnpdf"), help="varnpdf (default: $VARNPDF)")
    parser.add_argument("--corpus", default=os.environ.get("VARNPDF_CORPUS"),
                        help="directory of PDF files (default: $VARNPDF_CORPUS)")
    parser.add_argument("--expected", default=HERE / "matrix-expected.tsv", type=pathlib.Path,
                        help="failures with a cause")
    parser.add_argument("-j", "--jobs", type=int, default=os.cpu_count(), help="documents at the same time")
    parser.add_argument("--every", type=int, default=1, metavar="N", help="only every N-th document of the corpus")
    parser.add_argument("--start", type=int, default=0, metavar="K", help="beginning with the K-th")
    parser.add_argument("--only", default="", metavar="REGEX", help="only documents with such a name")
    parser.add_argument("--own", action="store_true", help="also documents made here, in forms the corpus may lack")
    parser.add_argument("--keep", metavar="DIR", help="keeps the signed documents there")
    arguments = parser.parse_args()
    for tool in TOOLS:
        if not shutil.which(tool):
            print(f"skipped: no {tool}")
            return 77
    if not shutil.which(arguments.program):
        parser.error(f"no program {arguments.program}")
    if arguments.keep:
        os.makedirs(arguments.keep, exist_ok=True)

    counts, failures = collections.Counter(), []
    with tempfile.TemporaryDirectory() as work:
        todo = documents(arguments, pathlib.Path(work))
        matrix = Matrix(arguments.program, work, arguments.keep)
        with concurrent.futures.ThreadPoolExecutor(max(1, arguments.jobs)) as pool:
            results = [(name, pool.submit(matrix.examine, name, file)) for name, file in todo]
            for number, (name, result) in enumerate(results, 1):
                try:
                    state, found = result.result()
                except Failed as error:
                    state, found = "refused", [Failure(name, "-", error.check, 0, str(error))]
                except Exception as error:  # one document must not hide what is known of the others
                    state, found = "refused", [Failure(name, "-", "script", 0, repr(error))]
                counts[state] += 1
                failures += found
                if sys.stderr.isatty():
                    print(f"\r{number} of {len(todo)}", end="", file=sys.stderr, flush=True)
    expected = read_expected(arguments.expected)
    unexpected = report(failures, expected, {name for name, _ in todo})
    others = "".join(f", {counts[state]} {state}" for state in ("refused", "locked", "without page"))
    print(f"{counts['signed']} documents signed three times invisibly and visibly{others}; "
          f"{len({failure[:3] for failure in failures})} checks failed, {unexpected} unexpected")
    return 0 if counts["signed"] > 0 and unexpected == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
