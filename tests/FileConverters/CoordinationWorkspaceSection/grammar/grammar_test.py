#!/usr/bin/env python3
"""Shows that the converter accepts what Qt accepts: no document more, none less, none otherwise.

    grammar_test.py CONVERTER BARE [--mutants N] [--prefixes EVERY] [--seed FIRST]

BARE is the program that only reads a document by Qt and writes it back. Each case goes through
both, as a file and on standard input; then N documents with random damage, and a document cut
after every EVERY-th byte. Ends with status 1 when the converter differs from Qt anywhere.
"""

import argparse
import collections
import concurrent.futures
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent))
import workspaces  # noqa: E402

import cases  # noqa: E402

SECONDS_A_RUN = 300
SECRET = "what nobody may read"
TOKENS = [
    b"<", b">", b"&", b"/", b"'", b'"', b"<!--", b"-->", b"<![CDATA[", b"]]>", b"<?", b"?>", b"&#0;", b"&x;",
    b"\0", b"\xff", b"\xef\xbb\xbf", b"=", b" ", b"\r", b"<!DOCTYPE a [", b"xmlns=", b"</", b"\xc3",
    b"<coordinated_data_root>", b"<compat_profile/>",
]  # fmt: skip


def run(program, data, path, from_file):
    # Attributes come in the order of a hash; the converter fixes its seed, and so must Qt here.
    environment = {**os.environ, "QT_HASH_SEED": "0"}
    return subprocess.run(
        [program, str(path)] if from_file else [program],
        input=b"" if from_file else data,
        capture_output=True,
        timeout=SECONDS_A_RUN,
        env=environment,
    )


def without_conversion(document):
    """What is left of a document when the conversion's own work and all white space are gone."""
    document = re.sub(rb"\s+", b" ", document)
    document = re.sub(rb"<compatibility_profile_settings [^>]*/>", b"", document)
    document = document.replace(b' version="0.3"', b"").replace(b" ", b"")
    return document.replace(b"<coordinated_data_root></coordinated_data_root>",
                            b"<coordinated_data_root/>")  # fmt: skip


def sections(document):
    """How many workspace sections a document has that Qt wrote."""
    document = re.sub(rb"<!--.*?-->|<!\[CDATA\[.*?\]\]>|<\?.*?\?>", b"", document, flags=re.DOTALL)
    return len(re.findall(rb"<coordinated_data_root[ />]", document))


def fault(bare, converted, may_abort):
    """What the converter did wrong, given what Qt did, or None."""
    shown = (converted.returncode, converted.stderr)
    if bare.returncode not in (0, 1):
        return f"Qt itself ends with {bare.returncode}; the converter with {shown}"
    if bare.returncode == 1:
        return None if shown == (1, b"") and not converted.stdout else f"refused by Qt, {shown}"
    if sections(bare.stdout) != 1:
        refused = shown == (1, b"\nFAILURE") and not converted.stdout
        return None if refused else f"not one section, {shown}"
    if may_abort:
        aborted = converted.returncode == -signal.SIGABRT and not converted.stdout
        if shown == (0, b"\nPROGRESS") or aborted and b"PROGRESS" not in converted.stderr:
            return None
        return f"accepted by Qt, {shown}"
    if shown != (0, b"\nPROGRESS"):
        return f"accepted by Qt, {shown}"
    if without_conversion(converted.stdout) != without_conversion(bare.stdout):
        return f"Qt writes {bare.stdout[:300]!r}, the converter {converted.stdout[:300]!r}"
    return None


def mutant(seed):
    """A sound document with some damage."""
    choice = random.Random(seed)
    data = bytearray(workspaces.workspace(choice.randrange(1, 3)).encode())
    for _ in range(choice.randrange(1, 4)):
        place = choice.randrange(len(data))
        size = choice.randrange(1, 40)
        kind = choice.randrange(6)
        if kind == 0:
            data[place] = choice.randrange(256)
        elif kind == 1:
            del data[place : place + size]
        elif kind == 2:
            data[place:place] = choice.choice(TOKENS)
        elif kind == 3:
            data[place:place] = data[place : place + size]
        elif kind == 4:
            data[place : place + 1] = b""
        elif choice.random() < 0.2:
            del data[place + 1 :]
    return bytes(data)


def documents(options, secret_path):
    """Name, bytes and whether a bad profile id may end the run, of all documents to try."""
    for name, data in cases.all_cases():
        yield name, data, False
    for name, document in cases.external(secret_path):
        yield name, document.encode(), False
    for seed in range(options.seed, options.seed + options.mutants):
        yield f"mutant {seed}", mutant(seed), True
    whole = workspaces.workspace(1).encode()
    for size in range(0, len(whole), options.prefixes):
        yield f"the first {size} bytes", whole[:size], True


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("converter", type=os.path.abspath)
    parser.add_argument("bare", type=os.path.abspath)
    parser.add_argument("--mutants", type=int, default=100)
    parser.add_argument("--prefixes", type=int, default=25, metavar="EVERY")
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()

    outcomes = collections.Counter()
    faults = []
    with tempfile.TemporaryDirectory() as folder:
        secret_path = pathlib.Path(folder, "secret")
        secret_path.write_text(SECRET)

        def try_both(numbered):
            number, (name, data, may_abort) = numbered
            path = pathlib.Path(folder, f"{number}.xml")
            path.write_bytes(data)
            found = []
            for from_file in (True, False):
                bare = run(options.bare, data, path, from_file)
                converted = run(options.converter, data, path, from_file)
                wrong = fault(bare, converted, may_abort)
                if SECRET.encode() in converted.stdout + converted.stderr:
                    wrong = "the content of a file appears"
                how = "file" if from_file else "standard input"
                found.append((f"{name} ({how})", bare.returncode, wrong))
            path.unlink()
            return found

        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for found in pool.map(try_both, enumerate(documents(options, secret_path))):
                for name, status, wrong in found:
                    outcomes[status] += 1
                    if wrong:
                        faults.append(f"{name}: {wrong}")
    for wrong in faults:
        print(wrong)
    fixed = sum(1 for _ in cases.all_cases()) + sum(1 for _ in cases.external("x"))
    print(f"{fixed:7} cases of the grammar and {options.mutants} damaged documents")
    for status, count in sorted(outcomes.items()):
        print(f"{count:7} readings {'accepted by' if status == 0 else 'refused by'} Qt")
    print(f"{sum(outcomes.values())} readings, {len(faults)} differ from Qt")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
