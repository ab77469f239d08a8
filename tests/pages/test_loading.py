"""Pages load by themselves, and their parts fit together."""

import session
from session import PageTest, on_pages


class TestLoading(PageTest):
    @on_pages()
    def test_nothing_is_reported_or_asked_for(self, _):
        self.assertEqual(self.browser.console(), [])
        self.assertIsNone(self.browser.dialog())
        requests = [url for url in self.browser.requests() if not url.startswith("data:image/")]
        self.assertEqual(len(requests), 1, requests)
        self.assertTrue(requests[0].startswith("file://") and requests[0].endswith(".html"))
        self.assertEqual(self.browser.run(
            "return performance.getEntriesByType('resource').map((entry) => entry.name)"
            ".filter((name) => !name.startsWith('data:'))"), [])

    def test_console_and_requests_are_watched(self):
        page = session.page_with(
            lambda html: html.replace(b"</body>", b"<img src='nowhere.png'><script src='x'>"
                                      b"</script></body>"), "diff")
        self.browser.open(page)
        self.assertNotEqual(self.browser.console(), [])
        self.assertIn("nowhere.png", " ".join(self.browser.requests()))

    @on_pages(*session.VARIOUS, "long diff")
    def test_links_lead_somewhere(self, _):
        links = self.browser.run(
            "return Array.from(document.links, (link) => link.getAttribute('href'))")
        ids = self.browser.run(
            "return Array.from(document.querySelectorAll('[id]'), (element) => element.id)")
        self.assertEqual(len(ids), len(set(ids)), "ids are unique")
        for link in links:
            self.assertTrue(link.startswith("#") and link[1:] in ids, link)

    @on_pages("report", "diff")
    def test_addresses_that_lead_nowhere(self, name):
        for fragment in ("nothing", "%", "%E0%A4%A"):
            self.browser.open(session.pages[name], fragment)
            self.assertEqual(self.browser.console(), [], fragment)

    @on_pages("report")
    def test_pictures_are_shown(self, _):
        widths = self.browser.wait(
            "const done = arguments[0]; const pictures = Array.from(document.images);"
            "pictures.forEach((picture) => { picture.loading = 'eager'; });"
            "Promise.all(pictures.map((picture) => picture.decode()))"
            ".then(() => done(pictures.map((picture) => picture.naturalWidth)), done)")
        self.assertGreater(len(widths), 0)
        self.assertTrue(all(width > 0 for width in widths), widths)

    def test_without_scripts(self):
        self.browser.develop("Emulation.setScriptExecutionDisabled", value=True)
        self.addCleanup(self.browser.develop, "Emulation.setScriptExecutionDisabled", value=False)
        for name in ("report", "diff"):
            self.browser.open(session.pages[name])
            shown = self.browser.run(
                "return ['.tools', 'h1', 'main li', 'main dl, main table'].map((selector) =>"
                " document.querySelector(selector).checkVisibility())")
            self.assertEqual(shown, [False, True, True, True], name)
