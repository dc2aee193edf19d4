#!/usr/bin/env python3
"""Reads a convmap.cp with nothing but docs/convmap-format.md in hand.

    dump_convmap.py FILE                 the header, every entry and what its record holds
    dump_convmap.py FILE --json          the same for machines
    dump_convmap.py FILE --codes CHARSET one line for each code: the bytes, the code point, "-" where there is no way back
    dump_convmap.py FILE --verify        looks for records outside the file and for rules of the page that are broken
    dump_convmap.py FILE --against NLS   converts every code of every charset with the command NLS, there and back, and
                                         compares with what this reader makes of the file
    dump_convmap.py --example PAGE       builds the file of the page's worked example and checks the results told there

The reader shares no code with the library: what both agree on is what the page says.
"""
import argparse
import json
import signal
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

NOTHING = 65535
CONVERSION, ATTRIBUTES, CASE, COLLATION = 1, 2, 3, 4
KINDS = {CONVERSION: "conversion", ATTRIBUTES: "attributes", CASE: "case", COLLATION: "collation"}
TYPE_WORDS = [0x097, 0x218, 0x117, 0x418, 0x099, 0x21A, 0x119, 0x41A, 0x09B, 0x21C, 0x11B, 0x41C, 0x21B, 0x09C, 0x41B,
              0x11C, 0x29B, 0x29C, 0x49B, 0x31C, 0x31B, 0x49C, 0x51B, 0x51C, 0x11E, 0x41D, 0x09E, 0x21D, 0x105, 0x406,
              0x085, 0x206, 0x185, 0x606]
ORDER_BITS = 0x780
MULTI_BYTE_TO_UTF8 = {17, 81, 89}
SINGLE_BYTE_TO_UTF8 = {19, 51}


class Broken(Exception):
    """The bytes aren't what the page says."""


def decimal(field):
    text = field.decode("latin-1").lstrip(" \t\n")
    sign, digits = 1, ""
    if text[:1] in ("+", "-"):
        sign = -1 if text[0] == "-" else 1
        text = text[1:]
    for char in text:
        if char not in "0123456789":
            break
        digits += char
    return sign * int(digits or "0")


def type_word(code):
    if code <= 128:
        return code
    if not 144 <= code <= 177:
        raise Broken(f"{code} is no code of a type")
    return TYPE_WORDS[code - 144]


class Map:
    """One map record of a multi-byte charset, with its arrays."""

    def __init__(self, file, raw):
        self.cjis_offset, self.rows_offset, self.cells_offset = struct.unpack_from("<3I", raw, 28)
        triples = [struct.unpack_from("<3I", raw, 40 + 12 * i) for i in range(5)]
        ends = [i for i, triple in enumerate(triples) if triple[0] == 0]
        self.triples = triples[:ends[0]] if ends else triples
        (self.sjis_zero, self.cjis_base, self.gap_after, self.gap_size, self.cjis_count, self.ucs_min, self.ucs_max,
         self.row_shift, self.value_shift, self.subst_char) = struct.unpack_from("<10H", raw, 104)
        bounds = raw[124:134]
        self.leads = [(bounds[0], bounds[1]), (bounds[2], bounds[3])]
        self.trails = [(bounds[4], bounds[5]), (bounds[6], bounds[7]), (bounds[8], bounds[9])]
        self.row_count, self.cell_count = struct.unpack_from("<2H", raw, 134)
        self.col_mask, self.skip_mask = struct.unpack_from("<2H", raw, 140)
        self.lead_gap, self.trail_gap2, self.trails_per_row = raw[144], raw[146], raw[147]
        self.trail_gap3, self.ranges_on_cjis = raw[148], raw[149] != 0
        self.cjis_to_ucs = self._array(file, self.cjis_offset, self.cjis_count)
        self.rows = self._array(file, self.rows_offset, self.row_count)
        self.cells = self._array(file, self.cells_offset, self.cell_count)
        if any(raw[0:24]):
            raise Broken("a map's places for pointers aren't 0")

    @staticmethod
    def _array(file, offset, count):
        return list(struct.unpack(f"<{count}H", file.bytes_at(offset + 6, 2 * count))) if count else []

    def number_of_code(self, code):
        if code == self.sjis_zero:
            return 0
        lead, trail = code >> 8, code & 0xFF
        (lead1, lead1_end), (lead2, lead2_end) = self.leads
        (trail1, trail1_end), (trail2, trail2_end), (trail3, trail3_end) = self.trails
        if lead < lead1 or (lead > lead1_end and lead < lead2) or (lead2_end >= lead2 and lead > lead2_end):
            return NOTHING
        second = trail2_end >= trail2
        if trail < trail1 or (trail > trail1_end and trail < trail2):
            return NOTHING
        if second and trail > trail2_end and trail < trail3:
            return NOTHING
        if trail3_end >= trail3 and trail > trail3_end:
            return NOTHING
        if lead > lead1_end:
            lead -= self.lead_gap
        if second and trail > trail2_end:
            trail -= self.trail_gap3
        elif trail > trail1_end:
            trail -= self.trail_gap2
        row, column = (lead - lead1) & 0xFF, (trail - trail1) & 0xFF
        number = (1 - self.cjis_base + row * self.trails_per_row + column) & 0xFFFF
        return (number - self.gap_size) & 0xFFFF if number > self.gap_after else number

    def code_of_number(self, number):
        if number == 0:
            return self.sjis_zero
        if number > self.gap_after:
            number += self.gap_size
        place = (self.cjis_base - 1 + number) & 0xFFFF
        row, column = divmod(place, self.trails_per_row)
        trail, lead = (self.trails[0][0] + column) & 0xFF, (self.leads[0][0] + row) & 0xFF
        if self.trails[1][1] >= self.trails[1][0] and trail > self.trails[1][1]:
            trail += self.trail_gap3
        elif trail > self.trails[0][1]:
            trail += self.trail_gap2
        if lead > self.leads[0][1]:
            lead += self.lead_gap
        return (lead & 0xFF) << 8 | (trail & 0xFF)

    def to_unicode(self, code):
        number = self.number_of_code(code)
        if number >= self.cjis_count:
            return NOTHING
        value = self.cjis_to_ucs[number]
        if self.ranges_on_cjis:
            for end, _, delta in self.triples:
                if value + delta <= end:
                    return value + delta
        return value

    def from_unicode(self, point, direct):
        number = self._direct(point) if direct else self._by_rows(point)
        return NOTHING if number == NOTHING else self.code_of_number(number)

    def _direct(self, point):
        if point > 0xFFFF or not self.ucs_min <= point <= self.ucs_max:
            return NOTHING
        return self.cells[point - self.ucs_min]

    def _by_rows(self, point):
        if self.triples:
            fitting = [delta for end, start, delta in self.triples if start <= point <= end]
            if not fitting:
                return NOTHING
            point -= fitting[0]
        if not self.ucs_min <= point <= self.ucs_max:
            return NOTHING
        index = point - self.ucs_min
        column, cell = index & self.col_mask, self.rows[index >> self.row_shift]
        while column > 0:
            skip = self.cells[cell] & self.skip_mask
            cell += 1
            if skip == 0:
                skip = self.cells[cell]
                cell += 1
            column -= skip
        return self.cells[cell] >> self.value_shift if column == 0 else NOTHING


class MultiByte:
    """The three maps of a charset and its lengths: every code to Unicode and back."""

    def __init__(self, maps, lengths, is_cp936):
        self.first, self.second, self.third = maps
        self.lengths, self.is_cp936 = lengths, is_cp936
        present = [(self.third, True)] if self.third.cjis_count else []
        self.order = present + [(self.first, False), (self.second, False)]

    def point(self, code):
        if code == 0:
            return 0
        for one, _ in self.order:
            found = one.to_unicode(code)
            if found != NOTHING:
                return found
        if code <= 0x7F:
            return code
        return 0x20AC if self.is_cp936 and code == 0x80 else 0xFFFD

    def code(self, point):
        """The code of a code point, or None where it would be the substitute."""
        if point == 0:
            return 0
        for one, direct in self.order:
            found = one.from_unicode(point, direct)
            if found != NOTHING:
                return found
        if point < 0x80:
            return point
        return 0x80 if self.is_cp936 and point == 0x20AC else None

    def codes(self):
        """(bytes, code point) of every byte sequence that the lengths allow and that is a character."""
        for first in range(256):
            follow = self.lengths[first] & 7
            if follow == 0:
                yield bytes([first]), self.point(first)
            elif follow == 1:
                for second in range(1, 256):
                    yield bytes([first, second]), self.point(first << 8 | second)

    def back(self, point):
        code = self.code(point)
        return None if code is None else code.to_bytes(2 if code > 0xFF else 1, "big")


class SingleByte:
    def __init__(self, units):
        self.units = [0] + units[1:]
        self.places = {}
        for byte, unit in enumerate(self.units):
            place = self.place(unit)
            if self.places.get(place):
                raise Broken(f"bytes {self.places[place]:02X} and {byte:02X} have one place on the way back")
            self.places[place] = byte

    @staticmethod
    def place(unit):
        if 0xD800 <= unit <= 0xDFFF:
            raise Broken(f"a surrogate, {unit:04X}, stands for a byte")
        text = chr(unit).encode()
        return [(0, text[0]), (text[0], text[-1] & 0x3F), (text[len(text) // 2], text[-1] & 0x3F)][len(text) - 1]

    def codes(self):
        """(bytes, code point) of every byte; U+FFFD for one whose unit only fills its place."""
        for byte, unit in enumerate(self.units):
            yield bytes([byte]), 0xFFFD if unit == 0xF700 + byte else unit

    def back(self, point):
        byte = self.places.get(self.place(point), 0)
        return bytes([byte]) if byte or point == 0 else None


class Entry:
    def __init__(self, raw):
        self.names = [self._name(raw[0:20]), self._name(raw[20:40])]
        self.offset, self.sub_kind = decimal(raw[40:47]), decimal(raw[47:48])
        self.raw_byte, self.type = raw[48], decimal(raw[49:50])

    @staticmethod
    def _name(field):
        if 0 not in field:
            raise Broken(f"a name of the contents, {field!r}, isn't closed by a NUL")
        return field[:field.index(0)].decode("latin-1")

    def called(self, *names):
        return all(a.rstrip(" ").upper() == b.rstrip(" ").upper() for a, b in zip(self.names, names))


class ConvmapFile:
    def __init__(self, data):
        self.data = data
        header = self.bytes_at(0, 16)
        if decimal(header[0:4]) != 4242:
            raise Broken("the file doesn't begin with 4242")
        self.contents, self.version, self.count = decimal(header[4:6]), decimal(header[6:8]), decimal(header[8:11])
        if self.version not in (4, 5):
            raise Broken(f"version {self.version} is neither 4 nor 5")
        self.entries = [Entry(self.bytes_at(self.contents + 64 * i, 64)) for i in range(self.count)]

    def bytes_at(self, offset, length):
        if offset < 0 or offset + length > len(self.data):
            raise Broken(f"the file ends inside the {length} bytes at {offset}")
        return self.data[offset:offset + length]

    def find(self, kind, *names):
        return next((e for e in self.entries if e.type == kind and e.called(*names)), None)

    def code(self, entry):
        return struct.unpack(">H", self.bytes_at(entry.offset, 528)[516:518])[0] if entry.offset else entry.raw_byte

    def number(self, entry):
        return type_word(self.code(entry)) & ~ORDER_BITS

    def lengths(self, charset):
        entry = self.find(ATTRIBUTES, charset)
        if entry is None:
            raise Broken(f"{charset} has no attribute table")
        raw = self.bytes_at(entry.offset, 1552)
        used = min(decimal(raw[0:4]), 256)
        return raw[516:516 + used] + bytes(256 - used)

    def charset(self, entry):
        """What the record of a conversion to UTF-8 holds: a SingleByte or a MultiByte; None for any other entry."""
        if not entry.offset or not entry.called(entry.names[0], "UTF-8"):
            return None
        record, number = self.bytes_at(entry.offset, 528), self.number(entry)
        if number in SINGLE_BYTE_TO_UTF8:
            return SingleByte(list(struct.unpack_from("<256H", record, 4)))
        if number in MULTI_BYTE_TO_UTF8:
            maps = [Map(self, record[8 + 160 * i:168 + 160 * i]) for i in range(3)]
            name = entry.names[0]
            return MultiByte(maps, self.lengths(name), entry.called("CP936"))
        return None

    def charsets(self):
        for entry in self.entries:
            if entry.type == CONVERSION:
                found = self.charset(entry)
                if found is not None:
                    yield entry, found


def describe(file, entry):
    """What the record of an entry holds, as a dictionary."""
    told = {"kind": KINDS.get(entry.type, "none"), "name1": entry.names[0], "name2": entry.names[1],
            "offset": entry.offset, "subKind": entry.sub_kind, "rawByte": entry.raw_byte}
    if entry.type == CONVERSION:
        told.update(code=file.code(entry), typeWord=type_word(file.code(entry)), type=file.number(entry))
        table = file.charset(entry)
        if isinstance(table, MultiByte):
            told["maps"] = [{"entries": m.cjis_count, "rows": m.row_count, "cells": m.cell_count,
                             "triples": len(m.triples)} for m in (table.first, table.second, table.third)]
        if table is not None:
            told["characters"] = sum(1 for _, point in table.codes() if point != 0xFFFD)
    elif entry.type == ATTRIBUTES:
        raw = file.bytes_at(entry.offset, 1552)
        told.update(size=decimal(raw[0:4]), flags=entry.raw_byte, letters=sum(map(bool, raw[4:260])),
                    firstBytes=sum(1 for b in raw[516:772] if b & 7), trailBytes=sum(map(bool, raw[1028:1284])))
    elif entry.type == COLLATION:
        raw = file.bytes_at(entry.offset, 1040)
        told.update(size=decimal(raw[0:4]), collKind=raw[1028], collSubKind=raw[1029])
    elif entry.type == CASE and entry.raw_byte == 2:
        raw = file.bytes_at(entry.offset, 5968)
        told.update(upperPairs=len(case_pairs(raw, 6)), lowerPairs=len(case_pairs(raw, 2982)))
    elif entry.type == CASE:
        told.update(size=decimal(file.bytes_at(entry.offset, 1040)[0:4]))
    return told


def case_pairs(raw, start):
    words = struct.unpack_from("<1488H", raw, start)
    pairs = list(zip(words[0::2], words[1::2]))
    ends = [i for i, pair in enumerate(pairs) if pair[0] == 0]
    if not ends:
        raise Broken("a case list isn't closed")
    return pairs[:ends[0]]


def dump(file, as_json):
    told = [describe(file, entry) for entry in file.entries]
    if as_json:
        header = {"size": len(file.data), "version": file.version, "contents": file.contents, "count": file.count}
        print(json.dumps({"header": header, "entries": told}, indent=1))
        return
    print(f"{len(file.data)} bytes, version {file.version}, {file.count} entries from {file.contents} on")
    for index, entry in enumerate(told):
        rest = " ".join(f"{k}={v}" for k, v in entry.items() if k not in ("kind", "name1", "name2"))
        print(f"{index:3} {entry['kind']:10} {entry['name1']:19} {entry['name2']:19} {rest}")


def print_codes(file, charset):
    entry = file.find(CONVERSION, charset, "UTF-8")
    table = file.charset(entry) if entry else None
    if table is None:
        raise Broken(f"{charset} has no record of a conversion to UTF-8")
    for code, point in table.codes():
        if point != 0xFFFD:
            print(f"{code.hex().upper()}\tU+{point:04X}\t{'=' if table.back(point) == code else '-'}")


def verify(file):
    """Every record is read whole; what the page forbids is reported. Returns the complaints."""
    complaints = []
    for index, entry in enumerate(file.entries):
        where = f"entry {index} ({entry.names[0]}, {entry.names[1]})"
        try:
            if entry.type not in KINDS:
                raise Broken(f"type {entry.type} of an entry is none of the four")
            if entry.offset == 0 and entry.type != CONVERSION:
                raise Broken("no record")
            describe(file, entry)
            if entry.type == CONVERSION:
                verify_conversion(file, entry)
        except (Broken, IndexError) as fault:
            complaints.append(f"{where}: {fault or 'a walk leaves its array'}")
    return complaints


def verify_conversion(file, entry):
    number, opposite = file.number(entry), file.find(CONVERSION, entry.names[1], entry.names[0])
    if entry.offset and number != 1 and type_word(entry.raw_byte) & ~ORDER_BITS != number:
        raise Broken("rawByte and the code of the record differ")
    if (number == 1) != (entry.raw_byte == 1):
        raise Broken("a byte map isn't marked in rawByte")
    needs_opposite = number in MULTI_BYTE_TO_UTF8 | SINGLE_BYTE_TO_UTF8 | {18, 20, 50}
    if needs_opposite and opposite is None:
        raise Broken("the opposite entry is missing")
    for unicode_side, charset_side in ((29, entry.names[0]), (30, entry.names[1])):
        if number == unicode_side and file.find(CONVERSION, charset_side, "UTF-8") is None:
            raise Broken(f"{charset_side} has no conversion to UTF-8 behind it")
    table = file.charset(entry)
    if isinstance(table, MultiByte):
        wide = range(0x20000, 0x30000) if any(m.triples for m in (table.first, table.second)) else ()
        for point in [*range(0x10000), *wide]:  # every walk stays inside its arrays, and leads to a code that exists
            code = None if 0xD800 <= point < 0xE000 else table.code(point)
            if code is not None and code > 0x7F and table.point(code) == 0xFFFD:
                raise Broken(f"U+{point:04X} goes back to {code:04X}, which is no character")


def against(file, nls, path):
    """Every character of every charset through the command, there and back. Returns the complaints."""
    complaints = []
    with tempfile.TemporaryDirectory() as folder:
        source = Path(folder) / "text"
        for entry, table in file.charsets():
            name = entry.names[0]
            pairs = [(code, point) for code, point in table.codes() if point != 0xFFFD]
            forth = b"".join(code for code, _ in pairs), "".join(chr(point) for _, point in pairs).encode()
            returning = [(chr(point).encode(), table.back(point)) for point in sorted({p for _, p in pairs})]
            returning = [pair for pair in returning if pair[1] is not None]
            back = b"".join(p[0] for p in returning), b"".join(p[1] for p in returning)
            for one, other, (given, wanted) in ((name, "UTF-8", forth), ("UTF-8", name, back)):
                source.write_bytes(given)
                run = subprocess.run([nls, "convert", "-D", path, "-f", one, "-t", other, str(source)],
                                     stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
                if run.returncode != 0:
                    complaints.append(f"{one} to {other}: exit {run.returncode}: {run.stderr.decode().strip()}")
                elif run.stdout != wanted:
                    at = next((i for i, (a, b) in enumerate(zip(run.stdout, wanted)) if a != b), len(wanted))
                    complaints.append(f"{one} to {other}: differs from byte {at} of {len(wanted)} on")
            print(f"{name:19} {len(pairs):6} characters there, {len(returning):6} back")
    return complaints


def example_file(page):
    """The bytes of the page's worked example: lines of an offset and bytes in hex, zeros between them."""
    data, inside = bytearray(), False
    for line in Path(page).read_text(encoding="utf-8").splitlines():
        if line.startswith("```"):
            inside = line == "```convmap"
        elif inside and not line.startswith("#"):
            offset, *values = line.split()
            start = int(offset, 16)
            if start < len(data):
                raise Broken(f"line {offset} of the example overlaps the one before")
            data.extend(bytes(start - len(data)) + bytes(int(value, 16) for value in values))
    return bytes(data)


def check_example(page):
    file = ConvmapFile(example_file(page))
    complaints = verify(file)
    table = file.charset(file.find(CONVERSION, "tiny", "utf-8"))
    wanted = [(table.point(0x8142), 0x3044), (table.point(0x8140), 0x3042), (table.point(0x8141), 0xFFFD),
              (table.back(0x3044), b"\x81\x42"), (table.back(0x3043), None), (table.first.subst_char, 0x3F)]
    complaints += [f"found {found!r}, the page says {told!r}" for found, told in wanted if found != told]
    letters = "".join(chr(p) for c, p in table.codes() if len(c) == 1 and 0x20 < p < 0x7F)
    if len(letters) != 94 or [p for c, p in table.codes() if len(c) == 2 and p != 0xFFFD] != [0x3042, 0x3044]:
        complaints.append("the codes of the example aren't ASCII and two letters")
    return complaints


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("file", nargs="?")
    parser.add_argument("--json", action="store_true")
    parser.add_argument("--codes", metavar="CHARSET")
    parser.add_argument("--verify", action="store_true")
    parser.add_argument("--against", metavar="NLS")
    parser.add_argument("--example", metavar="PAGE")
    args = parser.parse_args()
    if args.example is None and args.file is None:
        parser.error("which file?")
    try:
        if args.example:
            complaints, what = check_example(args.example), "worked example"
        else:
            file, what = ConvmapFile(Path(args.file).read_bytes()), args.file
            if args.codes:
                return print_codes(file, args.codes)
            if args.against:
                complaints = against(file, args.against, args.file)
            elif args.verify:
                complaints = verify(file)
            else:
                return dump(file, args.json)
    except (Broken, OSError) as fault:
        complaints, what = [str(fault)], args.file or args.example
    for complaint in complaints:
        print(f"{what}: {complaint}", file=sys.stderr)
    print(f"{what}: {'broken' if complaints else 'as the page says'}")
    return 1 if complaints else 0


if __name__ == "__main__":
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)  # a reader such as head may leave early
    sys.exit(main())
