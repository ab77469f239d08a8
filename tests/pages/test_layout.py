"""Pages can be read on small screens, in the dark and on paper."""

import session
from session import PageTest, on_pages

# The contrast ratio of each visible text to what is behind it, as the web's guidelines count it,
# where it is lower than they ask for.
LOW_CONTRAST = """
const context = document.createElement('canvas').getContext('2d', {willReadFrequently: true});
function channels(color) {
    context.clearRect(0, 0, 1, 1);
    context.fillStyle = color;
    context.fillRect(0, 0, 1, 1);
    return context.getImageData(0, 0, 1, 1).data;
}
const luminances = new Map();
function luminance(color) {
    if (!luminances.has(color)) {
        const [r, g, b] = Array.from(channels(color).slice(0, 3), (value) => {
            const part = value / 255;
            return part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4;
        });
        luminances.set(color, 0.2126 * r + 0.7152 * g + 0.0722 * b);
    }
    return luminances.get(color);
}
function background(element) {
    for (let place = element; place; place = place.parentElement) {
        const color = getComputedStyle(place).backgroundColor;
        if (channels(color)[3] === 255) {
            return color;
        }
    }
    return 'white';
}
const low = [];
let count = 0;
for (const element of document.querySelectorAll('body *')) {
    const hasText = Array.from(element.childNodes).some(
        (node) => node.nodeType === Node.TEXT_NODE && node.data.trim() !== '');
    if (!hasText || element.localName === 'script' || !element.checkVisibility()) {
        continue;
    }
    const ends = [luminance(getComputedStyle(element).color), luminance(background(element))];
    const ratio = (Math.max(...ends) + 0.05) / (Math.min(...ends) + 0.05);
    count += 1;
    if (ratio < 4.5) {
        low.push(`${element.localName}.${element.className}: ${ratio}`);
    }
}
return [low, luminance(background(document.body)), count];
"""
VISIBLE = "return document.querySelector(arguments[0]).checkVisibility()"


class TestNarrow(PageTest):
    def setUp(self):
        super().setUp()
        self.browser.develop("Emulation.setDeviceMetricsOverride", width=360, height=740,
                             deviceScaleFactor=2, mobile=True)
        self.addCleanup(self.browser.develop, "Emulation.clearDeviceMetricsOverride")

    @on_pages()
    def test_nothing_lies_aside(self, _):
        self.assertEqual(self.browser.run("return document.documentElement.scrollWidth"), 360)
        self.assertEqual(self.browser.run("return innerWidth"), 360)

    def test_what_lies_aside_is_noticed(self):
        self.browser.open(session.page_with(
            lambda html: html.replace(b"<h1>", b"<h1>" + 60 * "wide\u00a0".encode()), "diff"))
        self.browser.run("document.querySelector('h1').setAttribute('class', 'facts')")
        self.browser.develop("Emulation.setDeviceMetricsOverride", width=360, height=740,
                             deviceScaleFactor=2, mobile=True)
        self.browser.run("document.querySelector('h1').style.whiteSpace = 'nowrap'")
        self.assertGreater(self.browser.run("return document.documentElement.scrollWidth"), 360)

    @on_pages("diff")
    def test_tables_stay_tables(self, _):
        nodes = self.browser.develop("Accessibility.getFullAXTree")["nodes"]
        roles = [node["role"]["value"] for node in nodes if not node["ignored"]]
        tables = self.browser.run("return document.querySelectorAll('table').length")
        self.assertEqual(roles.count("table"), tables)
        self.assertEqual(roles.count("rowheader"),
                         self.browser.run("return document.querySelectorAll('tbody th').length"))
        self.assertEqual(roles.count("cell"),
                         self.browser.run("return document.querySelectorAll('td').length"))


class TestColours(PageTest):
    def setUp(self):
        super().setUp()
        self.addCleanup(self.browser.develop, "Emulation.setEmulatedMedia", features=[])

    @on_pages("report", "damaged", "names", "diff", "same diff")
    def test_dark(self, _):
        self._prefer("dark")
        self._check(lambda brightness: brightness < 0.05)

    @on_pages("report", "damaged", "names", "diff", "same diff")
    def test_light(self, _):
        self._prefer("light")
        self._check(lambda brightness: brightness > 0.9)

    @on_pages("diff")
    def test_lines_are_seen(self, _):
        for scheme in ("light", "dark"):
            self._prefer(scheme)
            colours = self.browser.run(
                "return Array.from(document.querySelectorAll('.sides path'), (path) =>"
                " getComputedStyle(path).stroke)")
            ground = self.browser.run("return getComputedStyle(document.body).backgroundColor")
            self.assertEqual(len(colours), 6)
            self.assertEqual(len(set(colours)), 3)
            self.assertNotIn(ground, colours)

    def _prefer(self, scheme):
        self.browser.develop("Emulation.setEmulatedMedia",
                             features=[{"name": "prefers-color-scheme", "value": scheme}])

    def _check(self, is_right):
        low, brightness, count = self.browser.run(LOW_CONTRAST)
        self.assertEqual(low, [])
        self.assertGreater(count, 10)
        self.assertTrue(is_right(brightness), brightness)


class TestPrint(PageTest):
    @on_pages("report", "diff")
    def test_nothing_is_folded_on_paper(self, name):
        self.browser.click("#fold")
        text = session.paper_text()
        folded = {"report": ["Outer race damaged", "calc2.lab.example.org", "bearing-report.fodt"],
                  "diff": ["evaluate --window 512 in.csv", "old.txt", "Send to the customer"]}[name]
        for part in folded:
            self.assertIn(part, text)
        for tool in ("Search the", "Fold all", "Unfold all"):
            self.assertNotIn(tool, text)

    @on_pages("report", "diff")
    def test_print_styles_need_no_script(self, _):
        self.browser.run("document.querySelectorAll('details').forEach("
                         "(fold) => { fold.open = false; })")
        content = "main details > :not(summary)"
        self.assertFalse(self.browser.run(VISIBLE, content))
        self.browser.develop("Emulation.setEmulatedMedia", media="print")
        try:
            self.assertTrue(self.browser.run(VISIBLE, content))
            self.assertFalse(self.browser.run(VISIBLE, ".tools"))
        finally:
            self.browser.develop("Emulation.setEmulatedMedia", media="")
