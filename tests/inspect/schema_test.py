#!/usr/bin/env python3
"""Compares JSON Schemas with the JSON reader: schema_test.py SCHEMA_CASES SAMPLES

SCHEMA_CASES prints the schema and the values (schema_cases.cc). A value is valid exactly if the reader accepts it, and
so is every sample in SAMPLES.
"""
import json
import pathlib
import subprocess
import sys

import jsonschema

sys.setrecursionlimit(100_000)  # the validator recurses into nested values
program, samples = sys.argv[1:]
lines = subprocess.run([program], check=True, stdout=subprocess.PIPE).stdout.splitlines()
schema = json.loads(lines[0])
jsonschema.Draft202012Validator.check_schema(schema)
resolver = jsonschema.RefResolver.from_schema(schema)
failures = []
counts = {True: 0, False: 0}


def check(type_name, value, expected, name):
    counts[expected] += 1
    error = jsonschema.exceptions.best_match(jsonschema.Draft202012Validator(
        schema["$defs"][type_name], resolver=resolver).iter_errors(value))
    if (error is None) != expected:
        failures.append(f"{name}: {error.message if error else 'valid, but the reader refuses it'}")


for line in lines[1:]:
    case = json.loads(line)
    check(case["type"], case["json"], case["accepted"], line.decode()[:300])
for path in sorted(pathlib.Path(samples).rglob("*.json")):
    if path.parent.name != "refused":
        check(path.stem.rpartition(".")[2], json.loads(path.read_text()), True, path)

print("\n".join(failures[:20]))
print(f"{counts[True]} accepted and {counts[False]} refused values, {len(failures)} differences")
sys.exit(bool(failures) or min(counts.values()) < 100)
