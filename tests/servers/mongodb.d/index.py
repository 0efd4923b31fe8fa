"""Makes an index on one field: index.py PORT DATABASE COLLECTION FIELD"""
import sys

from pymongo import MongoClient

port, database, collection, field = sys.argv[1:]
with MongoClient("127.0.0.1", int(port)) as client:
    print(client[database][collection].create_index(field))
