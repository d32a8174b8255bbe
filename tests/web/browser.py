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
    axe: str
    folder: pathlib.Path

    @classmethod
    def setUpClass(cls) -> None:
        cls.browser = start()
        cls.addClassCleanup(cls.browser.quit)
        cls.axe = axe_of(cls.browser)

    def setUp(self) -> None:
        self.browser.get("about:blank")
        faults_of(self.browser, self.folder)

    def tearDown(self) -> None:
        self.assertEqual([], faults_of(self.browser, self.folder))


AXE_HOLDER = "devtools://devtools/bundled/third_party/lighthouse/lighthouse-dt-bundle.js"


def axe_of(browser: webdriver.Chrome) -> str:
    """The source of axe-core, which a script of Chromium's developer tools has as a template literal."""
    browser.get(AXE_HOLDER)
    source: str = browser.execute_script("""
        const text = document.body.textContent, begin = text.indexOf("`/*! axe v");
        if (begin < 0) throw Error("no axe-core is here");
        let end = begin + 1;
        while (text[end] !== "`") end += text[end] === "\\\\" ? 2 : 1;
        return (0, eval)(text.slice(begin, end + 1));""")
    return source


def barriers_of(browser: webdriver.Chrome, axe: str) -> list[str]:
    """What axe-core finds in the page, by day, in the dark and as narrow as a phone: contrast, names, roles."""
    faults: list[str] = []
    browser.execute_script(axe)
    for scheme, width in (("light", 1300), ("dark", 1300), ("dark", 390)):
        media = {"features": [{"name": "prefers-color-scheme", "value": scheme}]}
        browser.execute_cdp_cmd("Emulation.setEmulatedMedia", media)
        size = {"width": width, "height": 2000, "deviceScaleFactor": 1, "mobile": False}
        browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", size)
        found = browser.execute_async_script("""
            const done = arguments[0];
            axe.run(document, {preload: false}).then(({passes, violations}) => done({passes: passes.length, faults:
                violations.flatMap(({id, nodes}) => nodes.map(({html, failureSummary}) =>
                    `${id}: ${html.slice(0, 200)} ${failureSummary}`))}));""")
        assert found["passes"] > 0, "axe-core has looked at nothing"
        faults += [f"{scheme}, {width} wide: {fault}" for fault in found["faults"]]
        if browser.execute_script("return document.documentElement.scrollWidth > innerWidth"):
            faults.append(f"{width} wide: the page is wider")
    browser.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})
    return faults
