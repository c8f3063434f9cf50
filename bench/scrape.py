#!/usr/bin/env python3
"""What a quick script does: scrape every report with bytes.find and count verdicts."""
import os
import sys

LABEL = b'<div class="k">Overall Verdict</div>'
VALUE = b'<div class="v">'
MODE = b'<div class="k">Analysis Mode</div>\n'


def text_between(page, start, end, position=0):
    begin = page.find(start, position)
    if begin < 0:
        return b""
    begin += len(start)
    return page[begin:page.find(end, begin)]


def scrape(page):
    label = page.find(LABEL)
    if label < 0:
        return "OTHER", b"", []
    verdict = text_between(page, VALUE, b"<", label)
    if verdict.startswith(b"ERROR"):
        return "ERROR", text_between(page, b'<p class="run-error">', b"</p>"), []
    bar = text_between(page, b'<nav class="nav-tabs">', b"</nav>")
    tabs = [tab for tab in bar.split(b"</a>") if b" data-fail" in tab]
    names = [tab[tab.find(b">", tab.find(b"<a ")) + 1:] for tab in tabs]
    mode = text_between(page, MODE + VALUE, b"</div>")
    return ("PASS" if verdict.startswith(b"PASS") else "FAIL"), mode, names


counts = {}
for folder, _, names in os.walk(sys.argv[1]):
    for name in names:
        if name.lower().endswith((".html", ".htm")):
            with open(os.path.join(folder, name), "rb") as file:
                kind = scrape(file.read())[0]
            counts[kind] = counts.get(kind, 0) + 1
print(counts)
