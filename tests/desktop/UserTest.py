"""The user's hands and voice reach programs as those of a person do."""
import array
import os
import subprocess
import threading
import time
import unittest

from desktop import Microphone, Mousepad, Program, Speech, User, Windows, switch_accessibility_on, waiting


class Keys(unittest.TestCase):
    def test_arrive_in_the_window_in_front_and_are_read_back(self):
        switch_accessibility_on()
        user = User()
        self.addCleanup(user.close)
        with Mousepad(Windows()) as editor:
            self.assertEqual("", editor.text())
            user.tap("v", "e", "l")
            with user.holding("Shift_L"):
                user.tap("o", "1")
            editor.wait_for_text("velO!")
            editor.clear()
            editor.wait_for_text("")
            user.tap("a")
            user.chord("Control_L", "s")
            editor.wait_for_text("a")

    def test_that_do_not_exist_are_refused(self):
        user = User()
        self.addCleanup(user.close)
        with self.assertRaisesRegex(AssertionError, "no key is called Nonsense"):
            user.tap("Nonsense")

    def test_come_from_a_device_that_is_not_the_one_of_programs(self):
        def id_of(device):
            return subprocess.run(["xinput", "list", "--id-only", device], capture_output=True, text=True, check=True,
                                  timeout=5).stdout.strip()

        user = User()
        self.addCleanup(user.close)
        with Program(["stdbuf", "-oL", "xinput", "test-xi2", "--root"]) as events:
            # Taps until the listener listens.
            waiting.until("a key", 5, lambda: user.tap("F9") and "RawKeyPress" in events.said())
            device = events.wait_for_line(r"device: \d+ \((\d+)\)", seconds=5)[1]
        self.assertEqual(id_of("Xvfb keyboard"), device)
        self.assertNotEqual(id_of("Virtual core XTEST keyboard"), device)


class Voice(unittest.TestCase):
    seconds = 1.5

    @classmethod
    def setUpClass(cls):
        # A tone that swells, so that a wrong place cannot look like the right one.
        cls.file = os.environ["TMPDIR"] + "/sweep.wav"
        subprocess.run(["sox", "-n", "-r", "16000", "-b", "16", "-c", "1", cls.file, "synth", str(cls.seconds), "sine",
                        "300-1500", "gain", "-6"], check=True, timeout=10)

    def listen_while(self, act):
        """Records from before act() until half a second after it; act runs on a thread of its own."""
        microphone = Microphone()
        self.addCleanup(microphone.close)
        microphone.read()
        thread = threading.Thread(target=act)
        thread.start()
        while thread.is_alive():
            microphone.read()
        until = time.monotonic() + 0.5
        while microphone.read() < until:
            pass
        return microphone

    def test_is_heard_by_the_microphone_sample_for_sample(self):
        marks = {}

        def speak():
            with Speech(self.file) as speech:
                marks["began"] = speech.wait_until_began()
                marks["ended"] = speech.wait_until_heard()

        microphone = self.listen_while(speak)
        heard = array.array("h", b"".join(data for _, data in microphone.pieces))
        first = next(index for index, value in enumerate(heard) if abs(value) > 200)
        last = next(index for index in range(len(heard) - 1, 0, -1) if abs(heard[index]) > 200)
        self.assertAlmostEqual(self.seconds, (last - first) / microphone.rate, delta=0.01)
        self.assertGreater(self.likeness(heard, first, microphone.rate), 0.98)

        def time_of(sample):
            count = 0
            for when, data in microphone.pieces:
                count += len(data) // 2
                if count > sample:
                    return when

        print(f"first sample {1000 * (time_of(first) - marks['began']):.0f} ms after it was given to the server, "
              f"last one {1000 * (time_of(last) - marks['ended']):+.0f} ms from when it was said to be heard")
        self.assertLess(time_of(first) - marks["began"], 0.1)
        self.assertLess(abs(time_of(last) - marks["ended"]), 0.1)

    def likeness(self, heard, first, rate):
        """Correlation of what was heard with the file, over its loud part, at the best place near the first sample."""
        wanted = array.array("h", subprocess.run(
            ["sox", self.file, "-t", "raw", "-r", str(rate), "-"], capture_output=True, check=True, timeout=10).stdout)
        part = wanted[4800:9600]

        def correlation(place):
            other = heard[place:place + len(part)]
            product = sum(a * b for a, b in zip(part, other))
            return product / ((sum(a * a for a in part) * sum(b * b for b in other)) ** 0.5 or 1)

        return max(correlation(first + 4800 + shift) for shift in range(-40, 41))

    def test_microphone_gives_its_first_sample_at_once(self):
        first = Microphone()  # parec and its libraries are read from the disk once
        first.read()
        first.close()
        slowest = 0
        for _ in range(5):
            microphone = Microphone()
            slowest = max(slowest, microphone.read() - microphone.started)
            microphone.close()
        print(f"first sample of an idle microphone after at most {1000 * slowest:.0f} ms, start of parec included")
        self.assertLess(slowest, 0.1)


if __name__ == "__main__":
    unittest.main()
