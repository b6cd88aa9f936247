#!/usr/bin/env python3
"""Holds what coordworkspace-inspect tells of random documents against what the converter does.

usage: agreement_test.py INSPECT CONVERTER FOLDER_OF_THE_GENERATOR [--count N] [--seed FIRST]

The documents are irregular on purpose. For each: who says that it cannot be converted is right about
it; the systems that were foretold stand in the new element; and the conversion verifies.
"""

import argparse
import collections
import json
import pathlib
import subprocess
import sys
import tempfile

SETTINGS = "compatibility_profile_settings"
SPACINGS = ["ch_ch", "imd_2t3o", "imd_2t5o", "imd_2t7o", "imd_2t9o", "imd_3t3o"]
KEY_FIELDS = ["band", "series", "tx_profile", "zone", "incl_group"]


def run(*command, data=b""):
    return subprocess.run(command, input=data, capture_output=True, timeout=120)


def element_text(element):
    return "".join(element.itertext(with_tail=False))


def written_systems(section):
    """The systems in the element that a conversion wrote, each as inspect tells them."""
    children = [child for child in section if isinstance(child.tag, str)]
    behind = [child for child in children if child.tag == SETTINGS]
    # Of several the new one stands first behind the channels, or last without any.
    channels = next(section.iter("mic_channels"), None)
    if channels is not None and channels.getparent() is not section:
        return None
    if not behind:
        return None
    new = behind[-1] if channels is None else children[children.index(channels) + 1]
    systems = []
    for profile in new.findall("profile"):
        inner = profile.find("compat_profile")
        systems.append({
            **{field: element_text(profile.find(field)) for field in KEY_FIELDS},
            "profile_id": inner.get("id"),
            "name": inner.get("name"),
            "spacings": {name: int(inner.find(f"spacing/{name}").text) for name in SPACINGS},
        })
    return systems


def foretold_systems(report):
    return [{
        **{field: system[field] for field in KEY_FIELDS},
        "profile_id": system["profile_id"],
        "name": system["name"]["after"],
        "spacings": {name: value["after"] for name, value in system["spacings"].items()},
    } for system in report["systems"]]


class Disagreement(Exception):
    pass


def check(inspect, converter, data, from_file, folder):
    """Raises Disagreement; returns the advice that was given, or "error"."""
    before = pathlib.Path(folder, "before.xml")
    after = pathlib.Path(folder, "after.xml")
    before.write_bytes(data)
    source = [str(before)] if from_file else []
    conversion = run(converter, *source, data=b"" if from_file else data)
    inspection = run(inspect, "--json", *source, data=b"" if from_file else data)
    report = json.loads(inspection.stdout)

    if inspection.returncode != report["status"] or inspection.stderr:
        raise Disagreement(f"status {inspection.returncode}, {inspection.stderr[:200]!r}")
    if conversion.returncode != 0:
        if "error" not in report and report["advice"] != "impossible":
            raise Disagreement(f"it does not convert, and the advice is {report['advice']}")
        return "error" if "error" in report else "impossible"
    if "error" in report or report["advice"] == "impossible":
        raise Disagreement("it converts, and inspect says that it does not")

    document = judge.parsed(conversion.stdout.decode())
    written = written_systems(next(document.iter("coordinated_data_root")))
    if (written or []) != foretold_systems(report):
        raise Disagreement("other systems than foretold")
    if report["status"] == 0 and not written and report["counts"]["channels"]:
        raise Disagreement("settings are lost, and inspect says that nothing is")

    after.write_bytes(conversion.stdout)
    options = [] if from_file else ["--stdin"]
    verification = run(inspect, "--verify", *options, str(before), str(after))
    if verification.returncode != 0:
        raise Disagreement(f"does not verify: {verification.stdout.decode()}")
    return report["advice"]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("inspect")
    parser.add_argument("converter")
    parser.add_argument("generator")
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    sys.path.insert(0, options.generator)
    global judge
    import judge
    import random_documents

    advices = collections.Counter()
    failures = 0
    with tempfile.TemporaryDirectory() as folder:
        for seed in range(options.seed, options.seed + options.count):
            data, from_file = random_documents.make(seed)
            try:
                advices[check(options.inspect, options.converter, data, from_file, folder)] += 1
            except Disagreement as disagreement:
                failures += 1
                print(f"seed {seed} ({'file' if from_file else 'stdin'}): {disagreement}")
    for advice, count in sorted(advices.items()):
        print(f"{count:6} documents: {advice}")
    print(f"{failures} disagreements")
    # A generator that made only one sort of document would prove little.
    return 1 if failures or len(advices) < 3 else 0


if __name__ == "__main__":
    sys.exit(main())
