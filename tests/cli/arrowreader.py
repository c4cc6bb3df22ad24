"""An independent reader of Arrow IPC streams, for what results hold: no type beyond those, nothing that is not checked.

read(data) gives a list of streams; each has fields, metadata, batches (their numbers of rows) and rows.
"""
# SPDX-License-Identifier: Apache-2.0
import dataclasses
import struct

CONTINUATION = b"\xff\xff\xff\xff"
NULL, INT, FLOAT, UTF8, BOOL, TIMESTAMP, LIST, DURATION = 1, 2, 3, 5, 6, 10, 12, 18
SCHEMA, BATCH = 1, 3
CODES = {"uint8": "B", "int8": "b", "uint16": "H", "int16": "h", "uint32": "I", "int32": "i", "uint64": "Q", "int64": "q",
         "float": "f", "double": "d", "timestamp[us, UTC]": "q", "duration[us]": "q"}


class Broken(Exception):
    """What is no whole stream."""


def require(condition, reason):
    if not condition:
        raise Broken(reason)


class Table:
    """A table of FlatBuffers."""

    def __init__(self, data, place):
        self.data = data
        self.place = place
        self.vtable = place - self.number("<i", place)
        require(0 <= self.vtable < len(data), "a vtable outside the message")

    def number(self, code, place):
        require(0 <= place <= len(self.data) - struct.calcsize(code), "a number outside the message")
        return struct.unpack_from(code, self.data, place)[0]

    def field(self, index):
        """The place of a field; None when it is absent."""
        slot = 4 + 2 * index
        if slot >= self.number("<H", self.vtable):
            return None
        offset = self.number("<H", self.vtable + slot)
        return self.place + offset if offset else None

    def scalar(self, index, code, default=0):
        place = self.field(index)
        return default if place is None else self.number(code, place)

    def follow(self, place):
        return place + self.number("<I", place)

    def table(self, index):
        place = self.field(index)
        return None if place is None else Table(self.data, self.follow(place))

    def vector(self, index, size=4):
        """The places of a vector's elements."""
        place = self.field(index)
        if place is None:
            return []
        start = self.follow(place)
        return [start + 4 + i * size for i in range(self.number("<I", start))]

    def tables(self, index):
        return [Table(self.data, self.follow(place)) for place in self.vector(index)]

    def text(self, index):
        place = self.field(index)
        if place is None:
            return None
        start = self.follow(place)
        length = self.number("<I", start)
        return bytes(self.data[start + 4:start + 4 + length]).decode("utf-8")


@dataclasses.dataclass
class Field:
    name: str
    type: str        # "uint8", "utf8", "list<utf8>", ...
    item: "Field"    # of a list
    metadata: dict


@dataclasses.dataclass
class Stream:
    fields: list
    batches: list
    rows: list

    def types(self):
        return {field.name: field.type for field in self.fields}


def type_of(kind, table):
    if kind == INT:
        return ("int" if table.scalar(1, "<B") else "uint") + str(table.scalar(0, "<i"))
    if kind == FLOAT:
        return ["half", "float", "double"][table.scalar(0, "<h")]
    if kind == TIMESTAMP:
        require(table.scalar(0, "<h") == 2, "a timestamp that is not in microseconds")
        return f"timestamp[us, {table.text(1)}]"
    if kind == DURATION:
        require(table.scalar(0, "<h", 1) == 2, "a duration that is not in microseconds")
        return "duration[us]"
    names = {NULL: "null", UTF8: "utf8", BOOL: "bool", LIST: "list"}
    require(kind in names, f"type {kind}")
    return names[kind]


def field_of(table):
    require(table.scalar(1, "<B") == 1, "a field that cannot be NULL")
    kind = type_of(table.scalar(2, "<B"), table.table(3))
    children = [field_of(child) for child in table.tables(5)]
    require(len(children) == (1 if kind == "list" else 0), "children of a field")
    metadata = {pair.text(0): pair.text(1) for pair in table.tables(6)}
    return Field(table.text(0), f"list<{children[0].type}>" if children else kind, children[0] if children else None, metadata)


class Batch:
    """The arrays of one batch, in order."""

    def __init__(self, table, body):
        self.length = table.scalar(0, "<q")
        self.nodes = [struct.unpack_from("<qq", table.data, place) for place in table.vector(1, 16)]
        self.places = [struct.unpack_from("<qq", table.data, place) for place in table.vector(2, 16)]
        self.body = body

    def buffer(self):
        offset, length = self.places.pop(0)
        require(offset % 8 == 0 and offset + length <= len(self.body), "a buffer outside the body")
        return self.body[offset:offset + length]

    def column(self, field):
        length, nulls = self.nodes.pop(0)
        if field.type == "null":
            require(nulls == length, "a value in an array without values")
            return [None] * length
        validity = self.buffer()
        valid = [not validity or bool(validity[i // 8] >> i % 8 & 1) for i in range(length)]
        require(valid.count(False) == nulls and (nulls == 0 or validity), "a number of NULLs that is wrong")
        values = self.values(field, length)
        require(len(values) == length, "an array of another length")
        return [value if is_there else None for value, is_there in zip(values, valid)]

    def values(self, field, length):
        if field.item is not None:
            bounds = self.bounds(length)
            items = self.column(field.item)
            require(bounds[-1] == len(items), "offsets that end elsewhere")
            return [items[begin:end] for begin, end in zip(bounds, bounds[1:])]
        if field.type == "utf8":
            bounds = self.bounds(length)
            text = self.buffer()
            require(bounds[-1] == len(text), "offsets that end elsewhere")
            return [text[begin:end].decode("utf-8") for begin, end in zip(bounds, bounds[1:])]
        data = self.buffer()
        if field.type == "bool":
            require(len(data) == (length + 7) // 8, "bits of another length")
            return [bool(data[i // 8] >> i % 8 & 1) for i in range(length)]
        return list(struct.unpack(f"<{length}{CODES[field.type]}", data))

    def bounds(self, length):
        found = list(struct.unpack(f"<{length + 1}i", self.buffer()))
        require(found[0] == 0 and found == sorted(found), "offsets out of order")
        return found

    def finish(self):
        require(not self.nodes and not self.places, "arrays that no field has")


def messages(data, at):
    """(kind, header, body, place behind it) of each message up to the end of the stream; at the end (None, None, None, place)."""
    while True:
        require(data[at:at + 4] == CONTINUATION and len(data) >= at + 8, "no message where one must be")
        size = struct.unpack_from("<i", data, at + 4)[0]
        at += 8
        if size == 0:
            yield None, None, None, at
            return
        require(size % 8 == 0 and at + size <= len(data), "metadata that is cut")
        metadata = data[at:at + size]
        at += size
        message = Table(metadata, struct.unpack_from("<I", metadata)[0])
        require(message.scalar(0, "<h") == 4, "another version of the format")
        length = message.scalar(3, "<q")
        require(length % 8 == 0 and at + length <= len(data), "a body that is cut")
        yield message.scalar(1, "<B"), message.table(2), data[at:at + length], at + length
        at += length


def read_stream(data, at):
    stream = None
    for kind, header, body, behind in messages(data, at):
        if kind is None:
            require(stream is not None, "a stream without schema")
            return stream, behind
        if stream is None:
            require(kind == SCHEMA and header.scalar(0, "<h") == 0, "a stream that begins with no schema")
            stream = Stream([field_of(field) for field in header.tables(1)], [], [])
            continue
        require(kind == BATCH, "a message of another kind")
        batch = Batch(header, body)
        columns = [batch.column(field) for field in stream.fields]
        batch.finish()
        require(all(len(column) == batch.length for column in columns), "columns of another length")
        stream.batches.append(batch.length)
        stream.rows += [list(row) for row in zip(*columns)]
    raise Broken("a stream without end")


def read(data):
    streams, at = [], 0
    while at < len(data):
        stream, at = read_stream(data, at)
        streams.append(stream)
    return streams
