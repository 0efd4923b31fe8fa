"""Makes the demo's tables, as an administrator would: tables.py PORT."""
import sys

import happybase

connection = happybase.Connection("127.0.0.1", int(sys.argv[1]), transport="framed")
connection.create_table("customers", {"info": {"max_versions": 1}, "address": {"max_versions": 1}})
connection.create_table("orders", {"order": {"max_versions": 1, "compression": "GZ"}, "scan": {"max_versions": 1}})
