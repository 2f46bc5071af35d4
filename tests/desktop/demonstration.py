"""A dictation to look at: a sentence is spoken into an editor, and each step's time is printed."""
import time

from desktop import Mousepad, User, Windows, all_sentences
from dictation import Speaker, Velorin

STAGES = [("firstSample", "first sound in the program"), ("firstPreview", "first words in the preview"),
          ("keyUp", "key up"), ("lastFinal", "last word recognised"), ("cleaned", "text cleaned"),
          ("delivered", "paste keys pressed")]


def show(velorin: Velorin, arrived: float):
    times = velorin.latencies()[-1]
    print(f"  {'key down':32}{0:8.0f} ms")
    for stage, words in STAGES:
        if stage in times:
            behind = f"   {times[stage] - times['keyUp']:+.0f} ms" if stage in ("lastFinal", "delivered") else ""
            print(f"  {words:32}{times[stage]:8.0f} ms{behind}")
    print(f"  {'text in the editor, after key up':32}{arrived:8.0f} ms")


def main():
    began = time.monotonic()
    windows, user = Windows(), User()
    with Velorin() as velorin, Mousepad(windows) as editor:
        print(f"Velorin and an editor run in a private desktop after {time.monotonic() - began:.1f} s.")
        speaker = Speaker(velorin, user)
        for name in ("neighbors", "mountains"):
            sentence = all_sentences()[name]
            print(f"\nHolding the key and saying: {sentence.text}")
            editor.clear()
            released = speaker.hold(sentence)
            editor.wait_for_text(sentence.text)
            print(f"The editor holds:           {editor.text()}")
            show(velorin, (time.monotonic() - released) * 1000)
    user.close()
    print("\nOn a machine with a display, `make run` starts Velorin there: hold the right Ctrl key and speak.")


main()
