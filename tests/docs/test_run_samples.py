"""The runner of samples fails where a page lies; needs neither compiler nor boards."""
import pathlib
import tempfile
import unittest

import run_samples


class Samples(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        stage = self.folder / "stage"
        (stage / "lib").mkdir(parents=True)
        (stage / "lib" / "liborvane.so").touch()
        lab = stage / "bin" / "orvane-lab"
        lab.parent.mkdir()
        lab.write_text('#!/bin/sh\nshift 3\nexec "$@"\n')
        lab.chmod(0o755)
        self.stage = stage

    def run_page(self, text):
        page = self.folder / "page.md"
        page.write_text(text)
        return run_samples.Page(page, self.stage, self.folder / "scratch").run()

    def assert_fails(self, text, message):
        with self.assertRaisesRegex(run_samples.Failure, message):
            self.run_page(text)

    def test_output_as_shown_is_counted(self):
        counts = self.run_page("```sh\necho one\n```\n\nprints\n\n<!-- prints -->\n```text\none\n```\n")
        self.assertEqual(counts, {"run": 1, "compared": 1, "skipped": 0})

    def test_other_output_than_shown_fails(self):
        self.assert_fails("```sh\necho one\n```\n<!-- prints -->\n```text\ntwo\n```\n", "page.md:5: .*printed\none")

    def test_dots_leave_out_lines_and_text_but_nothing_else(self):
        page = "```sh\nprintf 'a\\nb\\nc 12 us\\n'\n```\n<!-- prints -->\n```text\n%s\n```\n"
        self.assertEqual(self.run_page(page % "a\n...\nc ... us")["compared"], 1)
        self.assert_fails(page % "a\nc ... us", "printed")
        self.assert_fails(page % "a\nb", "printed")

    def test_a_command_that_fails_fails(self):
        self.assert_fails("```sh\nfalse\ntrue\n```\n", "page.md:1: exit status 1 instead of 0")

    def test_a_python_sample_runs_in_the_lab(self):
        page = "```python\nprint(6 * 7)\n```\n<!-- prints -->\n```text\n42\n```\n"
        self.assertEqual(self.run_page(page), {"run": 1, "compared": 1, "skipped": 0})
        self.assert_fails("```python\nraise SystemExit(2)\n```\n", "page.md:1: exit status 2 instead of 0")

    def test_an_exit_status_that_was_announced_passes(self):
        self.assertEqual(self.run_page("<!-- status: 3 -->\n```sh\nexit 3\n```\n")["run"], 1)

    def test_a_skipped_sample_needs_a_reason(self):
        self.assertEqual(self.run_page("<!-- run: skip (why) -->\n```sh\nfalse\n```\n")["skipped"], 1)
        self.assert_fails("<!-- run: skip -->\n```sh\nfalse\n```\n", "without a reason")

    def test_a_mark_does_not_reach_across_text(self):
        self.assert_fails("<!-- run: skip (why) -->\n\nText.\n\n```sh\nfalse\n```\n", "exit status 1")

    def test_a_block_that_is_not_its_example_fails(self):
        self.assert_fails("<!-- example: smbus.cpp -->\n```cpp\nint main() {}\n```\n", "is not the text of")

    def test_output_of_a_skipped_sample_fails(self):
        self.assert_fails("<!-- run: skip (why) -->\n```sh\ntrue\n```\n<!-- prints -->\n```text\n```\n",
                          "no sample in front")

    def test_a_file_is_there_for_the_next_block(self):
        counts = self.run_page("<!-- file: a.txt -->\n```yaml\nkey: 1\n```\n```sh\ngrep -q key: a.txt\n```\n")
        self.assertEqual(counts["run"], 1)

    def test_a_file_of_a_language_that_is_not_run_is_there_too(self):
        counts = self.run_page("<!-- file: a.json -->\n```json\n{}\n```\n```sh\ngrep -q {} a.json\n```\n")
        self.assertEqual(counts["run"], 1)


if __name__ == "__main__":
    unittest.main()
