"""A headless Chromium on a page of tarnfleet."""
import base64
import shutil
import tempfile
from pathlib import Path

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import WebDriverWait

SWITCHES = ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--hide-scrollbars",
            "--disable-background-networking", "--disable-component-update", "--disable-sync"]


class Browser:
    """`directory` takes the profile and what the page saves."""

    def __init__(self):
        self.directory = Path(tempfile.mkdtemp(prefix="fleet-page-"))
        options = webdriver.ChromeOptions()
        for switch in [*SWITCHES, f"--user-data-dir={self.directory}/profile"]:
            options.add_argument(switch)
        options.add_experimental_option("prefs", {"download.default_directory": str(self.directory)})
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        self.look(1400)

    def close(self):
        self.driver.quit()
        shutil.rmtree(self.directory, ignore_errors=True)

    def look(self, width, height=900, dark=False):
        """Sets the window's inner size in CSS pixels and the reader's colour scheme."""
        size = {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False}
        scheme = {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", size)
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [scheme]})

    def open(self, file, address=""):
        self.driver.get("about:blank")  # a page that differs by its address alone would not be loaded again
        self.driver.get(f"file://{file}{address}")

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def one(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def texts(self, selector):
        """The texts as they are seen in the next frame, with one blank between their parts."""
        return self.driver.execute_async_script("""
            const [selector, done] = arguments;
            const textOf = element => element.innerText.replace(/\\s+/g, " ").trim();
            requestAnimationFrame(() => setTimeout(() =>
                done(Array.from(document.querySelectorAll(selector), textOf))));""", selector)

    def wait(self, condition, seconds=20):
        return WebDriverWait(self.driver, seconds, poll_frequency=0.05).until(lambda _: condition())

    def console(self):
        """The messages since the last look, refusals of the security policy among them."""
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def print(self, file):
        printed = self.driver.execute_cdp_cmd("Page.printToPDF", {"preferCSSPageSize": True, "printBackground": True})
        Path(file).write_bytes(base64.b64decode(printed["data"]))

    def picture(self, file):
        Path(file).write_bytes(self.driver.get_screenshot_as_png())
