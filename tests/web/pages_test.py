"""Tests the search in Chromium: pages_test.py DIR"""

from __future__ import annotations

import pathlib
import sys
import unittest

import browser
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.wait import WebDriverWait

FOLDER = pathlib.Path(sys.argv.pop(1)).resolve()


class Search(browser.Pages):
    folder = FOLDER

    def search(self, page: str, text: str) -> list[str]:
        """The results, each with its link."""
        self.browser.get((FOLDER / page).as_uri())
        self.browser.find_element(By.ID, "sought").send_keys(text)
        WebDriverWait(self.browser, 20).until(lambda each: each.find_element(By.ID, "found").text)
        items = self.browser.find_elements(By.CSS_SELECTOR, "#results li")
        return [f"{item.text} {item.find_element(By.TAG_NAME, 'a').get_attribute('href')}" for item in items]

    def test_a_type_is_first(self) -> None:
        results = self.search("index.html", "jobid")  # the name of many arms, too
        self.assertRegex(results[0], r"^JobId struct · jobs/identity file:.*/modules/jobs.identity.html#JobId$")

    def test_a_number_finds_attributes_and_enumerators(self) -> None:
        results = "\n".join(self.search("modules/jobs.covers.html", "231"))
        self.assertIn("psModes = 231 arm · ESSPlatformManagerUnion", results)
        self.assertIn("DTPTfaxChartPhoto = 231 enumerator · DiagTestPatternType", results)

    def test_an_enumerator_leads_to_its_row(self) -> None:
        results = self.search("sources/jobs.job.x.html", "DTPTfaxChartPhoto")
        self.assertEqual(1, len(results))
        self.browser.switch_to.active_element.send_keys(Keys.ARROW_DOWN)
        self.browser.switch_to.active_element.send_keys(Keys.ENTER)
        target = WebDriverWait(self.browser, 20).until(lambda each: each.find_elements(By.CSS_SELECTOR, "tr:target"))
        self.assertEqual("231 DTPTfaxChartPhoto", target[0].text)

    def test_what_is_not_there_is_said(self) -> None:
        self.assertEqual([], self.search("index.html", "NoSuchName"))
        self.assertEqual("Nothing found", self.browser.find_element(By.ID, "found").text)

    def test_axe_finds_no_barrier(self) -> None:
        for page in ("index.html", "modules/jobs.covers.html", "modules/jobs.job.html", "sources/jobs.covers.x.html"):
            self.search(page, "cover")
            self.assertEqual([], browser.barriers_of(self.browser, self.axe))

    def test_the_pages_are_read_without_scripts(self) -> None:
        self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        self.addCleanup(self.browser.execute_cdp_cmd, "Emulation.setScriptExecutionDisabled", {"value": False})
        self.browser.get((FOLDER / "modules/jobs.covers.html").as_uri() + "#ImageSideEnum")
        section = self.browser.find_element(By.XPATH, "//section[@aria-labelledby='ImageSideEnum']")
        self.assertIn("2 ISESide2only", section.text)
        self.assertFalse(self.browser.find_element(By.ID, "sought").is_displayed())


unittest.main()
