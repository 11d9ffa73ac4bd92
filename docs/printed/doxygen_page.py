#!/usr/bin/env python3
"""Prints a Markdown page for doxygen: doxygen_page.py PAGE, from the root of the tree.

Doxygen's headings have no ids of their own, so each gets one: the name of its page, and the id that it has on
web sites of sources. Links to other pages of the reference use these ids. Links to other files of the tree
become text, because the reference does not have these files.
"""
import os
import pathlib
import re
import sys

PAGE = pathlib.Path(os.path.relpath(sys.argv[1]))


def page_id(page):
    return "page_" + re.sub(r"\W", "_", str(page.with_suffix("")))


def heading_id(page, slug):
    return f"{page_id(page)}_{slug}" if slug else page_id(page)


def link(match):
    image, text, target = match.groups()
    if re.match("[a-z]+:", target):
        return match[0]
    path, _, slug = target.partition("#")
    page = pathlib.Path(os.path.normpath(PAGE.parent / path)) if path else PAGE
    if image:
        return f"![{text}]({page.name})"
    isPage = page.suffix == ".md" and page.parts[0] != "examples" and page != pathlib.Path("README.md")
    return f"[{text}](@ref {heading_id(page, slug)})" if isPage else text


def heading(match):
    marks, text = match.groups()
    slug = "" if marks == "#" else re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")
    # The title of the main page must not have an id.
    return match[0] if PAGE.name == "README.md" and not slug else \
        f"{match[0]} {{#{heading_id(PAGE, slug)}}}"


def for_doxygen(text):
    text = re.sub(r"(!?)\[((?:[^\[\]]|\[[^\]]*\])*)\]\(([^)\s]+)\)", link, text)
    return re.sub(r"^(#+) (.*)$", heading, text, flags=re.MULTILINE)


# Fenced blocks stay as they are.
parts = re.split(r"(^ *```.*\n(?:.*\n)*?^ *```$)", PAGE.read_text(encoding="utf-8"),
                 flags=re.MULTILINE)
print("".join(part if i % 2 else for_doxygen(part) for i, part in enumerate(parts)), end="")
