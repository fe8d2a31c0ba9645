"""Checks files of a web data set against the schemas that they name: check_web_data.py FOLDER FILE..."""

import json
import os
import sys

import jsonschema


def main():
    folder, names = sys.argv[1], sys.argv[2:]
    for name in names:
        path = os.path.join(folder, name)
        with open(path, encoding="utf-8") as file:
            data = json.load(file)
        with open(os.path.join(os.path.dirname(path), data["$schema"]), encoding="utf-8") as file:
            schema = json.load(file)
        jsonschema.Draft202012Validator.check_schema(schema)
        for fault in jsonschema.Draft202012Validator(schema).iter_errors(data):
            print(f"{name}: {fault.json_path}: {fault.message}")
        line = data.get("centralLine", {})
        if len({len(column) for column in line.values()}) > 1:
            print(f"{name}: the columns of the central line differ in length")
        for entry in data.get("eclipses", []):
            if not os.path.isfile(os.path.join(folder, entry["file"])):
                print(f"{name}: there is no {entry['file']}")
    print(f"checked {len(names)}")


main()
