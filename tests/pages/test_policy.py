"""The pages forbid what they do not need, should anything get past the escaping."""

import re

import session
from session import PageTest, on_pages

# What each attempt would do shows in "done", what is forbidden in "refused".
ATTEMPTS = """
const finish = arguments[arguments.length - 1];
const done = window.done = [];
const refused = [];
document.addEventListener('securitypolicyviolation', (event) => {
    refused.push(event.effectiveDirective);
});
function add(name, properties) {
    const element = Object.assign(document.createElement(name), properties);
    document.body.append(element);
    return element;
}
const box = add('div', {});
box.innerHTML = '<svg onload="window.done.push(1)"></svg>'
    + '<b style="position: fixed">text</b>';
add('script', {textContent: "window.done.push('script')"});
add('style', {textContent: 'h1 { text-indent: 77px; }'});
add('base', {href: 'file:///elsewhere/'});
add('a', {href: "javascript:window.done.push('link')"}).click();
add('img', {src: 'data:image/svg+xml,<svg xmlns="http://www.w3.org/2000/svg"/>'});
add('img', {src: 'x', onerror: () => 0}).setAttribute('onerror', "window.done.push('handler')");
add('iframe', {srcdoc: "<script>parent.done.push('frame')</scr" + 'ipt>'});
add('script', {src: "data:text/javascript,window.done.push('source')"});
setTimeout(() => { // what the driver itself runs may call it
    try {
        eval("window.done.push('eval')");
    } catch (error) {
        refused.push('eval');
    }
});
setTimeout(() => {
    if (getComputedStyle(document.querySelector('h1')).textIndent === '77px') {
        done.push('style');
    }
    if (getComputedStyle(box.querySelector('b')).position === 'fixed') {
        done.push('style attribute');
    }
    if (document.baseURI.startsWith('file:///elsewhere/')) {
        done.push('base');
    }
    finish([done, refused]);
}, 300);
"""
ALL = {"script", "style", "style attribute", "base", "link", "handler", "frame", "source", "eval"}


def without_policy(html):
    changed, count = re.subn(rb'<meta http-equiv="Content-Security-Policy"[^>]*>', b"", html)
    assert count == 1
    return changed


class TestPolicy(PageTest):
    @on_pages("report", "diff")
    def test_nothing_added_runs(self, _):
        done, refused = self.browser.wait(ATTEMPTS)
        self.assertEqual(done, [])
        self.assertGreaterEqual(set(refused), {
            "script-src-elem", "script-src-attr", "style-src-elem", "style-src-attr",
            "img-src", "base-uri", "eval"})

    def test_it_would_run_without_the_policy(self):
        for name in ("report", "diff"):
            with self.subTest(page=name):
                self.browser.open(session.page_with(without_policy, name))
                done, refused = self.browser.wait(ATTEMPTS)
                self.assertEqual(refused, [])
                self.assertGreaterEqual(set(done), ALL)

    def test_the_policy_comes_first(self):
        for name, page in session.pages.items():
            head = page.read_bytes().split(b"<title>")[0]
            self.assertIn(b"default-src 'none'", head, name)
            self.assertNotIn(b"unsafe", head, name)
            self.assertNotIn(b"<style", head, name)
            self.assertNotIn(b"<script", head, name)
