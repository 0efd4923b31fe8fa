"""Compares what the demo loaded with what its files say: verify.py FOLDER PORT. Exits 1 when they differ."""
import base64
import json
import os
import sys

import happybase

from comparison import check, finish, plain, read_lines, read_totals

os.chdir(sys.argv[1])


def lines(name, end="\n"):
    return [json.loads(line) for line in read_lines(name, end)]


customers = lines("keyed-customers.json")
orders = [row for row in lines("keyed-orders.json") if "key" in row]

print("The loads")
check("customers loaded", read_totals("customers")["loaded"], len(customers))
check("orders loaded", read_totals("orders")["loaded"], len(orders))
check("orders discarded, one without a key", read_totals("orders")["discarded"], 1)

print("The database, as another client sees it")
connection = happybase.Connection("127.0.0.1", int(sys.argv[2]), transport="framed")
stored = dict(connection.table("orders").scan())
check("orders", len(stored), len(orders))
signatures = sum(base64.b64decode(row["signature"][8:]) == stored[row["key"].encode()][b"scan:signature"] for row in orders)
check("signatures, byte for byte", signatures, len(orders))

print("The result")
own = {}
for row in orders:
    own.setdefault(row["key"][:5], []).append(row)
documents = {document["key"]: plain(document) for document in lines("customers-with-orders.json", "\r")}
check("customers", len(documents), len(customers))
different = []
for customer in customers:
    key = customer["key"]
    wanted = [
        {"number": row["order"], "ordered": row["ordered"], "amount": float(row["amount"]), "lines": row["lines"],
         "options": json.loads(row["options"]), "signature": row["signature"]}
        for row in sorted(own.get(key, []), key=lambda row: row["key"])
    ]
    unpaid = [row["order"] for row in own.get(key, []) if row["paid"] == "false"]
    found = documents[key]
    same = (
        (found["name"], found.get("mail"), found["city"]) == (customer["name"], customer["mail"], customer["city"])
        and (found["vip"], found["credit"]) == (customer["vip"] == "true", float(customer["credit"]))
        and found["orders"] == wanted
        and (found["firstUnpaid"]["number"] in unpaid if unpaid else not found.get("firstUnpaid"))
    )
    if not same:
        different.append(key)
check("nested orders", sum(len(document["orders"]) for document in documents.values()), len(orders))
check("customers that differ from the files in any value", different[:10] or "none", "none")

finish()
