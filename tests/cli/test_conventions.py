"""What holds for every subcommand: streams, exit codes, progress, colours, limits, interrupts."""
import json
import os
import pty
import re
import signal
import subprocess
import tempfile
import time
import unittest

from orvex_cli import SAMPLE, Answer, command, environment, main, orvex, start_orvex

# The parser has a lot to say about this one.
NOISY = b"""ISO-10303-21;
HEADER;
FILE_DESCRIPTION((''),'2;1');
FILE_NAME('','',(''),(''),'','','');
FILE_SCHEMA(('AUTOMOTIVE_DESIGN'));
ENDSEC;
DATA;
#1=NO_SUCH_ENTITY('x',#99);
#2=((;
ENDSEC;
END-ISO-10303-21;
"""


def run_on_terminal(*arguments, env=()):
    """Runs orvex with both streams on a terminal. Returns all that appeared there."""
    controller, terminal = pty.openpty()
    child = subprocess.Popen(command(arguments), stdout=terminal, stderr=terminal,
                             env=environment({"TERM": "xterm", **dict(env)}))
    os.close(terminal)
    seen = b""
    try:
        while chunk := os.read(controller, 65536):
            seen += chunk
    except OSError:  # how a terminal says that nobody is left on the other side
        pass
    os.close(controller)
    return child.wait(), seen


class Usage(unittest.TestCase):
    def test_a_wrong_command_line_is_exit_2_with_one_line(self):
        for arguments in [[], ["no-such"], ["info"], ["info", "--no-such", "a"],
                          ["info", "--progress", "loud", "a"], ["info", "--time-limit", "-1", "a"],
                          ["info", "-q", "-v", "a"], ["version", "surplus"]]:
            with self.subTest(arguments=arguments):
                answer = orvex(*arguments)
                self.assertEqual(answer.code, 2)
                self.assertEqual(answer.out, b"")
                self.assertEqual(answer.err.count(b"\n"), 1)
                self.assertEqual(len(answer.error_lines), 1)

    def test_help_is_a_result_and_tells_the_exit_codes(self):
        for arguments in [["--help"], ["info", "--help"], ["version", "-h"]]:
            with self.subTest(arguments=arguments):
                answer = orvex(*arguments)
                self.assertEqual((answer.code, answer.err), (0, b""))
                self.assertIn(b"124 time limit", answer.out)


class Streams(unittest.TestCase):
    def test_version_in_both_forms_tells_the_same(self):
        record = orvex("version", "--json").json()
        text = orvex("version").out.decode()
        for key in ("library", "kernel", "qt"):
            self.assertIn(record[key], text)

    def test_the_chatter_of_the_kernel_never_reaches_standard_output(self):
        with tempfile.NamedTemporaryFile(suffix=".step") as noisy:
            noisy.write(NOISY)
            noisy.flush()
            for isolation in [[], ["--in-process"]]:
                with self.subTest(isolation=isolation):
                    quiet = orvex("info", "--json", *isolation, noisy.name)
                    loud = orvex("info", "--json", "-v", *isolation, noisy.name)
                    self.assertEqual(quiet.json(), loud.json())
                    self.assertEqual(len(quiet.err.splitlines()), 1, quiet.err)
                    self.assertIn(b"*** ERR", loud.err, "the kernel was silent")

    def test_a_result_that_cannot_be_written_is_told(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run(command(["version"]), stdout=full, stderr=subprocess.PIPE, check=False,
                                  env=environment({}))
        self.assertEqual(done.returncode, 5)
        self.assertIn(b"standard output", done.stderr)


class Progress(unittest.TestCase):
    def test_json_progress_is_an_object_a_line(self):
        answer = orvex("info", "--progress", "json", SAMPLE)
        steps = [json.loads(line) for line in answer.err.decode().splitlines()]
        stages = list(dict.fromkeys(step["stage"] for step in steps))
        self.assertEqual(stages[:2], ["parse", "transfer"])
        self.assertEqual(stages[-1], "count")
        times = [step["elapsed"] for step in steps]
        self.assertEqual(times, sorted(times))
        for step in steps:
            self.assertEqual(step["subject"], str(SAMPLE))
            self.assertTrue(step["fraction"] is None or 0 <= step["fraction"] <= 1)
        for stage in stages:
            known = [s["fraction"] for s in steps if s["stage"] == stage and s["fraction"] is not None]
            self.assertEqual(known, sorted(known), f"{stage} goes backwards")

    def test_without_a_terminal_there_is_no_bar(self):
        for mode in ("auto", "bar", "none"):
            self.assertEqual(orvex("info", "--progress", mode, SAMPLE).err, b"")
        self.assertEqual(orvex("info", "-q", "--progress", "json", SAMPLE).err, b"")

    def test_on_a_terminal_there_are_a_bar_and_colours(self):
        # Nothing is shown for work that is over at once.
        code, seen = run_on_terminal("info", *[SAMPLE] * 3)
        self.assertEqual(code, 0)
        self.assertIn(b"\x1b[1m", seen)
        if b"\x1b[K" in seen:
            self.assertRegex(seen.decode(), r"(parse|transfer|collect|count) ")
            self.assertTrue(seen.rfind(b"\r\x1b[K") < seen.rfind(b"surfaces"), "the bar was left behind")

    def test_no_color_is_honoured(self):
        colour = re.compile(rb"\x1b\[[0-9;]*m")
        for env in ({"NO_COLOR": "1"}, {"TERM": "dumb"}):
            code, seen = run_on_terminal("info", "--tree", SAMPLE, "/no/such/file", env=env)
            self.assertEqual(code, 5)
            self.assertIsNone(colour.search(seen), env)
        self.assertIsNotNone(colour.search(run_on_terminal("info", "/no/such/file")[1]))


class Limits(unittest.TestCase):
    def test_the_time_limit_is_exit_124(self):
        answer = orvex("info", "--json", "--time-limit", "0.02", SAMPLE)
        self.assertEqual(answer.code, 124)
        self.assertEqual(answer.entry()["error"]["code"], 124)
        self.assertIn("within 0.02 s", answer.error_lines[0])

    def test_the_time_limit_holds_for_each_file(self):
        self.assertEqual(orvex("info", "--time-limit", "60", SAMPLE, SAMPLE).code, 0)

    def test_one_interrupt_ends_cleanly_with_130(self):
        for isolation in [[], ["--in-process"]]:
            with self.subTest(isolation=isolation):
                child = start_orvex("info", "--json", "--progress", "json", *isolation, *[SAMPLE] * 60)
                first = child.stderr.readline()
                asked = time.monotonic()
                child.send_signal(signal.SIGINT)
                out, err = child.communicate(timeout=60)
                answer = Answer(child.returncode, out, first + err)
                self.assertEqual(answer.code, 130)
                self.assertEqual(answer.out, b"", "half a result")
                self.assertEqual(len(answer.error_lines), 1)
                self.assertIn("interrupted", answer.error_lines[0])
                self.assertLess(time.monotonic() - asked, 20)

    def test_no_worker_outlives_an_orvex_that_was_killed(self):
        child = start_orvex("info", "--progress", "json", *[SAMPLE] * 60)
        child.stderr.readline()
        children = f"/proc/{child.pid}/task/{child.pid}/children"
        with open(children, encoding="ascii") as listing:
            workers = listing.read().split()
        self.assertEqual(len(workers), 1)
        child.kill()
        child.communicate()
        deadline = time.monotonic() + 20
        while os.path.exists(f"/proc/{workers[0]}") and time.monotonic() < deadline:
            time.sleep(0.05)
        self.assertFalse(os.path.exists(f"/proc/{workers[0]}"))


if __name__ == "__main__":
    main()
