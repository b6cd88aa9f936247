"""What the programs, their man pages and their completions say of their options."""

import os
import re
import subprocess

ENVIRONMENT = {**os.environ, "LC_ALL": "C.UTF-8", "LANG": "C.UTF-8"}

OPTION = r"(--[\w-]+)(=[A-Z]+)?"


def run(*command):
    """What the command says on standard output; it must succeed without a word of error."""
    ran = subprocess.run(command, capture_output=True, encoding="utf-8", timeout=60,
                         env=ENVIRONMENT, stdin=subprocess.DEVNULL)
    assert (ran.returncode, ran.stderr) == (0, ""), (command, ran.returncode, ran.stderr)
    return ran.stdout


def as_options(matches):
    """A table from an option to whether it takes a value."""
    found = [(name, bool(value)) for name, value in matches]
    assert len(found) == len(dict(found)), f"an option occurs twice: {found}"
    return dict(found)


class ManPage:
    """A man page as readers see it, without its fonts."""

    def __init__(self, path):
        self.source = path.read_text(encoding="utf-8")
        # Bold and underlined letters would come as pairs with a backspace; -c and -b leave -u out.
        text = run("groff", "-t", "-man", "-ww", "-Tutf8", "-P-cbou", "-rLL=200n", str(path))
        text = text.replace("\u2010", "-").replace("\u2212", "-")
        self.title, *rest = text.strip().split("\n")
        parts = re.split(r"^(\S.*)$", "\n".join(rest[:-1]), flags=re.MULTILINE)[1:]
        self.footer = rest[-1]
        self.sections = dict(zip(parts[::2], parts[1::2]))

    def options(self):
        section = self.sections.get("OPTIONS", "")
        return as_options(re.findall(rf"^ {{7}}{OPTION}(?: |$)", section, re.MULTILINE))

    def statuses(self):
        return set(re.findall(r"^ {7}(\d+)\b", self.sections["EXIT STATUS"], re.MULTILINE))

    def usage(self):
        """The lines of the synopsis, each with single blanks."""
        return [" ".join(line.split()) for line in self.sections["SYNOPSIS"].strip().split("\n")]

    def commands(self):
        """The commands of its examples, an example each."""
        examples = self.source.split(".SH EXAMPLES\n")[1].split("\n.SH ")[0]
        blocks = re.findall(r"^\.nf\n\.RS\n(.*?)^\.RE\n\.fi$", examples, re.DOTALL | re.MULTILINE)
        return [block.replace("\\e\n", "\\\n").replace("\\-", "-") for block in blocks]


class Help:
    """What --help shows."""

    def __init__(self, program):
        self.text = run(program, "--help")

    def options(self):
        return as_options(re.findall(rf"^  {OPTION}  ", self.text, re.MULTILINE))

    def statuses(self):
        text = re.search(r"^Status: .*", self.text, re.DOTALL | re.MULTILINE).group()
        return set(re.findall(r"(?:Status:|;)\s+(\d+) ", text))

    def usage(self):
        usage = self.text.split("\n\n")[0].removeprefix("usage: ")
        return [" ".join(line.split()) for line in usage.split("\n")]


BASH = """
source "$1"
compopt() { :; }
shift
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMPREPLY=()
"$(complete -p "$1" | sed 's/.*-F //; s/ .*//')" "$1" "${!#}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf '%s\\n' "${COMPREPLY[@]}"
"""


class Bash:
    """The completion of bash, run as bash runs it."""

    def __init__(self, folder, name):
        self.script, self.name = str(folder / "bash" / name), name

    def lines(self, *words):
        """What is offered for the last of the words."""
        return run("bash", "-c", BASH, "bash", self.script, self.name, *words).splitlines()

    def complete(self, *words):
        """The words of it; a line that is empty offers nothing."""
        return [word for word in self.lines(*words) if word]

    def options(self):
        return as_options(re.fullmatch(r"(--[\w-]+)(=?)", word).groups()
                          for word in self.complete("--"))

    def values(self, option):
        return self.complete(option, "=")


# What a completion hands to _arguments is all that it says; this shows it.
ZSH = r"""
_arguments() { print -rl -- "$@" }
_files() { : }
compdef() { : }
source "$1"
"""


class Zsh:
    """The completion of zsh, as zsh reads it."""

    def __init__(self, folder, name):
        path = folder / "zsh" / f"_{name}"
        assert path.read_text(encoding="utf-8").startswith(f"#compdef {name}\n")
        self.specifications = run("zsh", "-f", "-c", ZSH, "zsh", str(path)).splitlines()

    def options(self):
        return as_options(re.match(r"(--[\w-]+)(=?)\[[^\]]+\]", line).groups()
                          for line in self.specifications if line.startswith("--"))

    def values(self, option):
        line, = [line for line in self.specifications if line.startswith(f"{option}=[")]
        return re.search(r":\((.*)\)$", line).group(1).split()


class Fish:
    """The completion of fish, run by fish."""

    def __init__(self, folder, name):
        self.path, self.name = folder / "fish" / f"{name}.fish", name

    def complete(self, line):
        """What is offered for the end of the line, each with its description."""
        command = f"source '{self.path}'; complete -C '{self.name} {line}'"
        shown = run("fish", "--no-config", "--private", "-c", command)
        return [word.split("\t") for word in shown.splitlines()]

    def options(self):
        for word in self.complete("--"):
            assert len(word) == 2, f"without a description: {word}"
        return as_options((word[0].rstrip("="), self.takes_value(word[0].rstrip("=")))
                          for word in self.complete("--"))

    def takes_value(self, option):
        declared = re.search(rf" -l {option[2:]} (.*)", self.path.read_text(encoding="utf-8"))
        return bool(re.search(r"(^| )-[xr]( |$)", declared.group(1)))

    def values(self, option):
        return [word[0].partition("=")[2] for word in self.complete(f"{option}=")]
