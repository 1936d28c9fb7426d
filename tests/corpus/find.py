"""Compares the places that "varnpdf find" names with the boxes of "pdftotext -bbox" on real files.

Of every file a sample of words is taken; each occurrence that pdftotext sees must be among the hits: page equal, corners
within 2 points. Rotated pages are compared after their box is turned back. Prints the share that agrees and the causes
of the rest. Usage: find.py PROGRAM CORPUS [LEAST_PERCENT]
"""
import collections
import concurrent.futures
import html
import json
import pathlib
import re
import subprocess
import sys
import tempfile

WORDS_PER_FILE = 8
TOLERANCE = 2.0
WORD = re.compile(r'<word xMin="([-\d.]+)" yMin="([-\d.]+)" xMax="([-\d.]+)" yMax="([-\d.]+)">(.*?)</word>')
PAGE = re.compile(r"<page width=")


def run(arguments):
    try:
        return subprocess.run(arguments, capture_output=True, timeout=120, check=False)
    except subprocess.TimeoutExpired:
        return None


def boxes_of_pages(path):
    """MediaBox, rotation and unit of each page, as pdfinfo says them."""
    out = run(["pdfinfo", "-l", "100000", "-box", str(path)])
    text = out.stdout.decode("utf-8", "replace") if out else ""
    media = {int(n): tuple(map(float, v.split())) for n, v in re.findall(r"Page +(\d+) MediaBox: +([-\d. ]+)", text)}
    turned = {int(n): int(v) for n, v in re.findall(r"Page +(\d+) rot: +(-?\d+)", text)}
    return media, turned


def without_annotations(path, folder):
    """pdftotext reads the appearances of annotations too: a copy that has none, or the file when qpdf cannot read it."""
    copy = folder / "copy.pdf"
    run(["qpdf", "--warning-exit-0", "--qdf", "--object-streams=disable", str(path), str(copy)])
    if not copy.exists():
        return path
    copy.write_bytes(copy.read_bytes().replace(b"/Annots", b"/Unused"))
    return copy


def words_of(path):
    """(page, word, box in the page's own space) of every word."""
    with tempfile.TemporaryDirectory() as folder:
        out = run(["pdftotext", "-bbox", str(without_annotations(path, pathlib.Path(folder))), "-"])
    if out is None or out.returncode != 0:
        return []
    media, turned = boxes_of_pages(path)
    words = []
    page = 0
    for line in out.stdout.decode("utf-8", "replace").splitlines():
        begin = PAGE.search(line)
        if begin:
            page += 1
            continue
        word = WORD.search(line)
        if not word or page not in media:
            continue
        left, top, right, bottom = (float(word.group(i)) for i in range(1, 5))
        a, b, c, d = media[page]
        turn = turned.get(page, 0) % 360
        height = c - a if turn in (90, 270) else d - b
        x1, y1, x2, y2 = left, height - bottom, right, height - top
        if turn == 90:
            box = (c - y2, b + x1, c - y1, b + x2)
        elif turn == 180:
            box = (c - x2, d - y2, c - x1, d - y1)
        elif turn == 270:
            box = (a + y1, d - x2, a + y2, d - x1)
        else:
            box = (a + x1, b + y1, a + x2, b + y2)
        words.append((page, html.unescape(word.group(5)), box, turn))
    return words


def sample(words):
    """Words of letters that are long enough to be told apart, spread over the file."""
    known = collections.Counter(word for _, word, _, _ in words)
    good = [w for w in known if len(w) >= 3 and known[w] <= 20 and w.isprintable() and "\ufffd" not in w
            and not any("\u0590" <= c <= "\u08ff" or "\ue000" <= c <= "\uf8ff" for c in w)]
    step = max(len(good) // WORDS_PER_FILE, 1)
    return good[::step][:WORDS_PER_FILE]


def compare(program, root, path):
    name = str(path.relative_to(root))
    words = words_of(path)
    chosen = sample(words)
    counts, misses = collections.Counter(), []
    for word in chosen:
        out = run([program, "find", "--json", "--", str(path), word])
        if out is None:
            counts["timeout"] += 1
            misses.append((name, word, "timeout"))
            continue
        if not out.stdout:
            counts["not opened"] += 1
            break
        hits = json.loads(out.stdout)["hits"]
        for page, seen, box, _ in words:
            if seen != word:
                continue
            on_page = [h["rect"] for h in hits if h["page"] == page]
            distance = min((max(abs(p - q) for p, q in zip(box, h)) for h in on_page), default=None)
            if distance is None:
                cause = "not found" if not hits else "not on the page"
            elif distance <= TOLERANCE:
                cause = "agrees"
            else:
                across = min(max(abs(box[0] - h[0]), abs(box[2] - h[2])) for h in on_page)
                cause = "height differs" if across <= TOLERANCE else "place differs"
            counts[cause] += 1
            if cause != "agrees":
                misses.append((name, word, cause, page, box, on_page[:3]))
    return name, counts, misses


def main():
    program, root = sys.argv[1], pathlib.Path(sys.argv[2])
    least = float(sys.argv[3]) if len(sys.argv) > 3 else 0
    files = sorted(root.rglob("*.pdf"))
    total, files_with = collections.Counter(), collections.defaultdict(set)
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        for name, counts, misses in pool.map(lambda p: compare(program, root, p), files):
            total.update(counts)
            for cause in counts:
                files_with[cause].add(name)
            for miss in misses[:2]:
                print(*miss, sep="\t")
    compared = sum(n for cause, n in total.items() if cause != "not opened")
    for cause, number in total.most_common():
        print(f"{number:7} {cause} (in {len(files_with[cause])} files)")
    share = 100 * total["agrees"] / max(compared, 1)
    print(f"{share:.2f} % of {compared} words of {len(files)} files agree")
    return 0 if compared and share >= least else 1


sys.exit(main())
