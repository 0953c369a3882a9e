#!/usr/bin/env python3
"""Fails when docs/protocol.md says another thing than the code or a running server, and when the example in
docs/examples does not cue and take.

usage: protocol.py ROOT OMBRA
"""
import http.client
import json
import pathlib
import re
import socket
import struct
import subprocess
import sys
import tempfile
import urllib.parse
import zlib

BASE = "/api/brume/v1"
TYPES = {"text": "string", "flag": "bool", "integer": "int", "number": "double"}
LITERALS = {"true": "bool", "false": "bool", "ColorValue{}": "color", "std::string()": "string"}
faults = []


def same(what, documented, real):
    """Names what stands on one side only."""
    for item in sorted(set(real) - set(documented)):
        faults.append(f"docs/protocol.md lacks {what} {item}")
    for item in sorted(set(documented) - set(real)):
        faults.append(f"docs/protocol.md tells of {what} {item}, which is not there")


# What the document says

def tables(text):
    """All tables: (heading, names of the columns, rows)."""
    heading, rows = "", []
    for line in text.splitlines() + [""]:
        if line.startswith("|"):
            rows.append([cell.strip() for cell in line.strip("|").split("|")])
            continue
        if rows:
            yield heading, rows[0], rows[2:]
            rows = []
        if line.startswith("#"):
            heading = line.lstrip("# ")


class Document:
    def __init__(self, text):
        self.properties, self.methods, self.writable, self.routes, self.statuses = set(), set(), set(), set(), set()
        self.records, self.enumerations, self.units, self.used, self.operations = set(), set(), set(), set(), set()
        self.types = set(re.findall(r"^    .* {3,}([A-Z]\w+)$", text, re.M))
        for heading, columns, rows in tables(text):
            for row in rows:
                self.read(heading, columns[0], row)
        same("the unit", self.units, self.used - {"-"})

    def read(self, heading, kind, row):
        if kind == "Property":
            name, of_type, unit, writer = row[:4]
            self.properties.add(f"{heading}.{name}: {of_type}")
            self.used.add(unit)
            if writer == "client":
                self.writable.add(f"{heading}.{name}")
            if (of_type in ("int", "double")) == (unit == "-"):
                faults.append(f"docs/protocol.md: the unit of {heading}.{name} cannot be \"{unit}\"")
        elif kind == "Method":
            self.methods.add(f"{heading}.{row[0]}")
        elif kind == "Route":
            self.routes.add(f"{row[1]} {row[0]}")
        elif kind == "Status":
            self.statuses.add(row[0])
        elif kind == "Record":
            self.records.add(f"{row[0]}.{row[1]}")
            self.used.add(row[3])
        elif kind == "Enumeration":
            self.enumerations.add(f"{row[0]}: {row[1]}")
        elif kind == "Unit":
            self.units.add(row[0])
        elif kind == "Operation":
            self.operations.add(row[0].strip("`"))


# What the code says

def declared(root):
    """Types, properties and methods as tarn/scene/scenetypes.cpp declares them."""
    source = re.sub(r"//.*", "", (root / "tarn/scene/scenetypes.cpp").read_text())
    types, properties, methods = set(), set(), set()
    for name, calls in re.findall(r'Declaration\(types, "(\w+)"\)(.*?);', source, re.S):
        types.add(name)
        for call, prop, rest in re.findall(r'\.(text|flag|integer|number|property|readOnly)\("(\w+)"([^;]*?)(?=\n|\)\.|$)', calls):
            if call in TYPES:
                properties.add(f"{name}.{prop}: {TYPES[call]}")
            else:
                value = re.match(r", Variant::from\(([^(),]+(?:\(\))?)\)", rest).group(1)
                enum = re.match(r"(\w+)::\w+$", value)
                kind = "double" if value[0].isdigit() else "string" if value[0] == '"' else LITERALS.get(value)
                properties.add(f"{name}.{prop}: {enum.group(1) if enum else kind}")
        for names in re.findall(r"\.methods\(\{(.*?)\}\)", calls, re.S):
            methods |= {f"{name}.{method}" for method in re.findall(r'"(\w+)"', names)}
    return types - {"Object", "ObjectArray", "ObjectMap", "Scene"}, properties, methods


def writable(root):
    rules = (root / "ombra/link/linkpolicy.cpp").read_text().split("rules = {", 1)[1].split("};", 1)[0]
    found, of_type = set(), ""
    for name, opens in re.findall(r'"(\w+)",\s*(\{?)', rules):
        if opens:
            of_type = name
        else:
            found.add(f"{of_type}.{name}")
    return found


def routes(root):
    table = (root / "ombra/rest/restapi.cpp").read_text().split("m_routes{", 1)[1].split("m_io(io)", 1)[0]
    found = set()
    for path, methods in re.findall(r'\{"(/[^"]*)",\s*\{(.*?)\}\}(?=,)', re.sub(r"//.*", "", table), re.S):
        found |= {f"{method} {path}" for method in re.findall(r'"([A-Z]+)"', methods) or ["GET"]}
    return found


def statuses(root):
    found = {"200"}
    for file in [*(root / "ombra/rest").glob("*.cpp"), root / "ombra/show/showfiles.cpp"]:
        found |= set(re.findall(r"(?:httpError\(|done\(|status = |\? |: )([45]\d\d)\b", file.read_text()))
    return found


def enumerations(root):
    found = set()
    for name in ("mediaenums", "playenums", "channelenums"):
        source = (root / f"tarn/media/{name}.cpp").read_text()
        for enum, rows in re.findall(r"constexpr Row<(\w+)> \w+\[\] = \{(.*?)\};", source, re.S):
            found.add(f"{enum}: " + ", ".join(re.findall(r'"([^"]+)"', rows)))
    return {entry for entry in found if not entry.startswith("PlaybackType")}


# What a running server says

def write_picture(file, color):
    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))
    rows = (b"\0" + bytes(color) * 64) * 36
    file.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 64, 36, 8, 2, 0, 0, 0)) +
                     chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


class Server:
    def __init__(self, program, folder):
        (folder / "media").mkdir()
        write_picture(folder / "media/red.png", (200, 0, 0))
        ports = [word for name in ("http", "link", "preview", "ftp") for word in (f"--{name}-port", "0")]
        self.log = open(folder / "log", "wb")
        self.process = subprocess.Popen([program, "--media", folder / "media", "--state", folder / "state",
                                         "--no-discovery", *ports], stdout=subprocess.PIPE, stderr=self.log, text=True)
        self.ports = dict(re.findall(r"(\w+)=(\d+)", self.process.stdout.readline()))
        if len(self.ports) != 4:
            sys.exit("ombra does not start: " + (folder / "log").read_text())

    def end(self):
        self.process.terminate()
        self.process.wait()
        self.process.stdout.close()
        self.log.close()

    def ask(self, method, path, body=None):
        """Status, headers and body; the body of a stream that goes on is not read."""
        connection = http.client.HTTPConnection("127.0.0.1", int(self.ports["http"]), timeout=5)
        connection.request(method, BASE + path, body, {"Content-Type": "application/json"} if body else {})
        answer = connection.getresponse()
        goes_on = answer.getheader("Content-Type") == "text/event-stream"
        content = b"" if goes_on else answer.read()
        connection.close()
        return answer.status, answer.headers, content

    def scene(self):
        """Properties of every type, those of surfaces by making one."""
        found = set()
        link = socket.create_connection(("127.0.0.1", int(self.ports["link"])), timeout=5)
        stream = link.makefile("rb")
        for operations in ([{"op": "add", "path": "/device/surfaces/0", "value": {"corners": {"a": {}}}}],
                           [{"op": "get", "path": ""}]):
            text = json.dumps(operations).encode()
            link.sendall(struct.pack(">I", len(text)) + text)
        while not any(name.startswith("Corner.") for name in found):
            for op in json.loads(stream.read(struct.unpack(">I", stream.read(4))[0])):
                fixed = re.fullmatch("/device/(\\w+)/properties", op["path"])
                value = op.get("value")
                if fixed and isinstance(value, dict):
                    name = fixed.group(1)
                    value = {"type": name[0].upper() + name[1:], "properties": value}
                collect(value, found)
        link.close()
        return found


def collect(value, found):
    for name in value.get("properties", {}) if isinstance(value, dict) and "type" in value else ():
        found.add(f"{value['type']}.{name}")
    for child in value.values() if isinstance(value, dict) else value if isinstance(value, list) else ():
        collect(child, found)


def check_records(document, server):
    entry = {"name": "All", "entries": {"1": {"slotUrl": "brume://collections/1/slots/1"}}}
    status, _, answer = server.ask("POST", "/playlists", json.dumps([entry]))
    if status != 200:
        faults.append(f"ombra refuses a playlist: {answer.decode()}")
        return
    library = json.loads(server.ask("GET", "/medialibrary")[2])
    found = {f"slot.{key}" for key in library["collections"]["1"]["slots"]["1"]}
    found |= {f"entry.{key}" for key in library["playlists"]["1"]["entries"]["1"]}
    url = urllib.parse.quote("file:///red.png", safe="")
    found |= {f"metadata.{key}" for key in json.loads(server.ask("GET", f"/metadata/?file={url}")[2])}
    found |= {f"show.{key}" for key in json.loads(server.ask("GET", "/show/current")[2])}
    same("the member", document.records, found)


def check_server(document, server):
    same("the property", {name.split(":")[0] for name in document.properties}, server.scene())
    allowed = set()
    for path in {route.split()[1] for route in document.routes}:
        status, headers, _ = server.ask("DELETE", path)
        if status == 405:
            allowed |= {f"{method} {path}" for method in headers["Allow"].split(", ")}
    same("the route", document.routes, allowed)
    check_records(document, server)


def check_example(root, server):
    example = [sys.executable, root / "docs/examples/cue_and_take.py", "127.0.0.1"]
    done = subprocess.run([*example, server.ports["link"], server.ports["http"]], capture_output=True, text=True,
                          timeout=30)
    if done.returncode != 0 or done.stdout != "on program: brume://collections/1/slots/1 (red)\n":
        faults.append(f"docs/examples/cue_and_take.py does not take: {done.stdout}{done.stderr}")
    if len((root / "docs/examples/cue_and_take.py").read_text().splitlines()) >= 100:
        faults.append("docs/examples/cue_and_take.py has 100 lines or more")
    server.ask("POST", "/medialibrary", "{}")
    empty = subprocess.run([*example, server.ports["link"], server.ports["http"]], capture_output=True, text=True,
                           timeout=30)
    if empty.returncode == 0 or "no slot" not in empty.stderr:
        faults.append("docs/examples/cue_and_take.py says nothing of an empty library")


def main(root, program):
    document = Document((root / "docs/protocol.md").read_text())
    types, properties, methods = declared(root)
    operations = re.search(r"names = \{(.*?)\}", (root / "tarn/json/patch.cpp").read_text()).group(1)
    same("the operation", document.operations, re.findall(r'"(\w+)"', operations))
    same("the type", document.types, types)
    same("the property", document.properties, properties)
    same("the method", document.methods, methods)
    same("the property that clients write,", document.writable, writable(root))
    same("the route", document.routes, routes(root))
    same("the status", document.statuses, statuses(root))
    same("the enumeration", document.enumerations, enumerations(root))
    with tempfile.TemporaryDirectory() as folder:
        server = Server(program, pathlib.Path(folder))
        try:
            check_server(document, server)
            check_example(root, server)
        finally:
            server.end()
    for fault in dict.fromkeys(faults):
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]), sys.argv[2]))
