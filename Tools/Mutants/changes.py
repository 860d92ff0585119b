"""The small faults that a developer could make in one line of C++."""
import json
import pathlib
import re
from dataclasses import dataclass

# No fault to look for: comments, the preprocessor, checks at compile time, what is only logged.
PASSED_OVER = re.compile(r'^\s*(//|#|\*|static_assert|assert\(|using |namespace |template|friend |HWY_)|Log::|NOLINT')
NUMBER = re.compile(r"(?<![\w.'\"])(\d[\d']*\.\d+|\d[\d']*)(?=[fFuU]?(?![\w.'\"]))")
TEXT = re.compile(r'"((?:[^"\\]|\\.)*[A-Za-z](?:[^"\\]|\\.)*)"')
CALL = re.compile(r'^\s+(?!return\b|throw\b|case\b|else\b|delete\b)[\w:.>()\[\]-]+\([^{}]*\);$')
EXCHANGES = [
    (r' <= ', ' < '), (r' >= ', ' > '), (r' < ', ' <= '), (r' > ', ' >= '), (r' == ', ' != '), (r' != ', ' == '),
    (r' && ', ' || '), (r' \|\| ', ' && '), (r' \+ ', ' - '), (r' - ', ' + '), (r' \* ', ' / '), (r' / ', ' * '),
    (r' \+= ', ' -= '), (r' -= ', ' += '), (r' \? (.+) : ([^;]+?)([;,)])', r' ? \2 : \1\3'), (r'\btrue\b', 'false'),
    (r'\bfalse\b', 'true'), (r'\bstd::min\b', 'std::max'), (r'\bstd::max\b', 'std::min'), (r'if \(!', 'if ('),
    (r'if \((?!!|const )', 'if (!'), (r'\bfloor\b', 'ceil'), (r'\.front\(\)', '.back()'), (r'\.back\(\)', '.front()'),
]


@dataclass(frozen=True)
class Change:
    file: str
    line: int  # from 1
    start: int  # of `old` in the text
    old: str
    new: str

    def __str__(self):
        return f'{self.file}:{self.line}: {self.old.strip()}  ->  {self.new.strip() or "(nothing)"}'

    def apply(self, text):
        end = self.start + len(self.old)
        assert text[self.start:end] == self.old
        return text[:self.start] + self.new + text[end:]


def other_numbers(text):
    """A bit more, and twice as much or nothing."""
    plain = text.replace("'", '')
    if '.' in plain:
        value = float(plain)
        return [repr(round(value * 1.3, 9)) if value else '0.1', '0.0' if value else '1.0']
    return [str(int(plain) + 1), str(int(plain) * 2 or 2)]


def outside_texts(code, place):
    return len(re.findall(r'(?<!\\)"', code[:place])) % 2 == 0


def variants(code):
    """What the line could have been by mistake."""
    for match in NUMBER.finditer(code):
        if outside_texts(code, match.start()):
            for number in other_numbers(match.group(1)):
                yield code[:match.start(1)] + number + code[match.end(1):]
    for pattern, instead in EXCHANGES:
        for match in re.finditer(pattern, code):
            if outside_texts(code, match.start()):
                yield code[:match.start()] + match.expand(instead) + code[match.end():]
    for match in TEXT.finditer(code):
        letter = re.search('[A-Za-z]', match.group(1)).start() + match.start(1)
        yield code[:letter] + code[letter].swapcase() + 'x' + code[letter + 1:]
    if CALL.match(code):
        yield ''


def changes_in(file, text):
    """Every change of one file."""
    start = 0
    for number, line in enumerate(text.split('\n'), 1):
        if not PASSED_OVER.search(line):
            code = line.split('  //')[0]
            for new in dict.fromkeys(variants(code)):
                if new != code:
                    yield Change(file, number, start, line, new)
        start += len(line) + 1


def listed_changes(lines):
    """Changes that somebody chose: a line is {"file": .., "old": .., "new": ..}, where `old` is in the file once."""
    for line in filter(str.strip, lines):
        wanted = json.loads(line)
        text = pathlib.Path(wanted['file']).read_text()
        if text.count(wanted['old']) != 1:
            print(f'{wanted["file"]}: not there once: {wanted["old"]}')
            continue
        start = text.index(wanted['old'])
        yield Change(wanted['file'], text.count('\n', 0, start) + 1, start, wanted['old'], wanted['new'])
