"""Names that keep sources from being compiled as one.

cmake/unity.cmake lists the targets whose sources some builds join, and the sources that stay out of it. A name local to
two joined sources is defined twice there, which the ordinary build, an object per source, does not notice.
"""
import collections
import re

TARGET = re.compile(r"^\s*orsolva_unity\((\w+)([^)]*)\)", re.M)
LAYERS = re.compile(r"foreach\(_layer ([^)]*)\)")
SETS = re.compile(r"^\s*(?:set|list)\((?:APPEND )?(\w+)([^)]*)\)", re.M)
SOURCES = re.compile(r"\b(?:add_executable|add_library|target_sources)\(\s*(\w+)([^)]*)\)")
NAMESPACE = re.compile(r"namespace(?: ([\w:]+))? \{")
NAMESPACE_END = re.compile(r"\}\s*// namespace")
VARIABLE = re.compile(r"(?:inline |static |constexpr |const )+[\w:<>, *&]*?\b(\w+)(?:\[\w*\])*(?: =|\{)")
KIND = re.compile(r"(?:struct|class|enum class) (\w+)(?: final)?(?: : [\w:, ]+)? \{")
FUNCTION = re.compile(r"[\w:<>, *&]*?[\s*&](\w+)\((.*?)\)(?: const)?(?: noexcept)? \{")


def targets(root):
    """The joined sources of each target."""
    text = (root / "cmake/unity.cmake").read_text(encoding="utf-8")
    left_out = {name: set(rest.split()) for name, rest in TARGET.findall(text) if name != "orsolva_"}
    for layer in LAYERS.search(text).group(1).split():
        left_out[f"orsolva_{layer}"] = set()
    joined = {name: [] for name in left_out}
    for lists in sorted(root.rglob("CMakeLists.txt")):
        if any(part.startswith("build") for part in lists.relative_to(root).parts):
            continue
        folder = lists.parent.relative_to(root)
        commands = re.sub(r"#[^\n]*", "", lists.read_text(encoding="utf-8"))
        for name, rest in SETS.findall(commands):
            commands = commands.replace(f"${{{name}}}", f"{rest} ${{{name}}}")
        for name, rest in SOURCES.findall(commands):
            sources = [(folder / word).as_posix() for word in rest.split() if word.endswith(".cpp")]
            if name in joined:
                joined[name] += [source for source in sources if source not in left_out[name]]
    return joined


def local_names(text):
    """What unnamed namespaces and statics define: names, of functions with the parameters, in their namespace."""
    spaces, names = [], set()
    lines = text.split("\n")
    for number, line in enumerate(lines):
        if found := NAMESPACE.match(line):
            spaces.append(found.group(1) or "")
        elif NAMESPACE_END.match(line) and spaces:
            spaces.pop()
        elif line[:1].isalpha() and ("" in spaces or line.startswith("static ")):
            names |= {(tuple(space for space in spaces if space), name) for name in defined(lines, number)}
    return names


def defined(lines, number):
    """Names that a definition beginning in this line gives."""
    whole = " ".join(line.strip() for line in lines[number:number + 4])
    if lines[number].startswith("TEST"):
        return []
    if found := KIND.match(whole):
        return [found.group(1)]
    if found := FUNCTION.match(whole):
        return [f"{found.group(1)}({' '.join(found.group(2).split())})"]
    if found := VARIABLE.match(whole):
        return [found.group(1)]
    return []


def check_joined(root, problems):
    """A name local to two sources that are joined."""
    for target, sources in targets(root).items():
        if not sources:
            problems.append(f"cmake/unity.cmake: no source of {target} was found")
        owners = collections.defaultdict(list)
        for source in sources:
            for name in local_names((root / source).read_text(encoding="utf-8")):
                owners[name].append(source)
        for (spaces, name), files in sorted(owners.items()):
            if len(files) > 1:
                problems.append(f"{'::'.join((*spaces, name))} is defined in {' and '.join(files)}, "
                                f"which {target} may join: rename one, or leave a source out in cmake/unity.cmake")
