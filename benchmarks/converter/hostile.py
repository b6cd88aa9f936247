#!/usr/bin/env python3
"""Measures what documents cost that are made to be expensive.

    hostile.py [--converter PATH] [--rounds N]

Prints a table: the size of each document, the medians of processor time and peak memory, and the size
of what the converter writes. There is no bar; SECURITY.md tells the figures, and how to bound them.
"""

import os
import subprocess
import sys
import tempfile

import measuring

SECTION = "coordinated_data_root"


def section(content, declaration=""):
    return f"{declaration}<{SECTION}>{content}</{SECTION}>"


DOCUMENTS = {
    "an entity of 4 000 characters, 10 000 times": lambda _: section(
        "&e;" * 10_000, f"<!DOCTYPE {SECTION} [<!ENTITY e '{'x' * 4000}'>]>"
    ),
    "8 000 elements, one in the other": lambda _: section("<a>" * 8000 + "</a>" * 8000),
    "200 000 attributes of one element": lambda _: section(
        "<a" + "".join(f" a{number}='v'" for number in range(200_000)) + "/>"
    ),
    "250 000 empty elements": lambda _: section("<a/>" * 250_000),
}


def output_size(converter, path):
    with tempfile.TemporaryFile() as output:
        subprocess.run([converter, path], stdout=output, stderr=subprocess.DEVNULL, check=True)
        return os.fstat(output.fileno()).st_size


def main():
    parser = measuring.option_parser(__doc__.splitlines()[0])
    parser.add_argument("--rounds", type=int, default=5)
    options = parser.parse_args()
    converter = str(options.converter)

    print(f"{'document':45} {'bytes':>10} {'seconds':>8} {'MiB':>6} {'written':>12}")
    with tempfile.TemporaryDirectory() as folder:
        for number, (name, make) in enumerate(DOCUMENTS.items()):
            path = measuring.make_document(folder, make, number)
            runs = {"converter": [converter, path]}
            seconds, memory = measuring.medians(runs, options.rounds)["converter"]
            print(
                f"{name:45} {os.path.getsize(path):10} {seconds:8.2f} {memory / 1024:6.0f}"
                f" {output_size(converter, path):12}",
                flush=True,
            )
    return 0


if __name__ == "__main__":
    sys.exit(main())
