"""What documents carry stays text."""

import base64
import html

import session
from session import PageTest, on_pages

# An element for each line: its name and those of its attributes, without what texts decide on.
STRUCTURE = """
return Array.from(document.querySelectorAll('*'), (element) => [element.localName,
    ...Array.from(element.attributes, (attribute) => attribute.name)].join(' '));
"""
# Places whose texts other programs, too, may take for something else.
TEXTS = """
return [document.title, document.documentElement.textContent,
    ...Array.from(document.querySelectorAll('[alt]'), (element) => element.alt)];
"""


class TestHostile(PageTest):
    def test_texts_make_no_elements(self):
        for hostile, harmless in (("hostile", "harmless"), ("hostile diff", "harmless diff")):
            with self.subTest(page=hostile):
                self.browser.open(session.pages[harmless])
                expected = self.browser.run(STRUCTURE)
                self.browser.open(session.pages[hostile])
                self.assertEqual(self.browser.run(STRUCTURE), expected)

    @on_pages("hostile", "hostile diff")
    def test_nothing_happens(self, _):
        self.assertIsNone(self.browser.dialog())
        self.browser.run("for (const element of document.querySelectorAll('main *')) {"
                         " element.dispatchEvent(new Event('mouseover')); element.focus(); }")
        self.assertIsNone(self.browser.dialog())
        self.assertEqual(self.browser.console(), [])
        self.assertNotIn(".invalid", " ".join(self.browser.requests()))

    @on_pages("hostile", "hostile diff")
    def test_texts_are_there(self, name):
        title, *texts = self.browser.run(TEXTS)
        self.assertIn(session.HOSTILE_NAME, title)
        self.assertIn(session.HOSTILE_NAME, self.browser.run(
            "return document.querySelector('header').textContent"))
        for text in session.hostile_texts:
            self.assertIn(text, texts[0], name)

    @on_pages("hostile")
    def test_titles_are_what_was_put_in(self, _):
        titles = self.browser.run(
            "return Array.from(document.querySelectorAll('article h3'), (title) =>"
            " title.textContent.replace(/^Step \\d+: /, ''))")
        self.assertEqual(set(titles) & set(session.hostile_texts),
                         set(session.hostile_texts))

    @on_pages("hostile")
    def test_pictures_are_pictures(self, _):
        sources = self.browser.run(
            "return Array.from(document.images, (image) => image.getAttribute('src'))")
        self.assertEqual({source.split(",")[0] for source in sources},
                         {"data:image/png;base64", "data:image/gif;base64"})
        self.assertNotIn("svg", "".join(base64.b64decode(source.split(",")[1]).decode("latin-1")
                                        for source in sources))

    @on_pages("hostile", "hostile diff")
    def test_attributes_that_run_nothing(self, _):
        attributes = self.browser.run(
            "return Array.from(document.querySelectorAll('*'), (element) =>"
            " Array.from(element.attributes, (attribute) => attribute.name)).flat()")
        self.assertEqual([name for name in attributes
                          if name.startswith("on") or name in ("style", "srcset")], [])
        self.assertEqual(self.browser.run("return document.scripts.length"), 1)

    def test_an_unescaped_text_is_noticed(self):
        text = session.hostile_texts[0]
        page = session.page_with(
            lambda page: page.replace(html.escape(text).encode(), text.encode(), 1)
            .replace(b"Content-Security-Policy", b"nothing"), "hostile diff")
        self.browser.open(page)
        self.assertEqual(self.browser.dialog(), "1")
