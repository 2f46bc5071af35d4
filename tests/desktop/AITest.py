"""Each way in which a provider of AI finishes a dictation, with the provider answering, late, refusing and hanging.
VELORIN_TRACE=1 prints the times of each flow."""
import unittest

from finishing import HURRIED, KEY, Finishing, waiting

REFUSAL = "AI request failed: The server says no."
SELECTED = "We meet on Monday at noon, I think."
SURROUNDINGS = "Ann asks whether the report will be ready this week. "


class Polish(Finishing):
    def test_inserts_the_providers_text(self):
        self.provider.reply = self.sentence.text.replace("before", "by")
        with self.start("ok", aiPolishEnabled=True) as velorin:
            self.speaker.hold(self.sentence)
            self.editor.wait_for_text(self.provider.reply, 10)
            self.trace("polish", velorin)
        self.assertEqual(self.provider.requests[-1].headers["authorization"], f"Bearer {KEY}")
        self.assertEqual(self.message(), f"<transcript>\n{self.sentence.text}\n</transcript>")

    def test_that_is_late_gives_way_to_the_plain_text_as_soon_as_the_next_dictation_begins(self):
        with self.start("late", aiPolishEnabled=True) as velorin:
            self.speak_and_wait_for_request()
            said = self.begin_another(velorin)
            self.editor.wait_for_text(self.sentence.text)
            self.provider.late.set()
            self.end_another(velorin, said)
            self.user.tap("x")
            self.editor.wait_for_text(f"{self.sentence.text}x")
            self.assertEqual(self.history(), [self.sentence.text])

    def test_refused_inserts_the_plain_text(self):
        with self.start("status-429-json", aiPolishEnabled=True) as velorin:
            self.speaker.hold(self.sentence)
            self.editor.wait_for_text(self.sentence.text, 10)
            velorin.wait_for_line("polish failed: http status=429", 5)

    def test_that_hangs_inserts_the_plain_text(self):
        with self.start("hang", HURRIED, aiPolishEnabled=True) as velorin:
            self.speaker.hold(self.sentence)
            self.watch_until(velorin, "polish failed: connection", 10)
            self.editor.wait_for_text(self.sentence.text, 10)
            self.trace("polish, hanging", velorin)


class Rewriting(Finishing):
    def test_replaces_the_selection(self):
        self.provider.reply = "Monday, noon."
        with self.start("ok", aiEnabled=True) as velorin:
            self.select_all(SELECTED)
            self.speaker.hold(self.sentence)
            self.editor.wait_for_text("Monday, noon.", 10)
            self.trace("rewriting", velorin)
        self.assertEqual(self.message(), f"<selected_text>\n{SELECTED}\n</selected_text>\n\n"
                                         f"<spoken_instruction>\n{self.sentence.text}\n</spoken_instruction>")
        self.assertEqual(self.history(), ["Monday, noon."])

    def test_that_is_late_touches_nothing_and_is_kept(self):
        with self.start("late", aiEnabled=True) as velorin:
            self.select_all(SELECTED)
            self.speak_and_wait_for_request()
            said = self.begin_another(velorin)
            self.provider.late.set()
            velorin.wait_for_line("discarding stale edit result", 5)
            self.end_another(velorin, said)
            velorin.wait_for_line("^velorin: No instruction heard. Select text and say what to change.", 5)
            self.editor.wait_for_text(SELECTED)
            self.assertEqual(self.history(), [self.provider.reply])

    def test_of_a_selection_that_has_gone_is_kept_in_the_history(self):
        self.provider.reply = "Monday, noon."
        with self.start("late", aiEnabled=True) as velorin:
            self.select_all(SELECTED)
            self.speak_and_wait_for_request()
            self.user.tap("Right")
            waiting.until("no selection", 5, lambda: self.editor.selection() == (len(SELECTED), len(SELECTED)))
            self.provider.late.set()
            velorin.wait_for_line("^velorin: The selection changed before the rewrite finished — "
                                  "the result is in History.", 5)
            self.editor.wait_for_text(SELECTED)
            self.assertEqual(self.history(), ["Monday, noon."])

    def test_refused_is_told(self):
        with self.start("status-403-json", aiEnabled=True) as velorin:
            self.select_all(SELECTED)
            self.speaker.hold(self.sentence)
            velorin.wait_for_line(f"^velorin: {REFUSAL}", 10)
            self.editor.wait_for_text(SELECTED)

    def test_that_hangs_is_told(self):
        with self.start("hang", HURRIED, aiEnabled=True) as velorin:
            self.select_all(SELECTED)
            self.speaker.hold(self.sentence)
            self.watch_until(velorin, "velorin: The request timed out.", 10)
            self.editor.wait_for_text(SELECTED)


class Generation(Finishing):
    def test_inserts_new_text_written_with_the_surroundings_in_mind(self):
        self.provider.reply = "Dear Ann,\n\nit will."
        with self.start("ok", aiGenerateEnabled=True) as velorin:
            self.write(SURROUNDINGS)
            self.speaker.hold(self.sentence)
            self.editor.wait_for_text(SURROUNDINGS + self.provider.reply, 10)
            self.trace("generation", velorin)
        self.assertEqual(self.message(), f"<instruction>\n{self.instruction}\n</instruction>\n"
                                         f"<context>\n{SURROUNDINGS.strip()}\n</context>")

    def test_takes_what_is_selected_for_its_surroundings(self):
        self.provider.reply = "It will."
        with self.start("ok", aiGenerateEnabled=True, aiEnabled=True):
            self.select_all(SELECTED)
            self.speaker.hold(self.sentence)
            self.editor.wait_for_text("It will.", 10)
        self.assertIn(f"<context>\n{SELECTED}\n</context>", self.message())

    def test_that_is_late_is_kept_but_not_inserted(self):
        with self.start("late", aiGenerateEnabled=True) as velorin:
            self.speak_and_wait_for_request()
            said = self.begin_another(velorin)
            self.provider.late.set()
            velorin.wait_for_line("discarding stale generate result", 5)
            self.end_another(velorin, said)
            self.user.tap("x")
            self.editor.wait_for_text("x")
            self.assertEqual(self.history(), [self.provider.reply])

    def test_refused_is_told(self):
        with self.start("status-401-json", aiGenerateEnabled=True) as velorin:
            self.speaker.hold(self.sentence)
            velorin.wait_for_line(f"^velorin: {REFUSAL}", 10)

    def test_that_hangs_is_told(self):
        with self.start("hang", HURRIED, aiGenerateEnabled=True) as velorin:
            self.speaker.hold(self.sentence)
            self.watch_until(velorin, "velorin: The request timed out.", 10)


class Transcription(Finishing):
    def test_inserts_what_the_provider_heard(self):
        self.provider.transcript = "the provider heard this"
        with self.start("ok", aiTranscriptionEnabled=True) as velorin:
            self.speaker.hold(self.sentence)
            self.editor.wait_for_text("The provider heard this", 10)
            self.trace("transcription", velorin)
        body = self.provider.requests[-1].body
        self.assertIn(b"a-listener", body)
        self.assertIn(b"RIFF", body)

    def test_that_is_late_gives_way_to_the_recognisers_text(self):
        self.provider.transcript = "the first that was heard"
        with self.start("late", aiTranscriptionEnabled=True) as velorin:
            self.speak_and_wait_for_request()
            said = self.begin_another(velorin)
            self.provider.transcript = "the second that was heard"
            self.provider.late.set()
            self.end_another(velorin, said)
            self.editor.wait_for_text(f"{self.sentence.text}The second that was heard", 10)
            self.assertEqual(self.history(), ["The second that was heard", self.sentence.text])

    def test_refused_inserts_what_was_recognised(self):
        with self.start("status-500-html", aiTranscriptionEnabled=True) as velorin:
            self.speaker.hold(self.sentence)
            self.editor.wait_for_text(self.sentence.text, 10)
            velorin.wait_for_line("^velorin: Provider transcription failed; used Apple’s on-device transcript. "
                                  "AI request failed: HTTP 500.", 5)

    def test_that_hangs_inserts_what_was_recognised(self):
        with self.start("hang", HURRIED, aiTranscriptionEnabled=True) as velorin:
            self.speaker.hold(self.sentence)
            self.watch_until(velorin, "provider transcription failed: connection", 10)
            self.editor.wait_for_text(self.sentence.text, 15)
            self.trace("transcription, hanging", velorin)


if __name__ == "__main__":
    unittest.main(verbosity=2)
