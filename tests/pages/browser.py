"""A headless Chromium without network, driven by the WebDriver protocol."""

import base64
import json
import os
import re
import subprocess
import tempfile
import urllib.error
import urllib.request

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"  # the key that the protocol has for an element's id


class BrowserError(Exception):
    """What the driver answered in place of a result."""

    def __init__(self, kind, message):
        super().__init__(f"{kind}: {message}")
        self.kind = kind


class Browser:
    """One session. Everything that it writes is in a temporary folder of its own."""

    def __init__(self, chromium, driver):
        self._folder = tempfile.TemporaryDirectory(prefix="tresk-pages-")
        self._session = None
        self._opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        self._driver = subprocess.Popen(
            [driver, "--port=0"], env=self._environment(), stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        try:
            self._address = f"http://127.0.0.1:{self._port()}/session"
            self._session = self._request("POST", "", self._capabilities(chromium))["sessionId"]
        except BaseException:
            self.close()
            raise

    def close(self):
        try:
            if self._session:
                self._request("DELETE", "/" + self._session)
        finally:
            self._driver.terminate()
            self._driver.communicate()
            self._folder.cleanup()

    def open(self, path, fragment=""):
        """Shows a file. Of what pages before it did, nothing is in the logs any more."""
        self.open_nothing()
        address = "file://" + urllib.request.pathname2url(str(path))
        self._post("/url", {"url": address + (fragment and "#" + fragment)})

    def open_nothing(self):
        self._post("/url", {"url": "about:blank"})
        self.console()
        self.requests()

    def run(self, script, *arguments):
        """The value of a JavaScript function's body with these arguments."""
        return self._post("/execute/sync", {"script": script, "args": list(arguments)})

    def wait(self, script, *arguments):
        """The same of a body that calls the last of its arguments with the value, maybe later."""
        return self._post("/execute/async", {"script": script, "args": list(arguments)})

    def develop(self, command, **parameters):
        """What a command of the DevTools protocol answers."""
        return self._post("/goog/cdp/execute", {"cmd": command, "params": parameters})

    def click(self, selector):
        self._post(f"/element/{self._element(selector)}/click", {})

    def type(self, selector, text):
        """Puts a text in the place of what the field holds, as with the keyboard."""
        select_all = "\ue009a\ue000"
        self._post(f"/element/{self._element(selector)}/value",
                   {"text": select_all + (text or "\ue003")})

    def press(self, *keys):
        """Presses keys one after the other, wherever the focus is."""
        strokes = [{"type": kind, "value": key} for key in keys for kind in ("keyDown", "keyUp")]
        self._post("/actions", {"actions": [{"type": "key", "id": "keys", "actions": strokes}]})

    def dialog(self):
        """The text of a dialog that a script has opened, which it closes; None if there is none."""
        try:
            text = self._get("/alert/text")
        except BrowserError as error:
            if error.kind == "no such alert":
                return None
            raise
        self._post("/alert/dismiss", {})
        return text

    def print(self):
        """What the page is on paper, as PDF."""
        return base64.b64decode(self._post("/print", {}))

    def screenshot(self):
        """The whole page as PNG, as wide as the window."""
        size = self.develop("Page.getLayoutMetrics")["cssContentSize"]
        clip = {"x": 0, "y": 0, "width": size["width"], "height": min(size["height"], 8000),
                "scale": 1}
        return base64.b64decode(self.develop("Page.captureScreenshot", clip=clip,
                                             captureBeyondViewport=True)["data"])

    def console(self):
        """What has been written to the console since the last call, reports of errors included."""
        return [entry["level"] + ": " + entry["message"] for entry in self._log("browser")]

    def requests(self):
        """What has been asked for since the last call, whether or not there was an answer."""
        events = (json.loads(entry["message"])["message"] for entry in self._log("performance"))
        return [event["params"]["request"]["url"] for event in events
                if event["method"] == "Network.requestWillBeSent"]

    def _environment(self):
        return {**os.environ, "HOME": self._folder.name, "TMPDIR": self._folder.name,
                "XDG_CONFIG_HOME": self._folder.name, "XDG_CACHE_HOME": self._folder.name}

    def _port(self):
        for line in self._driver.stdout:
            found = re.search(r"successfully on port (\d+)", line)
            if found:
                return int(found.group(1))
        raise RuntimeError("the driver of Chromium does not start")

    def _capabilities(self, chromium):
        arguments = ["--headless=new", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
                     "--disable-background-networking", "--host-resolver-rules=MAP * ~NOTFOUND",
                     "--window-size=1200,900", "--lang=en",
                     "--user-data-dir=" + os.path.join(self._folder.name, "profile")]
        if os.geteuid() == 0:
            arguments.append("--no-sandbox")  # Chromium does not start as root with it
        return {"capabilities": {"alwaysMatch": {
            "browserName": "chrome",
            "unhandledPromptBehavior": "ignore",
            "goog:chromeOptions": {"binary": chromium, "args": arguments},
            "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}}}

    def _element(self, selector):
        return self._post("/element", {"using": "css selector", "value": selector})[ELEMENT]

    def _log(self, kind):
        return self._post("/se/log", {"type": kind})

    def _get(self, path):
        return self._request("GET", "/" + self._session + path)

    def _post(self, path, data):
        return self._request("POST", "/" + self._session + path, data)

    def _request(self, method, path, data=None):
        body = None if data is None else json.dumps(data).encode()
        request = urllib.request.Request(self._address + path, body, method=method,
                                         headers={"Content-Type": "application/json"})
        try:
            with self._opener.open(request, timeout=60) as response:
                return json.load(response)["value"]
        except urllib.error.HTTPError as error:
            value = json.load(error)["value"]
            raise BrowserError(value["error"], value["message"]) from None
