"""What is in the packages and what they need, for programs: CycloneDX."""

import datetime
import hashlib
import json

import components
from product import MAKER, NAME, SUMMARY, TIME, VERSION, list_files, make_id

PACKAGES = {"win64": f"{NAME}-{VERSION}-win64", "debian": f"{NAME}_{VERSION}_amd64.deb",
            "fleet": f"pqfleet_{VERSION}_amd64.deb"}
# Others have a licence of its own, or one that SPDX has no name for.
SINGLE = {"BSL-1.0", "BSD-3-Clause", "MIT", "PostgreSQL", "Zlib", "blessing"}


def hash_of(path):
    return [{"alg": "SHA-256", "content": hashlib.sha256(path.read_bytes()).hexdigest()}]


def describe_file(package, folder, path):
    name = path.relative_to(folder).as_posix()
    return {"type": "file", "bom-ref": f"{package}/{name}", "name": name, "version": VERSION,
            "hashes": hash_of(path)}


def describe_component(component, package, files):
    origin = components.Origin(component, package)
    licence = component["licence"]
    described = {
        "type": "library",
        "bom-ref": f"{package}:{component['name']}",
        "name": component["name"],
        "version": origin.version,
        "scope": "required",
        "licenses": [{"license": {"id": licence}} if licence in SINGLE else {"expression": licence}],
        "purl": origin.purl,
        "properties": [{"name": "pqhost:package", "value": package},
                       {"name": "pqhost:use", "value": component["use"]}],
    }
    own = [file for file in files if file["name"] in component.get("files", [])]
    if own:
        described["components"] = own
    return described


def write_sbom(folders, output):
    """`folders` are those that were packed, by package."""
    described, dependencies, top = [], [], []
    for package, folder in folders.items():
        files = [describe_file(package, folder, path) for path in list_files(folder)
                 if "DEBIAN" not in path.relative_to(folder).parts]
        needed = [describe_component(component, package, files)
                  for component in components.components_of(package)]
        theirs = {file["bom-ref"] for one in needed for file in one.get("components", [])}
        reference = f"package:{package}"
        described.append({"type": "application", "bom-ref": reference, "name": PACKAGES[package],
                          "version": VERSION,
                          "components": [f for f in files if f["bom-ref"] not in theirs]})
        described += needed
        dependencies.append({"ref": reference, "dependsOn": [one["bom-ref"] for one in needed]})
        top.append(reference)
    document = {
        "$schema": "http://cyclonedx.org/schema/bom-1.6.schema.json",
        "bomFormat": "CycloneDX",
        "specVersion": "1.6",
        "version": 1,
        "metadata": {
            "timestamp": datetime.datetime.fromtimestamp(TIME, datetime.timezone.utc).strftime(
                "%Y-%m-%dT%H:%M:%SZ"),
            "component": {"type": "application", "bom-ref": NAME, "name": NAME, "version": VERSION,
                          "description": SUMMARY, "supplier": {"name": MAKER}},
        },
        "components": described,
        "dependencies": [{"ref": NAME, "dependsOn": top}, *dependencies],
    }
    document["serialNumber"] = "urn:uuid:" + make_id(json.dumps(document)).lower()
    (output / f"{NAME}-{VERSION}.cdx.json").write_text(
        json.dumps(document, indent=2, ensure_ascii=False) + "\n", encoding="utf-8")
