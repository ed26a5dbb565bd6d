import json
import unittest

from programs import InputRefusals, ProgramTest


class VerifyTest(InputRefusals, ProgramTest):
    PROGRAM = "stn-verify"

    def verify(self, *args):
        return self.run_program(self.PROGRAM, *args)

    def simulate_run(self):
        self.simulate("run.root", "-n", "5", "--checksums", "run.json")

    def combined(self):
        return json.loads(self.read("run.json"))["combined"]

    def test_says_in_one_line_that_all_came_back(self):
        self.simulate_run()
        self.assertEqual(
            self.verify("run.root", "--checksums", "run.json"),
            (0, f"run.root: 5 events came back as they were written, checksum {self.combined()}\n", ""),
        )

    def test_reads_every_event_without_checksums(self):
        self.simulate_run()
        self.assertEqual(
            self.verify("run.root"), (0, f"run.root: 5 events can be read, checksum {self.combined()}\n", "")
        )

    def test_names_the_event_and_the_part_that_differ(self):
        self.simulate_run()
        self.make("altered", "altered.root", "run.root")
        code, output, error = self.verify("altered.root", "--checksums", "run.json")
        before = json.loads(self.read("run.json"))["events"][1][3]
        self.assertEqual((code, output), (1, ""))
        self.assertRegex(
            error,
            rf"^stn-verify: altered\.root: the traces of event 1 did not come back as written "
            rf"\({before} before, [0-9a-f]{{16}} now\)\n\Z",
        )

    def test_finds_a_missing_event(self):
        self.simulate_run()
        self.simulate("four.root", "-n", "4")
        self.assertEqual(
            self.verify("four.root", "--checksums", "run.json"),
            (1, "", "stn-verify: four.root has 4 events, but 5 were written\n"),
        )

    def test_finds_damage_in_the_middle_of_the_file(self):
        self.simulate_run()
        content = bytearray(self.read("run.root"))
        middle = len(content) // 2
        content[middle : middle + 400] = bytes(255 - byte for byte in content[middle : middle + 400])
        self.write("run.root", content)
        code, output, error = self.verify("run.root", "--checksums", "run.json")
        self.assertEqual((code, output), (1, ""))
        # ROOT's decompression has a word of its own before that.
        self.assertRegex(
            error, r"(\A|\n)stn-verify: run\.root is damaged: event \d cannot be read \(.*\); copy or write it again\n\Z"
        )

    def test_refuses_missing_checksums(self):
        self.simulate_run()
        self.assertEqual(
            self.verify("run.root", "--checksums", "none.json"),
            (3, "", "stn-verify: none.json cannot be opened: No such file or directory; check the name\n"),
        )

    def test_refuses_something_else_for_checksums(self):
        self.simulate_run()
        altered = json.loads(self.read("run.json"))
        altered["events"][0][0] = "0" * 16
        for content in (b"", b"[]", b'{"format": "other"}', json.dumps(altered).encode()):
            with self.subTest(content[:20]):
                self.write("other.json", content)
                self.assertEqual(
                    self.verify("run.root", "--checksums", "other.json"),
                    (
                        3,
                        "",
                        "stn-verify: other.json is no list of checksums; name one written by "
                        "stn-simulate --checksums\n",
                    ),
                )

    def test_does_not_praise_a_recovered_file(self):
        self.make("unclosed", "unclosed.root")
        code, output, error = self.verify("unclosed.root")
        self.assertEqual(code, 1)
        self.assertRegex(output, r"^unclosed\.root: 3 events can be read, checksum [0-9a-f]{16}\n\Z")
        self.assertIn("was not closed by its writer", error)


if __name__ == "__main__":
    unittest.main()
