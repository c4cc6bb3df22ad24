"""The HTML page in a real browser: it sorts by a click and reads well on a desktop and a phone.

Screenshots stay beside the tool, in a folder of the build.
"""
# SPDX-License-Identifier: Apache-2.0
import html
import json
import os
import re
import shutil
import subprocess
import unittest

import toolcase
from toolcase import ToolCase

BROWSER = shutil.which("chromium") or shutil.which("chromium-browser")

MODEL = """class Disk { [Key] string Name; string Kind; uint64 Size; real64 Load; boolean Spare; string Note; };
""" + "".join(
    f'instance of Disk {{ Name = "disk{i}"; Kind = "{"ssd" if i % 3 else "hdd"}"; Size = {i * 7919 % 1000 * 10**16 + i}; '
    f'{"" if i % 4 == 0 else f"Load = {i * 37 % 100 / 8};"} Spare = {"TRUE" if i % 2 else "FALSE"}; '
    f'Note = "{"" if i % 5 else "a longer remark about a disk that somebody left here for those who come later"}"; }};\n'
    for i in range(1, 31))
QUERY = "SELECT Name, Kind, Size, Load, Spare, Note FROM Disk WHERE Kind <> 'none <script>'"


# What the page shows, noted after each click; left behind in an attribute of the body.
NOTES = """
function rows() {
  return Array.from(document.querySelectorAll("tbody tr")).map(
    row => Array.from(row.cells).map(cell => cell.textContent));
}
const notes = [];
for (const column of [CLICKS]) {
  if (column !== null) document.querySelectorAll("th")[column].click();
  notes.push({rows: rows(), table: document.querySelector("table").className,
              orders: Array.from(document.querySelectorAll("th")).map(head => head.getAttribute("aria-sort")),
              labels: Array.from(document.querySelectorAll("tbody tr:first-child td")).map(cell => cell.dataset.name)});
}
document.body.setAttribute("data-notes", JSON.stringify(notes));
"""


class Browser(ToolCase):
    def setUp(self):
        super().setUp()
        self.assertIsNotNone(BROWSER, "there is no chromium: install the packages of packages.txt")
        path = self.write("disks.mof", "Qualifier Key : boolean = false, Scope(property, reference), "
                                       "Flavor(DisableOverride, ToSubclass);\n" + MODEL)
        self.page = self.succeed(self.run_tool("--no-live", "-m", path, "-o", "html", QUERY))
        self.shots = os.path.join(os.path.dirname(toolcase.TOOL), "screenshots")
        os.makedirs(self.shots, exist_ok=True)

    def browse(self, page, *arguments):
        path = self.write("page.html", page)
        done = subprocess.run(
            [BROWSER, "--headless", "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-background-networking",
             "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage",
             "--enable-logging=stderr",
             "--user-data-dir=" + os.path.join(self.folder, "profile"), *arguments, "file://" + path],
            capture_output=True, timeout=120, check=False)
        self.assertEqual(done.returncode, 0, done.stderr.decode())
        self.assertNotIn("Uncaught", done.stderr.decode("utf-8", "replace"), "the page's script fails")
        return done.stdout.decode()

    def notes(self, clicks, width=1200):
        """What the page shows at first and after each click on a column's name."""
        script = NOTES.replace("CLICKS", ", ".join(["null"] + [str(column) for column in clicks]))
        page = self.page.replace("</body>", "<script>" + script + "</script></body>")
        dom = self.browse(page, "--dump-dom", f"--window-size={width},900")
        return json.loads(html.unescape(re.search(r'data-notes="([^"]*)"', dom).group(1)))

    def test_a_click_on_a_name_sorts(self):
        shown = self.notes([2, 2, 2, 0, 0, 3, 3, 1])
        column = lambda note, index: [row[index] for row in note["rows"]]
        as_it_came = [f"disk{i}" for i in range(1, 31)]
        self.assertEqual(column(shown[0], 0), as_it_came)
        self.assertEqual(shown[0]["orders"], ["none"] * 6)

        sizes = [int(size) for size in column(shown[1], 2)]  # differ in digits that a double does not hold
        self.assertEqual(sizes, sorted(int(size) for size in column(shown[0], 2)))
        self.assertEqual(shown[1]["orders"], ["none", "none", "ascending", "none", "none", "none"])
        self.assertEqual([int(size) for size in column(shown[2], 2)], sizes[::-1])
        self.assertEqual(shown[2]["orders"][2], "descending")
        self.assertEqual(column(shown[3], 0), as_it_came)

        self.assertEqual(column(shown[4], 0), as_it_came)  # texts by the numbers in them
        self.assertEqual(column(shown[5], 0), as_it_came[::-1])
        for note, backward in ((shown[6], False), (shown[7], True)):  # nulls last either way
            loads = column(note, 3)
            numbers = [float(load) for load in loads if load != "NULL"]
            self.assertEqual(numbers, sorted(numbers, reverse=backward))
            self.assertEqual(loads[len(numbers):], ["NULL"] * 7)
        self.assertEqual(shown[8]["orders"], ["none", "ascending", "none", "none", "none", "none"])
        self.assertEqual(column(shown[8], 0)[:3], ["disk3", "disk6", "disk9"])
        self.assertEqual((shown[0]["table"], shown[0]["labels"]), ("", [None] * 6))

    def test_a_narrow_screen_shows_cards_that_sort(self):
        shown = self.notes([2], width=500)
        self.assertEqual(shown[0]["table"], "cards")
        self.assertEqual(shown[1]["labels"], ["Name", "Kind", "Size", "Load", "Spare", "Note"])
        sizes = [int(row[2]) for row in shown[1]["rows"]]
        self.assertEqual(sizes, sorted(sizes))

    def shoot(self, name, page, width, height):
        path = os.path.join(self.shots, name + ".png")
        if os.path.exists(path):
            os.remove(path)
        self.browse(page, f"--window-size={width},{height}", "--screenshot=" + path)
        with open(path, "rb") as image:
            header = image.read(24)
        self.assertEqual(header[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(int.from_bytes(header[16:20], "big"), width)
        self.assertGreater(os.path.getsize(path), 10000, "the picture is empty")

    def test_screenshots(self):
        self.shoot("desktop", self.page, 1200, 900)
        # The browser's own window is not as narrow as a phone: a frame is.
        inner = self.write("inner.html", self.page)
        self.shoot("phone", f'<body style="margin:0;background:#888"><iframe src="file://{inner}" '
                            'style="width:390px;height:844px;border:0"></iframe></body>', 500, 844)


if __name__ == "__main__":
    toolcase.main()
