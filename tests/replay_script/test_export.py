"""Whole scripts as the exporter writes them: their layout, and which bundles come back from them."""
import ast
import itertools
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from bundles import SCRIPT, Host, load, solid_bundle

EXPORTER = pathlib.Path(os.environ["ORVEX_BIN"]) / "export_script"

FUNCTIONS = """
get_primary_strategy get_semantic_strategy get_bundle debug_intermediates_enabled
experimental_strategy_build_enabled _collect_faces_from_payload _index_face_payloads
_collect_shells_from_payload _index_shell_payloads _step_by_kind _request_by_step_id
_request_or_step_value _request_input_group_ids _lookup_faces _lookup_shells
_collect_faces_from_shells _safe_call _call_strategy_api _call_step_plan
_command_payload_for_step _materialize_step_payload _execute_plan_step _default_replay_name
_exact_brep_request _build_exact_brep_solid replay_sweep replay_loft replay_revolve
replay_boolean replay_trimmed_freeform replay_primitive replay _run_as_main
""".split()


def export(bundle, scope="solid", entity=3):
    return subprocess.run([EXPORTER, scope, str(entity)], input=bundle, stdout=subprocess.PIPE, check=True).stdout


def execute(script, **values):
    space = {"__name__": "script", **values}
    exec(compile(script, "script", "exec"), space)
    return space


def json_of(name):
    """A bundle with one name, written as the library writes it: five escapes, else the bytes."""
    for plain, escape in ((b"\\", b"\\\\"), (b"\t", b"\\t"), (b"\n", b"\\n"), (b"\r", b"\\r"), (b'"', b'\\"')):
        name = name.replace(plain, escape)
    return b'{"name":"' + name + b'"}'


class Layout(unittest.TestCase):
    def test_it_is_the_text_of_the_tree_with_three_values(self):
        text = SCRIPT.read_bytes()
        for line, filled in ((b"REPLAY_SCOPE = 'manifest'", b"REPLAY_SCOPE = 'solid'"),
                             (b"REPLAY_ENTITY_ID = 0", b"REPLAY_ENTITY_ID = 3"),
                             (b"REPLAY_BUNDLE_JSON = '{}'", b"REPLAY_BUNDLE_JSON = '{\"a\":1}'")):
            self.assertEqual(text.count(b"\n" + line + b"\n"), 1)
            text = text.replace(line, filled)
        self.assertEqual(export(b'{"a":1}'), text)

    def test_functions_stand_in_order_each_before_one_empty_line(self):
        script = export(b"{}").decode()
        functions = [node for node in ast.parse(script).body if isinstance(node, ast.FunctionDef)]
        self.assertEqual([function.name for function in functions], FUNCTIONS)
        lines = script.split("\n")
        for function, following in itertools.zip_longest(functions, functions[1:]):
            self.assertEqual(lines[function.end_lineno], "", function.name)
            if following:
                self.assertEqual(following.lineno, function.end_lineno + 2, function.name)
        self.assertEqual(lines[functions[-1].end_lineno + 1], 'if __name__ == "__main__":')


class Contents(unittest.TestCase):
    def test_names_come_back_as_they_were(self):
        for name in ["it's a \"name\" \\ with\nlines\r\tand \\n", "'''", "\\", "\\'", "\\u0041 \\x41 \\N{DASH}", "{x} %s",
                     "Gehäuse 外壳 \U0001f529", "\u2028\u2029\ufeff\x7f\x80\u0085\ufffe", "# coding: latin-1", ""]:
            script = export(json_of(name.encode()), name)
            space = execute(script)
            self.assertEqual(space["REPLAY_BUNDLE"], {"name": name})
            self.assertEqual(space["REPLAY_SCOPE"], name)

    def test_control_characters_compile_and_are_refused_as_json(self):
        for code in set(range(1, 32)) - set(b"\t\n\r"):
            script = export(json_of(bytes([code])), chr(code))
            text = re.sub(r"REPLAY_BUNDLE = .*\n", "", script.decode())
            self.assertEqual(execute(text)["REPLAY_SCOPE"], chr(code))
            self.assertRaises(json.JSONDecodeError, execute, script)

    def test_numbers_that_are_none_are_refused_as_json(self):
        for number in (b"nan", b"-nan", b"inf", b"-inf"):
            self.assertRaises(json.JSONDecodeError, execute, export(b'{"x":' + number + b"}"))

    def test_python_takes_no_source_with_nul_or_without_utf_8(self):
        # Latin-1, an overlong slash, a lone surrogate, a pair of surrogates, beyond the last character.
        for name in (b"\0", b"Geh\xe4use", b"\xc0\xaf", b"\xed\xa0\x80", b"\xed\xa0\xbd\xed\xb4\xa9", b"\xf4\x90\x80\x80"):
            self.assertRaises((SyntaxError, ValueError), compile, export(json_of(name)), "script", "exec")

    def test_ids_of_all_sixty_four_bits(self):
        self.assertEqual(execute(export(b"{}", "face", 2**64 - 1))["REPLAY_ENTITY_ID"], 2**64 - 1)


class Programs(unittest.TestCase):
    def test_as_a_file_it_runs_without_a_host(self):
        with tempfile.NamedTemporaryFile(suffix=".py") as file:
            file.write(export(json_of("it's 外壳\n".encode())))
            file.flush()
            answer = subprocess.run([sys.executable, file.name], capture_output=True, check=True)
        self.assertEqual(answer.stdout, b"[STEP Replay] CAD module not available; replay() was not executed.\n")
        self.assertEqual(answer.stderr, b"")

    def test_with_a_host_it_makes_the_calls_that_the_functions_make(self):
        bundle = solid_bundle("sweep")
        host, same = Host(), Host()
        result = execute(export(json.dumps(bundle).encode()), CAD=host)["replay"](host)
        expected = load(bundle, REPLAY_SCOPE="solid", REPLAY_ENTITY_ID=3).replay(same)
        self.assertEqual((host.calls, result), (same.calls, expected))


if __name__ == "__main__":
    unittest.main()
