"""Reads what an exporter wrote with Python's standard library and prints it: csv FILE, doubles FILE COUNT."""
import csv
import struct
import sys

kind, name = sys.argv[1:3]
if kind == "csv":
    with open(name, encoding="utf-8", newline="") as stream:
        for row in csv.reader(stream, delimiter=";"):
            print("\t".join(row))
else:
    with open(name, "rb") as stream:
        for record in struct.iter_unpack("<%sd" % sys.argv[3], stream.read()):
            print("\t".join(repr(value) for value in record))
