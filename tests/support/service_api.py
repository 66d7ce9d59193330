# SPDX-License-Identifier: MIT
"""docs/service-api.yaml, and the places of the documents that it describes."""
import json
import pathlib

import yaml

DOCS = pathlib.Path(__file__).resolve().parents[2] / "docs"
API = yaml.safe_load((DOCS / "service-api.yaml").read_text(encoding="utf-8"))
SCHEMAS = API["components"]["schemas"]


def resolved(node):
    """The thing itself in the place of a reference to it; what stands beside the reference counts
    too."""
    if not (isinstance(node, dict) and "$ref" in node):
        return node
    target = API
    for step in node["$ref"].split("/")[1:]:
        target = target[step]
    return {**resolved(target), **{key: value for key, value in node.items() if key != "$ref"}}


def described(node, path=""):
    """The schema of every place of a document; the elements of an array are its place 0."""
    node = resolved(node)
    places = {path: node}
    for name, member in node.get("properties", {}).items():
        places.update(described(member, f"{path}.{name}".lstrip(".")))
    if "items" in node:
        places.update(described(node["items"], f"{path}.0".lstrip(".")))
    return places


def example_value(example):
    """An example as it stands, or the part of a file beside the page that it names."""
    if "value" in example:
        return example["value"]
    name, _, pointer = example["externalValue"].partition("#/")
    value = json.loads((DOCS / name).read_text(encoding="utf-8"))
    for step in filter(None, pointer.split("/")):
        value = value[step]
    return value


# Like "GET /api/state".
OPERATIONS = {f"{method.upper()} {target}": operation for target, methods in API["paths"].items()
              for method, operation in methods.items()}


def request_schema(key):
    """The schema of a request's body; None when there is none."""
    body = OPERATIONS[key].get("requestBody")
    return body and body["content"]["application/json"]["schema"]


def reply_schema(key, status):
    """The schema of a reply."""
    replies = OPERATIONS[key]["responses"]
    reply = replies.get(str(status)) or replies[f"{status // 100}XX"]
    return resolved(reply)["content"]["application/json"]["schema"]
