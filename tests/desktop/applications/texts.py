"""The texts and the situations of the matrix."""
from typing import NamedTuple

_WORDS = "whoever reads this aloud will have spoken for about five minutes without a pause and "


class Text(NamedTuple):
    name: str
    content: str

    @property
    def has_lines(self) -> bool:
        return "\n" in self.content


class Situation(NamedTuple):
    """What stands in the field: `before` and `after` the caret, with `selected` between them."""

    name: str
    before: str
    selected: str
    after: str

    @property
    def whole(self) -> str:
        return self.before + self.selected + self.after


TEXTS = [
    Text("one line", "The quick brown fox jumps over the lazy dog."),
    Text("three lines", "First line\nsecond line, longer\nthird line"),
    Text("accents and quotation marks", "„Grüße aus Köln“, sagt ‚er‘ – crème brûlée, zażółć gęślą jaźń…"),
    Text("CJK", "日本語の文章です。中文繁體字，한국어 문장."),
    Text("emoji with joiners", "👨‍👩‍👧‍👦 and 👋🏽, 🏳️‍🌈 too: 🇩🇪 ❤️"),
    Text("3,900 characters", (_WORDS * 50)[:3899] + "."),
    Text("tabs", "one\ttwo\tthree"),
]

SITUATIONS = [
    Situation("into an empty field", "", "", ""),
    Situation("in the middle of text", "ab", "", "cd"),
    Situation("over a selection", "ab", "xy", "cd"),
]
