"""A Chromium without a window, and what a page did in it."""

from __future__ import annotations

import json
import pathlib
from typing import Any

from selenium import webdriver
from selenium.webdriver.chrome.service import Service


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
