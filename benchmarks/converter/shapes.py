#!/usr/bin/env python3
"""Measures whether the converter's time grows with the document, whatever it is large in.

    shapes.py [--converter PATH] [--bare PATH] [--rounds N] [--no-verdict] [SHAPE...]

Each shape comes in three sizes, each ten times the one before. Ten times the size may take eleven
times the time, or as many times as bare Qt takes. Prints a table of medians; ends with status 1
when a shape grows faster.
"""

import sys
import tempfile

import measuring

sys.path.insert(0, str(measuring.WORKSPACES))
import workspaces  # noqa: E402

SECTION = "coordinated_data_root"
GROWTH_BAR = 11.0
NOISE = 1.10  # two growths that differ by less are taken for equal


def section(*parts):
    return f"<{SECTION}>{''.join(parts)}</{SECTION}>"


def element(tag, content):
    return f"<{tag}>{content}</{tag}>"


def repeated(template, count):
    """The template as often as asked for, with the number in place of each #."""
    return "".join(template.replace("#", str(number)) for number in range(count))


def of_systems(count, channel=workspaces.channel, configuration=workspaces.configuration,
               profile=workspaces.profile):  # fmt: skip
    numbers = range(count)
    return section(
        element("mic_channels", "".join(map(channel, numbers))),
        element("compat_configs", "".join(map(configuration, numbers))),
        element("compat_profiles", "".join(map(profile, numbers))),
    )


def entities(count):
    declaration = f"<!DOCTYPE {SECTION} [<!ENTITY e 'a word'>]>"
    return declaration + section(element("text", "&e;" * count))


def one_channel(key):
    return section(element("mic_channels", element("c", element("compat_key", key))))


def one_configuration(content):
    return section(element("compat_configs", element("compat_config", content)))


def one_profile(content):
    start = f'<compat_profile id="{workspaces.uuid(1)}">'
    return section(element("compat_profiles", f"{start}{content}</compat_profile>"))


# The smallest size of a shape, and the document for a size.
SHAPES = {
    "systems": (150, of_systems),
    "channels of one id": (300, lambda n: of_systems(n, channel=lambda _: workspaces.channel(0))),
    "configurations of one key": (
        150,
        lambda n: of_systems(n, configuration=lambda _: workspaces.configuration(0)),
    ),
    "profiles of one id": (150, lambda n: of_systems(n, profile=lambda _: workspaces.profile(0))),
    "systems in falling order": (
        150,
        lambda n: of_systems(
            n,
            channel=lambda number: workspaces.channel(n - number),
            configuration=lambda number: workspaces.configuration(n - number),
        ),
    ),
    "profiles outside their container": (
        150,
        lambda n: section("".join(map(workspaces.profile, range(n)))),
    ),
    "attributes of one element": (2000, lambda n: section(f"<a {repeated(' a#=' + chr(34) + 'v' + chr(34), n)}/>")),
    "siblings": (5000, lambda n: section("<a/>" * n)),
    "siblings beside the section": (5000, lambda n: element("w", section() + "<a/>" * n)),
    "names": (4000, lambda n: section(repeated("<n#/>", n))),
    "a long text": (100_000, lambda n: section("x" * n)),
    "a long text with references": (2000, lambda n: section("&lt;" * n)),
    "a long attribute": (100_000, lambda n: section(f"<a b='{'x' * n}'/>")),
    "a long comment": (100_000, lambda n: section(f"<!--{'x' * n}-->")),
    "a long name": (50_000, lambda n: section(f"<{'n' * n}/>")),
    "comments": (4000, lambda n: section("<!--c-->" * n)),
    "instructions": (4000, lambda n: section("<?p i?>" * n)),
    "CDATA sections": (4000, lambda n: section(element("a", "<![CDATA[x]]>" * n))),
    "text between elements": (3000, lambda n: section("text<a/>" * n)),
    "entity references": (2000, entities),
    "fields of a key": (2500, lambda n: one_channel("<zone>z</zone>" * n)),
    "elements in a field of a key": (2500, lambda n: one_channel(element("zone", "<a>z</a>" * n))),
    "flags of a configuration": (
        2500,
        lambda n: one_configuration(element("compat_flags", "<imd_2t3o>0</imd_2t3o>" * n)),
    ),
    "keys of a configuration": (
        1500,
        lambda n: one_configuration("<profile><zone>z</zone></profile>" * n),
    ),
    "values of a spacing": (2500, lambda n: one_profile(element("spacing", "<ch_ch>1</ch_ch>" * n))),
    "centres of a filter": (
        2500,
        lambda n: one_profile(
            '<filter type="2">' + element("filter_center_list", "<f>1</f>" * n) + "</filter>"
        ),
    ),
    "containers": (3000, lambda n: section("<mic_channels/><compat_configs/>" * n)),
    "depth": (80, lambda n: section("<a>" * n + "</a>" * n)),
    "depth of configurations": (30, lambda n: section("<compat_config>" * n + "</compat_config>" * n)),
    "depth of a field of a key": (50, lambda n: one_channel(element("zone", "<a>z" * n + "</a>" * n))),
}  # fmt: skip


def seconds_taken(shape, options):
    """The medians of each program, by its name, for the three sizes."""
    smallest, make = SHAPES[shape]
    programs = {"converter": options.converter, "bare": options.bare}
    seconds = {name: [] for name in programs}
    with tempfile.TemporaryDirectory() as folder:
        for size in (smallest, 10 * smallest, 100 * smallest):
            path = measuring.make_document(folder, make, size)
            runs = {name: [str(program), path] for name, program in programs.items()}
            for name, (median, _) in measuring.medians(runs, options.rounds).items():
                seconds[name].append(median)
    return seconds


def growths(times):
    return [larger / smaller for smaller, larger in zip(times, times[1:])]


def is_linear(seconds):
    return all(
        ours <= max(GROWTH_BAR, NOISE * theirs)
        for ours, theirs in zip(growths(seconds["converter"]), growths(seconds["bare"]))
    )


def print_row(shape, seconds):
    times, bare_times = seconds["converter"], seconds["bare"]
    ours, theirs = growths(times), growths(bare_times)
    print(
        f"{shape:34} {100 * SHAPES[shape][0]:9} {times[0] * 1000:8.1f} {ours[0]:5.1f}"
        f" {times[1] * 1000:8.1f} {ours[1]:5.1f} {times[2] * 1000:8.1f}"
        f"   {theirs[0]:5.1f} {theirs[1]:5.1f}"
        f" {times[2] / bare_times[2]:8.2f}{'' if is_linear(seconds) else '  grows too fast'}",
        flush=True,
    )


def main():
    parser = measuring.option_parser(__doc__.splitlines()[0])
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("shapes", nargs="*", metavar="SHAPE", default=list(SHAPES))
    options = parser.parse_args()

    too_fast = 0
    print(f"{'shape':34} {'largest':>9}   converter: ms and growth, twice"
          "          bare: growths   / bare")  # fmt: skip
    for shape in options.shapes:
        seconds = seconds_taken(shape, options)
        print_row(shape, seconds)
        too_fast += not is_linear(seconds)
    print(f"{len(options.shapes)} shapes, {too_fast} grow too fast")
    return 1 if too_fast and not options.no_verdict else 0


if __name__ == "__main__":
    sys.exit(main())
