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
import time
import urllib.parse
import zlib

BASE = "/api/brume/v1"
TYPES = {"text": "string", "flag": "bool", "integer": "int", "number": "double"}
LITERALS = {"true": "bool", "false": "bool", "ColorValue{}": "color", "std::string()": "string"}
JSON_TYPES = {"int": int, "double": float, "bool": bool, "object": dict, "array": list, "null": type(None)}
PROPERTY = r'\.(text|flag|integer|number|property|readOnly)\("(\w+)"([^;]*?)(?=\n|\)\.|$)'
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
        self.enumerations, self.units, self.used, self.operations, self.records = set(), set(), set(), set(), {}
        self.attributes, self.arguments, self.queries = set(), set(), set()
        self.text, self.frame, self.errors = text, [], {}
        self.types = set(re.findall(r"^    .* {3,}([A-Z]\w+)$", text, re.M))
        for heading, columns, rows in tables(text):
            for row in rows:
                self.read(heading, columns[0], row)
        self.arguments -= {*TYPES.values(), *(entry.split(":")[0] for entry in self.enumerations)}
        same("the unit", self.units, self.used - {"-"})

    def read(self, heading, kind, row):
        if kind == "Property":
            name, of_type, unit, writer = row[:4]
            self.properties.add(f"{heading}.{name}: {of_type}")
            self.used.add(unit)
            if writer == "client":
                self.writable.add(f"{heading}.{name}")
            self.check_unit(f"{heading}.{name}", of_type, unit)
        elif kind == "Method":
            self.methods.add(f"{heading}.{row[0]}")
            self.arguments |= {name for names in re.findall(r"((?:\w+, )*\w+): ", row[1]) for name in names.split(", ")}
        elif kind == "Route":
            self.routes.add(f"{row[1]} {row[0]}")
            self.queries |= set(re.findall(r"(\w+): ", row[2]))
            self.errors[f"{row[1]} {row[0]}"] = set(re.findall(r"\d+", row[5]))
        elif kind == "Status":
            self.statuses.add(row[0])
        elif kind == "Record":
            self.records[f"{row[0]}.{row[1]}"] = row[2]
            self.used.add(row[3])
            self.check_unit(f"{row[0]}.{row[1]}", row[2].removesuffix(" or null"), row[3])
        elif kind == "Enumeration":
            self.enumerations.add(f"{row[0]}: {row[1]}")
        elif kind == "Unit":
            self.units.add(row[0])
        elif kind == "Offset":
            self.frame.append((int(row[0]), int(row[1]), row[3]))
        elif kind == "Attribute":
            self.attributes.add(row[0])
        elif kind == "Operation":
            self.operations.add(row[0].strip("`"))

    def check_unit(self, name, of_type, unit):
        if (of_type in ("int", "double")) == (unit == "-"):
            faults.append(f"docs/protocol.md: the unit of {name} cannot be \"{unit}\"")


def example_bytes(text, heading):
    """The bytes in the last indented block of a section that begins with hexadecimal digits."""
    section = text.split(f"\n## {heading}\n", 1)[1].split("\n## ", 1)[0]
    block = re.findall(r"(?:^    (?:[0-9a-f]{2} {1,2})+.*\n)+", section, re.M)[-1]
    lines = re.findall(r"^    ((?:[0-9a-f]{2} {1,2})+)", block, re.M)
    return bytes.fromhex("".join(lines))


# What the code says

def declared(root):
    """Types, properties and methods as tarn/scene/scenetypes.cpp declares them."""
    source = re.sub(r"//.*", "", (root / "tarn/scene/scenetypes.cpp").read_text())
    types, properties, methods = set(), set(), set()
    for name, calls in re.findall(r'Declaration\(types, "(\w+)"\)(.*?);', source, re.S):
        types.add(name)
        for call, prop, rest in re.findall(PROPERTY, calls):
            if call in TYPES:
                properties.add(f"{name}.{prop}: {TYPES[call]}")
            else:
                value = re.match(r", Variant::from\(([^(),]+(?:\(\))?)\)", rest).group(1)
                enum = re.match(r"(\w+)::\w+$", value)
                number = "double" if "." in value else "int"
                kind = number if value[0].isdigit() else "string" if value[0] == '"' else LITERALS.get(value)
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


def sources(root):
    return "".join(file.read_text() for file in sorted((root / "ombra").rglob("*.cpp")))


def arguments(root):
    """Of methods; some are made of a name and the number of a mapping."""
    found = set()
    for name, numbered in re.findall(r'\bargs(?:\.(?:get|find)\(|, )"(\w+)"( \+ number)?', sources(root)):
        found |= {name + "1", name + "2"} if numbered else {name}
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
                                         *ports], stdout=subprocess.PIPE, stderr=self.log, text=True)
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

    def scene(self, request):
        """Properties of every type, those of surfaces by making one; the whole scene is asked for by these bytes."""
        found = set()
        link = socket.create_connection(("127.0.0.1", int(self.ports["link"])), timeout=5)
        stream = link.makefile("rb")
        surface = json.dumps([{"op": "add", "path": "/device/surfaces/0", "value": {"corners": {"a": {}}}}]).encode()
        link.sendall(struct.pack(">I", len(surface)) + surface + request)
        while not any(name.startswith("Corner.") for name in found):
            header = stream.read(4)
            if len(header) < 4:
                faults.append("docs/protocol.md: ombra ends the link at the bytes of the example")
                break
            for op in json.loads(stream.read(struct.unpack(">I", header)[0])):
                fixed = re.fullmatch("/device/(\\w+)/properties", op["path"])
                value = op.get("value")
                if fixed and isinstance(value, dict):
                    name = fixed.group(1)
                    value = {"type": name[0].upper() + name[1:], "properties": value}
                collect(value, found)
        link.close()
        return found

    def kept(self):
        """Members of a saved show and of an earlier state, after one of each was made."""
        link = socket.create_connection(("127.0.0.1", int(self.ports["link"])), timeout=5)
        save = json.dumps([{"op": "invoke", "path": "/device/showConfiguration/methods/saveShow",
                            "value": {"showName": "one"}}]).encode()
        link.sendall(struct.pack(">I", len(save)) + save)
        shows = []
        while not shows:
            shows = json.loads(self.ask("GET", "/shows")[2])["shows"]
        link.close()
        self.ask("POST", "/show/current", self.ask("GET", "/show/current")[2])
        return shows[0] | json.loads(self.ask("GET", "/shows/earlier")[2])["states"][0]

    def first_frame(self):
        """Bytes of the first preview frame's header, and its source."""
        with socket.create_connection(("127.0.0.1", int(self.ports["preview"])), timeout=5) as preview:
            stream = preview.makefile("rb")
            header = stream.read(40)
            return header, stream.read(int.from_bytes(header[32:36], "little"))

    def discovered(self, question):
        """What it says of itself to one who sends these bytes to its group; other servers answer as well."""
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as search:
            search.bind(("127.0.0.1", 0))
            search.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_IF, socket.inet_aton("127.0.0.1"))
            search.settimeout(5)
            search.sendto(question, ("239.255.110.60", 11062))
            while True:
                try:
                    answer, sender = search.recvfrom(1401)
                except TimeoutError:
                    return {}
                peer = json.loads(answer)["peer"]
                if peer.get("link") == self.ports["link"] and sender[0] == "127.0.0.1":
                    return peer


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
    url = urllib.parse.quote("file:///red.png", safe="")
    records = {"slot": library["collections"]["1"]["slots"]["1"], "entry": library["playlists"]["1"]["entries"]["1"],
               "metadata": json.loads(server.ask("GET", f"/metadata/?file={url}")[2]),
               "saved": server.kept(), "show": json.loads(server.ask("GET", "/show/current")[2])}
    members = {f"{record}.{key}": value for record, content in records.items() for key, value in content.items()}
    same("the member", document.records, members)
    for name, value in members.items():
        of_type = document.records.get(name, "")
        kinds = {JSON_TYPES.get(kind, str) for kind in of_type.split(" or ")}
        if of_type and type(value) not in kinds:
            faults.append(f"docs/protocol.md: {name} is no {of_type}: {json.dumps(value)}")


def check_frames(document, server):
    """The example of a preview frame and a real one are laid out as the table says."""
    example = example_bytes(document.text, "Preview")
    real, source = server.first_frame()
    for name, data, rest in (("the example", example[:40], example[40:]), ("a frame of ombra", real, source)):
        fields = {re.split("[,:]", what)[0]: int.from_bytes(data[offset:offset + size], "little")
                  for offset, size, what in document.frame[1:]}
        if data[:4] != b"OPVW" or fields["version"] != 1 or fields["format"] not in (33, 97) or \
           fields["height"] * fields["bytes per line"] != fields["length of the pixels"] or \
           rest[:1] != b"/" or len(rest) not in (fields["length of the source"],
                                                 fields["length of the source"] + fields["length of the pixels"]):
            faults.append(f"docs/protocol.md: {name} is not laid out as the table of the preview says")
    if sum(size for _, size, _ in document.frame) != 40:
        faults.append("docs/protocol.md: the header of a preview frame has 40 bytes")


def check_discovery(document, server):
    """After the example: there is something on program."""
    deadline = time.monotonic() + 5
    peer = {}
    # An answer may be a tenth of a second old: somebody else on the network asks as well.
    while (peer.get("program"), peer.get("state")) != ("red", "play") and time.monotonic() < deadline:
        peer = server.discovered(example_bytes(document.text, "Discovery"))
    same("the attribute", document.attributes, peer)
    if (peer.get("program"), peer.get("state")) != ("red", "play"):
        faults.append(f"docs/protocol.md: an answer does not tell what is on program: {peer}")


def check_server(document, server):
    told = server.scene(example_bytes(document.text, "The link"))
    same("the property", {name.split(":")[0] for name in document.properties}, told)
    allowed = set()
    for path in {route.split()[1] for route in document.routes}:
        status, headers, _ = server.ask("PUT", path)
        if status == 405:
            allowed |= {f"{method} {path}" for method in headers["Allow"].split(", ")}
    same("the route", document.routes, allowed)
    check_records(document, server)
    check_frames(document, server)
    check_errors(document, server)


def check_errors(document, server):
    """What is wrong with a request is answered by one of its route's own statuses."""
    future = json.dumps({"format": "halcyra-show", "version": 99, "library": {}, "settings": {}})
    loud = {"/device/channels/0/program/properties/volume": 7}
    for status, method, path, body in (
            (400, "POST", "/show/current?include=none", future), (409, "POST", "/show/current", future),
            (422, "POST", "/show/current", json.dumps(json.loads(future) | {"settings": loud})),
            (400, "POST", "/shows/load", "{}"), (404, "POST", "/shows/load?show=none", "{}"),
            (404, "POST", "/shows/earlier?state=1-clear", "{}"), (404, "DELETE", "/shows?show=none", None),
            (409, "PATCH", "/medialibrary", '[{"op":"remove","path":"/collections/77"}]'),
            (412, "PATCH", "/medialibrary", '[{"op":"test","path":"/collections","value":7}]'),
            (422, "POST", "/medialibrary", '{"collections":7}'), (422, "POST", "/playlists", "{}"),
            (400, "GET", "/metadata/", None), (404, "GET", "/thumbnails/?file=file%3A%2F%2F%2Fnone.png", None)):
        came = server.ask(method, path, body)[0]
        route = f"{method} {path.split('?')[0]}"
        if came != status or str(status) not in document.errors[route]:
            faults.append(f"docs/protocol.md: {method} {path} is answered by {came}; {status} is meant to be, and told of")
    same("the status", document.statuses, document.statuses | set().union(*document.errors.values()))


def run_example(root, server):
    return subprocess.run([sys.executable, root / "docs/examples/cue_and_take.py", "127.0.0.1", server.ports["link"],
                           server.ports["http"]], capture_output=True, text=True, timeout=30)


def check_example(root, server):
    done = run_example(root, server)
    if done.returncode != 0 or done.stdout != "on program: brume://collections/1/slots/1 (red)\n":
        faults.append(f"docs/examples/cue_and_take.py does not take: {done.stdout}{done.stderr}")
    if len((root / "docs/examples/cue_and_take.py").read_text().splitlines()) >= 100:
        faults.append("docs/examples/cue_and_take.py has 100 lines or more")


def check_example_without_slots(root, server):
    server.ask("POST", "/medialibrary", "{}")
    empty = run_example(root, server)
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
    same("the argument", document.arguments, arguments(root))
    same("the route", document.routes, routes(root))
    same("the query", document.queries, re.findall(r'(?:queryValue|hasValue)\([^,"]+, "(\w+)"', sources(root)))
    same("the message of the WebSocket", re.findall(r"`(metadata-\w+)`", document.text),
         re.findall(r'"(metadata-\w+)"', sources(root)))
    same("the status", document.statuses, statuses(root))
    same("the enumeration", document.enumerations, enumerations(root))
    with tempfile.TemporaryDirectory() as folder:
        server = Server(program, pathlib.Path(folder))
        try:
            check_server(document, server)
            check_example(root, server)
            check_discovery(document, server)
            check_example_without_slots(root, server)
        finally:
            server.end()
    for fault in dict.fromkeys(faults):
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]), sys.argv[2]))
