#!/usr/bin/env python3
"""Writes a page of the manual with what the documents say in its places. A line of a page

    @docs FILE | HEADING | WHAT

stands for the section of that heading in a Markdown file: all of it, only its tables (`tables`), or
only the paragraphs on the keys of a scenario's sections (`keys`). The page goes to the standard
output, in the form that scdoc reads."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def section(lines, heading):
    """The lines below a heading, up to the next one that is as high."""
    for first, line in enumerate(lines):
        if re.fullmatch(r"#+ " + re.escape(heading), line):
            break
    else:
        raise SystemExit(f"no such heading: {heading}")
    level = line.index(" ")
    taken = []
    literal = False
    for line in lines[first + 1 :]:
        literal ^= line.startswith("```")
        if not literal and re.match(r"#{1,%d} " % level, line):
            break
        taken.append(line)
    return taken


def blocks(lines):
    """The blocks of Markdown that our documents are made of, as pairs of kind and content."""
    position = 0

    def take(belongs):
        nonlocal position
        first = position
        while position < len(lines) and belongs(lines[position]):
            position += 1
        return lines[first:position]

    while position < len(lines):
        line = lines[position]
        if not line:
            position += 1
        elif line.startswith("```"):
            position += 1
            yield "literal", take(lambda line: not line.startswith("```"))
            position += 1
        elif line.startswith("    "):
            yield "literal", [row[4:] for row in take(lambda row: row.startswith("    "))]
        elif line.startswith("|"):
            yield "table", take(lambda row: row.startswith("|"))
        elif line.startswith("#"):
            yield "heading", take(lambda row: row is line)
        elif line.startswith("!["):
            position += 1
        elif re.match(r"(-|\d+\.) ", line):
            position += 1
            yield "item", [line, *take(lambda row: row.startswith("  "))]
        else:
            yield "paragraph", take(lambda row: row and not re.match(r"(```|\||#|- )", row))


def escape(text):
    return re.sub(r"([\\*_])", r"\\\1", text)


def inline(text):
    """A stretch of Markdown text as scdoc's: code and bold are bold, links are their text."""
    text = re.sub(r"\[([^]`]*)\]\([^)]*\)", r"\1", text)
    parts = re.split(r"(`[^`]+`|\*\*[^*]+\*\*)", text)
    return "".join(
        "*" + escape(part.strip("`*") if part[0] == "*" else part[1:-1]) + "*" if odd else escape(part)
        for part, odd in ((part, number % 2) for number, part in enumerate(parts))
        if part
    )


def joined(lines):
    return " ".join(line.strip() for line in lines)


def table(rows):
    """Each row as what its first cell says, and indented what the last one says."""
    cells = [
        [cell.strip().replace(r"\|", "|") for cell in re.split(r"(?<!\\)\|", row)[1:-1]] for row in rows
    ]
    names = cells[0]
    for row in cells[2:]:
        head = inline(row[0]) if re.search("[`*]", row[0]) else f"*{escape(row[0])}*"
        between = [
            f"{name.lower() + ': ' if name else ''}{cell}"
            for name, cell in zip(names[1:-1], row[1:-1])
            if cell
        ]
        if between:
            head += " (" + inline("; ".join(between)) + ")"
        yield head
        if row[-1]:
            yield "\t" + inline(row[-1])
        yield ""


def converted(kind, content):
    if kind == "literal":
        return ["```", *content, "```", ""]
    if kind == "heading":
        return ["## " + inline(content[0].lstrip("# ")).upper(), ""]
    if kind == "table":
        return list(table(content))
    if kind == "item":
        mark, text = joined(content).split(" ", 1)
        return [("- " if mark == "-" else ". ") + inline(text), ""]
    return [inline(joined(content)), ""]


def wanted(kind, content, what):
    if what == "tables":
        return kind == "table"
    if what == "keys":
        return kind == "paragraph" and content[0].startswith("`[")
    return True


def expanded(path):
    for line in path.read_text().splitlines():
        if not line.startswith("@docs "):
            yield line
            continue
        name, heading, *what = [word.strip() for word in line[len("@docs ") :].split("|")]
        lines = section((ROOT / name).read_text().splitlines(), heading)
        for kind, content in blocks(lines):
            if wanted(kind, content, what[0] if what else ""):
                yield from converted(kind, content)


if __name__ == "__main__":
    print("\n".join(expanded(pathlib.Path(sys.argv[1]))))
