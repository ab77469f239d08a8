"""The picture of a comparison: what its lines join, and what it leads to."""

from session import PageTest, on_pages

# For each line, how far its ends lie from the middles of the two rows that it joins.
DISTANCES = """
const rights = new Map();
document.querySelectorAll('.sides ul + ul li').forEach((row) => rights.set(row.dataset.pair, row));
function middleOf(row) {
    const box = row.querySelector('a').getBoundingClientRect();
    return (box.top + box.bottom) / 2;
}
return Array.from(document.querySelectorAll('.sides path'), (path) => {
    const left = path.closest('li');
    const right = rights.get(left.dataset.pair);
    const toScreen = path.getScreenCTM();
    const start = path.getPointAtLength(0).matrixTransform(toScreen);
    const end = path.getPointAtLength(path.getTotalLength()).matrixTransform(toScreen);
    return [start.y - middleOf(left), end.y - middleOf(right),
        start.x - left.getBoundingClientRect().right, end.x - right.getBoundingClientRect().left]
        .map((distance) => Math.abs(distance));
});
"""


class TestComparison(PageTest):
    @on_pages("diff", "long diff")
    def test_lines_join_the_pairs(self, name):
        lines = self.browser.run(DISTANCES)
        self.assertEqual(len(lines), {"diff": 6, "long diff": 392}[name])
        for line in lines:
            self.assertLess(max(line), 2, "pixels")

    @on_pages("diff")
    def test_lines_join_the_pairs_on_small_screens(self, _):
        self.browser.develop("Emulation.setDeviceMetricsOverride", width=360, height=740,
                             deviceScaleFactor=1, mobile=True)
        try:
            for line in self.browser.run(DISTANCES):
                self.assertLess(max(line), 2, "pixels")
        finally:
            self.browser.develop("Emulation.clearDeviceMetricsOverride")

    @on_pages("diff", "hostile diff", "long diff")
    def test_both_sides_lead_to_the_same_entry(self, _):
        pairs = self.browser.run(
            "return Array.from(document.querySelectorAll('.sides li[data-pair]'), (row) =>"
            " [row.dataset.pair, row.querySelector('a').getAttribute('href')])")
        for pair, link in pairs:
            self.assertEqual(link, "#" + pair)
        names = [pair for pair, _ in pairs]
        self.assertEqual(set(map(names.count, names)), {2})
        entries = self.browser.run(
            "return Array.from(document.querySelectorAll('[data-item]'), (item) => item.id)")
        targets = self.browser.run(
            "return Array.from(document.querySelectorAll('.sides a'), (link) =>"
            " link.hash.slice(1))")
        self.assertEqual(set(targets), set(entries))

    @on_pages("diff")
    def test_pairs_stand_out_where_they_are_pointed_at(self, _):
        marked = ("return Array.from(document.querySelectorAll('.sides li.marked'), (row) =>"
                  " row.dataset.pair)")
        self.browser.run("document.querySelector('.sides li.moved a').focus()")
        pair = self.browser.run("return document.querySelector('.sides li.moved').dataset.pair")
        self.assertEqual(self.browser.run(marked), [pair, pair])
        self.browser.run("document.querySelector('.sides li.only a').focus()")
        self.assertEqual(self.browser.run(marked), [])

    @on_pages("diff")
    def test_steps_that_are_not_found_fade(self, _):
        self.browser.type("#search", "evaluate")
        faded = self.browser.run(
            "return Array.from(document.querySelectorAll('.sides li'), (row) =>"
            " row.classList.contains('missed') === !row.textContent.includes('Evaluate'))")
        self.assertEqual(set(faded), {True})
