"""What is built and what is installed defends itself, and looks for libraries in its own folders only."""
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

BUILD = pathlib.Path(os.environ["VELORIN_BUILD"])
SECONDS = 120
PROGRAMS = {"velorin", "velorin-guard", "velorin-model-check"}


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True, timeout=SECONDS).stdout


def readelf(*arguments):
    return output("readelf", "--wide", *map(str, arguments))


def is_elf(path):
    if not path.is_file() or path.is_symlink():
        return False
    with path.open("rb") as file:
        return file.read(4) == b"\x7fELF"


def run_paths(path):
    found = re.search(r"\((?:RPATH|RUNPATH)\).*\[(.*)\]", readelf("--dynamic", path))
    return found.group(1).split(":") if found else []


def start_files_have_marks():
    compiler = os.environ["VELORIN_COMPILER"]
    return "IBT" in readelf("--notes", output(compiler, "-print-file-name=Scrt1.o").strip())


class Binaries(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = cls.enterClassContext(tempfile.TemporaryDirectory())
        subprocess.run(["cmake", "--install", BUILD], check=True, capture_output=True, timeout=SECONDS,
                       env=os.environ | {"DESTDIR": folder})
        cls.installed = [path for path in pathlib.Path(folder).rglob("*") if is_elf(path)]
        places = [BUILD / "bin", BUILD / "libexec"]
        cls.built = [path for place in places for path in place.rglob("*") if is_elf(path)]

    def of_ours(self):
        files = [path for path in self.built + self.installed if path.name in PROGRAMS]
        self.assertEqual(sorted(list(PROGRAMS) * 2), sorted(path.name for path in files))
        return files

    def test_every_run_path_starts_from_the_file_itself(self):
        self.assertTrue(self.installed)
        for path in self.built + self.installed:
            with self.subTest(path.name):
                for entry in run_paths(path):
                    self.assertRegex(entry, r"^\$ORIGIN(/|$)")

    def test_the_programs_find_their_libraries(self):
        for path in self.of_ours():
            with self.subTest(path.name):
                self.assertNotIn("not found", output("ldd", str(path)))

    def test_they_lie_anywhere_in_memory(self):
        for path in self.of_ours():
            with self.subTest(path.name):
                self.assertIn("PIE", readelf("--dynamic", path))

    def test_their_tables_are_bound_at_the_start_and_not_written_after(self):
        for path in self.of_ours():
            with self.subTest(path.name):
                self.assertRegex(readelf("--dynamic", path), r"BIND_NOW|\bNOW\b")
                self.assertIn("GNU_RELRO", readelf("--program-headers", path))

    def test_their_stack_is_no_program(self):
        for path in self.of_ours():
            with self.subTest(path.name):
                self.assertRegex(readelf("--program-headers", path), r"GNU_STACK\s.*RW\s")

    def test_they_watch_their_stack_and_their_buffers(self):
        for path in self.of_ours():
            with self.subTest(path.name):
                symbols = readelf("--dyn-syms", path)
                self.assertIn("__stack_chk_fail", symbols)
                # The helpers call nothing whose buffers the compiler could know the size of.
                if path.name == "velorin":
                    self.assertRegex(symbols, r"__(?!stack)\w+_chk\b")

    @unittest.skipUnless(os.uname().machine == "x86_64", "the marks of this processor")
    def test_our_code_is_marked_for_the_control_of_jumps(self):
        archives = [path for path in BUILD.glob("src/**/*.a") if not re.search("_(checked|tsan).a$", path.name)]
        self.assertTrue(archives)
        for path in archives:
            with self.subTest(path.name):
                objects = readelf("--notes", path).split("\nFile: ")[1:]
                self.assertTrue(objects)
                for notes in objects:
                    self.assertRegex(notes, r"x86 feature: IBT, SHSTK")
        # The linker keeps the mark only where the system's own start files have it.
        if start_files_have_marks():
            for path in self.of_ours():
                with self.subTest(path.name):
                    self.assertRegex(readelf("--notes", path), r"x86 feature: IBT, SHSTK")


if __name__ == "__main__":
    unittest.main()
