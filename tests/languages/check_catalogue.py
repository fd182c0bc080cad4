#!/usr/bin/env python3
"""Checks that whatever a user reads has a translation: the texts of the sources, of the pages and of the skins.

  check_catalogue.py SOURCE_FOLDER      exit status 1 and a line for each text that has none
"""
import html
import pathlib
import re
import sys

LITERAL = r'"(?:[^"\\]|\\.)*"'
CYRILLIC = re.compile('[А-Яа-яЁё]')
# What users of every language read alike.
ALIKE = {'Язык (Language):', 'Русский'}
# Russian letters that are no text: keyboards, codes, the names of months and numbers of the script language.
NO_TEXTS = {'ui/Mnemonics.cpp'}


def value_of(literals):
    text = ''.join(literal[1:-1] for literal in re.findall(LITERAL, literals))
    return text.replace('\\n', '\n').replace('\\"', '"').replace('\\\\', '\\')


def texts_of_sources(src):
    """What stands in QT_TRANSLATE_NOOP, and Russian literals that do not."""
    marked, bare = set(), set()
    for path in sorted(src.rglob('*')):
        name = path.relative_to(src).as_posix()
        if path.suffix not in ('.cpp', '.h') or name.startswith(('script/', 'flash/')) or name in NO_TEXTS:
            continue
        code = path.read_text(encoding='utf-8')
        pattern = r'QT_TRANSLATE_NOOP\(\s*"zorvex",\s*((?:%s\s*)+)\)' % LITERAL
        marked.update(value_of(text) for text in re.findall(pattern, code))
        code = re.sub(r'//[^\n]*', '', re.sub(pattern, '', code))
        bare.update('%s: %s' % (name, text) for text in map(value_of, re.findall(LITERAL, code))
                    if CYRILLIC.search(text) and text not in ALIKE)
    return marked, bare


def catalogue(path):
    entries = {}
    for message in re.findall(r'<message>(.*?)</message>', path.read_text(encoding='utf-8'), re.S):
        source = re.search(r'<source>(.*?)</source>', message, re.S).group(1)
        translation = re.search(r'<translation([^>]*)>(.*?)</translation>', message, re.S)
        entries[html.unescape(source)] = '' if 'type=' in translation.group(1) else html.unescape(translation.group(2))
    return entries


def places(text):
    return sorted(re.findall(r'%\d', text))


def offences(root):
    marked, bare = texts_of_sources(root / 'src')
    for text in sorted(bare):
        yield 'not marked for translation: ' + text
    entries = catalogue(root / 'assets/languages/zorvex_en.ts')
    for text in sorted(marked):
        translation = entries.get(text, '')
        if not translation:
            yield 'not translated: %r' % text
        elif CYRILLIC.search(translation):
            yield 'translated by Russian: %r' % text
        elif places(text) != places(translation):
            yield 'other places than in the text: %r' % text
        elif (text[:1] == ' ', text[-1:] == ' ') != (translation[:1] == ' ', translation[-1:] == ' '):
            yield 'other blanks around it than the text: %r' % text
    for text in sorted(set(entries) - marked):
        yield 'translated, but nowhere in the sources: %r' % text

    pages = root / 'assets/gadgets'
    english = dict(re.findall(r'english\["(.*?)"\] = "(.*?)";', (pages / 'parts/english.as').read_text(encoding='utf-8')))
    for page in sorted(pages.glob('*.as')):
        code = re.sub(r'//[^\n]*', '', page.read_text(encoding='utf-8'))
        for text in re.findall(r'say\((%s)\)' % LITERAL, code):
            if not english.get(text[1:-1]) or CYRILLIC.search(english[text[1:-1]]):
                yield '%s: not translated: %s' % (page.name, text)
        for text in re.findall(LITERAL, re.sub(r'say\(%s\)' % LITERAL, '', code)):
            if CYRILLIC.search(text):
                yield '%s: not said by say(): %s' % (page.name, text)

    skins = root / 'assets/skins'
    lines = (skins / 'scripts/words.en.txt').read_text(encoding='utf-8').splitlines()
    words = dict(line.split(' = ', 1) for line in lines if ' = ' in line)
    for file in sorted(skins.glob('*/*.xml')) + sorted(skins.glob('*/*.vbs')):
        code = re.sub(r"(?m)^\s*'.*$|<!--.*?-->", '', file.read_text(encoding='utf-8'))
        for text in re.findall(LITERAL, code):
            if CYRILLIC.search(text) and not words.get(text[1:-1]):
                yield '%s: not translated: %s' % (file.relative_to(skins), text)

    pages = {page.name for page in (root / 'assets/help').glob('*.md')} | {'skins.en.md'}
    for name in sorted({page.split('.')[0] for page in pages}):
        for language in ('ru', 'en'):
            if '%s.%s.md' % (name, language) not in pages:
                yield 'no help on "%s" in "%s"' % (name, language)


def main():
    found = list(offences(pathlib.Path(sys.argv[1])))
    print('\n'.join(found) or 'Every text has its translation.')
    return 1 if found else 0


if __name__ == '__main__':
    sys.exit(main())
