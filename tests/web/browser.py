"""A Chromium without a window, and what a page did in it."""

from __future__ import annotations

import json
import pathlib
import unittest
from typing import Any

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By


def start() -> webdriver.Chrome:
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--window-size=1300,950"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def faults_of(browser: webdriver.Chrome, folder: pathlib.Path) -> list[str]:
    """What the console said since the last call, and the requests for anything but the files of the folder."""
    faults = [entry["message"] for entry in browser.get_log("browser")]
    for entry in browser.get_log("performance"):
        event: dict[str, Any] = json.loads(entry["message"])["message"]
        if event["method"] == "Network.requestWillBeSent":
            url = event["params"]["request"]["url"]
            if not url.startswith((folder.as_uri() + "/", "data:")):
                faults.append(f"request for {url}")
    return faults


class Pages(unittest.TestCase):
    """Tests of the pages in a folder, which fail if the console says anything or a request leaves the folder."""

    browser: webdriver.Chrome
    folder: pathlib.Path

    @classmethod
    def setUpClass(cls) -> None:
        cls.browser = start()
        cls.addClassCleanup(cls.browser.quit)

    def setUp(self) -> None:
        self.browser.get("about:blank")
        faults_of(self.browser, self.folder)

    def tearDown(self) -> None:
        self.assertEqual([], faults_of(self.browser, self.folder))


LOOKS = """
const numbers = (colour) => colour.match(/[\\d.]+/g).map(Number);
const light = (colour) => numbers(colour).slice(0, 3).map((part) => part / 255)
    .map((part) => part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4)
    .reduce((sum, part, i) => sum + part * [0.2126, 0.7152, 0.0722][i], 0);
const ground = (element) => {
    for (; element; element = element.parentElement) {
        const colour = getComputedStyle(element).backgroundColor;
        if (numbers(colour)[3] !== 0) return colour;
    }
    return getComputedStyle(document.documentElement).backgroundColor;
};
const faults = new Set();
for (const element of document.body.querySelectorAll("*")) {
    const hasText = [...element.childNodes].some((node) => node.nodeType === 3 && node.data.trim() !== "");
    if (!hasText || !element.checkVisibility()) continue;
    const style = getComputedStyle(element), levels = [light(style.color), light(ground(element))];
    const ratio = (Math.max(...levels) + 0.05) / (Math.min(...levels) + 0.05);
    if (ratio < 4.5) faults.add(`${element.tagName} ${element.className}: contrast ${ratio.toFixed(1)}`);
}
return [...faults]"""

UNNAMED = """
return [...document.querySelectorAll("a, button, input, textarea, summary, [tabindex]")]
    .filter((each) => each.checkVisibility())
    .filter((each) => !/^(A|BUTTON|SUMMARY)$/.test(each.tagName) || each.textContent.trim() === "")"""


def looks_of(browser: webdriver.Chrome) -> list[str]:
    """Texts with a contrast below 4.5, by day and in the dark, and controls without a name."""
    faults = []
    for scheme in ("dark", "light"):
        media = {"features": [{"name": "prefers-color-scheme", "value": scheme}]}
        browser.execute_cdp_cmd("Emulation.setEmulatedMedia", media)
        faults += [f"{scheme}: {fault}" for fault in browser.execute_script(LOOKS)]
    for control in browser.execute_script(UNNAMED):
        if not control.accessible_name:
            faults.append(f"without a name: {control.get_attribute('outerHTML')[:200]}")
    return faults
