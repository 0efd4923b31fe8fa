"""Gives the demo's rows the keys they are to have in HBase: keys.py FOLDER [CUSTOMERS].

Rows are found by their keys there, so an order's begins with its customer's.
"""
import json
import sys

folder, most = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 1000


def write(name, documents):
    with open(f"{folder}/{name}", "w", encoding="utf-8") as file:
        for document in documents:
            file.write(json.dumps(document, ensure_ascii=False) + "\n")


def read(name):
    with open(f"{folder}/{name}", encoding="utf-8") as file:
        for line in file:
            try:
                yield json.loads(line)
            except ValueError:
                pass  # a line that breaks off


write("keyed-customers.json",
      ({"key": f"{row['number']:05}", **row} for row in read("customers.json") if row["number"] <= most))
orders = {}
for row in read("orders.json"):
    if row["customer"] <= most and row["amount"] != "on request":
        orders.setdefault(f"{row['customer']:05}-{row['order']}", row)
# One that is to be refused: it has no key.
write("keyed-orders.json", [{"key": key, **row} for key, row in orders.items()] + [{"order": 0, "amount": "0.00"}])
