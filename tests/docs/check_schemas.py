#!/usr/bin/env python3
"""Compares what `tresk` has printed as JSON with the schemas that describe it.

    check_schemas.py SCHEMAS OUTPUTS

SCHEMAS is the folder with the schemas. OUTPUTS has a file for each output, whose name says what it
ought to be: "log.1.json" has the schema "tresk-log/1", and each line of "log-line.1.jsonl" has the
schema "tresk-log-line/1". Prints what is wrong, and then the exit code is 1.
"""

import copy
import json
import pathlib
import sys

import jsonschema

# Members that need not be there, besides those that end with "Unescaped", by the object they are in.
OPTIONAL = {
    "log": {"steps.files"},
    "log-line": {"files"},
    "show": {"filesWithoutStep"},
    "extract": {"files.verified"},
    "verify": {"documents.error"},
}

# Objects whose members are called as somebody likes.
FREE = {"bindings"}

# What no output can have as yet, with the title of its schema: nothing that reads argument files
# warns, though it may.
NEVER_MET = {("tresk args", "warning")}

problems = []


def read_schemas(folder):
    """The schemas by the forms of output that they describe, such as "log-line"."""
    by_form = {}
    definitions = {}
    for path in sorted(folder.glob("*.schema.json")):
        name = path.name.split(".")[0]
        schema = json.loads(path.read_text(encoding="utf-8"))
        jsonschema.Draft202012Validator.check_schema(schema)
        if schema.get("$id") != f"urn:tresk:schema:{name}:1":
            problems.append(f"{path.name}: its $id is {schema.get('$id')}")
        check_strictness(schema, path.name, set(bases(schema)))
        for key, value in schema["$defs"].items():
            if definitions.setdefault(key, value) != value:
                problems.append(f"{path.name}: describes {key} otherwise than another schema")
        for form in forms(schema):
            by_form[form] = schema
    return by_form


def forms(schema):
    """The values of "schema" that one allows, without what is the same in all."""
    objects = [schema] + list(schema["$defs"].values())
    for candidate in objects:
        version = candidate.get("properties", {}).get("schema", {}).get("const")
        if version:
            yield version.removeprefix("tresk-").removesuffix("/1")


def subschemas(schema):
    """The schema and all schemas in it."""
    yield schema
    for key in ("properties", "$defs"):
        for inner in schema.get(key, {}).values():
            yield from subschemas(inner)
    for key in ("oneOf", "allOf"):
        for inner in schema.get(key, []):
            yield from subschemas(inner)
    for key in ("items", "additionalProperties"):
        if isinstance(schema.get(key), dict):
            yield from subschemas(schema[key])


def bases(schema):
    """The names of the definitions that others are put together from."""
    for inner in subschemas(schema):
        for base in inner.get("allOf", []):
            yield base["$ref"].split("/")[-1]


def check_strictness(schema, name, open_definitions):
    """Every object has to be closed, and every member described."""
    permitted = [id(schema["$defs"][definition]) for definition in open_definitions]
    for inner in subschemas(schema):
        closed = False in (inner.get("additionalProperties"), inner.get("unevaluatedProperties"))
        if "properties" in inner and not closed and id(inner) not in permitted:
            problems.append(f"{name}: an object with {list(inner['properties'])} is open")
        for member, value in inner.get("properties", {}).items():
            if not {"description", "$ref", "const"} & value.keys():
                problems.append(f"{name}: {member} is not described")


class Watch:
    """Notes what of the schemas valid instances have made use of."""

    def __init__(self):
        self.met = set()
        self.validator = jsonschema.validators.extend(
            jsonschema.Draft202012Validator,
            {key: self.noting(key) for key in ("properties", "type", "enum")},
        )

    def noting(self, keyword):
        original = jsonschema.Draft202012Validator.VALIDATORS[keyword]

        def check(validator, value, instance, schema):
            if keyword == "properties":
                members = instance if isinstance(instance, dict) else ()
                self.met |= {(id(schema), key) for key in value if key in members}
            elif keyword == "enum":
                self.met.add((id(schema), instance if isinstance(instance, str) else None))
            else:
                names = [value] if isinstance(value, str) else value
                self.met |= {
                    (id(schema), name) for name in names if validator.is_type(instance, name)
                }
            yield from original(validator, value, instance, schema) or ()

        return check

    def report_unmet(self, schema, name):
        """Reports what no instance has had: a schema of it would not be known to be true."""
        for inner in subschemas(schema):
            wanted = list(inner.get("properties", {})) + list(inner.get("enum", []))
            if isinstance(inner.get("type"), list):
                wanted += inner["type"]
            for what in wanted:
                if (id(inner), what) not in self.met and (name, what) not in NEVER_MET:
                    described = inner.get("description") or list(inner.get("properties", {}))
                    problems.append(f"{name}: no output has {what} of: {described}")


def read_outputs(folder):
    """All objects that were printed, each with the name of its file and the form it should have."""
    for path in sorted(folder.iterdir()):
        form = path.name.split(".")[0]
        content = path.read_bytes().decode("utf-8")
        if path.suffix == ".jsonl":
            for line in content.removesuffix("\n").split("\n"):
                yield path.name, form, json.loads(line)
        else:
            yield path.name, form, json.loads(content)


def spoiled(instance, path=()):
    """Copies of an object that differ in one place each, with a name for the kind of place."""
    if isinstance(instance, dict):
        for key, value in instance.items():
            place = (*path, key)
            yield place, "missing", {k: v for k, v in instance.items() if k != key}
            for inner_place, how, inner in spoiled(value, place):
                yield inner_place, how, {**instance, key: inner}
        yield path, "unknown member", {**instance, "unknown": 1}
    elif isinstance(instance, list):
        for index, value in enumerate(instance):
            for place, how, inner in spoiled(value, path):
                yield place, how, instance[:index] + [inner] + instance[index + 1 :]
        yield path, "unknown element", [*instance, {"unknown": 1}]
        yield path, "no list", "text"
    else:
        yield path, "a list", [[]] # of which there is none
        if isinstance(instance, bool):
            yield path, "a number", 1
        elif instance is None:
            yield path, "a flag", True
        elif isinstance(instance, int):
            yield path, "negative", -1
            yield path, "a fraction", 0.5
            yield path, "a text", str(instance)
        else:
            yield path, "a number", 7
    # What is written out in few words is refused as such.
    if path and path[-1] in ("schema", "status", "kind", "purpose", "verbosity"):
        yield path, "unknown word", "sideways"


def may_be_spoiled(form, place, how):
    if how != "missing":
        return False
    if place[-1].endswith("Unescaped") or (len(place) > 1 and place[-2] in FREE):
        return True
    return ".".join(place) in OPTIONAL.get(form, ())


def check_refusals(schema, form, instance, tried):
    """Whether what is not right is refused: each kind of place once for each way to spoil it."""
    validator = jsonschema.Draft202012Validator(schema)
    for place, how, wrong in spoiled(instance):
        if (form, place, how) in tried:
            continue
        tried.add((form, place, how))
        if validator.is_valid(wrong) != may_be_spoiled(form, place, how):
            verdict = "refused" if may_be_spoiled(form, place, how) else "accepted"
            problems.append(f"{form}: {'.'.join(place)}: {how}: is {verdict}")


def main():
    by_form = read_schemas(pathlib.Path(sys.argv[1]))
    watch = Watch()
    tried = set()
    count = 0
    for name, form, instance in read_outputs(pathlib.Path(sys.argv[2])):
        count += 1
        schema = by_form[form]
        if instance.get("schema") != f"tresk-{form}/1":
            problems.append(f"{name}: says to be {instance.get('schema')}")
        # Of several forms only the one that it should have tells what is wrong.
        own = schema
        if "oneOf" in schema:
            own = {"$defs": schema["$defs"], "$ref": f"#/$defs/{form}"}
        error = jsonschema.exceptions.best_match(watch.validator(own).iter_errors(instance))
        if error:
            place = ".".join(str(step) for step in error.absolute_path)
            problems.append(f"{name}: {place}: {error.message[:400]}")
        elif not jsonschema.Draft202012Validator(schema).is_valid(instance):
            problems.append(f"{name}: is of several forms at once")
        else:
            check_refusals(schema, form, copy.deepcopy(instance), tried)
    for schema in {id(schema): schema for schema in by_form.values()}.values():
        watch.report_unmet(schema, schema["title"])
    print("\n".join(problems) or f"{count} objects, {len(tried)} ways to spoil them")
    return 1 if problems else 0


sys.exit(main())
