"""Compares what the demo loaded with what its files say: verify.py FOLDER PORT. Exits 1 when they differ."""
import datetime
import json
import os
import re
import sys

from pymongo import MongoClient

from comparison import check, finish, parse, plain, read_lines, read_totals

os.chdir(sys.argv[1])


def is_amount(text):
    return re.fullmatch(r"\d+\.\d\d", text) is not None


def moment(text):
    """A date as the result writes it; a day begins at midnight UTC."""
    return text + "T00:00:00.000Z" if text and len(text) == 10 else text


def nested_order(order):
    """What the result must say about an order, but for the XML text."""
    return {
        "number": order["order"],
        "ordered": order["ordered"],
        "delivered": moment(order["delivered"]),
        "total": float(order["amount"]),
        "city": order["city"],
        "lines": order["lines"],
        "options": json.loads(order["options"]),
    }


source = read_lines("orders.json", "\n")
rows = [parse(line) for line in source]
good = [row for row in rows if row and is_amount(row["amount"])]
orders = {}
for row in good:
    orders.setdefault(row["order"], row)  # the first one with a number is kept
customers = [json.loads(line) for line in read_lines("customers.json", "\n")]

print("The load of the orders")
totals = read_totals("orders")
by_target = {mapping["target"]: mapping for mapping in totals["mappings"]}
for target, loaded in (("orders", len(orders)), ("invoices", len(good))):
    counts = by_target[target]
    check(f"{target} loaded", counts["loaded"], loaded)
    check(f"{target} discarded", counts["discarded"], len(good) - loaded)
    check(f"{target} skipped", counts["skipped"], len(rows) - len(good))
    check(f"{target} processed", counts["loaded"] + counts["discarded"] + counts["skipped"], len(source))
refused = totals["discarded"] + totals["skipped"]
check("lines of the discard file", len(read_lines("orders.discarded.txt", "\n")), refused)

print("The load of the customers, by its log")
with open("customers.log", encoding="utf-8") as file:
    loaded = re.findall(r"^Total loaded rows/documents (\d+)", file.read(), re.M)
check("customers loaded", ", ".join(loaded), str(len(customers)))

print("The database")
wanted_types = {"_id": float, "ordered": datetime.datetime, "total": float, "paid": bool, "delivery": dict, "lines": list}
wanted_types |= {"options": dict, "shipment": dict, "signature": bytes}
with MongoClient("127.0.0.1", int(sys.argv[2])) as client:
    shop = client["shop"]
    check("orders counted by the server", shop["orders"].estimated_document_count(), len(orders))
    check("invoices counted by the server", shop["invoices"].estimated_document_count(), len(good))
    documents = list(shop["orders"].find(limit=1000))
untyped = [name for name, kind in wanted_types.items() if any(type(document[name]) is not kind for document in documents)]
check("attributes of a wrong type in 1000 orders", ", ".join(untyped) or "none", "none")

print("The results")
flat = [plain(json.loads(line)) for line in read_lines("customers-flat.json", "\r")]
full = [plain(json.loads(line)) for line in read_lines("customers-with-orders.json", "\r")]
check("documents without nesting", len(flat), len(customers))
check("documents with nesting", len(full), len(customers))

wanted = {customer["number"]: [] for customer in customers}
for order in orders.values():
    wanted[order["customer"]].append(order)
check("nested orders", sum(len(document["orders"]) for document in full), len(orders))
different = []
for customer, document in zip(customers, sorted(full, key=lambda document: document["number"])):
    own = sorted(wanted[customer["number"]], key=lambda order: order["order"])
    found = sorted(document["orders"], key=lambda order: order["number"])
    shipments = [order.pop("shipment")["shipping"] for order in found]
    unpaid = document["firstUnpaid"]
    open_orders = [
        {"number": order["order"], "total": float(order["amount"]), "signature": order["signature"]}
        for order in own
        if order["paid"] == "false"
    ]
    address = {name: customer[name] for name in ("street", "zip", "city", "country")}
    same = (
        (document["number"], document["name"], document["mail"]) == (customer["number"], customer["name"], customer["mail"])
        and (document["since"], document["vip"]) == (moment(customer["since"]), customer["vip"] == "true")
        and (document["credit"], document["address"]) == (float(customer["credit"]), address)
        and found == [nested_order(order) for order in own]
        and all(shipment["@carrier"] and shipment["parcel"] for shipment in shipments)
        and (unpaid in open_orders if open_orders else unpaid is None)
    )
    if not same:
        different.append(customer["number"])
check("customers that differ from the files in any value", different[:10] or "none", "none")

finish()
