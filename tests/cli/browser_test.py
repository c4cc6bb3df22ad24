"""The HTML page in a real browser: it sorts by a click, reads well on a desktop and a phone, and bears many rows.

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


CLASSES = """Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
class Volume {
  [Key] uint32 Id; string Name; uint64 Size; sint32 Change; real64 PercentUsed; datetime Made; string Note;
  string A; string B; string C; string D; string E;
};
"""
REMARK = "what somebody left here for those who come later, " * 12


def volume(number, size, change, percent, made, note="short"):
    filler = " ".join(f'{name} = "{name.lower()} few-short words";' for name in "ABCDE")
    return (f'instance of Volume {{ Id = {number}; Name = "volume{number}"; {f"Size = {size};" if size is not None else ""} '
            f'Change = {change}; PercentUsed = {percent}; Made = "{made}"; Note = "{note}"; {filler} }};\n')


FEW = [volume(1, 40, -5, 12.3456, "20261122112705.000000+060", REMARK), volume(2, None, 0, 50.0, "20261122112704.000002+000"),
       volume(3, 10, 15, 25.004, "20261122112704.000001+000")]


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

    def volumes(self, instances, columns="*"):
        path = self.write("volumes.mof", CLASSES + "".join(instances))
        return self.succeed(self.run_tool("--no-live", "-m", path, "-o", "html", f"SELECT {columns} FROM Volume"))

    def ask(self, page, script, width=1200):
        """What a script finds in the page: the JSON of what it returns. All else is gone from the page then."""
        script = ("const found = JSON.stringify((function () {" + script + "})());"
                  "document.body.replaceChildren(); document.body.setAttribute('data-found', found);")
        page = page.replace("</body>", "<script>" + script + "</script></body>")
        dom = self.browse(page, "--dump-dom", f"--window-size={width},900")
        return json.loads(html.unescape(re.search(r'data-found="([^"]*)"', dom).group(1)))

    def test_short_values_do_not_break_and_long_ones_open_on_a_click(self):
        found = self.ask(self.volumes(FEW), """
            const lines = node => {
              const range = document.createRange();
              range.selectNodeContents(node);
              return new Set(Array.from(range.getClientRects(), box => Math.round(box.top))).size;
            };
            const long = document.querySelector(".long");
            const height = () => Math.round(long.clientHeight / parseFloat(getComputedStyle(long).lineHeight));
            const heights = [height()];
            for (let i = 0; i < 2; ++i) { long.click(); heights.push(height()); }
            getSelection().selectAllChildren(long);
            long.click();
            heights.push(height());
            return {lines: Array.from(document.querySelectorAll("td"), lines).filter((each, i) => i !== 6),
                    longs: document.querySelectorAll(".long").length, heights: heights};""", width=700)
        self.assertEqual(set(found["lines"]), {1})
        self.assertEqual(found["longs"], 1)
        closed, opened, again, marked = found["heights"]
        self.assertEqual((closed, again, marked), (3, 3, 3))  # to mark a part of it is no click on it
        self.assertGreater(opened, 5)

    def test_the_page_scrolls_and_no_box_in_it(self):
        found = self.ask(self.volumes(volume(i, i, 0, 0, "20261122112705.000000+060") for i in range(200)), """
            const boxes = Array.from(document.querySelectorAll("body *"), node => getComputedStyle(node));
            const root = document.documentElement;
            scrollTo(100, 3000);
            return {boxes: boxes.filter(style => /auto|scroll/.test(style.overflowX + style.overflowY)).length,
                    scrolled: [scrollX, scrollY], head: document.querySelector("th").getBoundingClientRect().top};""", width=700)
        self.assertEqual(found, {"boxes": 0, "scrolled": [100, 3000], "head": 0})

    def test_numbers_have_bars_in_proportion(self):
        found = self.ask(self.volumes(FEW, "Id, Name, Size, Change, PercentUsed"), """
            return Array.from(document.querySelectorAll("tbody tr"), row => Array.from(row.cells, cell =>
              ["size", "from"].map(name => cell.style.getPropertyValue("--" + name))));""")
        column = lambda index: [row[index] for row in found]
        self.assertEqual(column(1), [["", ""]] * 3)
        self.assertEqual(column(2), [["100.00%", "0.00%"], ["", ""], ["25.00%", "0.00%"]])  # NULL has none
        # From -5 to 15: zero is at a quarter; a place is told in percent of what the bar leaves free.
        self.assertEqual(column(3), [["25.00%", "0.00%"], ["0.00%", "25.00%"], ["75.00%", "100.00%"]])
        self.assertEqual(column(4), [["24.69%", "0.00%"], ["100.00%", "0.00%"], ["50.01%", "0.00%"]])

    def test_bars_need_a_second_number(self):
        found = self.ask(self.volumes(FEW[:2], "Size"), "return document.querySelectorAll('td[style]').length;")
        self.assertEqual(found, 0)

    def test_datetimes_sort_by_instant_and_percentages_by_all_digits(self):
        found = self.ask(self.volumes(FEW + [volume(4, 1, 0, 25.001, "**************.******+***")], "Id, Made, PercentUsed"), """
            return [1, 2].map(column => {
              document.querySelectorAll("th")[column].click();
              return Array.from(document.querySelectorAll("tbody tr"), row => [0, column].map(i => row.cells[i].textContent));
            });""")
        self.assertEqual([row[0] for row in found[0]][-3:], ["1", "3", "2"])
        self.assertEqual(found[0][-3][1], "2026-11-22 11:27:05 UTC+1")
        self.assertEqual(found[1], [["1", "12.35"], ["4", "25"], ["3", "25"], ["2", "50"]])

    def test_30000_rows_are_laid_out_where_they_are_seen(self):
        count = 30000
        rows = [volume(i, i * 7919 % count, i % 20 - 5, i % 100, f"2026112211{i % 60:02}05.000000+060",
                       REMARK if i % 9 == 0 else "short") for i in range(count)]
        page = self.volumes(rows, "Id, Name, Size, Change, PercentUsed, Made, Note")
        found = self.ask(page, """
            const table = document.querySelector("table");
            const lefts = row => Array.from(row.cells, cell => Math.round(cell.getBoundingClientRect().left));
            const rows = () => Array.from(table.querySelectorAll("tbody tr"));
            const before = rows();
            const start = performance.now();
            document.querySelectorAll("th")[2].click();
            document.body.offsetHeight;
            const time = performance.now() - start;
            const after = rows();
            const sizes = after.map(row => row.cells[2].textContent);
            after[after.length - 1].scrollIntoView();
            return {time: time, parts: table.tBodies.length, sizes: sizes,
                    visibility: getComputedStyle(table.tBodies[0]).contentVisibility,
                    lefts: [table.rows[0], after[0], after[after.length - 1]].map(lefts),
                    bars: after[after.length - 1].cells[2].style.getPropertyValue("--size"),
                    back: document.querySelectorAll("th")[2].click() || document.querySelectorAll("th")[2].click() ||
                          rows().every((row, i) => row === before[i])};""")
        self.assertEqual(found["parts"], 300)
        self.assertEqual(found["visibility"], "auto")
        self.assertEqual(found["sizes"], [str(i) for i in range(count)])
        self.assertTrue(found["back"])
        self.assertEqual(found["lefts"][1], found["lefts"][0])
        self.assertEqual(found["lefts"][2], found["lefts"][0])
        self.assertEqual(found["bars"], "100.00%")
        print(f"sorting {count} rows took {found['time']:.0f} ms")

    def pages(self, page):
        """How many sheets of paper the page takes."""
        path = os.path.join(self.folder, "print.pdf")
        self.browse(page, "--no-pdf-header-footer", "--print-to-pdf=" + path)
        with open(path, "rb") as file:
            return len(re.findall(rb"/Type\s*/Page\b", file.read()))

    def test_a_print_has_every_row_and_whole_texts(self):
        rows = [volume(i, i, 0, 0, "20261122112705.000000+060", REMARK) for i in range(1001)]
        # About 200 sheets; three lines of each text would take about 90.
        self.assertGreater(self.pages(self.volumes(rows, "Id, Note")), 130)

    def shoot(self, name, page, width, height, *arguments):
        path = os.path.join(self.shots, name + ".png")
        if os.path.exists(path):
            os.remove(path)
        self.browse(page, f"--window-size={width},{height}", "--screenshot=" + path, *arguments)
        with open(path, "rb") as image:
            header = image.read(24)
        self.assertEqual(header[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(int.from_bytes(header[16:20], "big"), width)
        self.assertGreater(os.path.getsize(path), 10000, "the picture is empty")

    def test_screenshots(self):
        self.shoot("desktop", self.page, 1200, 900)
        self.shoot("dark", self.page, 1200, 900, "--blink-settings=preferredColorScheme=0")
        # The browser's own window is not as narrow as a phone: a frame is.
        inner = self.write("inner.html", self.page)
        self.shoot("phone", f'<body style="margin:0;background:#888"><iframe src="file://{inner}" '
                            'style="width:390px;height:844px;border:0"></iframe></body>', 500, 844)


if __name__ == "__main__":
    toolcase.main()
