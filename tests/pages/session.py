"""What all tests share: the browser, and the pages by name."""

import functools
import pathlib
import shutil
import subprocess
import unittest

from browser import Browser

HERE = pathlib.Path(__file__).parent
# As the names of documents are given by people, who may have been given them by others.
HOSTILE_NAME = "<img src=x onerror=alert(0)>.pdf"
HARMLESS_NAME = "document.pdf"

# What there is of each kind of page.
VARIOUS = ["report", "damaged", "names", "hostile", "diff", "hostile diff"]

browser = None
folder = None  # everything is in it
pages = {}  # paths by name
hostile_texts = (HERE / "hostile.txt").read_text(encoding="utf-8").splitlines()

_options = None


def start(options, work_folder):
    global browser, folder, _options
    _options, folder = options, work_folder
    browser = Browser(options.chromium, options.chromedriver)
    browser.open_nothing()
    for name in ("report", "nested", "damaged", "names"):
        _report(name, options.samples / f"{name}.pdf")
    _make_hostile()
    _make_harmless()


def end():
    if browser:
        browser.close()


def paper_text():
    """The text of the page that is shown, as it is printed."""
    return subprocess.run([_options.pdftotext, "-raw", "-", "-"], input=browser.print(),
                          stdout=subprocess.PIPE, check=True).stdout.decode()


def page_with(change, name):
    """The path of a copy of the page of that name with its bytes changed."""
    copy = folder / "changed.html"
    copy.write_bytes(change(pages[name].read_bytes()))
    return copy


class PageTest(unittest.TestCase):
    """A test that looks at pages."""

    def setUp(self):
        self.browser = browser


def on_pages(*names):
    """Has a test be called with the name of each page in turn, which is shown; with those of
    VARIOUS if none is named."""
    def decorate(test):
        @functools.wraps(test)
        def run(self):
            for name in names or VARIOUS:
                with self.subTest(page=name):
                    browser.open(pages[name])
                    test(self, name)
        return run
    return decorate


def _make_hostile():
    documents = _documents("hostile", hostile_texts)
    name = documents / HOSTILE_NAME
    shutil.copy(documents / "texts.pdf", name)
    _report("hostile", name)
    _diff("hostile diff", name, documents / "other texts.pdf")


def _make_harmless():
    """The same pages with texts that mean nothing to a browser, and further comparisons."""
    texts = [f"{i} harmless {i}" for i, _ in enumerate(hostile_texts)]
    documents = _documents("harmless", texts)
    name = documents / HARMLESS_NAME
    shutil.copy(documents / "texts.pdf", name)
    _report("harmless", name)
    _diff("harmless diff", name, documents / "other texts.pdf")
    _diff("diff", documents / "before.pdf", documents / "after.pdf")
    _diff("long diff", documents / "long before.pdf", documents / "long after.pdf")
    _diff("same diff", documents / "before.pdf", documents / "before.pdf")


def _documents(name, texts):
    documents = folder / name
    documents.mkdir()
    (documents / "lines").write_text("\n".join(texts), encoding="utf-8")
    subprocess.run([_options.maker, documents / "lines", documents], check=True)
    return documents


def _report(name, document):
    _make(name, (0, 1), "report", "-o", _page(name), document.name, cwd=document.parent)


def _diff(name, first, second):
    _make(name, (0, 1), "diff", "--html", _page(name), first.name, second.name, cwd=first.parent)


def _page(name):
    return folder / f"{name}.html"


def _make(name, exit_codes, *arguments, cwd):
    ended = subprocess.run([_options.tresk, *arguments], cwd=cwd, stdout=subprocess.PIPE,
                           stderr=subprocess.PIPE, check=False)
    if ended.returncode not in exit_codes or ended.stdout:
        raise RuntimeError(f"page {name}: tresk ended with {ended.returncode}: {ended.stderr}")
    pages[name] = _page(name)
