#!/usr/bin/env python3
"""Holds the picture of ARCHITECTURE.md against the tree.

usage: structure_test.py ROOT

Fails when an include of the library points upward or in a circle, when host/ includes more of the library than its
interface or one of its folders more than those below it, when python/ includes the command line or the terminal, when
more than one file includes the argument parser, when an include path leaves its root with "..", when a layer below has
no file, when a class of the library has no virtual destructor, when CMake is not given a source, when sources that a
build joins define one name, or when ARCHITECTURE.md names a path, in its text or in a drawing, that is not there.
"""
import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from joined_sources import check_joined  # noqa: E402

# Layers from the bottom up; a file may include its own layer and those below it. A folder that is not named
# belongs to the layer of the folder around it.
LAYERS = [
    ["interface/orsolva"],
    ["toolkit"],
    ["matrix"],
    ["navigation/orbits"],
    ["navigation/ephemerides"],
    ["navigation/positioning"],
    ["qc/base"],
    ["measures"],
    ["results"],
    ["qc"],
    ["interface"],
]
LAYER_OF = {folder: number for number, layer in enumerate(LAYERS) for folder in layer}
# What a folder of the host may include beside itself.
HOST_BELOW = {
    "platform": set(),
    "observation": set(),
    "output": {"platform"},
    "rinex": {"observation", "platform"},
    "formats": {"observation", "rinex"},
    "analysis": {"observation"},
    "report": {"analysis", "observation", "rinex", "output"},
    "simulator": {"observation", "rinex", "formats", "output"},
    "judging": {"platform", "output", "observation", "rinex", "formats", "analysis", "report"},
    "live": {"platform", "output", "observation", "rinex", "formats", "analysis", "report", "judging"},
    "terminal": {"platform"},
    "cli": {"platform", "output", "rinex", "report", "simulator", "judging", "live", "terminal"},
}
# What the Python package may include: judging and what is below it, and the simulator; no arguments, no terminal.
PYTHON_BELOW = HOST_BELOW["judging"] | {"judging", "simulator"}
# Below these, every source is named in a CMakeLists.txt.
LISTED = ["bench", "fuzz", "host", "library", "python", "tests"]
# Of the library the host sees its interface, and this table of plain numbers, which must be written once.
LIBRARY_TABLES = {"toolkit/leap_seconds.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.M)
PARSING_FILE = "host/cli/command_line.cpp"
ARGUMENT_PARSER = re.compile(r"^\s*#\s*include\s*<CLI/", re.M)
CLASS = re.compile(r"^(?:template <.*>\n)?class (\w+)( : public [\w:]+)? \{", re.M)
DRAWING = re.compile(r"^```\n(.*?)^```", re.M | re.S)
DRAWN = re.compile(r"(?<![\w/.])((?:interface|toolkit|matrix|navigation|qc|measures|results)/[\w.]*)")
PATH = re.compile(r"`((?:library|host|python|tests|docs|scripts|bench|fuzz|examples|cmake)/[^`*]*)`")


def layer_of(path):
    """Number of the layer a path below library/ belongs to."""
    for folder in pathlib.PurePosixPath(path).parents:
        if str(folder) in LAYER_OF:
            return LAYER_OF[str(folder)]
    return None


def includes_of(file):
    return INCLUDE.findall(file.read_text(encoding="utf-8"))


def public_path(name, include):
    """Path below library/ of an include: public headers are named orsolva/..., and among themselves by name."""
    if include.startswith("orsolva/"):
        return "interface/" + include
    if name.startswith("interface/orsolva/") and "/" not in include:
        return "interface/orsolva/" + include
    return include


def check_library(root, problems):
    graph = {}
    library = root / "library"
    for file in sorted(library.rglob("*.[hc]*")):
        if file.suffix not in (".h", ".hpp", ".cpp"):
            continue
        name = file.relative_to(library).as_posix()
        own = layer_of(name)
        if own is None:
            problems.append(f"{name}: in no layer")
            continue
        graph[name] = []
        for include in includes_of(file):
            include = public_path(name, include)
            if not (library / include).is_file():
                problems.append(f"{name}: includes {include}, which is not a file of the library")
                continue
            if layer_of(include) > own:
                problems.append(f"{name}: includes {include} from a layer above")
            graph[name].append(include)
    check_circles(graph, problems)


def check_layers(root, problems):
    for folder in LAYER_OF:
        if not any((root / "library" / folder).glob("*.[hc]*")):
            problems.append(f"structure_test.py: no file in library/{folder}")


def check_circles(graph, problems):
    done, open_names = set(), []

    def visit(name):
        if name in done:
            return
        if name in open_names:
            problems.append("circle: " + " -> ".join(open_names[open_names.index(name):] + [name]))
            return
        open_names.append(name)
        for include in graph.get(name, []):
            visit(include)
        open_names.pop()
        done.add(name)

    for name in graph:
        visit(name)


def check_host(root, problems):
    for file in sorted((root / "host").rglob("*.[hc]*")):
        if file.suffix not in (".h", ".hpp", ".cpp"):
            continue
        name = file.relative_to(root).as_posix()
        folder = name.split("/")[1]
        if folder not in HOST_BELOW:
            problems.append(f"{name}: host/{folder} is in no layer")
            continue
        if name != PARSING_FILE and ARGUMENT_PARSER.search(file.read_text(encoding="utf-8")):
            problems.append(f"{name}: includes the argument parser")
        for include in includes_of(file):
            parts = include.split("/")
            if parts[0] == "host" and parts[1] not in HOST_BELOW[folder] | {folder}:
                problems.append(f"{name}: includes {include} from a layer above or beside it")
            if include in LIBRARY_TABLES:
                continue
            if (root / "library" / include).is_file() or include.startswith("library/"):
                problems.append(f"{name}: includes {include}, which is not a public header of the library")


def check_python(root, problems):
    for file in sorted((root / "python").rglob("*.[hc]*")):
        for include in includes_of(file) if file.suffix in (".h", ".cpp") else []:
            parts = include.split("/")
            if parts[0] == "host" and parts[1] not in PYTHON_BELOW:
                problems.append(f"{file.relative_to(root)}: includes {include} from a layer above")
            elif (root / "library" / include).is_file() or include.startswith("library/"):
                problems.append(f"{file.relative_to(root)}: includes {include}, which is not a public header of the library")


def check_destructors(root, problems):
    """A class of the library has a virtual destructor; plain data are structs. The header-only wrapper is no part."""
    for file in sorted((root / "library").rglob("*.[hc]*")):
        if file.suffix == ".hpp":
            continue
        text = file.read_text(encoding="utf-8")
        for name, base in CLASS.findall(text):
            if not base and f"virtual ~{name}()" not in text:
                problems.append(f"{file.relative_to(root)}: class {name} has no virtual destructor")


def check_relative(root, problems):
    for top in ("library", "host", "python", "tests", "bench", "fuzz", "examples"):
        for file in sorted((root / top).rglob("*.[hc]*")):
            if file.suffix in (".h", ".hpp", ".cpp") and any(".." in include for include in includes_of(file)):
                problems.append(f"{file.relative_to(root)}: include path with ..")


def check_public(root, problems):
    """A public header is named the same way here and in an installed tree."""
    for top in ("host", "python", "tests", "bench", "fuzz", "examples"):
        for file in sorted((root / top).rglob("*.[hc]*")):
            for include in includes_of(file) if file.suffix in (".h", ".hpp", ".cpp") else []:
                if include.startswith("orsolva/"):
                    path = root / "library" / "interface" / include
                elif include.startswith("interface/"):
                    path = root / "library" / include
                else:
                    continue
                if not path.is_file():
                    problems.append(f"{file.relative_to(root)}: includes {include}, which is not there")


def check_listed(root, problems):
    """Every source is named in CMakeLists.txt of its folder or of one above, a program of one source by its stem."""
    for top in LISTED:
        for file in sorted((root / top).rglob("*.cpp")):
            lists = [folder / "CMakeLists.txt" for folder in file.parents if folder.is_relative_to(root)]
            if not any(names_source(place, file) for place in lists if place.is_file()):
                problems.append(f"{file.relative_to(root)}: not listed in {file.parent.relative_to(root)}/CMakeLists.txt")


def names_source(place, file):
    text = place.read_text(encoding="utf-8")
    name = re.escape(file.relative_to(place.parent).as_posix())
    program = rf"(?:^ *orsolva_\w+\(|^set\(_targets[^)]*\b){re.escape(file.stem)}\b"
    return re.search(rf"(?<![\w/]){name}(?![\w.])|{program}", text, re.M)


def check_examples(root, problems):
    """An example sees what an installed library shows, and what lies beside it."""
    for file in sorted((root / "examples").glob("*.[hc]*")):
        for include in includes_of(file):
            if not (root / "examples" / include).is_file():
                problems.append(f"{file.relative_to(root)}: includes {include}")


def check_architecture(root, problems):
    text = (root / "ARCHITECTURE.md").read_text(encoding="utf-8")
    for path in PATH.findall(text):
        if not (root / path).exists():
            problems.append(f"ARCHITECTURE.md: {path} does not exist")
    drawn = [path for drawing in DRAWING.findall(text) for path in DRAWN.findall(drawing)]
    if not drawn:
        problems.append("ARCHITECTURE.md: no drawing of the layers")
    for path in drawn:
        # A stem is its files: qc/process for qc/process.h and qc/process.cpp.
        if not (root / "library" / path).exists() and not (root / "library" / (path + ".h")).exists():
            problems.append(f"ARCHITECTURE.md: the drawing names {path}, which is not in library/")


def main():
    root = pathlib.Path(sys.argv[1])
    problems = []
    check_library(root, problems)
    check_layers(root, problems)
    check_host(root, problems)
    check_python(root, problems)
    check_destructors(root, problems)
    check_relative(root, problems)
    check_public(root, problems)
    check_examples(root, problems)
    check_listed(root, problems)
    check_joined(root, problems)
    check_architecture(root, problems)
    for problem in problems:
        print(problem)
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
