#!/usr/bin/env python3
"""Fails when a page links to a file or a heading that is not there, or names a file of this project that is gone."""

import os
import re
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "lib"))
import sources

FENCE = re.compile(r"^(```|~~~).*?^\1[ \t]*$", re.M | re.S)
CODE_SPAN = re.compile(r"`[^`\n]*`")
LINK = re.compile(r"\]\(<?([^)<>\s]+)>?(?:\s+\"[^\"]*\")?\)")
HEADING = re.compile(r"^#{1,6}[ \t]+(.*?)[ \t]*#*$", re.M)
ELSEWHERE = re.compile(r"[a-z][a-z0-9+.-]*:")
# A path in back-quotes that starts with one of our folders: wild cards, placeholders and what a build makes do not count.
OUR_PATH = re.compile(r"`((?:src|include|genapi|interface|producers|tools|examples|tests|bench|fuzz|docs|packaging|cmake|scripts)"
                      r"/[\w./-]*\w|[\w-]+\.(?:sh|md))`")


def blanked(pattern, text):
    """The text with what matches taken out, line numbers kept."""
    return pattern.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), text)


def anchors_of(name):
    """The names that a page's headings can be linked by: lower case, punctuation gone, spaces as hyphens."""
    found, seen = set(), {}
    for heading in HEADING.findall(blanked(FENCE, sources.text_of(name))):
        words = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", heading).lower()
        slug = re.sub(r"[^\w\- ]", "", words).replace(" ", "-")
        found.add(f"{slug}-{seen[slug]}" if slug in seen else slug)
        seen[slug] = seen.get(slug, 0) + 1
    return found


def trouble_with(page, link):
    path, _, anchor = link.partition("#")
    target = os.path.normpath(os.path.join(os.path.dirname(page), path)) if path else page
    if target.startswith(".."):
        return f'"{link}" leads out of the project'
    if not (sources.ROOT / target).exists():
        return f'"{link}" leads to {target}, which is not there'
    if anchor and target.endswith(".md") and anchor not in anchors_of(target):
        return f'"{link}" leads to a heading that {target} does not have'
    return None


def check(page):
    text = blanked(FENCE, sources.text_of(page))
    found = []
    for match in LINK.finditer(blanked(CODE_SPAN, text)):
        trouble = None if ELSEWHERE.match(match[1]) else trouble_with(page, match[1])
        if trouble:
            found.append((sources.line_at(text, match.start()), trouble))
    for match in OUR_PATH.finditer(text):
        here = (sources.ROOT / match[1]).exists() or (sources.ROOT / page).parent.joinpath(match[1]).exists()
        if not here and not any((sources.ROOT / (match[1] + ending)).exists() for ending in sources.CODE):
            found.append((sources.line_at(text, match.start()), f"{match[1]} is not there"))
    return sorted(found)


def main():
    pages = sources.tracked(".md")
    count = 0
    for page in pages:
        for line, trouble in check(page):
            print(f"{page}:{line}: {trouble}")
            count += 1
    print(f"check-docs: {len(pages)} pages, {count} findings")
    return 1 if count else 0


sys.exit(main())
