"""Pictures of the pages for people."""

import session

WIDE = {"width": 1200, "height": 900, "deviceScaleFactor": 1, "mobile": False}
NARROW = {"width": 360, "height": 740, "deviceScaleFactor": 2, "mobile": True}


def take(folder):
    """Writes all pages as pictures to the folder, and as they are printed."""
    folder.mkdir(parents=True, exist_ok=True)
    browser = session.browser
    for name, page in session.pages.items():
        for view, size, scheme in (("wide", WIDE, "light"), ("dark", WIDE, "dark"),
                                   ("narrow", NARROW, "light")):
            browser.develop("Emulation.setDeviceMetricsOverride", **size)
            browser.develop("Emulation.setEmulatedMedia",
                            features=[{"name": "prefers-color-scheme", "value": scheme}])
            browser.open(page)
            (folder / f"{name} {view}.png").write_bytes(browser.screenshot())
        (folder / f"{name}.pdf").write_bytes(browser.print())
