"""What one writes with happybase: happybase_loop.py PORT TABLE ROWS BATCH FILE. Makes the table when it is missing."""

import json
import sys

import happybase

port, table, rows, batch, file = int(sys.argv[1]), sys.argv[2], int(sys.argv[3]), int(sys.argv[4]), sys.argv[5]
connection = happybase.Connection("127.0.0.1", port, transport="framed")
if table.encode() not in connection.tables():
    connection.create_table(table, {"cf": {}})
put = 0
with open(file, encoding="utf-8") as lines, connection.table(table).batch(batch_size=batch) as sent:
    for line in lines:
        fields = json.loads(line)
        cells = {}
        for name, value in fields.items():
            text = json.dumps(value) if isinstance(value, (dict, list)) else str(value)
            cells[b"cf:" + name.encode()] = text.encode()
        sent.put(str(fields["number"]).encode(), cells)
        put += 1
assert put == rows, put
