"""One-page documents in the forms that a signature must cope with, written here byte by byte."""
import struct
import zlib

PAGE = ("/Type /Page /Parent 2 0 R /Contents 4 0 R /MediaBox [0 0 300 200]"
        " /Resources << /Font << /F << /Type /Font /Subtype /Type1 /BaseFont /Helvetica >> >> >>")
CONTENT = "BT /F 40 Tf 90 80 Td (Page) Tj ET 0.9 g 120 130 60 30 re f"
KIDS = "/Type /Pages /Kids [3 0 R] /Count 1"


def bodies(page=PAGE, kids=KIDS, catalogue="", more=()):
    return {1: f"<< /Type /Catalog /Pages 2 0 R {catalogue} >>", 2: f"<< {kids} >>", 3: f"<< {page} >>",
            4: f"<< /Length {len(CONTENT)} >>\nstream\n{CONTENT}\nendstream", **dict(more)}


def table(objects, end="\n", trailer=""):
    """The objects and a cross-reference table, with the given line end."""
    line_end, entry_end = end.encode(), {"\n": b" \n", "\r": b" \r", "\r\n": b"\r\n"}[end]

    def lines(text):
        # Behind "stream" stands CR LF or LF, never a lone CR (ISO 32000-2 7.3.8.1).
        return line_end.join(text.encode().split(b"\n")).replace(b"stream\rBT", b"stream\r\nBT")

    out, offsets = lines("%PDF-1.7\n"), {}
    for number, body in objects.items():
        offsets[number] = len(out)
        out += lines(f"{number} 0 obj\n{body}\nendobj\n")
    size = max(objects) + 1
    start = len(out)
    out += lines(f"xref\n0 {size}\n") + b"0000000000 65535 f" + entry_end
    out += b"".join(b"%010d 00000 n" % offsets[number] + entry_end for number in range(1, size))
    return out + lines(f"trailer\n<< /Size {size} /Root 1 0 R {trailer} >>\nstartxref\n{start}\n%%EOF\n")


def stream(objects, packed=(), widths=(1, 2, 1), trailer="/ID [<00aa><00aa>]"):
    """A cross-reference stream with these widths, and the packed objects in an object stream."""
    out, rows = b"%PDF-1.7\n%\xe2\xe3\xcf\xd3\n", {0: (0, 0, 0)}
    container, section = max(objects) + 1, max(objects) + 2
    inner = [objects[number].encode() + b"\n" for number in packed]
    head = b"".join(b"%d %d " % (number, sum(map(len, inner[:i]))) for i, number in enumerate(packed))
    plain = {number: body.encode() for number, body in objects.items() if number not in packed}
    if packed:
        data = zlib.compress(head + b"".join(inner))
        plain[container] = (b"<< /Type /ObjStm /N %d /First %d /Filter /FlateDecode /Length %d >>\nstream\n"
                            % (len(packed), len(head), len(data)) + data + b"\nendstream")
        rows.update({number: (2, container, i) for i, number in enumerate(packed)})
    for number, body in plain.items():
        rows[number] = (1, len(out), 0)
        out += b"%d 0 obj\n" % number + body + b"\nendobj\n"
    rows[section] = (1, len(out), 0)
    data = zlib.compress(b"".join(b"".join(struct.pack(">Q", value)[8 - width:] for value, width in zip(
        rows.get(number, (0, 0, 0)), widths)) for number in range(section + 1)))
    out += (b"%d 0 obj\n<< /Type /XRef /Size %d /W [%d %d %d] /Root 1 0 R %s /Filter /FlateDecode /Length %d >>\n"
            b"stream\n" % (section, section + 1, *widths, trailer.encode(), len(data)) + data
            + b"\nendstream\nendobj\nstartxref\n%d\n%%%%EOF\n" % rows[section][1])
    return out


def hybrid(objects, packed):
    """A table that lists the packed objects as free, and the companion stream that knows them."""
    inner = [objects[number] + "\n" for number in packed]
    head = "".join(f"{number} {sum(map(len, inner[:i]))} " for i, number in enumerate(packed))
    data = head + "".join(inner)
    container, companion = max(objects) + 1, max(objects) + 2
    rows = b"".join(struct.pack(">BHB", 2, container, i) for i in range(len(packed)))
    index = " ".join(f"{number} 1" for number in packed)
    plain = {number: body for number, body in objects.items() if number not in packed}
    plain[container] = (f"<< /Type /ObjStm /N {len(packed)} /First {len(head)} /Length {len(data)} >>\n"
                        f"stream\n{data}\nendstream")
    out, offsets = b"%PDF-1.5\n", {}
    for number, body in plain.items():
        offsets[number] = len(out)
        out += f"{number} 0 obj\n{body}\nendobj\n".encode()
    offsets[companion] = len(out)
    out += (f"{companion} 0 obj\n<< /Type /XRef /Size {companion + 1} /Index [{index}] /W [1 2 1] /Root 1 0 R "
            f"/Length {len(rows)} >>\nstream\n").encode() + rows + b"\nendstream\nendobj\n"
    start = len(out)
    out += f"xref\n0 {companion + 1}\n0000000000 65535 f \n".encode()
    out += b"".join(b"%010d 00000 n \n" % offsets[number] if number in offsets else b"0000000000 65535 f \n"
                    for number in range(1, companion + 1))
    return out + (f"trailer\n<< /Size {companion + 1} /Root 1 0 R /XRefStm {offsets[companion]} >>\n"
                  f"startxref\n{start}\n%%EOF\n").encode()


def link(colour):
    return f"<< /Type /Annot /Subtype /Square /Rect [20 120 60 150] /C [{colour}] /IC [{colour}] >>"


# Two pages with one array of annotations, and with one dictionary of resources.
TWO_PAGES = bodies(PAGE + " /Annots 6 0 R", "/Type /Pages /Kids [3 0 R 5 0 R] /Count 2",
                   more={5: f"<< {PAGE} /Annots 6 0 R >>", 6: "[7 0 R]", 7: link("0.8 0.2 0.2")})
BARE_PAGE = "/Type /Page /Parent 2 0 R /Contents 4 0 R"
INHERITED = bodies(BARE_PAGE, KIDS + " /Rotate 90 " + PAGE.split("4 0 R")[1])
# Strings that hold parentheses in pairs, and end in an escaped backslash.
ODD = r"/X (a(b)c) /Y (C:\\docs\\) "
ODD_STRINGS = bodies(ODD + PAGE + " /Annots [5 0 R]", ODD + KIDS, ODD + f"/AcroForm << {ODD} /Fields [] >>",
                     {5: link("0.2 0.8 0.2")})
BEHIND = bodies(PAGE.replace("[0 0 300 200]", "5 0 R"), more={5: "[0 0 300 200]"})
LONG = f"<< /Length 70000 >>\nstream\n{CONTENT}{' ' * (70000 - len(CONTENT))}\nendstream"


def write(folder):
    """Name and path of each document."""
    made = {f"rotated-{degrees}": table(bodies(f"{PAGE} /Rotate {degrees}")) for degrees in (0, 90, 180, 270, -90)}
    made.update({
        "line-ends-cr": table(bodies(), "\r"),
        "line-ends-crlf": table(bodies(), "\r\n"),
        "identifier-with-comment": table(bodies(), trailer="/ID\n% two equal parts\n[<00aa><00aa>]"),
        "identifier-as-strings": table(bodies(), trailer="/ID [(a\\)b) (c\\\\)]"),
        "stream-plain": stream(bodies()),
        "stream-packed": stream(bodies(), (1, 2, 3)),
        "stream-without-identifier": stream(bodies(), trailer=""),
        "stream-narrow": stream({**bodies(), 4: LONG}, widths=(1, 3, 1)),
        "stream-outgrown": stream({**bodies(), 5: "(x)"}, widths=(1, 2, 0)),
        "hybrid-plain-catalogue": hybrid({**bodies(), 5: "(packed)"}, (5,)),
        "shared-annotations": table(TWO_PAGES),
        "shared-annotations-packed": stream(TWO_PAGES, (1, 2, 3, 5, 6)),
        "inherited-attributes": table(INHERITED),
        "box-behind-reference": table(BEHIND),
        "annotations-null": table(bodies(PAGE + " /Annots null")),
        "annotations-direct": table(bodies(PAGE + " /Annots [5 0 R]", more={5: link("0.2 0.2 0.8")})),
        "odd-strings": table(ODD_STRINGS, trailer=r"/ID [(C:\\docs\\) (a\\\)b)]"),
        "odd-strings-packed": stream(ODD_STRINGS, (1, 2, 3, 5)),
        "form-direct": table(bodies(catalogue="/AcroForm << /Fields [] >>")),
        "form-without-fields": table(bodies(catalogue="/AcroForm 5 0 R", more={5: "<< /NeedAppearances true >>"})),
    })
    for name, data in made.items():
        path = folder / f"{name}.pdf"
        path.write_bytes(data)
        yield f"own/{name}.pdf", path
