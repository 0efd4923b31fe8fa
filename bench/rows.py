"""The rows that the measurements read."""

import json

NAMES = ["Ada Lovelace", "Grace Hopper", "Edsger Dijkstra", "Barbara Liskov", "Donald Knuth", "Margaret Hamilton"]
CITIES = ["Vienna", "Lisbon", "Tromsø", "Kraków", "Dublin", "Ghent"]
SIZE = 434  # bytes of a row without its line feed

# Every top-level field with the type that fits it.
FIELDS = [("number", "Number"), ("name", "String"), ("email", "String"), ("active", "Boolean"),
          ("balance", "Number"), ("created", "DateTime"), ("phone", "String"), ("address", "JSON Object"),
          ("tags", "JSON List"), ("comment", "String")]


def row(number):
    name = NAMES[number % 6]
    return {
        "number": 1_000_000_000 + number,
        "name": name,
        "email": name.lower().replace(" ", ".") + "@example.org",
        "active": number % 3 != 0,
        "balance": (number * 7919 % 1_000_000 + 100_001) / 8,
        "created": "2024-%02d-%02dT%02d:15:30Z" % (number % 12 + 1, number % 28 + 1, number % 24),
        "phone": "+43 1 %07d" % (number * 31 % 10_000_000),
        "address": {"street": "Main Street %d" % (number % 900 + 100), "city": CITIES[number % 6],
                    "zip": "%05d" % (number % 100_000), "country": "AT"},
        "tags": ["alpha", "beta", "gamma-%03d" % (number % 1000)],
    }


def line(number):
    """One row as JSON text of SIZE bytes: the comment makes up for what is missing."""
    fields = row(number)
    text = json.dumps(dict(fields, comment=""), separators=(",", ":"), ensure_ascii=False)
    missing = SIZE - len(text.encode())
    words = ("the quick brown fox jumps over the lazy dog " * 10)[:missing]
    return text[:-2] + words + '"}\n'


def write_rows(name, count):
    # The lines repeat: what they say does not matter, and making them is slow.
    block = "".join(line(number) for number in range(min(count, 10_000))).encode()
    with open(name, "wb") as file:
        for _ in range(count // 10_000):
            file.write(block)
        file.writelines(block.splitlines(True)[:count % 10_000])


def mixed(number):
    kind = number % 6
    if kind == 0:
        return {"id": number, "on": True}
    if kind == 1:
        return {"values": [number * 0.37 + i for i in range(60)], "unit": "mm"}
    if kind == 2:
        return {"text": ("Zażółć gęślą jaźń, \"quoted\"\n\ttab \\ slash — " * 12), "lang": "pl"}
    if kind == 3:
        deep = {"leaf": number}
        for level in range(12):
            deep = {"level": level, "inner": deep, "note": None}
        return deep
    if kind == 4:
        return {"rows": [row(number + i) for i in range(8)]}
    return {"key%02d" % i: i * 1_000_003 for i in range(40)}


def write_mixed(name, count):
    with open(name, "w", encoding="utf-8") as file:
        for number in range(count):
            file.write(json.dumps(mixed(number), separators=(",", ":"), ensure_ascii=number % 2 == 0) + "\n")
