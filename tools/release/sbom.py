#!/usr/bin/env python3
"""Tells from the linker's maps what of this system's packages is linked statically into the programs of a release.

Usage: sbom.py document MAPS DIRECTORY VERSION   prints a CycloneDX document on the programs in DIRECTORY
       sbom.py licenses MAPS DIRECTORY           copies the licences of those packages into DIRECTORY/licenses

MAPS is the directory of the maps, PROGRAM.map for each program.
"""
import hashlib
import json
import os
import re
import shutil
import subprocess
import sys
import uuid
from datetime import datetime, timezone
from functools import cache
from pathlib import Path


def linked_files(map_file):
    """The libraries of which the linker took a member, and the object files, but for those of the program itself."""
    text = map_file.read_text(errors="replace")
    members = re.findall(r"^(/\S+\.a)\(", text, re.MULTILINE)
    objects = re.findall(r"^LOAD (/\S+\.o)$", text, re.MULTILINE)
    files = {os.path.realpath(file) for file in members + objects}
    build = os.path.realpath(map_file.parents[1])
    return sorted(file for file in files if not file.startswith(build + "/"))


def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout


@cache
def package_of(file):
    """Name, version and architecture of the installed package that a file belongs to."""
    package = output_of("dpkg", "-S", file).rpartition(": ")[0]
    return tuple(output_of("dpkg-query", "-W", "-f", "${Package}\t${Version}\t${Architecture}", package).split("\t"))


def linked_packages(map_file):
    """The packages of the linked files, with the files' names."""
    packages = {}
    for file in linked_files(map_file):
        packages.setdefault(package_of(file), []).append(os.path.basename(file))
    if not packages:
        sys.exit(f"sbom.py: {map_file} names no library")
    return packages


def programs_in(directory, maps):
    """Each program with its map."""
    found = [(file, maps / (file.name + ".map")) for file in sorted(directory.rglob("*")) if file.is_file()]
    return [(file, map_file) for file, map_file in found if map_file.exists()]


def reference(package):
    name, version, architecture = package
    return f"pkg:deb/debian/{name}@{version.replace('+', '%2B').replace('~', '%7E')}?arch={architecture}"


def document(maps, directory, version):
    programs, packages, dependencies = [], {}, []
    for program, map_file in programs_in(directory, maps):
        programs.append({"type": "application", "bom-ref": program.name, "name": program.name, "version": version,
                         "hashes": [{"alg": "SHA-256", "content": hashlib.sha256(program.read_bytes()).hexdigest()}]})
        linked = linked_packages(map_file)
        dependencies.append({"ref": program.name, "dependsOn": sorted(map(reference, linked))})
        for package, files in linked.items():
            packages.setdefault(package, set()).update(files)
    libraries = [{"type": "library", "bom-ref": reference(package), "name": package[0], "version": package[1],
                  "description": "linked statically: " + ", ".join(sorted(files)), "purl": reference(package)}
                 for package, files in sorted(packages.items())]
    time = datetime.fromtimestamp(int(os.environ["SOURCE_DATE_EPOCH"]), timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
    name = directory.name
    content = {"metadata": {"timestamp": time, "component": {"type": "application", "bom-ref": name, "name": name,
                                                             "version": version}},
               "components": programs + libraries,
               "dependencies": [{"ref": name, "dependsOn": [program["bom-ref"] for program in programs]}, *dependencies]}
    serial = uuid.uuid5(uuid.NAMESPACE_OID, json.dumps(content))
    print(json.dumps({"bomFormat": "CycloneDX", "specVersion": "1.5", "serialNumber": f"urn:uuid:{serial}", "version": 1,
                      **content}, indent=2))


def licenses(maps, directory):
    (directory / "licenses").mkdir()
    for _, map_file in programs_in(directory, maps):
        for name, *_ in linked_packages(map_file):
            shutil.copyfile(f"/usr/share/doc/{name}/copyright", directory / f"licenses/{name}.txt")


if sys.argv[1] == "document":
    document(Path(sys.argv[2]), Path(sys.argv[3]), sys.argv[4])
else:
    licenses(Path(sys.argv[2]), Path(sys.argv[3]))
