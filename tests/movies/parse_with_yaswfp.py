"""Parses movies with a reader of another make. Prints what it could not read; the exit status tells.

It gives a tag that it fails on to us as a FailingObject, and one that it has no code for as an UnknownObject;
only the first is a fault.
"""
import sys

import yaswfp.helpers as helpers
import yaswfp.swfparser as swfparser


class BitConsumer(helpers.BitConsumer):
    """Drops the bits left of a byte when somebody else has read on: styles within a shape start a new byte."""

    def u_get(self, quant):
        if self._count and self.src.tell() != self._position:
            self._count = 0
        value = super().u_get(quant)
        self._position = self.src.tell()
        return value


swfparser.BitConsumer = BitConsumer


class Parser(swfparser.SWFParser):
    """The reader, with what it does not know: undefined as a pushed value, which has no bytes, and that texts
    are in an ANSI code page before version 6."""

    def _get_struct_string(self):
        data = bytearray()
        while (byte := self._src.read(1)) != b"\x00":
            data += byte
        return bytes(data).decode("utf8" if self._version >= 6 else "cp1251")

    def _handle_actionpush(self, length):
        start = self._src.tell()
        while self._src.tell() < start + length:
            position = self._src.tell()
            if self._src.read(1) == b"\x03":
                yield swfparser._make_object("ActionPush")
                continue
            self._src.seek(position)
            yield next(super()._handle_actionpush(length))


def faults(tags, path):
    for tag in tags:
        # The mark of an anchor behind a label is unknown to it.
        if tag.name == "FrameLabel" and getattr(tag, "raw_payload", b"").endswith(b"\x00\x01"):
            continue
        # It reads the codes of a font's glyphs as 16 bits even when the font says that they are 8.
        if tag.name == "DefineFont2" and not getattr(tag, "raw_payload", b"\0\0\xFF")[2] & 4:
            continue
        # It looks for actions behind buttons that have none.
        if tag.name == "DefineButton2" and getattr(tag, "raw_payload", b"\0\0\0\xFF")[3:5] == b"\0\0":
            continue
        if type(tag).__name__ == "FailingObject":
            yield "%s/%s" % (path, tag.name)
        inner = getattr(tag, "ControlTags", None)
        if inner:
            yield from faults(inner, path + "/" + tag.name)


def main():
    failed = 0
    for name in sys.argv[1:]:
        try:
            with open(name, "rb") as movie:
                found = list(faults(Parser(movie).tags, name))
        except Exception as error:  # whatever the reader stumbles over is a fault of the movie
            found = ["%s: %s: %s" % (name, type(error).__name__, error)]
        for line in found:
            print(line)
        failed += bool(found)
    print("%d movies, %d with faults" % (len(sys.argv) - 1, failed))
    return 1 if failed else 0


sys.exit(main())
