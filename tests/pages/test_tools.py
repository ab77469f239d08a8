"""What the script of the pages does: it searches and folds."""

from session import PageTest, on_pages

TAB, ENTER, SPACE = "\ue004", "\ue007", " "
# Text that all pages have in some of their parts, and only there.
WORDS = {"report": "spectrum", "diff": "evaluate", "long diff": "--again"}

ITEMS = """
return Array.from(document.querySelectorAll('[data-item]'), (item) =>
    [item.textContent.toLowerCase(), item.checkVisibility()]);
"""
FOUND = "return document.getElementById('found').textContent"
FOLDS = "return Array.from(document.querySelectorAll('details'), (fold) => fold.open)"
# The first fold of the page, and whether what is in it can be seen.
FIRST_FOLD = """
const fold = document.querySelector('main details');
return [fold.open, Array.from(fold.children).slice(1).some((part) => part.checkVisibility())];
"""


class TestSearch(PageTest):
    @on_pages(*WORDS)
    def test_search_narrows(self, name):
        items = self.browser.run(ITEMS)
        self.browser.type("#search", WORDS[name])
        narrowed = self.browser.run(ITEMS)
        self.assertEqual([shown for _, shown in narrowed],
                         [WORDS[name] in text for text, _ in items])
        count = sum(shown for _, shown in narrowed)
        self.assertTrue(0 < count < len(items), count)
        self.assertEqual(self.browser.run(FOUND), f"{count} of {len(items)}")

    @on_pages(*WORDS)
    def test_emptied_search_shows_all(self, _):
        items = self.browser.run(ITEMS)
        self.browser.type("#search", "no item has this")
        self.assertTrue(not any(shown for _, shown in self.browser.run(ITEMS)))
        self.assertEqual(self.browser.run(FOUND), f"0 of {len(items)}")
        self.browser.type("#search", "")
        self.assertEqual(self.browser.run(ITEMS), items)
        self.assertEqual(self.browser.run(FOUND), "")

    @on_pages("diff")
    def test_all_words_have_to_be_there(self, _):
        self.browser.type("#search", "OLD.txt  evaluate")
        self.assertEqual(self.browser.run(FOUND).split()[0], "1")
        self.browser.type("#search", "old.txt calibrate")
        self.assertEqual(self.browser.run(FOUND).split()[0], "0")

    @on_pages("long diff")
    def test_what_is_found_is_unfolded(self, _):
        seen = "return document.getElementById('pair-1').checkVisibility()"
        self.assertFalse(self.browser.run(seen))
        self.browser.type("#search", "step 398")
        self.assertTrue(self.browser.run(seen))


class TestFolding(PageTest):
    @on_pages("report", "diff")
    def test_by_click(self, _):
        self.assertEqual(self.browser.run(FIRST_FOLD), [True, True])
        self.browser.click("main details > summary")
        self.assertEqual(self.browser.run(FIRST_FOLD), [False, False])
        self.browser.click("main details > summary")
        self.assertEqual(self.browser.run(FIRST_FOLD), [True, True])

    @on_pages("report", "diff")
    def test_by_keyboard(self, _):
        self._tab_to("main details > summary")
        for key in (ENTER, SPACE):
            self.browser.press(key)
            self.assertEqual(self.browser.run(FIRST_FOLD), [False, False])
            self.browser.press(key)
            self.assertEqual(self.browser.run(FIRST_FOLD), [True, True])

    @on_pages("report", "diff", "long diff")
    def test_all_at_once(self, _):
        self.browser.click("#fold")
        self.assertEqual(set(self.browser.run(FOLDS)), {False})
        self.browser.click("#fold")
        self.assertEqual(set(self.browser.run(FOLDS)), {True})

    @on_pages("report", "diff")
    def test_all_by_keyboard(self, _):
        self._tab_to("#fold")
        self.browser.press(SPACE)
        self.assertEqual(set(self.browser.run(FOLDS)), {False})

    @on_pages("report", "diff")
    def test_links_open_what_is_folded(self, name):
        self.browser.click("#fold")
        link = {"report": "ol.timeline a", "diff": ".sides li.changed a"}[name]
        self.browser.click(link)
        opened = self.browser.wait(
            "const done = arguments[1]; const link = document.querySelector(arguments[0]);"
            "setTimeout(() => done(document.querySelector(link.hash + ' details').open), 50)", link)
        self.assertTrue(opened)

    def _tab_to(self, selector):
        for _ in range(100):
            self.browser.press(TAB)
            if self.browser.run("return document.activeElement ==="
                                " document.querySelector(arguments[0])", selector):
                return
        self.fail(f"{selector} is not reached by Tab")
