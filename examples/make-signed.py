#!/usr/bin/env python3
"""Makes signed.pdf and signer.pem: a one-page PDF 1.7, signed in an appended update.

Usage: make-signed.py [DIRECTORY]       (default: where this script stands)

The key is thrown away; nobody can sign with signer.pem again. The texts of the signature dictionary use the three ways
in which a PDF writes an umlaut: PDFDocEncoding with an octal escape, UTF-16BE as bytes and as hexadecimal digits.
"""
import datetime
import pathlib
import re
import subprocess
import sys
import tempfile

ROOM = 2048  # bytes kept free for the signature value
BLANK_RANGE = b" " * 40
PAGE = b"BT /F1 24 Tf 72 760 Td (A page of our own, signed) Tj ET"

ORIGINAL = {
    1: b"<< /Type /Catalog /Pages 2 0 R >>",
    2: b"<< /Type /Pages /Kids [3 0 R] /Count 1 /MediaBox [0 0 595 842] >>",
    3: b"<< /Type /Page /Parent 2 0 R /Resources << /Font << /F1 4 0 R >> >> /Contents 5 0 R >>",
    4: b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>",
    5: b"<< /Length %d >>\nstream\n%s\nendstream" % (len(PAGE), PAGE),
}


def update(date):
    """The objects that signing adds or changes."""
    name = "Jörg Müßig".encode("utf-16-be").hex().encode().upper()
    # A literal string may hold any byte; those that would end it are escaped.
    place = re.sub(rb"([()\\])", rb"\\\1", "Düsseldorf (Altstadt)".encode("utf-16-be"))
    return {
        1: b"<< /Type /Catalog /Pages 2 0 R /AcroForm 6 0 R >>",
        3: b"<< /Type /Page /Parent 2 0 R /Resources << /Font << /F1 4 0 R >> >> /Contents 5 0 R /Annots [7 0 R] >>",
        6: b"<< /Fields [7 0 R] /SigFlags 3 >>",
        7: b"<< /Type /Annot /Subtype /Widget /FT /Sig /T (Unterschrift1) /F 132 /Rect [0 0 0 0] /P 3 0 R /V 8 0 R >>",
        8: b"<< /Type /Sig /Filter /Example.Filter /SubFilter /adbe.pkcs7.detached"
           b"\n/ByteRange [" + BLANK_RANGE + b"]"
           b"\n/Contents <" + b"0" * (2 * ROOM) + b">"
           b"\n/M (D:" + date.encode() + b"Z) /Reason (Pr\\374fung abgeschlossen)"
           b"\n/Location (\xfe\xff" + place + b") /Name <FEFF" + name + b"> >>",
    }


def append(document, objects, size, previous):
    """Appends objects, a cross-reference table and a trailer."""
    offsets = {} if previous else {0: None}
    for number, body in objects.items():
        offsets[number] = len(document)
        document += b"%d 0 obj\n%s\nendobj\n" % (number, body)
    table = len(document)
    document += b"xref\n"
    for number, offset in offsets.items():
        entry = b"0000000000 65535 f \n" if offset is None else b"%010d 00000 n \n" % offset
        document += b"%d 1\n%s" % (number, entry)
    chain = b" /Prev %d" % previous if previous else b""
    document += b"trailer\n<< /Size %d /Root 1 0 R%s >>\nstartxref\n%d\n%%%%EOF\n" % (size, chain, table)
    return table


def openssl(*arguments, data=None):
    return subprocess.run(("openssl",) + arguments, input=data, check=True, capture_output=True).stdout


def main():
    target = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parent
    date = datetime.datetime.now(datetime.timezone.utc).strftime("%Y%m%d%H%M%S")
    document = bytearray(b"%PDF-1.7\n%\xe2\xe3\xcf\xd3\n")
    first = append(document, ORIGINAL, 6, 0)
    append(document, update(date), 9, first)

    begin = document.index(b"/Contents <") + len(b"/Contents ")
    end = begin + 2 * ROOM + 2
    byte_range = b"0 %d %d %d" % (begin, end, len(document) - end)
    document = document.replace(BLANK_RANGE, byte_range.ljust(len(BLANK_RANGE)), 1)

    with tempfile.TemporaryDirectory() as directory:
        key, certificate = directory + "/key.pem", directory + "/signer.pem"
        openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-sha256", "-days", "10957", "-utf8",
                "-subj", "/C=DE/O=varnpdf example/CN=Jörg Müßig", "-addext", "basicConstraints=critical,CA:FALSE",
                "-addext", "keyUsage=critical,digitalSignature,nonRepudiation", "-keyout", key, "-out", certificate)
        value = openssl("cms", "-sign", "-binary", "-outform", "DER", "-md", "sha256", "-signer", certificate,
                        "-inkey", key, data=bytes(document[:begin] + document[end:]))
        document[begin + 1:begin + 1 + 2 * len(value)] = value.hex().upper().encode()
        (target / "signer.pem").write_bytes(pathlib.Path(certificate).read_bytes())
    (target / "signed.pdf").write_bytes(document)


main()
