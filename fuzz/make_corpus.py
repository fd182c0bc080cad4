#!/usr/bin/env python3
"""Makes the seeds of the fuzz targets from the project's own tests, in the form that each target takes.

  make_corpus.py BUILD_FOLDER      writes fuzz/corpus/TARGET/seed-NAME; what fuzzers found there is left alone
"""
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import zlib

ROOT = pathlib.Path(__file__).resolve().parent.parent
MOVIES = ROOT / 'tests/movies'
MOST_BYTES = 6000
SHORTEST_ACTIONS = 60
# What a user does meanwhile, three bytes for each thing: see doInput() in PlayMovie.h.
INPUT = bytes([0, 99, 99, 1, 99, 99, 2, 99, 99, 3, 65, 65, 4, 65, 65, 5, 140, 0, 6, 30, 30, 3, 9, 9])
FONTS, BITMAPS = (10, 48, 75, 13, 62, 88, 11, 33, 37), (6, 20, 21, 35, 36, 90)
DO_ACTION, DEFINE_SOUND, VIDEO_STREAM, VIDEO_FRAME, SPRITE, DO_ABC = 12, 14, 60, 61, 39, 82
# Of the folders of tests in ActionScript 3: those that are about the stage, and about the language.
STAGED, SPOKEN = ('display', 'events', 'input', 'media', 'net', 'text'), ('assembler', 'core', 'e4x', 'errors', 'language')
VIDEO_CODECS = (2, 3, 4, 5, 6)


class Corpus:
    def __init__(self, build):
        self.swfc, self.flashrun = build / 'bin/swfc', build / 'bin/flashrun'
        for old in (ROOT / 'fuzz/corpus').glob('*/seed-*'):
            old.unlink()

    def put(self, target, name, content):
        if len(content) > MOST_BYTES:
            return
        folder = ROOT / 'fuzz/corpus' / target
        folder.mkdir(parents=True, exist_ok=True)
        (folder / ('seed-' + name)).write_bytes(content)

    def compiled(self, source):
        """The plain movie made of a source, or nothing."""
        with tempfile.TemporaryDirectory() as folder:
            made = pathlib.Path(folder) / 'movie.swf'
            done = subprocess.run([self.swfc, source, '-o', made], check=False, capture_output=True)
            if done.returncode != 0:
                return b''
            movie = made.read_bytes()
        return movie if movie[:3] == b'FWS' else b'F' + movie[1:8] + zlib.decompress(movie[8:])


def tags(movie):
    at = 8 + (5 + 4 * (movie[8] >> 3) + 7) // 8 + 4
    while at + 2 <= len(movie):
        word, = struct.unpack_from('<H', movie, at)
        at, length = at + 2, word & 63
        if length == 63:
            length, = struct.unpack_from('<I', movie, at)
            at += 4
        yield word >> 6, movie[at:at + length]
        at += length


def put_tags(corpus, name, movie):
    """What the targets take that try one kind of tag."""
    packets = b''
    for number, (code, body) in enumerate(tags(movie)):
        label = '%s-%d' % (name, number)
        if code in FONTS:
            corpus.put('FuzzFonts', label, bytes([FONTS.index(code)]) + body[2:])
        elif code in BITMAPS:
            corpus.put('FuzzBitmaps', label, bytes([BITMAPS.index(code)]) + body[2:])
        elif code == DO_ACTION and len(body) >= SHORTEST_ACTIONS:
            corpus.put('FuzzActions', label, bytes([movie[3] - 4]) + body)
        elif code == DEFINE_SOUND:
            corpus.put('FuzzSound', label, bytes([body[2] >> 4, 2 | (body[2] & 1) << 2 | (body[2] & 2) << 2, 2, 1]) + body[7:])
        elif code == VIDEO_STREAM and body[9] in VIDEO_CODECS:
            width, height = struct.unpack_from('<HH', body, 4)
            packets = bytes([VIDEO_CODECS.index(body[9]), width // 4, height // 4, 0])
        elif code == VIDEO_FRAME and packets and len(packets) + len(body) < MOST_BYTES:
            packets += struct.pack('<H', len(body) - 4) + body[4:]
    if packets:
        corpus.put('FuzzVideo', name, packets)


def flv_with_sound(kind, pieces):
    """An FLV file of one sound, a packet every 100 ms. @param kind the first byte of each packet's data"""
    file = b'FLV\1\4' + struct.pack('>II', 9, 0)
    for number, piece in enumerate(pieces):
        body = bytes([kind]) + piece
        file += b'\x08' + struct.pack('>I', len(body))[1:] + struct.pack('>I', number * 100)[1:] + bytes(4) + body
        file += struct.pack('>I', len(body) + 11)
    return file


def stored_object(corpus):
    """The file of a shared object, as the player writes it."""
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        (folder / 'keeps.as').write_text(
            '// movie: version="8"\nvar so = SharedObject.getLocal("s"); so.data.list = [1, {a: "b", d: new Date(5)}];'
            'so.data.again = so.data.list; so.data.on = true; so.data.x = new XML("<a b=\'1\'/>"); so.flush();')
        subprocess.run([corpus.swfc, folder / 'keeps.as', '-o', folder / 'keeps.swf'], check=True)
        subprocess.run([corpus.flashrun, 'trace', folder / 'keeps.swf', '--storage', folder / 'stored'], check=True,
                       capture_output=True)
        return next(path for path in (folder / 'stored').rglob('*') if path.is_file()).read_bytes()


SMALL_FONT = """<movie version="8" width="100" height="100" rate="20">
  <font id="f" file="DejaVuSans.ttf" chars="AB" kerning="yes"/>
  <edit id="e" font="f" size="12" width="100" height="40">ABab</edit>
  <text id="t" font="f" size="12">ABBA</text>
  <frame><place id="e" depth="1"/><place id="t" depth="2"/></frame>
</movie>
"""


def write_dictionary():
    """The names that scripts may use: those of the tables of classes, and the words of the language."""
    words = {'function', 'with', 'delete', 'typeof', 'instanceof', 'super', 'this', '_root', '_parent', 'prototype', 'try',
             'throw', 'finally', 'for (var i in ', 'new ', 'onEnterFrame', 'valueOf', 'toString', '__proto__', 'null', 'NaN',
             'Infinity', '-1', '1e9', '0x7FFFFFFF', 'flash.display.BitmapData', 'flash.geom.Matrix', 'flash.filters.'}
    for source in (ROOT / 'src/flash').rglob('*.cpp'):
        words.update(re.findall(r'\{"([A-Za-z_]\w{2,})"', source.read_text()))
    lines = ['"%s"' % word for word in sorted(words)]
    (ROOT / 'fuzz/FuzzActionScript.dict').write_text('# Made by make_corpus.py.\n' + '\n'.join(lines) + '\n')


def main():
    write_dictionary()
    corpus = Corpus(pathlib.Path(sys.argv[1]).resolve())
    for source in sorted([*MOVIES.glob('*/*.xml'), *MOVIES.glob('*/*.as')]):
        name, text = source.parent.name + '-' + source.stem, source.read_bytes()
        movie = corpus.compiled(source)
        if not movie:
            continue
        put_tags(corpus, name, movie)
        if source.suffix == '.as':
            corpus.put('FuzzActionScript', name, b'\x03' + text)
        if source.parent.name in ('buttons', 'shapes', 'text', 'placement') or (
                source.suffix == '.xml' and source.parent.name == 'engine'):
            corpus.put('FuzzEngine', name, INPUT + movie)
            corpus.put('FuzzSwf', name, movie)
        if source.parent.name in ('language', 'script4', 'buttons'):
            corpus.put('FuzzSwfc', name, bytes([source.suffix == '.as' and 7]) + text)
    for source in sorted([*MOVIES.glob('actionscript3/*/*.as'), *MOVIES.glob('actionscript3/assembler/*.xml')]):
        text = source.read_bytes()
        if source.suffix == '.xml':
            text = text.partition(b'<![CDATA[')[2].partition(b']]>')[0]
        name = 'actionscript3-' + source.parent.name + '-' + source.stem
        corpus.put('FuzzSwfc', name, bytes([0x81 if source.suffix == '.as' else 0x80]) + text)
        movie = corpus.compiled(source)
        if movie and source.parent.name in STAGED:
            corpus.put('FuzzEngine', name, INPUT + movie)
        if movie and source.parent.name in SPOKEN:
            for code, body in tags(movie):
                if code == DO_ABC:
                    corpus.put('FuzzAbc', name, body[body.index(0, 4) + 1:])
    put_tags(corpus, 'film', corpus.compiled(ROOT / 'assets/samples/film.xml'))

    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / 'font.xml').write_text(SMALL_FONT)
        put_tags(corpus, 'small', corpus.compiled(pathlib.Path(folder) / 'font.xml'))

    small = corpus.compiled(MOVIES / 'shapes/winding.xml')
    packed = b'C' + small[1:8] + zlib.compress(small[8:])
    projector = b'MZ' + bytes(1100) + small + bytes.fromhex('563412fa') + struct.pack('<I', len(small))
    for name, content in ('plain', small), ('compressed', packed), ('projector', projector), ('cut', packed[:40]):
        corpus.put('FuzzGetFlashInfo', name, content)
    corpus.put('FuzzExtractExe', 'projector', projector)
    corpus.put('FuzzFlv', 'clip', (MOVIES / 'video/clip.flv').read_bytes()[:MOST_BYTES])
    corpus.put('FuzzSound', 'mp3', bytes([2, 2, 1, 0]) + (MOVIES / 'sound/silence.mp3').read_bytes()[:MOST_BYTES - 4])
    # Formats 3, 2 and 6 of an FLV's sound: plain, MP3, Nellymoser.
    mp3 = (MOVIES / 'sound/silence.mp3').read_bytes()
    for name, kind, pieces in (('plain', 0x3A, [bytes(range(0, 240, 3)) * 8] * 4), ('nellymoser', 0x62, [bytes(range(64))] * 6),
                               ('mp3', 0x2E, [mp3[at:at + 400] for at in range(0, 2000, 400)])):
        corpus.put('FuzzSound', 'flv-' + name, bytes([2, 2, 1, 0]) + flv_with_sound(kind, pieces))
    # Movies of version 5 in codes of two bytes.
    for source in (MOVIES / 'text/version5.xml', MOVIES / 'language/version5.as'):
        for code in range(1, 6):
            movie = corpus.compiled(source) if source.exists() else b''
            if movie:
                corpus.put('FuzzEngine', 'code%d-%s' % (code, source.stem), INPUT[:-1] + bytes([code]) + movie)
    for code, text in enumerate((b'\x83\x65\x83\x58\x83\x67', b'\xb2\xe2\xca\xd4', b'\xb4\xfa\xb8\xd5', b'\xc5\xd7'), 1):
        # ord(mbsubstring(text, 1, 2)) and the like, in version 5.
        push = b'\0' + text + b'\0' + b'\7' + struct.pack('<I', 1) + b'\7' + struct.pack('<I', 2)
        block = b'\x96' + struct.pack('<H', len(push)) + push + b'\x35\x36\x26\x96' + struct.pack('<H', len(text) + 2) + \
            b'\0' + text + b'\0' + b'\x31\x26\0'
        corpus.put('FuzzActions', 'code-%d' % code, bytes([code << 3 | 1]) + block)
    for source in ROOT.glob('tests/skin/*/skin.xml'):
        corpus.put('FuzzSkin', source.parent.name, source.read_bytes())
    for name in ('classes/members', 'control/for', 'strings/search', 'arrays/redim', 'errors/handling', 'dates/parts'):
        source = ROOT / 'tests/script' / (name + '.vbs')
        if source.exists():
            corpus.put('FuzzVbscript', source.stem, source.read_bytes())
    corpus.put('FuzzSettings', 'shipped', (ROOT / 'assets/program/settings.xml').read_bytes())
    corpus.put('FuzzSettings', 'small', '<SETTINGS><VIEW skin="Жук" topMost="True"/><FILES search="/"><RECENT/>'
               '<RECENT>/a</RECENT></FILES></SETTINGS>'.encode())
    # Messages between window and movie: a number of 16 bits, a length of 32, a body.
    for kind, body in ((2, b''), (5, b'\1\0\0\0a\2\0\0\0bc'), (14, b'\0' * 8), (6, b'\7\0\0\0\3\0\0\0abc'),
                       (7, b'\4\0\0\0open\0\0\0\0\1\0'), (10, struct.pack('<idii', 5, 2.0, 1, 0)), (19, b'')):
        corpus.put('FuzzMessages', str(kind), struct.pack('<HI', kind, len(body)) + body)
    stored = stored_object(corpus)
    corpus.put('FuzzSharedObject', 'stored', b'\x05/a/sc' + stored)
    corpus.put('FuzzSharedObject', 'up', b'\x08../../up' + stored[:40])

    html = '<p align="center"><font face="_sans" size="+2" color="#FF0000">a<b>b</b></font><br><a href="asfunction:f,1">l' \
           '</a><li>&lt;&#65;&nbsp;<textformat indent="5" tabstops="[1,2]"><img src="x" width="9"></textformat></p>'
    css = 'p { color: #FF8800; font-size: 12px } .a, a:hover { text-decoration: underline; font-family: Arial, sans-serif }'
    xml = '<?xml version="1.0"?><!DOCTYPE a><a b="1&amp;2" c=\'x\'><!-- c --><d/>t&#65;<![CDATA[<&]]></a>'
    corpus.put('FuzzTexts', 'html', b'\x00\x1f' + css.encode() + b'\0' + html.encode())
    corpus.put('FuzzTexts', 'css', b'\x01\x00' + css.encode())
    corpus.put('FuzzTexts', 'xml', b'\x02\x00' + xml.encode())
    corpus.put('FuzzPageCommands', 'query', b'\x00a=1&b=%D0%96+x&_level0.c=&d')
    corpus.put('FuzzPageCommands', 'encode', b'\x01' + 'Ж&a=1?x file:///a%20b.swf?q=1'.encode())
    for number, command in enumerate((b'MeowSel\0/media/gadgets/welcome.swf', b'MeowZoom\x00200', b'MEOWLOG\0<b>x</b>',
                                      b'MeowFullScreen\0true', b'MeowURL\0http://a/', b'MeowNextPage\0')):
        corpus.put('FuzzPageCommands', 'command-%d' % number, b'\x02' + command)
    return 0


if __name__ == '__main__':
    sys.exit(main())
