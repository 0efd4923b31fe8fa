"""What the demos' comparisons share: a line for each thing compared, and files as a load reads and writes them."""
import json
import sys

faults = 0


def check(what, found, wanted):
    global faults
    good = found == wanted
    faults += not good
    print(f"  {'ok     ' if good else 'WRONG  '}{what}: {found}" + ("" if good else f", but must be {wanted}"))


def finish():
    """Ends the program, with 1 when anything was wrong."""
    print(f"{faults} faults" if faults else "All of it is as it must be.")
    sys.exit(1 if faults else 0)


def read_lines(name, end):
    """The lines of a file; every one of them must have its end."""
    with open(name, encoding="utf-8", newline="") as file:
        lines = file.read().split(end)
    if lines.pop():
        check(f"last line of {name}", "cut off", "whole")
    return lines


def parse(line):
    try:
        return json.loads(line)
    except ValueError:
        return None


def read_totals(name):
    with open(f"{name}.totals.json", encoding="utf-8") as file:
        return json.load(file)


def plain(value):
    """A value of the result as it was before its double quotes were masked."""
    if isinstance(value, dict):
        return {name: plain(member) for name, member in value.items()}
    if isinstance(value, list):
        return [plain(member) for member in value]
    return value.replace("&quot;", '"') if isinstance(value, str) else value
