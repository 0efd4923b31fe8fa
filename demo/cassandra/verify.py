"""Compares what the demo loaded with what its files say: verify.py FOLDER NATIVE_PORT MONGO_PORT MONGO_PYTHON.
Exits 1 when they differ."""
import base64
import json
import os
import re
import subprocess
import sys

from cassandra.cluster import Cluster

from comparison import check, finish, parse, plain, read_lines, read_totals

os.chdir(sys.argv[1])


def nested_order(order):
    # The column is a map of texts: what is no text becomes JSON's.
    options = json.loads(order["options"])
    options = {name: value if isinstance(value, str) else json.dumps(value) for name, value in options.items()}
    made = {
        "number": order["order"],
        "ordered": order["ordered"],
        "delivered": order["delivered"],
        "total": float(order["amount"]),
        "paid": order["paid"] == "true",
        "city": order["city"],
        "lines": order["lines"],
        "options": options,
        "signature": order["signature"],
    }
    return {name: value for name, value in made.items() if value is not None}


source = read_lines("orders.json", "\n")
rows = [parse(line) for line in source]
good = [row for row in rows if row and re.fullmatch(r"\d+\.\d\d", row["amount"])]
orders = {(row["customer"], row["order"]): row for row in good}  # of two with one key the later is kept
customers = [json.loads(line) for line in read_lines("customers.json", "\n")]

print("The load of the orders")
totals = read_totals("orders")
check("orders loaded", totals["loaded"], len(good))
check("orders skipped", totals["skipped"], len(rows) - len(good))
check("orders discarded", totals["discarded"], 0)

print("The tables, as the server's own driver reads them")
cluster = Cluster(["127.0.0.1"], port=int(sys.argv[2]), protocol_version=4)
session = cluster.connect("shop")
check("customers", session.execute("select count(*) from customers").one()[0], len(customers))
check("orders", session.execute("select count(*) from orders").one()[0], len(orders))
cluster.shutdown()

wanted = {customer["number"]: [] for customer in customers}
for (customer, _), order in orders.items():
    wanted[customer].append(order)


def signature(order):
    """A blob that happens to be text leaves the database as text."""
    text = order["signature"]
    if not text.startswith("&base64;"):
        text = "&base64;" + base64.b64encode(text.encode()).decode()
    return dict(order, signature=text)


def differs(customer, document):
    own = sorted(wanted[customer["number"]], key=lambda order: order["order"])
    latest = {"number": own[-1]["order"]} if own else None
    return not (
        (document["_id"], document["name"], document.get("mail")) == (customer["number"], customer["name"], customer["mail"])
        and (document["since"][:10], document["vip"]) == (customer["since"], customer["vip"] == "true")
        and (document["credit"], document["city"]) == (float(customer["credit"]), customer["city"])
        and [signature(order) for order in document["orders"]] == [nested_order(order) for order in own]
        and document.get("latest") == latest
    )


def compare(what, documents):
    check(f"documents {what}", len(documents), len(customers))
    check(f"orders in them {what}", sum(len(document["orders"]) for document in documents), len(orders))
    pairs = zip(customers, sorted(documents, key=lambda document: document["_id"]))
    different = [customer["number"] for customer, document in pairs if differs(customer, document)]
    check(f"customers that differ from the files in any value {what}", different[:10] or "none", "none")


print("The results")
compare("in the file", [plain(json.loads(line)) for line in read_lines("customers-with-orders.json", "\r")])
dump = """import json, sys
from pymongo import MongoClient
def plain(v):
    if isinstance(v, dict): return {k: plain(x) for k, x in v.items()}
    if isinstance(v, list): return [plain(x) for x in v]
    if hasattr(v, 'isoformat'): return v.isoformat(timespec='milliseconds') + 'Z'
    if hasattr(v, 'to_decimal'): return float(v.to_decimal())
    if isinstance(v, bytes):
        import base64
        return '&base64;' + base64.b64encode(v).decode()
    return v if isinstance(v, (int, float, str, bool, type(None))) else str(v)
for d in MongoClient('127.0.0.1', int(sys.argv[1]))['shop']['customers'].find(): print(json.dumps(plain(d)))
"""
found = subprocess.run([sys.argv[4], "-c", dump, sys.argv[3]], capture_output=True, text=True, check=True).stdout
moved = [json.loads(line) for line in found.splitlines()]
for document in moved:
    for order in document["orders"]:
        # MongoDB has Booleans, and a text that says one becomes one.
        options = order["options"].items()
        order["options"] = {name: json.dumps(value) if isinstance(value, bool) else value for name, value in options}
compare("in MongoDB", moved)

finish()
