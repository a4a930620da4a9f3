"""Good STEP files with random damage: orvex answers each with a result or one clear line.

ORVEX_MUTATIONS says how many (1000), ORVEX_MUTATION_SEED which (1), ORVEX_MUTATION_ONLY runs a
single one by its number. ORVEX_MUTATION_SHARD=i/n runs every n-th, beginning with i. What a run
did is a function of seed and number alone, so the line printed for a failure reproduces it.
"""
import collections
import os
import pathlib
import random
import re
import tempfile
import unittest

from orvex_cli import DATA, SAMPLE, main, orvex

COUNT = int(os.environ.get("ORVEX_MUTATIONS", "1000"))
SEED = int(os.environ.get("ORVEX_MUTATION_SEED", "1"))
ONLY = os.environ.get("ORVEX_MUTATION_ONLY")
SHARD, SHARDS = map(int, os.environ.get("ORVEX_MUTATION_SHARD", "0/1").split("/"))
BATCH = 25
STALL_LIMIT = 15

# Small ones of different kinds: what matters is where the damage falls, not how much else there is.
FILES = ["cube-in-metres.step", "block-x2-escaped-name.stp", "unsewn-open-shells.step",
         "cap-screw-gbk-name.step", "arm-link-with-countersinks.step"]


def flip_bytes(text, rng):
    damaged = bytearray(text)
    for _ in range(rng.randint(1, 8)):
        damaged[rng.randrange(len(damaged))] = rng.randrange(256)
    return bytes(damaged)


def truncate(text, rng):
    return text[:rng.randrange(1, len(text))]


def replace_one(text, rng, pattern, replacement):
    match = rng.choice(list(re.finditer(pattern, text)))
    return text[:match.start()] + replacement(match.group(), rng) + text[match.end():]


def redirect_reference(text, rng):
    ids = re.findall(rb"#\d+(?=\s*=)", text)
    return replace_one(text, rng, rb"(?<=[(,\s])#\d+(?=\s*[,)])", lambda _, r: r.choice(ids))


def dangle_reference(text, rng):
    return replace_one(text, rng, rb"(?<=[(,\s])#\d+(?=\s*[,)])", lambda _, r: b"#%d" % r.choice([0, 99999999, 2**31]))


def change_number(text, rng):
    wild = [b"0.", b"-1.", b"1.E308", b"-1.E308", b"1.E-308", b"1.E999", b"3", b"'x'", b"$", b"*", b"."]
    return replace_one(text, rng, rb"(?<=[(,\s])-?\d+\.[\dE+-]*", lambda _, r: r.choice(wild))


def change_count(text, rng):
    wild = [b"0", b"-1", b"1", b"7", b"2147483647", b"-2147483648", b"99999999999"]
    return replace_one(text, rng, rb"(?<=[(,])\d+(?=[,)])", lambda _, r: r.choice(wild))


def change_type(text, rng):
    types = re.findall(rb"(?<==)\s*[A-Z_0-9]+(?=\s*\()", text)
    return replace_one(text, rng, rb"(?<==)\s*[A-Z_0-9]+(?=\s*\()", lambda _, r: r.choice(types))


def delete_lines(text, rng):
    lines = text.split(b"\n")
    at = rng.randrange(len(lines))
    del lines[at:at + rng.randint(1, 3)]
    return b"\n".join(lines)


def repeat_lines(text, rng):
    lines = text.split(b"\n")
    at, to = rng.randrange(len(lines)), rng.randrange(len(lines))
    return b"\n".join(lines[:to] + lines[at:at + rng.randint(1, 3)] + lines[to:])


MUTATIONS = [flip_bytes, truncate, redirect_reference, redirect_reference, dangle_reference, change_number,
             change_count, change_type, delete_lines, repeat_lines]


def mutated(originals, number):
    """The name of what was done, and the damaged file."""
    rng = random.Random(f"{SEED}/{number}")
    name, text = rng.choice(originals)
    mutation = rng.choice(MUTATIONS)
    try:
        for _ in range(rng.choice([1, 1, 1, 2, 5])):
            text = mutation(text, rng)
    except (IndexError, ValueError):  # nothing left to damage in this way
        pass
    return f"{mutation.__name__} of {name}", text


def originals():
    """Without the collection of real files, the sample assembly; it takes longer to read."""
    paths = [pathlib.Path(DATA) / name for name in FILES] if DATA else [SAMPLE]
    return [(path.name, path.read_bytes()) for path in paths]


def batches(numbers):
    for at in range(0, len(numbers), BATCH):
        yield numbers[at:at + BATCH]


class Mutations(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.originals = originals()
        self.seen = collections.Counter()

    def check_entry(self, entry, lines):
        """Each file has a result, or has failed with exit 3 and exactly one line about it."""
        mine = [line for line in lines if entry["file"] in line]
        self.seen[re.sub(r"[#:;(].*", "", entry.get("error", {}).get("reason", entry["status"]))] += 1
        if entry["status"] == "failed":
            self.assertEqual(entry["error"]["code"], 3, entry)
            self.assertEqual(len(mine), 1, mine)
        else:
            self.assertEqual(mine, [])

    def check_batch(self, numbers):
        made = {}
        for number in numbers:
            what, text = mutated(self.originals, number)
            path = self.folder / f"{number}.step"
            path.write_bytes(text)
            made[str(path)] = f"ORVEX_MUTATION_SEED={SEED} ORVEX_MUTATION_ONLY={number}: {what}"
        answer = orvex("info", "-v", "--json", "--stall-limit", STALL_LIMIT, *made)
        about = next(iter(made.values()))
        self.assertIn(answer.code, (0, 3, 5), f"{about} and the {len(made) - 1} after it: {answer.err[-2000:]}")
        for sign in (b"AddressSanitizer", b"runtime error:"):
            self.assertNotIn(sign, answer.err, about)
        lines = answer.error_lines
        for entry in answer.json()["files"]:
            with self.subTest(made[entry["file"]]):
                self.check_entry(entry, lines)
        for path in made:
            os.unlink(path)

    def test_every_mutation_has_a_clear_answer(self):
        count = COUNT if DATA else COUNT // 10
        numbers = [int(ONLY)] if ONLY else range(SHARD, count, SHARDS)
        print(f"\n{len(numbers)} mutations, seed {SEED}, shard {SHARD}/{SHARDS}", flush=True)
        for batch in batches(numbers):
            self.check_batch(batch)
        for answer, times in self.seen.most_common():
            print(f"  {times:5} {answer}")
        self.assertEqual(sum(self.seen.values()), len(numbers))


if __name__ == "__main__":
    main()
