"""Reads an exported file with readers that know nothing of its writer, and prints it as JSON.

  readback.py csv|tsv|html|xml|xlsx FILE
"""

import csv
import html.parser
import json
import re
import sys
import xml.etree.ElementTree as xml
import zipfile

SHEET = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"


def read_csv(path):
    with open(path, encoding="utf-8", newline="") as file:
        return list(csv.reader(file, strict=True))


def read_tsv(path):
    with open(path, encoding="utf-8", newline="") as file:
        return [line.rstrip("\n").split("\t") for line in file]


class Table(html.parser.HTMLParser):
    VOID = {"meta"}

    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open, self.rows, self.title = [], [], ""

    def handle_starttag(self, tag, attributes):
        if tag in self.VOID:
            return
        self.open.append(tag)
        if tag == "tr":
            self.rows.append([])
        if tag in ("td", "th"):
            self.rows[-1].append("")

    def handle_endtag(self, tag):
        assert self.open.pop() == tag, tag

    def handle_data(self, data):
        if self.open and self.open[-1] in ("td", "th"):
            self.rows[-1][-1] += data
        if self.open and self.open[-1] == "title":
            self.title += data


def read_html(path):
    table = Table()
    with open(path, encoding="utf-8", newline="") as file:
        table.feed(file.read())
    table.close()
    assert not table.open, table.open
    return [[table.title]] + table.rows


def read_xml(path):
    return [
        [[cell.get("name"), cell.get("type"), cell.get("encoding", ""), cell.text or ""] for cell in document]
        for document in xml.parse(path).getroot()
    ]


def unescape(text):
    return re.sub(r"_x([0-9A-Fa-f]{4})_", lambda match: chr(int(match.group(1), 16)), text)


def sheet_rows(text):
    rows = []
    for row in xml.fromstring(text).iter(SHEET + "row"):
        cells = []
        for cell in row.iter(SHEET + "c"):
            kind, style = cell.get("t", "n"), cell.get("s", "")
            value = "".join(part.text or "" for part in cell.iter(SHEET + "t")) if kind == "inlineStr" else cell.find(SHEET + "v").text
            cells.append([cell.get("r"), kind, style, unescape(value)])
        rows.append(cells)
    return rows


def read_xlsx(path):
    with zipfile.ZipFile(path) as book:
        assert book.testzip() is None
        names = sorted(name for name in book.namelist() if name.startswith("xl/worksheets/sheet"))
        return [sheet_rows(book.read(name)) for name in names]


READERS = {"csv": read_csv, "tsv": read_tsv, "html": read_html, "xml": read_xml, "xlsx": read_xlsx}

if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8")
    json.dump(READERS[sys.argv[1]](sys.argv[2]), sys.stdout, ensure_ascii=False)
