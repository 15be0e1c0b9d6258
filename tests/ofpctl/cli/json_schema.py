"""The part of JSON Schema that docs/schema uses. A keyword that is not known here is an error of the schema."""
import json
import pathlib
import re

FOLDER = pathlib.Path(__file__).resolve().parents[3] / "docs" / "schema"

TYPES = {"object": dict, "array": list, "string": str, "boolean": bool, "null": type(None)}
KEYWORDS = {"$schema", "title", "type", "properties", "required", "additionalProperties", "items", "enum", "const",
            "pattern", "minimum", "maximum"}


def has_type(value, name):
    if name == "integer":
        return isinstance(value, int) and not isinstance(value, bool)
    return isinstance(value, TYPES[name])


def problems(value, schema, at="$"):
    """What is wrong with the value, a sentence each."""
    assert set(schema) <= KEYWORDS, set(schema) - KEYWORDS
    types = schema.get("type", [])
    types = [types] if isinstance(types, str) else types
    if types and not any(has_type(value, name) for name in types):
        yield f"{at}: {value!r} is not of type {types}"
        return
    if "const" in schema and value != schema["const"]:
        yield f"{at}: {value!r} is not {schema['const']!r}"
    if "enum" in schema and value not in schema["enum"]:
        yield f"{at}: {value!r} is none of {schema['enum']}"
    if isinstance(value, str) and not re.search(schema.get("pattern", ""), value):
        yield f"{at}: {value!r} does not match {schema['pattern']}"
    if has_type(value, "integer") and not schema.get("minimum", value) <= value <= schema.get("maximum", value):
        yield f"{at}: {value} is out of its range"
    if isinstance(value, list) and "items" in schema:
        for number, element in enumerate(value):
            yield from problems(element, schema["items"], f"{at}[{number}]")
    if isinstance(value, dict):
        yield from members(value, schema, at)


def members(value, schema, at):
    for name in schema.get("required", []):
        if name not in value:
            yield f"{at}: {name} is missing"
    known = schema.get("properties", {})
    others = schema.get("additionalProperties", True)
    for name, member in value.items():
        if name in known:
            yield from problems(member, known[name], f"{at}.{name}")
        elif others is False:
            yield f"{at}: {name} is not expected"
        elif others is not True:
            yield from problems(member, others, f"{at}.{name}")


def load(name):
    return json.loads((FOLDER / f"{name}.json").read_text(encoding="utf-8"))


def check(document, name):
    """Raises AssertionError with everything that is wrong."""
    wrong = list(problems(document, load(name)))
    assert not wrong, f"{name}: " + "; ".join(wrong)
