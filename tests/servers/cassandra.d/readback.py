"""Prints what the server's own driver reads, one JSON object a row: readback.py NATIVE_PORT QUERY"""

import json
import sys

from cassandra.cluster import Cluster
from cassandra.policies import RoundRobinPolicy


def plain(value):
    if value is None or isinstance(value, (bool, int, str)):
        return value
    if isinstance(value, float):
        return repr(value)
    if isinstance(value, bytes):
        return value.hex()
    if hasattr(value, "_asdict"):
        return {name: plain(field) for name, field in value._asdict().items()}
    if hasattr(value, "items"):
        return {str(key): plain(item) for key, item in value.items()}
    if isinstance(value, (list, tuple)) or hasattr(value, "isdisjoint"):
        return [plain(item) for item in value]
    return str(value)


cluster = Cluster(["127.0.0.1"], port=int(sys.argv[1]), protocol_version=int(sys.argv[3]),
                  load_balancing_policy=RoundRobinPolicy())
session = cluster.connect()
for row in session.execute(sys.argv[2]):
    print(json.dumps(plain(row), sort_keys=True))
cluster.shutdown()
