"""What is said in desktop tests, and what must arrive."""
import json
import pathlib
from typing import NamedTuple

from user import TOOLS


class Sentence(NamedTuple):
    name: str
    text: str  # what a recogniser that makes no slip writes
    file: str  # the sound


def all_sentences() -> dict[str, Sentence]:
    """By name; chosen because the English model that comes with the program gets them right."""
    table = pathlib.Path(__file__).parent / "sentences/sentences.json"
    return {row["name"]: Sentence(row["name"], row["text"], f"{TOOLS}/sentences/{row['name']}.wav")
            for row in json.loads(table.read_text())}
