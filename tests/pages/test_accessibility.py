"""What a screen reader is told of the pages."""

from session import PageTest, on_pages

NEED_NAMES = {"button", "searchbox", "textbox", "link", "image", "DisclosureTriangle", "navigation"}


class TestAccessibility(PageTest):
    @on_pages()
    def test_names_and_landmarks(self, _):
        nodes = self._nodes()
        nameless = [node["role"]["value"] for node in nodes
                    if node["role"]["value"] in NEED_NAMES
                    and not node.get("name", {}).get("value", "").strip()]
        self.assertEqual(nameless, [])
        roles = [node["role"]["value"] for node in nodes]
        self.assertEqual([roles.count(role) for role in ("main", "banner", "search")], [1, 1, 1])

    @on_pages("report", "diff")
    def test_all_kinds_of_nodes_are_looked_at(self, name):
        roles = {node["role"]["value"] for node in self._nodes()}
        wanted = {"button", "searchbox", "link", "heading", "search", "main", "banner", "image",
                  "DisclosureTriangle"}
        self.assertGreaterEqual(roles, wanted | ({"navigation", "table"} if name == "diff"
                                                 else set()))

    @on_pages()
    def test_headings_skip_no_level(self, _):
        levels = self.browser.run(
            "return Array.from(document.querySelectorAll('h1, h2, h3, h4, h5, h6'), (heading) =>"
            " Number(heading.localName[1]))")
        self.assertEqual(self.browser.run("return document.documentElement.lang"), "en")
        self.assertEqual(levels.count(1), 1)
        self.assertEqual(levels[0], 1)
        for before, level in zip(levels, levels[1:]):
            self.assertLessEqual(level, before + 1, levels)

    @on_pages("report", "diff")
    def test_all_headings_are_told(self, _):
        told = [node["name"]["value"] for node in self._nodes()
                if node["role"]["value"] == "heading"]
        self.assertEqual(len(told), self.browser.run(
            "return Array.from(document.querySelectorAll('h1, h2, h3, h4'))"
            ".filter((heading) => heading.checkVisibility()).length"))

    @on_pages("report")
    def test_pictures_are_described(self, _):
        descriptions = self.browser.run("return Array.from(document.images, (image) => image.alt)")
        self.assertEqual({description.split()[-1] for description in descriptions},
                         {"preview.png", "thumbnail.png"})

    @on_pages("report", "diff")
    def test_the_first_stop_skips_to_the_content(self, _):
        self.browser.press("\ue004")
        stop = self.browser.run(
            "const link = document.activeElement;"
            "const box = link.getBoundingClientRect();"
            "return [link.className, box.left >= 0 && box.width > 0,"
            " document.querySelector('main').contains(document.querySelector(link.hash))]")
        self.assertEqual(stop, ["skip", True, True])

    @on_pages("diff")
    def test_signs_are_words(self, _):
        signs = [node["name"]["value"] for node in self._nodes()
                 if node["role"]["value"] == "image"]
        self.assertEqual(set(signs), {"the same", "changed", "moved", "only here"})

    def _nodes(self):
        return [node for node in self.browser.develop("Accessibility.getFullAXTree")["nodes"]
                if not node["ignored"]]
