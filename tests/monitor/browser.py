"""Drives a headless Chromium over a pipe: as much of its protocol as the tests of a page need."""

import json
import os
import select
import shutil
import subprocess
import tempfile
import time


def installed():
    return shutil.which("chromium") or shutil.which("chromium-browser")


class Browser:
    """One window, with everything it wrote to its console or tried to fetch."""

    def __init__(self, width=1400, height=2200):
        self.profile = tempfile.TemporaryDirectory(prefix="browser.", ignore_cleanup_errors=True)
        read_end, self.commands = os.pipe()
        self.answers, write_end = os.pipe()
        # The browser reads descriptor 3 and writes descriptor 4.
        self.process = subprocess.Popen(
            ["bash", "-c", f'exec "$@" 3<&{read_end} 4>&{write_end}', "bash", installed(),
             "--headless=new", "--no-sandbox", "--disable-gpu", "--remote-debugging-pipe",
             "--disable-dev-shm-usage", "--disable-background-networking", "--no-first-run",
             f"--window-size={width},{height}", f"--user-data-dir={self.profile.name}",
             "about:blank"],
            pass_fds=(read_end, write_end), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(read_end)
        os.close(write_end)
        self.number = 0
        self.buffer = b""
        self.troubles = []
        self.requests = []
        self.session = None
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target,
                                 flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Network", "Log"):
            self.call(f"{domain}.enable")
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height,
                  deviceScaleFactor=1, mobile=False)

    def close(self):
        self.process.kill()
        self.process.wait()
        os.close(self.commands)
        os.close(self.answers)
        self.profile.cleanup()

    def read(self, patience=90):
        deadline = time.monotonic() + patience
        while b"\0" not in self.buffer:
            if not select.select([self.answers], [], [], max(0, deadline - time.monotonic()))[0]:
                raise TimeoutError("the browser does not answer")
            piece = os.read(self.answers, 1 << 20)
            if not piece:
                raise EOFError("the browser has ended")
            self.buffer += piece
        message, self.buffer = self.buffer.split(b"\0", 1)
        message = json.loads(message)
        method = message.get("method")
        if method == "Runtime.exceptionThrown" or method == "Log.entryAdded":
            self.troubles.append(message["params"])
        elif method == "Network.requestWillBeSent":
            self.requests.append(message["params"]["request"]["url"])
        return message

    def call(self, method, **parameters):
        self.number += 1
        command = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            command["sessionId"] = self.session
        os.write(self.commands, json.dumps(command).encode() + b"\0")
        while True:
            message = self.read()
            if message.get("id") == self.number:
                if "error" in message:
                    raise RuntimeError(message["error"])
                return message["result"]

    def open(self, path):
        self.call("Page.navigate", url=path.as_uri())
        while self.read().get("method") != "Page.loadEventFired":
            pass

    def run(self, script):
        """The value of an expression in the page."""
        result = self.call("Runtime.evaluate", expression=script, returnByValue=True,
                           awaitPromise=True)
        if "exceptionDetails" in result:
            raise RuntimeError(result["exceptionDetails"])
        return result["result"].get("value")

    def click(self, selector, across=0.5, down=0.5):
        """With the mouse, at a place inside the first element."""
        left, top, width, height = self.run(
            f"(() => {{ const e = document.querySelector({json.dumps(selector)});"
            " e.scrollIntoView({block: 'center'}); const r = e.getBoundingClientRect();"
            " return [r.left, r.top, r.width, r.height]; })()")
        place = {"x": left + width * across, "y": top + height * down}
        self.call("Input.dispatchMouseEvent", type="mouseMoved", **place)
        for kind in ("mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, button="left", clickCount=1, **place)

    def key(self, key):
        for kind in ("keyDown", "keyUp"):
            self.call("Input.dispatchKeyEvent", type=kind, key=key)

    def type(self, text):
        self.call("Input.insertText", text=text)

    def prefer(self, scheme, media="screen"):
        self.call("Emulation.setEmulatedMedia", media=media,
                  features=[{"name": "prefers-color-scheme", "value": scheme}])
